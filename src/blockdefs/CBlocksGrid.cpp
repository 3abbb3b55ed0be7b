#include "CBlocksGrid.h"

#include "BlockDefsTable.h"
#include "BlocksGridModel.h"
#include "HostServices.h"
#include "ResourceLibrary.h"

#include <QAbstractItemDelegate>
#include <QContextMenuEvent>
#include <QCursor>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>

#include <algorithm>
#include <numeric>

namespace {

constexpr int kHeaderBlockFile = 4008;
constexpr int kHeaderCategory = 4009;
constexpr int kHeaderDescription = 4010;
constexpr int kHeaderSampleFile = 4011;

const QString kLayoutKey = QStringLiteral("Settings\\BlocksGrid");
// The stored header height leaves out these 10 pixels.
constexpr int kHeaderHeightOffset = 10;
// Smallest width and height a column or row can be dragged to, unscaled.
constexpr int kMinimumTrack = 10;

// The menu in the order it shows: the cell, the row, then adding and removing rows.
constexpr int kMenuOrder[] = {
    CBlocksGrid::kCmdCopyCell,  CBlocksGrid::kCmdCutCell,  CBlocksGrid::kCmdPasteCell, 0,
    CBlocksGrid::kCmdCopyRow,   CBlocksGrid::kCmdCutRow,   CBlocksGrid::kCmdPasteRow,  0,
    CBlocksGrid::kCmdInsertRow, CBlocksGrid::kCmdRemoveRow};

bool IsBrowseColumn(int col) {
    return col == BlockDefsTable::ColumnBlockFile || col == BlockDefsTable::ColumnSampleFile;
}

}  // namespace

CBlocksGrid::CBlocksGrid(QWidget* parent) : GridCore(parent), m_model(new BlocksGridModel(this)) {
    SetGridModel(m_model);
    connect(horizontalHeader(), &QHeaderView::sectionDoubleClicked, this,
            [this](int section) { SortRows(section + 1); });
}

CBlocksGrid::~CBlocksGrid() = default;

void CBlocksGrid::SetTable(BlockDefsTable* table) {
    m_pTable = table;
    m_model->SetTable(table);
    UndoStack().clear();
}

void CBlocksGrid::Initialize() {
    const HostScale scale = HostHiDpi();
    SetMinimumTrackSize(qRound(kMinimumTrack * scale.x), qRound(kMinimumTrack * scale.y));
    m_model->SetHeaders({LoadResString(kHeaderBlockFile), LoadResString(kHeaderCategory),
                         LoadResString(kHeaderDescription), LoadResString(kHeaderSampleFile)});
    setWordWrap(false);
    SetUndoEnabled(false);
    TableChanged();
    SetLayoutKey(kLayoutKey, kHeaderHeightOffset);
    LoadLayout();
    SetUndoEnabled(true);
    SetModifiedFlag(0);
}

void CBlocksGrid::TableChanged() {
    DiscardEditor();
    const int row = CurrentRow();
    const int col = CurrentCol();
    if (m_pTable && m_pTable->RowCount() == m_model->RowCount()) {
        // Same rows, other values: the current cell and the undo steps stay.
        m_model->RowsChanged(1, m_model->RowCount());
        return;
    }
    // Recorded steps name rows by number, which no longer hold.
    UndoStack().clear();
    m_model->Reset();
    if (row >= 1 && row <= m_model->RowCount()) {
        // Back where the user stood, without adding a free row: nobody moved.
        m_bNoFreeRow = true;
        SetCurrentCell(row, col);
        m_bNoFreeRow = false;
    }
}

void CBlocksGrid::SortRows(int col) {
    if (!m_pTable || col < 1 || col > m_model->ColCount() ||
        m_pTable->RowCount() != m_model->RowCount()) {
        return;
    }
    CommitEditor();
    QList<BlockDefRow> rows = m_pTable->Rows();
    QList<QString> keys;
    for (int row = 1; row <= m_pTable->RowCount(); ++row) {
        keys.append(m_pTable->Value(row, col).trimmed());
    }
    QList<int> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&keys](int a, int b) {
        if (keys[a].isEmpty() || keys[b].isEmpty()) {
            return !keys[a].isEmpty() && keys[b].isEmpty();
        }
        return keys[a].compare(keys[b], Qt::CaseInsensitive) < 0;
    });
    QList<BlockDefRow> sorted;
    for (const int index : order) {
        sorted.append(rows[index]);
    }
    m_pTable->SetRows(sorted);
    UndoStack().clear();
    m_model->RowsChanged(1, m_model->RowCount());
}

QString CBlocksGrid::GetCellValue(int row, int col) const {
    return CellText(row, col);
}

bool CBlocksGrid::SetCellValue(int row, int col, const QString& value) {
    if (row < 1 || row > m_model->RowCount() || col < 1 || col > m_model->ColCount()) {
        return false;
    }
    if (row == CurrentRow() && col == CurrentCol()) {
        DiscardEditor();
    }
    if (m_model->CellValue(row, col) == value) {
        return true;
    }
    return OnEditCell(row, col, value);
}

void CBlocksGrid::CommitEditor() {
    const QModelIndex index = currentIndex();
    QWidget* editor = index.isValid() ? indexWidget(index) : nullptr;
    if (!editor || state() != EditingState) {
        return;
    }
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void CBlocksGrid::DiscardEditor() {
    const QModelIndex index = currentIndex();
    QWidget* editor = index.isValid() ? indexWidget(index) : nullptr;
    if (editor && state() == EditingState) {
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
    }
}

void CBlocksGrid::AppendFreeRow() {
    BlockDefRow row;
    row.category = QStringLiteral(" ");
    m_model->InsertRow(m_model->RowCount() + 1, row);
}

void CBlocksGrid::OnLeftCell(int row, int col, int newRow, int newCol) {
    GridCore::OnLeftCell(row, col, newRow, newCol);
    if (newRow < 1) {
        return;
    }
    emit enableBrowse(IsBrowseColumn(newCol));
    if (!m_bNoFreeRow && newRow == m_model->RowCount()) {
        AppendFreeRow();
    }
}

void CBlocksGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    GridCore::mouseDoubleClickEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid()) {
        emit cellDoubleClicked(index.row() + 1, index.column() + 1);
    }
}

void CBlocksGrid::contextMenuEvent(QContextMenuEvent* event) {
    // The keyboard's menu opens where the mouse is, as a menu of the system would.
    const QPoint global =
        event->reason() == QContextMenuEvent::Keyboard ? QCursor::pos() : event->globalPos();
    const QModelIndex index = indexAt(viewport()->mapFromGlobal(global));
    m_nContextRow = index.isValid() ? index.row() + 1 : -1;
    m_nContextCol = index.isValid() ? index.column() + 1 : -1;
    QMenu menu(this);
    for (const int command : kMenuOrder) {
        if (command == 0) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(LoadResString(command));
        action->setData(command);
        action->setEnabled(IsCommandEnabled(command));
    }
    if (QAction* chosen = menu.exec(global)) {
        OnCommand(chosen->data().toInt());
    }
}

bool CBlocksGrid::IsContextRowInTable() const {
    return m_nContextRow >= 1 && m_nContextRow <= m_model->RowCount();
}

bool CBlocksGrid::IsContextCellValid() const {
    return IsContextRowInTable() && m_nContextCol >= 1 && m_nContextCol <= m_model->ColCount();
}

bool CBlocksGrid::IsCommandEnabled(int command) const {
    switch (command) {
        case kCmdCopyCell:
        case kCmdCutCell:
            return IsContextCellValid();
        case kCmdPasteCell:
            return IsContextCellValid() && CanPaste(m_nContextRow, m_nContextCol);
        case kCmdCopyRow:
        case kCmdCutRow:
        case kCmdRemoveRow:
            return IsContextRowInTable();
        case kCmdPasteRow:
            return IsContextCellValid() && CanPaste(m_nContextRow, BlockDefsTable::ColumnBlockFile);
        case kCmdInsertRow:
            return m_nContextRow >= 1;
        default:
            return false;
    }
}

void CBlocksGrid::OnCommand(int command) {
    if (!IsCommandEnabled(command)) {
        return;
    }
    switch (command) {
        case kCmdCopyCell:
        case kCmdCutCell:
        case kCmdPasteCell:
            CellCommand(command);
            break;
        case kCmdCopyRow:
        case kCmdCutRow:
        case kCmdPasteRow:
            RowCommand(command);
            break;
        case kCmdInsertRow:
            InsertRowBelowContext();
            break;
        case kCmdRemoveRow:
            RemoveContextRow();
            break;
        default:
            break;
    }
}

void CBlocksGrid::CellCommand(int command) {
    SetCurrentCell(m_nContextRow, m_nContextCol);
    if (command == kCmdCopyCell) {
        CopySelection();
    } else if (command == kCmdCutCell) {
        CutSelection();
    } else {
        PasteClipboard();
    }
}

void CBlocksGrid::RowCommand(int command) {
    // The current cell goes to the row's first column, and the whole row is selected.
    SetCurrentCell(m_nContextRow, BlockDefsTable::ColumnBlockFile);
    selectRow(m_nContextRow - 1);
    if (command == kCmdCopyRow) {
        CopySelection();
    } else if (command == kCmdCutRow) {
        CutSelection();
    } else {
        PasteClipboard();
    }
}

void CBlocksGrid::InsertRowBelowContext() {
    const int count = m_model->RowCount();
    const int row = m_nContextRow > count ? qMax(count, 1) : m_nContextRow + 1;
    if (m_model->InsertRow(row)) {
        UndoStack().clear();
    }
}

void CBlocksGrid::RemoveContextRow() {
    DiscardEditor();
    // A removed current row hands the current cell on before the row count drops, so
    // a new last row gets no free row until the user moves there.
    if (m_model->RemoveRow(m_nContextRow)) {
        UndoStack().clear();
    }
}
