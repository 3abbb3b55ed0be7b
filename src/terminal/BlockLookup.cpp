#include "BlockLookup.h"

#include "BlockNames.h"
#include "CBlockDescEx.h"

void BlockLookup::Rebuild(const CBlockDescEx* blocks) {
    m_indexes.clear();
    m_byDescription.clear();
    m_moduleForms.clear();
    m_descriptions.clear();
    if (!blocks) {
        return;
    }
    _termblock block;
    for (int index = 1; blocks->GetBlockAt(index, block); ++index) {
        // The first block of a search form wins, as in the list's own search.
        const QString key = Key(BlockNames::SearchForm(block.strBlockFile));
        if (!m_indexes.contains(key)) {
            m_indexes.insert(key, index);
        }
        const QString description = Key(block.strDescription);
        if (!m_byDescription.contains(description)) {
            m_byDescription.insert(description, index);
        }
        m_moduleForms.append(BlockNames::ModuleForm(block.strBlockFile));
        m_descriptions.append(block.strDescription);
    }
}

int BlockLookup::Find(const QString& stored) const {
    if (stored.isNull()) {
        return -1;
    }
    return m_indexes.value(Key(stored), -1);
}

int BlockLookup::FindDescription(const QString& description) const {
    if (description.isNull()) {
        return -1;
    }
    return m_byDescription.value(Key(description), -1);
}
