#pragma once

#include "CKVModule.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

class TermColumns;

// One terminal row read from CSV: the row of the module that it leaves as stored (from
// 1), because the CSV shows that row unchanged, or 0 and the row made from the CSV.
struct TermCsvRow {
    int keptRow = 0;
    _termvalues values;
};

// A module's terminal rows as CSV (RFC 4180: UTF-8, CRLF, a field with a comma, quote,
// CR or LF in quotes, quotes doubled). The header holds the five columns of the terminal
// grid, with the texts the grid shows, then one column per name of the rows' NAME=VALUE
// tokens (attribute values, and prompts as "%%1PROMPT"), in order of first use, and last
// a column of the tokens that fit nowhere else when a row has any. Reading is all or
// nothing: every cell that cannot be read is named by row and column.
class TerminalCsv {
public:
    // The header of the column of the other tokens; no name of a token can hold ";".
    static const QString kOtherHeader;

    explicit TerminalCsv(const TermColumns& columns) : m_columns(columns) {}

    QByteArray Write(const CKVModule& module) const;
    // Reads the CSV into the rows that are to replace the module's. False with one
    // sentence per refusal in errors, and rows empty.
    bool Read(const QByteArray& data, const CKVModule& module, QList<TermCsvRow>& rows,
              QStringList& errors) const;

    // One field as it is written: in quotes, quotes doubled, when it needs them.
    static QString Field(const QString& text);
    // The records of a CSV text, each a list of fields. False and a sentence naming the
    // record (0 is the first) and field where the text breaks the format.
    static bool SplitRecords(const QString& text, QList<QStringList>& records, int& failRecord,
                             int& failField, QString& error);

private:
    // The refusals of a header, one per column that does not fit; empty when it fits.
    QStringList CheckHeader(const QStringList& header) const;
    // The cells of a module's row under a header; false when the header has no place for
    // all that the row holds.
    bool RowCells(const CKVModule& module, int row, const QStringList& header,
                  QStringList& cells) const;
    // Makes row number row of work from a record; appends refusals to errors. A cell that
    // shows what the stored row at its place shows keeps that row's value.
    void MakeRow(CKVModule& work, const CKVModule& stored, int row, const QStringList& header,
                 const QStringList& cells, const QStringList& knownNames,
                 QStringList& errors) const;

    const TermColumns& m_columns;
};
