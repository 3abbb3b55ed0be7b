#pragma once

#include "CKVModuleDB.h"
#include "ZelPlcDbIO.h"

#include <QList>
#include <QString>

class BlockLookup;
class CBlockDescEx;

// One thing amiss in a catalog: how bad it is, a code that scripts rely on, where it is
// (a null text and row 0 for the parts that do not apply) and one sentence.
struct CheckFinding {
    enum class Severity { Error, Warning };

    Severity severity = Severity::Error;
    QString code;
    QString manufacturer;
    QString series;
    QString type;
    QString catalog;
    int row = 0;
    QString message;
};

// Reads a whole module database, without ever writing it, and lists what breaks quietly:
// rows that the editor or the selection would read otherwise than meant, texts that should
// be numbers, missing style and index rows, and files that need an upgrade. Every rule is
// the program's own: the row grammar of the module, the block look-up of the terminal
// grid, the keys of the extra catalog items and the check of a box value text.
class CatalogCheck {
public:
    // Checks the database file at path, looking block names up in blocks when that is not
    // null. False when the database cannot be read; Failure() then tells why.
    bool Run(const QString& path, const CBlockDescEx* blocks);
    const QList<CheckFinding>& Findings() const { return m_findings; }
    const QString& Failure() const { return m_failure; }
    int Count(CheckFinding::Severity severity) const;

private:
    // Where a finding is: the index names and the catalog; null texts where none apply.
    struct Place {
        QString manufacturer;
        QString series;
        QString type;
        QString catalog;
    };

    bool CheckIndex(bool bOlder, const BlockLookup* blocks, QStringList& indexedTables);
    bool CheckModule(const Place& place, const QString& table, const BlockLookup* blocks);
    void CheckRows(const Place& place, const CKVModule& module, const BlockLookup* blocks);
    void CheckBoxes(const Place& place, const ModDB::ModSpecData& spec);
    bool CheckUnindexed(const QStringList& indexedTables);
    bool CheckStyles();
    void Add(CheckFinding::Severity severity, const QString& code, const Place& place, int row,
             const QString& message);
    bool ReadFailed();

    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
    QList<CheckFinding> m_findings;
    QString m_failure;
};
