#pragma once

#include "GridCore.h"

#include "TermGridModel.h"
#include "TermRowChange.h"

#include <functional>

class CBlockDescEx;
class CKVModule;
class QContextMenuEvent;

// The grid of the editor that shows and edits the terminal rows of the module
// selected in the tree. Grid row n is terminal row n; every cell change is written
// to the module at once (TermGridModel keeps no rows). The row that becomes current
// is told to the attribute grid through termRowChange.
class CTermGridWnd : public GridCore {
    Q_OBJECT
public:
    // Grid columns 1 to 5, as the cells count them.
    enum Column {
        ColumnTerminal = TermGridModel::ColumnTerminal,
        ColumnShow = TermGridModel::ColumnShow,
        ColumnRePrompt = TermGridModel::ColumnRePrompt,
        ColumnBreak = TermGridModel::ColumnBreak,
        ColumnSpacing = TermGridModel::ColumnSpacing,
        ColumnCount = TermGridModel::ColumnCount
    };
    // The commands of the context menu.
    enum Command {
        kCmdEditCells = 225,
        kCmdInsertBefore = 226,
        kCmdInsertAfter = 227,
        kCmdDeleteRows = 228
    };

    explicit CTermGridWnd(QWidget* parent = nullptr);
    ~CTermGridWnd() override;

    // The block list, lent by the dialog; set before Initialize.
    void SetBlockDesc(CBlockDescEx* blocks);
    CBlockDescEx* BlockDesc() const { return m_pBlockDesc; }
    // How the grid reaches the dialog's module on each use; null: no module.
    void SetModuleSource(std::function<CKVModule*()> source);
    CKVModule* CurrentModule() const;
    TermGridModel* Model() const { return m_model; }

    void Initialize();
    // Shows the module of the dialog's handle, or none for -1.
    void LoadModule(int nHandle);
    int ModuleHandle() const { return m_nModuleHandle; }

    // The value of a cell, rows and columns from 1: the open editor's when it is being
    // edited, else the module's.
    QString GetCellValue(int row, int col) const;
    // Writes a value to the module as a programmatic change: no row change is told.
    bool SetCellValue(int row, int col, const QString& value);
    // The user's own edit: the cell's value written and the row change told.
    void OnModifyCell(int row, int col) override;
    // Writes the cell's value to the module; with bNotify tells the row change.
    void StoreCell(int row, int col, bool bNotify);

    // The cell of the last right click; -1 when there was none.
    int ContextRow() const { return m_nContextRow; }
    int ContextCol() const { return m_nContextCol; }

    // The context commands 225 to 228.
    void OnCommand(int command);

    // While quiet, moves of the current cell tell nothing; at its end the current cell
    // goes to row, col and the attribute grid shows that row again. Undo steps run
    // quiet.
    void BeginQuiet();
    void EndQuiet(int row, int col);

signals:
    // The current row changed, or the row's values were written (sent, not posted).
    void termRowChange(int blockIndex, const _rowchange& change);

protected:
    bool OnEditCell(int row, int col, const QString& value) override;
    void OnLeftCell(int row, int col, int newRow, int newCol) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    bool HasModule() const;
    // Whether rows may be inserted, deleted and filled: a module is shown, not read-only.
    bool CanChangeRows() const;
    bool OnValidateCell(int col, const QString& text) const;
    // The write-through of one cell, recorded as an undo step when it changed the row.
    bool WriteCell(int row, int col, const QString& value, bool bNotify);
    void SendRowChange(int prevRow, int newRow, bool bSave);
    void OnInsertBefore();
    void OnInsertAfter();
    void InsertRow(bool bBefore);
    void OnDeleteRows();

    TermGridModel* m_model;
    CBlockDescEx* m_pBlockDesc = nullptr;
    int m_nContextRow = -1;
    int m_nContextCol = -1;
    int m_nModuleHandle = -1;
    bool m_bMovingCell = false;
    int m_nQuiet = 0;
};
