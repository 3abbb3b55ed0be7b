#include "CTermGridWnd.h"

#include "CBlockDescEx.h"
#include "CKVModule.h"
#include "CrtNumbers.h"
#include "HostBridge.h"
#include "Messages.h"
#include "ResourceLibrary.h"
#include "TermGridFill.h"
#include "TermRowsCommand.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>

#include <algorithm>
#include <functional>

namespace {

constexpr int kMsgUnknownBlock = 10058;
constexpr int kCaptionUnknownBlock = 10059;

const QString kLayoutKey = QStringLiteral("Settings\\TermGrid");
// The stored header height leaves out these 10 pixels.
constexpr int kHeaderHeightOffset = 10;
// Smallest width and height a column or row can be dragged to, unscaled.
constexpr int kMinimumTrack = 10;

}  // namespace

CTermGridWnd::CTermGridWnd(QWidget* parent) : GridCore(parent), m_model(new TermGridModel(this)) {
    SetGridModel(m_model);
}

CTermGridWnd::~CTermGridWnd() = default;

void CTermGridWnd::SetBlockDesc(CBlockDescEx* blocks) {
    m_pBlockDesc = blocks;
    m_model->SetBlockDesc(blocks);
}

void CTermGridWnd::SetModuleSource(std::function<CKVModule*()> source) {
    m_model->SetModuleSource(std::move(source));
}

CKVModule* CTermGridWnd::CurrentModule() const {
    return m_model->Module();
}

bool CTermGridWnd::HasModule() const {
    return m_nModuleHandle != -1 && CurrentModule();
}

bool CTermGridWnd::CanChangeRows() const {
    return HasModule() && !m_model->IsAllReadOnly();
}

void CTermGridWnd::Initialize() {
    SetMinimumTrackSize(kMinimumTrack, kMinimumTrack);
    TermColumns texts;
    texts.LoadTexts();
    m_model->SetTexts(texts.Headers(), texts.Choices(TermColumns::Show),
                      texts.Choices(TermColumns::RePrompt));
    SetUndoEnabled(false);
    m_model->ShowRows(0);
    SetLayoutKey(kLayoutKey, kHeaderHeightOffset);
    LoadLayout();
    SetUndoEnabled(true);
    SetModifiedFlag(0);
}

void CTermGridWnd::LoadModule(int nHandle) {
    m_nModuleHandle = nHandle;
    UndoStack().clear();
    CKVModule* module = nHandle == -1 ? nullptr : CurrentModule();
    if (!module) {
        m_model->ShowRows(0);
        SetModifiedFlag(0);
        SendRowChange(1, 1, false);
        return;
    }
    SetLockReadOnly(false);
    // The list may have changed since the last module.
    m_model->RefreshBlocks();
    const int count = module->GetTermCount();
    QList<int> blocks(count);
    for (int row = 1; row <= count; ++row) {
        blocks[row - 1] = m_model->Blocks().Find(module->GetTermText(row));
        if (blocks[row - 1] == -1) {
            // Nothing of the module is written back then.
            Messages::Show(kMsgUnknownBlock, {}, MsgButtons::Ok, MsgIcon::Information,
                           kCaptionUnknownBlock);
            m_model->ShowRows(0);
            SetModifiedFlag(0);
            return;
        }
    }
    m_model->ShowRows(count);
    for (int row = 1; row <= count; ++row) {
        m_model->WriteBackRow(row, blocks[row - 1]);
    }
    SetLockReadOnly(true);
    SetModifiedFlag(0);
    SendRowChange(1, 1, false);
    if (count == 0) {
        return;
    }
    QWidget* focus = QApplication::focusWidget();
    m_bMovingCell = true;
    SetCurrentCell(1, 1);
    m_bMovingCell = false;
    if (focus) {
        focus->setFocus();
    }
}

QString CTermGridWnd::GetCellValue(int row, int col) const {
    return CellText(row, col);
}

bool CTermGridWnd::SetCellValue(int row, int col, const QString& value) {
    if (!HasModule() || !CanWrite(row, col)) {
        return false;
    }
    return WriteCell(row, col, value, false);
}

void CTermGridWnd::OnModifyCell(int row, int col) {
    StoreCell(row, col, true);
}

void CTermGridWnd::StoreCell(int row, int col, bool bNotify) {
    if (!HasModule()) {
        return;
    }
    WriteCell(row, col, GetCellValue(row, col), bNotify);
}

bool CTermGridWnd::WriteCell(int row, int col, const QString& value, bool bNotify) {
    const _termvalues before = m_model->RowValues(row);
    const bool written = m_model->StoreValue(row, col, value);
    if (written) {
        SetModifiedFlag(1);
        m_model->CellsChanged(row, col, col);
    }
    if (bNotify) {
        SendRowChange(row, row, true);
    }
    const _termvalues after = m_model->RowValues(row);
    if (!TermRowsCommand::Same(before, after)) {
        auto* command = new TermRowsCommand(*this, QStringLiteral("Edit Cell"));
        command->Edited(row, before, after);
        command->SetCells(row, col, row, col);
        Record(command);
    }
    return written;
}

bool CTermGridWnd::OnValidateCell(int col, const QString& text) const {
    if (!text.isEmpty() || col == 0) {
        return true;
    }
    // A cleared drop list keeps its value, a check box cannot be left empty, an empty
    // spacing is unset.
    return col > ColumnBreak;
}

bool CTermGridWnd::OnEditCell(int row, int col, const QString& value) {
    if (!OnValidateCell(col, value) || !HasModule() || !CanWrite(row, col)) {
        return false;
    }
    const _termvalues before = m_model->RowValues(row);
    const bool written = WriteCell(row, col, value, true);
    return written || !TermRowsCommand::Same(before, m_model->RowValues(row));
}

void CTermGridWnd::SendRowChange(int prevRow, int newRow, bool bSave) {
    const int blockIndex = int(crt::wtol(GetCellValue(newRow, ColumnTerminal)));
    emit termRowChange(blockIndex, _rowchange{prevRow, newRow, bSave});
}

void CTermGridWnd::OnLeftCell(int row, int /*col*/, int newRow, int /*newCol*/) {
    if (row == newRow || newRow < 1 || m_nQuiet > 0) {
        return;
    }
    SendRowChange(row, newRow, !m_bMovingCell);
}

void CTermGridWnd::BeginQuiet() {
    ++m_nQuiet;
}

void CTermGridWnd::EndQuiet(int row, int col) {
    SetCurrentCell(row, col);
    --m_nQuiet;
    if (m_nQuiet > 0) {
        return;
    }
    SetModifiedFlag(1);
    if (CurrentRow() >= 1) {
        SendRowChange(CurrentRow(), CurrentRow(), false);
    }
}

void CTermGridWnd::contextMenuEvent(QContextMenuEvent* event) {
    QModelIndex index;
    QPoint global = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        index = currentIndex();
        global = viewport()->mapToGlobal(visualRect(index).center());
    } else {
        index = indexAt(event->pos());
    }
    m_nContextRow = index.isValid() ? index.row() + 1 : -1;
    m_nContextCol = index.isValid() ? index.column() + 1 : -1;
    QMenu menu(this);
    for (const int command : {kCmdEditCells, kCmdInsertBefore, kCmdInsertAfter, kCmdDeleteRows}) {
        QAction* action = menu.addAction(LoadResString(command));
        action->setData(command);
        action->setEnabled(CanChangeRows());
    }
    if (QAction* chosen = menu.exec(global)) {
        OnCommand(chosen->data().toInt());
    }
}

void CTermGridWnd::OnCommand(int command) {
    if (!CanChangeRows()) {
        return;
    }
    switch (command) {
        case kCmdInsertBefore:
            OnInsertBefore();
            break;
        case kCmdInsertAfter:
            OnInsertAfter();
            break;
        case kCmdDeleteRows:
            OnDeleteRows();
            break;
        case kCmdEditCells:
            TermGridFill(*this).OnEditCells();
            break;
        default:
            break;
    }
}

void CTermGridWnd::OnInsertBefore() {
    InsertRow(true);
}

void CTermGridWnd::OnInsertAfter() {
    InsertRow(false);
}

void CTermGridWnd::InsertRow(bool bBefore) {
    CKVModule* module = CanChangeRows() ? CurrentModule() : nullptr;
    const int current = CurrentRow();
    const int col = CurrentCol();
    if (!module || current < 1) {
        return;
    }
    // Insert before copies the current row, which moves down; insert after copies it
    // in place.
    const int row = bBefore ? current : current + 1;
    const int source = bBefore ? current + 1 : current;
    if (!m_model->InsertRow(row, bBefore)) {
        return;
    }
    const bool undo = IsUndoEnabled();
    SetUndoEnabled(false);
    const int blockIndex =
        m_pBlockDesc ? m_pBlockDesc->FindBlock(module->GetTermText(current), 1) : -1;
    SetCellValue(row, ColumnTerminal, QString::number(blockIndex));
    SetCellValue(row, ColumnShow, QString::number(module->GetIncludeExclude(source)));
    SetCellValue(row, ColumnRePrompt, QString::number(module->GetAddrFlags(source)));
    if (module->GetBreak(source)) {
        SetCellValue(row, ColumnBreak, QStringLiteral("1"));
    }
    // Written with "." under every locale, which the spacing column also reads.
    QString spacing;
    const double factor = module->GetSpacingFactor(source);
    if (factor != -1.0) {
        RealToText(factor, spacing, 4);
    }
    SetCellValue(row, ColumnSpacing, spacing);
    // Each column is written again as the user's edit would be, so that the attribute
    // grid saves what it shows, the values of the row copied, into the new row.
    for (int k = 1; k <= ColumnCount; ++k) {
        OnModifyCell(row, k);
    }
    SetUndoEnabled(undo);
    auto* command = new TermRowsCommand(
        *this, bBefore ? QStringLiteral("Insert Before") : QStringLiteral("Insert After"));
    command->Inserted(row, m_model->RowValues(row));
    command->SetCells(current, col, row, col);
    // The new row becomes current; the attribute grid shows it already.
    BeginQuiet();
    EndQuiet(row, col);
    Record(command);
}

void CTermGridWnd::OnDeleteRows() {
    if (!CanChangeRows()) {
        return;
    }
    const int count = m_model->RowCount();
    const int current = CurrentRow();
    const int col = qMax(CurrentCol(), 1);
    QList<int> rows = SelectedRows();
    if (rows.isEmpty() && current >= 1) {
        rows.append(current);
    }
    // The last row is never deleted: all rows selected delete nothing.
    if (rows.isEmpty() || rows.size() >= count) {
        return;
    }
    std::sort(rows.begin(), rows.end(), std::greater<>());
    // The row left keeps what the attribute grid shows, as on any move.
    if (current >= 1) {
        SendRowChange(current, current, true);
    }
    auto* command = new TermRowsCommand(*this, QStringLiteral("Delete Rows"));
    BeginQuiet();
    for (const int row : rows) {
        SetCurrentCell(row > 1 ? row - 1 : 2, col);
        const _termvalues values = m_model->RowValues(row);
        if (m_model->RemoveRow(row)) {
            command->Removed(row, values);
        }
    }
    command->SetCells(current, col, CurrentRow(), col);
    EndQuiet(CurrentRow(), col);
    Record(command);
}
