#pragma once

#include "CTermBlockSettings.h"
#include "TermBlock.h"

#include <QString>

// The terminal blocks of the settings file with their attributes, kept in memory. A
// block's one-based position is what the grids hold; its name is what a module stores.
// Positions hold only until the list is read again.
class CBlockDescEx {
public:
    CBlockDescEx();
    virtual ~CBlockDescEx();

    void SetDirectory(const QString& folder);
    QString GetDirectory() const;
    // Reads the settings file when bReload or when the list is empty.
    const TermBlockList& GetBlockList(bool bReload);
    // Block nIndex (from 1); false below 1 or past the end (out then holds the last block).
    bool GetBlockAt(int nIndex, _termblock& out) const;
    // One-based index or -1: mode 1 by search form of strBlockFile, mode 2 by description,
    // case ignored, first match wins.
    int FindBlock(const QString& text, int nMode) const;
    int GetCount() const;
    // The editor's comparison after the definitions dialog: counts, then block file and
    // description pair by pair, case ignored.
    bool SameBlocks(const CBlockDescEx& other) const;
    // Sets the list directly (tests, and the definitions dialog later).
    void SetBlocks(const TermBlockList& blocks);

private:
    TermBlockList m_lstBlocks;
    CTermBlockSettings m_settings;
};
