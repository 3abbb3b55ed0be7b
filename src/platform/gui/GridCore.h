#pragma once

#include <QList>
#include <QString>
#include <QTableView>
#include <QUndoStack>

class ChoiceDelegate;
class GridModel;
class QUndoCommand;

// The cell table every grid is built on: a table view over a GridModel whose rows and
// columns count from 1 (0 is the header), with
// - an undo stack (Ctrl+Z, Ctrl+Y) that can be switched off while a grid sets itself up,
// - one delegate for drop lists, check boxes and text (ChoiceDelegate),
// - the value of the open editor for the current cell,
// - a read-only lock for programmatic writes to read-only cells,
// - column widths and header height remembered under a settings key, at scale 1,
// - copy, cut and paste of cell ranges through the system clipboard.
// A right click leaves the current cell and the selection where they are, so that a
// context command acts on what was selected.
class GridCore : public QTableView {
    Q_OBJECT
public:
    explicit GridCore(QWidget* parent = nullptr);
    ~GridCore() override;

    void SetGridModel(GridModel* model);
    GridModel* Grid() const { return m_model; }
    ChoiceDelegate* Delegate() const { return m_delegate; }

    QUndoStack& UndoStack() { return m_undo; }
    // With undo off, commands run at once and leave nothing to undo.
    void SetUndoEnabled(bool enabled) { m_bUndoEnabled = enabled; }
    bool IsUndoEnabled() const { return m_bUndoEnabled; }
    // Takes the command: pushes it when undo is on (which runs it), else runs it once.
    void Execute(QUndoCommand* command);
    // Records a change that has already been made: the command's first redo must do
    // nothing. Dropped when undo is off.
    void Record(QUndoCommand* command);

    // While locked, read-only cells refuse programmatic writes as well as the user's; a
    // model that is all read-only refuses every write.
    void SetLockReadOnly(bool lock) { m_bLockReadOnly = lock; }
    bool IsLockReadOnly() const { return m_bLockReadOnly; }
    bool CanWrite(int row, int col) const;

    // The current cell, from 1; -1 when there is none.
    int CurrentRow() const;
    int CurrentCol() const;
    void SetCurrentCell(int row, int col);
    // The rows that hold selected cells, ascending; empty without a selection.
    QList<int> SelectedRows() const;

    // The value the open editor of the cell holds; false when it has no open editor.
    bool GetEditorValue(int row, int col, QString& value) const;
    // The value of a cell: the open editor's when the cell is being edited, else the
    // stored one. Row 0 and column 0 give the header texts.
    QString CellText(int row, int col) const;

    // Where the layout lives, and what the stored header height leaves out.
    void SetLayoutKey(const QString& key, int headerHeightOffset);
    void LoadLayout();
    void SaveLayout() const;
    // The width of a column (0 is the row header column) and the header height.
    int ColWidth(int col) const;
    void SetColWidth(int col, int width);
    int HeaderHeight() const;
    void SetHeaderHeight(int height);
    // The smallest width and height a user can drag a column or a row to.
    void SetMinimumTrackSize(int width, int height);
    // The caption of the top left cell.
    void SetCornerText(const QString& text);

    // The clipboard as the grids share it: a range of cells as text, cells separated by
    // tabs and rows by line ends. The range is the one spanning the selected cells, or
    // the current cell when nothing is selected.
    QString SelectionText() const;
    void CopySelection();
    // Copies, then empties the writable cells of the range, as one undo step.
    void CutSelection();
    // Writes the clipboard's text into the cells from the range's top left on, as the
    // user's edits and one undo step; what lies beyond the last row or column is left
    // out. False when nothing was written.
    bool PasteClipboard();
    // Whether the cell could take the clipboard: it lies in the grid, is writable, and
    // the clipboard holds text.
    bool CanPaste(int row, int col) const;
    // Text in the clipboard's form split into rows of cells; one line end at the end
    // adds no row.
    static QList<QStringList> SplitCellText(const QString& text);

    // Whether a cell changed since the owner last cleared the flag. Setting it tells
    // modifiedFlagChanged, queued as a posted message would be; the receiver only reads
    // the flag again, so one pending notice serves all calls.
    bool IsModified() const { return m_bModified != 0; }
    void SetModifiedFlag(int flag);

signals:
    void modifiedFlagChanged();

protected:
    // A value the user entered or toggled in a cell; answers whether it was taken.
    // The default records the change as an undo step and calls OnModifyCell.
    virtual bool OnEditCell(int row, int col, const QString& value);
    virtual void OnModifyCell(int row, int col);
    // The current cell moved; the row and column left are -1 when there was none.
    virtual void OnLeftCell(int row, int col, int newRow, int newCol);

    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mousePressEvent(QMouseEvent* event) override;
    // Return ends a cell's edit and stays in the grid: it never reaches the dialog, whose
    // default button would close it over a half-typed row.
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct CellRange {
        int top = 0;
        int left = 0;
        int bottom = 0;
        int right = 0;
    };
    // The range the clipboard commands act on, rows and columns from 1; false when the
    // grid has neither a selection nor a current cell.
    bool ClipboardRange(CellRange& range) const;
    // Writes rows of cell texts from top, left on as the user's edits, one undo step;
    // read-only cells, unchanged cells and what lies past the grid are left out.
    bool WriteCells(int top, int left, const QList<QStringList>& rows, const QString& stepName);
    void ApplyColWidths();
    void PaintCorner(QWidget* corner);

    GridModel* m_model = nullptr;
    ChoiceDelegate* m_delegate = nullptr;
    QUndoStack m_undo;
    bool m_bUndoEnabled = true;
    bool m_bLockReadOnly = false;
    QString m_layoutKey;
    int m_headerHeightOffset = 0;
    // Widths by grid column (0 the row headers); 0 is the view's default. They are
    // kept for columns that a grid shows only later.
    QList<int> m_colWidths;
    bool m_bApplyingWidths = false;
    int m_headerHeight = 0;
    QString m_cornerText;
    int m_bModified = 0;
    bool m_bPostPending = false;
};
