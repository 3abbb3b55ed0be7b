#pragma once

#include <QList>
#include <QString>

class CPickTerm;
class CTermGridWnd;

// A block of selected cells of a grid, rows and columns from 1.
struct GridRange {
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;

    bool Contains(int row, int col) const {
        return row >= top && row <= bottom && col >= left && col <= right;
    }
    bool ReachesColumn(int col) const { return col >= left && col <= right; }
};
using GridRangeList = QList<GridRange>;

// The terminal grid's "edit cells" command: the picker shows the values of the cells
// in play, and what it hands back is written into every selected cell of its column.
// Works on the grid through its public interface.
class TermGridFill {
public:
    explicit TermGridFill(CTermGridWnd& grid) : m_grid(grid) {}
    virtual ~TermGridFill() = default;

    // Runs the picker on the selection when the right click lay in it, else on the
    // clicked cell alone (the selection is then cleared).
    void OnEditCells();

    // The fills, one per column. ranges null: the grid's selection, the current cell
    // standing in when nothing is selected. An empty list writes the current cell when
    // it lies in the column (any column for the terminal type); false when nothing was
    // written for that reason. The current cell is stored with a notice once at the end.
    bool ApplyTermType(int blockIndex, const GridRangeList* ranges);
    bool ApplyShow(int show, const GridRangeList* ranges);
    bool ApplyRePrompt(int rePrompt, const GridRangeList* ranges);
    bool ApplyBreak(bool bBreak, const GridRangeList* ranges);
    // False at once for a null text.
    bool ApplySpacing(const QString* spacing, const GridRangeList* ranges);

    // The grid's selection as ranges; with bCurrent, the current cell when nothing is
    // selected.
    GridRangeList SelectedRanges(bool bCurrent) const;

private:
    bool Fill(int col, const QString& value, const GridRangeList* ranges);
    void WriteCell(int row, int col, const QString& value, bool bTermType);
    // Sets the picker's value of a column from the cell.
    void Preset(CPickTerm& picker, int col, const QString& cellValue) const;
    void Disable(CPickTerm& picker, int col) const;
    // The fill of each column in play, with the picker's values.
    void ApplyPicked(const CPickTerm& picker, int col, const GridRangeList* ranges);
    void EditSelection(const GridRangeList& ranges);
    void EditSingleCell(int row, int col);

    CTermGridWnd& m_grid;
};
