#pragma once

#include "GridCore.h"

#include "TermRowChange.h"

#include <functional>

class AttribGridModel;
class CBlockDescEx;
class CKVModule;

// The grid under the terminal grid: for the current terminal row, one column per
// attribute of the row's block, with the row's value of each. Edits stay in the grid
// until the terminal row changes (or the editor flushes before a save); then the
// values are merged into the row left and the new row's values are shown.
class CAttribGridWnd : public GridCore {
    Q_OBJECT
public:
    explicit CAttribGridWnd(QWidget* parent = nullptr);
    ~CAttribGridWnd() override;

    void SetBlockDesc(CBlockDescEx* blocks) { m_pBlockDesc = blocks; }
    void SetModuleSource(std::function<CKVModule*()> source) { m_source = std::move(source); }
    void SetModuleHandle(int nHandle) { m_nModuleHandle = nHandle; }
    // The next row change saves nothing; every row change clears it.
    void SetSkipSave(bool bSkip) { m_bSkipSave = bSkip; }
    AttribGridModel* Model() const { return m_model; }

    void Initialize();

    // blockIndex: the one-based block of the row now current. Saves the shown values
    // into change->nPrevRow when asked, then shows the attributes of the block with the
    // values of change->nNewRow. A null change does nothing.
    void OnTermRowChange(int blockIndex, const _rowchange* change);

protected:
    void OnModifyCell(int row, int col) override;

private:
    CKVModule* CurrentModule() const;
    void SaveValues(int row);
    void LoadValues(int blockIndex, int row);

    AttribGridModel* m_model;
    std::function<CKVModule*()> m_source;
    CBlockDescEx* m_pBlockDesc = nullptr;
    int m_nModuleHandle = -1;
    // Nothing has been shown before the first row change, so it saves nothing.
    bool m_bSkipSave = true;
};
