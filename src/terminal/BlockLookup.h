#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class CBlockDescEx;

// The blocks of a block list by the name a module stores, for showing thousands of
// rows at once: Find answers what CBlockDescEx::FindBlock(name, 1) answers (the search
// form of each block file, case ignored, first match wins) by one hash look-up.
// It holds until the list changes; Rebuild reads it again.
class BlockLookup {
public:
    void Rebuild(const CBlockDescEx* blocks);
    // One-based block index, -1 when no block has that name.
    int Find(const QString& stored) const;
    // One-based index of the first block with that description, case ignored, as
    // CBlockDescEx::FindBlock(description, 2) answers; -1 when none has it.
    int FindDescription(const QString& description) const;
    // The module form of block index's file; empty outside the list.
    QString ModuleForm(int index) const { return m_moduleForms.value(index - 1); }
    // The descriptions in list order: the choices of the terminal column.
    const QStringList& Descriptions() const { return m_descriptions; }

private:
    static QString Key(const QString& name) { return name.toCaseFolded(); }

    QHash<QString, int> m_indexes;
    QHash<QString, int> m_byDescription;
    QStringList m_moduleForms;
    QStringList m_descriptions;
};
