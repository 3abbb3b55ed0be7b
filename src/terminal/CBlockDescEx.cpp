#include "CBlockDescEx.h"

#include "BlockNames.h"

CBlockDescEx::CBlockDescEx() = default;

CBlockDescEx::~CBlockDescEx() = default;

void CBlockDescEx::SetDirectory(const QString& folder) {
    m_settings.SetDirectory(folder);
}

QString CBlockDescEx::GetDirectory() const {
    return m_settings.GetDirectory();
}

const TermBlockList& CBlockDescEx::GetBlockList(bool bReload) {
    if (bReload || m_lstBlocks.isEmpty()) {
        m_settings.Read(m_lstBlocks);
    }
    return m_lstBlocks;
}

bool CBlockDescEx::GetBlockAt(int nIndex, _termblock& out) const {
    if (nIndex < 1 || m_lstBlocks.isEmpty()) {
        return false;
    }
    if (nIndex > m_lstBlocks.size()) {
        out = m_lstBlocks.last();
        return false;
    }
    out = m_lstBlocks.at(nIndex - 1);
    return true;
}

int CBlockDescEx::FindBlock(const QString& text, int nMode) const {
    if (text.isNull() || (nMode != 1 && nMode != 2)) {
        return -1;
    }
    for (qsizetype i = 0; i < m_lstBlocks.size(); ++i) {
        const _termblock& block = m_lstBlocks.at(i);
        const QString key =
            nMode == 1 ? BlockNames::SearchForm(block.strBlockFile) : block.strDescription;
        if (key.compare(text, Qt::CaseInsensitive) == 0) {
            return int(i + 1);
        }
    }
    return -1;
}

int CBlockDescEx::GetCount() const {
    return int(m_lstBlocks.size());
}

bool CBlockDescEx::SameBlocks(const CBlockDescEx& other) const {
    if (m_lstBlocks.size() != other.m_lstBlocks.size()) {
        return false;
    }
    for (qsizetype i = 0; i < m_lstBlocks.size(); ++i) {
        const _termblock& mine = m_lstBlocks.at(i);
        const _termblock& theirs = other.m_lstBlocks.at(i);
        if (mine.strBlockFile.compare(theirs.strBlockFile, Qt::CaseInsensitive) != 0 ||
            mine.strDescription.compare(theirs.strDescription, Qt::CaseInsensitive) != 0) {
            return false;
        }
    }
    return true;
}

void CBlockDescEx::SetBlocks(const TermBlockList& blocks) {
    m_lstBlocks = blocks;
}
