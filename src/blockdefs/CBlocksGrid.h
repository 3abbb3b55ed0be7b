#pragma once

#include "GridCore.h"

class BlockDefsTable;
class BlocksGridModel;
class QContextMenuEvent;

// The four-column grid of the block definitions dialog, one terminal block a row, over
// a BlockDefsTable that the dialog lends it (no second copy of the rows). The category
// column offers the categories of the other rows and takes free text; the grid keeps a
// free row below the one the user stands on; a context menu copies, cuts, pastes,
// inserts and removes; the column widths and header height are remembered. It knows
// nothing of files: it tells its dialog when browsing makes sense and when a cell was
// double-clicked.
class CBlocksGrid : public GridCore {
    Q_OBJECT
public:
    // The commands of the context menu.
    enum Command {
        kCmdCopyCell = 207,
        kCmdInsertRow = 210,
        kCmdPasteCell = 214,
        kCmdRemoveRow = 215,
        kCmdCutCell = 216,
        kCmdCopyRow = 217,
        kCmdCutRow = 218,
        kCmdPasteRow = 219
    };

    explicit CBlocksGrid(QWidget* parent = nullptr);
    ~CBlocksGrid() override;

    // The rows, lent by the dialog; set before Initialize.
    void SetTable(BlockDefsTable* table);
    BlockDefsTable* Table() const { return m_pTable; }
    // Headers, minimum track sizes, tips and the remembered layout; shows the table's
    // rows with undo off, then switches undo on and clears the modified flag.
    void Initialize();
    // The table's rows were changed behind the grid (read, rewrite, merge): shows them
    // again. Undo steps recorded before a change of the row count are dropped.
    void TableChanged();
    BlocksGridModel* Model() const { return m_model; }

    // The value of a cell, rows and columns from 1: the open editor's text when the
    // cell is being edited, else the table's.
    QString GetCellValue(int row, int col) const;
    // Writes a cell as the user's edit would (one undo step), such as a browsed path; an
    // editor open on the cell is closed without storing its text. False outside the
    // table.
    bool SetCellValue(int row, int col, const QString& value);
    // Stores what the open editor holds, so that the table's rules see what the user
    // typed.
    void CommitEditor();
    // Adds the free row below the last: a single blank in the category, which every
    // reader trims away.
    void AppendFreeRow();

    // Sorts the rows by a column's text, ignoring case, rows without one last; as a
    // double click on the column's header does. Undo steps are dropped.
    void SortRows(int col);

    // The cell of the last context menu; -1 when it was opened outside the cells.
    int ContextRow() const { return m_nContextRow; }
    int ContextCol() const { return m_nContextCol; }
    // Whether a context command applies at the context cell (pastes also need text on
    // the clipboard and a cell that takes it).
    bool IsCommandEnabled(int command) const;
    void OnCommand(int command);

signals:
    // The current cell moved: browsing applies in the block file and sample columns.
    void enableBrowse(bool enable);
    // A cell was double-clicked, rows and columns from 1.
    void cellDoubleClicked(int row, int col);

protected:
    void OnLeftCell(int row, int col, int newRow, int newCol) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    // The context row lies in the table.
    bool IsContextRowInTable() const;
    bool IsContextCellValid() const;
    void CellCommand(int command);
    void RowCommand(int command);
    void InsertRowBelowContext();
    void RemoveContextRow();
    // Closes the editor of the current cell without storing what it holds.
    void DiscardEditor();

    BlocksGridModel* m_model;
    BlockDefsTable* m_pTable = nullptr;
    int m_nContextRow = -1;
    int m_nContextCol = -1;
    // While set, the current cell moving to the last row adds no free row: the rows
    // are shown again and the user did not move.
    bool m_bNoFreeRow = false;
};
