#include "TermGridFill.h"

#include "CBlockDescEx.h"
#include "CPickTerm.h"
#include "CTermGridWnd.h"
#include "CrtNumbers.h"
#include "ModalRunner.h"

#include <QItemSelectionModel>

namespace {

QString BreakText(bool bBreak) {
    return bBreak ? QStringLiteral("1") : QStringLiteral("0");
}

}  // namespace

GridRangeList TermGridFill::SelectedRanges(bool bCurrent) const {
    GridRangeList ranges;
    if (const QItemSelectionModel* selection = m_grid.selectionModel()) {
        for (const QItemSelectionRange& range : selection->selection()) {
            ranges.append(
                {range.top() + 1, range.left() + 1, range.bottom() + 1, range.right() + 1});
        }
    }
    const int row = m_grid.CurrentRow();
    const int col = m_grid.CurrentCol();
    if (ranges.isEmpty() && bCurrent && row >= 1 && col >= 1) {
        ranges.append({row, col, row, col});
    }
    return ranges;
}

void TermGridFill::OnEditCells() {
    const GridRangeList ranges = SelectedRanges(false);
    const int row = m_grid.ContextRow();
    const int col = m_grid.ContextCol();
    bool bInSelection = false;
    for (const GridRange& range : ranges) {
        bInSelection = bInSelection || range.Contains(row, col);
    }
    if (bInSelection) {
        EditSelection(ranges);
        return;
    }
    m_grid.clearSelection();
    EditSingleCell(row, col);
}

void TermGridFill::EditSelection(const GridRangeList& ranges) {
    CPickTerm picker(&m_grid);
    picker.SetBlockDesc(m_grid.BlockDesc());
    int singleRow = ranges.first().top;
    for (const GridRange& range : ranges) {
        if (range.top != singleRow || range.bottom != singleRow) {
            singleRow = -1;
        }
    }
    bool inPlay[CTermGridWnd::ColumnCount + 1] = {};
    for (int col = 1; col <= CTermGridWnd::ColumnCount; ++col) {
        for (const GridRange& range : ranges) {
            inPlay[col] = inPlay[col] || range.ReachesColumn(col);
        }
        if (!inPlay[col]) {
            Disable(picker, col);
        } else if (singleRow != -1) {
            Preset(picker, col, m_grid.GetCellValue(singleRow, col));
        }
    }
    if (ModalRunner::Run(picker) != kIdOk) {
        return;
    }
    // What one OK of the picker wrote is undone as one step.
    m_grid.UndoStack().beginMacro(QStringLiteral("Edit Cells"));
    for (int col = 1; col <= CTermGridWnd::ColumnCount; ++col) {
        if (inPlay[col]) {
            ApplyPicked(picker, col, &ranges);
        }
    }
    m_grid.UndoStack().endMacro();
}

void TermGridFill::EditSingleCell(int row, int col) {
    if (col < 1 || col > CTermGridWnd::ColumnCount) {
        return;
    }
    CPickTerm picker(&m_grid);
    picker.SetBlockDesc(m_grid.BlockDesc());
    for (int k = 1; k <= CTermGridWnd::ColumnCount; ++k) {
        if (k != col) {
            Disable(picker, k);
        }
    }
    // For the terminal column this is the text the open editor shows.
    Preset(picker, col, m_grid.GetCellValue(row, col));
    if (ModalRunner::Run(picker) != kIdOk) {
        return;
    }
    const GridRangeList none;
    m_grid.UndoStack().beginMacro(QStringLiteral("Edit Cells"));
    ApplyPicked(picker, col, col == CTermGridWnd::ColumnTerminal ? nullptr : &none);
    m_grid.UndoStack().endMacro();
}

void TermGridFill::Preset(CPickTerm& picker, int col, const QString& cellValue) const {
    switch (col) {
        case CTermGridWnd::ColumnTerminal: {
            _termblock block;
            if (m_grid.BlockDesc() &&
                m_grid.BlockDesc()->GetBlockAt(int(crt::wtol(cellValue)), block)) {
                picker.SetTermText(block.strDescription);
            }
            break;
        }
        case CTermGridWnd::ColumnShow:
            picker.SetShow(int(crt::wtol(cellValue)));
            break;
        case CTermGridWnd::ColumnRePrompt:
            picker.SetRePrompt(int(crt::wtol(cellValue)));
            break;
        case CTermGridWnd::ColumnBreak:
            picker.SetBreak(cellValue == QStringLiteral("1"));
            break;
        default:
            picker.SetSpacing(cellValue);
            break;
    }
}

void TermGridFill::Disable(CPickTerm& picker, int col) const {
    switch (col) {
        case CTermGridWnd::ColumnTerminal:
            picker.DisableTerm(true);
            break;
        case CTermGridWnd::ColumnShow:
            picker.DisableShow(true);
            break;
        case CTermGridWnd::ColumnRePrompt:
            picker.DisableRePrompt(true);
            break;
        case CTermGridWnd::ColumnBreak:
            picker.DisableBreak(true);
            break;
        default:
            picker.DisableSpacing(true);
            break;
    }
}

void TermGridFill::ApplyPicked(const CPickTerm& picker, int col, const GridRangeList* ranges) {
    switch (col) {
        case CTermGridWnd::ColumnTerminal:
            ApplyTermType(picker.GetTermIndex(), ranges);
            break;
        case CTermGridWnd::ColumnShow:
            ApplyShow(picker.GetShow(), ranges);
            break;
        case CTermGridWnd::ColumnRePrompt:
            ApplyRePrompt(picker.GetRePrompt(), ranges);
            break;
        case CTermGridWnd::ColumnBreak:
            ApplyBreak(picker.GetBreak(), ranges);
            break;
        default: {
            const QString spacing = picker.GetSpacing();
            ApplySpacing(&spacing, ranges);
            break;
        }
    }
}

bool TermGridFill::ApplyTermType(int blockIndex, const GridRangeList* ranges) {
    // The block is looked up as the cell takes it; an index that finds none is written
    // all the same, and the module is then left alone.
    _termblock block;
    if (m_grid.BlockDesc()) {
        m_grid.BlockDesc()->GetBlockAt(blockIndex, block);
    }
    return Fill(CTermGridWnd::ColumnTerminal, QString::number(blockIndex), ranges);
}

bool TermGridFill::ApplyShow(int show, const GridRangeList* ranges) {
    return Fill(CTermGridWnd::ColumnShow, QString::number(show), ranges);
}

bool TermGridFill::ApplyRePrompt(int rePrompt, const GridRangeList* ranges) {
    return Fill(CTermGridWnd::ColumnRePrompt, QString::number(rePrompt), ranges);
}

bool TermGridFill::ApplyBreak(bool bBreak, const GridRangeList* ranges) {
    return Fill(CTermGridWnd::ColumnBreak, BreakText(bBreak), ranges);
}

bool TermGridFill::ApplySpacing(const QString* spacing, const GridRangeList* ranges) {
    if (!spacing) {
        return false;
    }
    return Fill(CTermGridWnd::ColumnSpacing, *spacing, ranges);
}

bool TermGridFill::Fill(int col, const QString& value, const GridRangeList* ranges) {
    const bool bTermType = col == CTermGridWnd::ColumnTerminal;
    const GridRangeList list = ranges ? *ranges : SelectedRanges(true);
    const int currentRow = m_grid.CurrentRow();
    const int currentCol = m_grid.CurrentCol();
    const bool bCurrent = currentRow >= 1 && currentCol >= 1;
    if (list.isEmpty()) {
        // The terminal type takes the current cell's row whatever its column.
        if (!bCurrent || (!bTermType && currentCol != col)) {
            return false;
        }
        WriteCell(currentRow, col, value, bTermType);
        m_grid.OnModifyCell(currentRow, bTermType ? currentCol : col);
        return true;
    }
    const int rowCount = m_grid.model() ? m_grid.model()->rowCount() : 0;
    for (const GridRange& range : list) {
        const bool bRowRange = range.left <= 1 && range.right >= CTermGridWnd::ColumnCount;
        if (!range.ReachesColumn(col) && !bRowRange) {
            continue;
        }
        // A range without rows stands for whole columns.
        const int first = range.top == 0 && range.bottom == 0 ? 1 : qMax(range.top, 1);
        const int last = range.top == 0 && range.bottom == 0 ? rowCount : range.bottom;
        for (int row = first; row <= last; ++row) {
            WriteCell(row, col, value, bTermType);
        }
        for (int row = first; row <= last; ++row) {
            m_grid.StoreCell(row, col, false);
        }
    }
    if (bCurrent) {
        m_grid.StoreCell(currentRow, currentCol, true);
    }
    return true;
}

void TermGridFill::WriteCell(int row, int col, const QString& value, bool bTermType) {
    const bool bLocked = m_grid.IsLockReadOnly();
    if (bTermType) {
        m_grid.SetLockReadOnly(false);
    }
    m_grid.SetCellValue(row, col, value);
    if (bTermType) {
        m_grid.SetLockReadOnly(bLocked);
    }
}
