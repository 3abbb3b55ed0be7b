#include "TermGridModel.h"

#include "CBlockDescEx.h"

namespace {

QString EmptyIfNull(const QString& text) {
    return text.isNull() ? QStringLiteral("") : text;
}

}  // namespace

TermGridModel::TermGridModel(QObject* parent) : GridModel(parent) {
    m_columns.SetBlocks(&m_lookup);
}

TermGridModel::~TermGridModel() = default;

void TermGridModel::SetTexts(const QStringList& headers, const QStringList& showChoices,
                             const QStringList& rePromptChoices) {
    m_columns.SetTexts(headers, showChoices, rePromptChoices);
    emit headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}

void TermGridModel::SetBlockDesc(CBlockDescEx* blocks) {
    m_pBlockDesc = blocks;
    RefreshBlocks();
}

void TermGridModel::RefreshBlocks() {
    m_lookup.Rebuild(m_pBlockDesc);
}

void TermGridModel::ShowRows(int count) {
    beginResetModel();
    m_nRows = qMax(count, 0);
    endResetModel();
}

int TermGridModel::RowCount() const {
    return m_nRows;
}

int TermGridModel::BlockIndexOf(int row) const {
    const CKVModule* module = Module();
    if (!module || !m_pBlockDesc || row < 1 || row > module->GetTermCount()) {
        return -1;
    }
    return m_lookup.Find(module->GetTermText(row));
}

void TermGridModel::WriteBackRow(int row, int blockIndex) {
    CKVModule* module = Module();
    if (!module || row < 1 || row > module->GetTermCount()) {
        return;
    }
    const QString name = m_lookup.ModuleForm(blockIndex);
    if (!name.isEmpty() && module->GetTermText(row) != name) {
        module->SetTermText(row, name);
    }
}

QString TermGridModel::CellValue(int row, int col) const {
    const CKVModule* module = Module();
    if (!module || row < 1 || row > m_nRows) {
        return {};
    }
    return m_columns.Value(*module, row, col);
}

bool TermGridModel::StoreValue(int row, int col, const QString& value) {
    CKVModule* module = Module();
    if (!module || row < 1 || row > m_nRows) {
        return false;
    }
    return m_columns.StoreValue(*module, row, col, value);
}

GridModel::ColumnKind TermGridModel::Kind(int col) const {
    switch (col) {
        case ColumnTerminal:
            return ColumnKind::ChoiceFrom1;
        case ColumnShow:
        case ColumnRePrompt:
            return ColumnKind::ChoiceFrom0;
        case ColumnBreak:
            return ColumnKind::Check;
        default:
            return ColumnKind::Text;
    }
}

QStringList TermGridModel::Choices(int col) const {
    switch (col) {
        case ColumnTerminal:
            return m_lookup.Descriptions();
        default:
            return m_columns.Choices(col);
    }
}

QString TermGridModel::ColumnHeader(int col) const {
    return m_columns.Header(col);
}

QString TermGridModel::DisplayText(int row, int col) const {
    const CKVModule* module = Module();
    if (!module || row < 1 || row > m_nRows) {
        return {};
    }
    return m_columns.Text(*module, row, col);
}

_termvalues TermGridModel::RowValues(int row) const {
    const CKVModule* module = Module();
    if (!module) {
        return {};
    }
    return _termvalues{module->GetTermText(row), module->GetTermSpecial(row)};
}

void TermGridModel::RestoreRow(int row, const _termvalues& values) {
    CKVModule* module = Module();
    if (!module || row < 1 || row > module->GetTermCount()) {
        return;
    }
    module->SetTermText(row, EmptyIfNull(values.strText));
    module->SetTermSpecial(row, EmptyIfNull(values.strSpecial));
    CellsChanged(row, 1, ColumnCount);
}

bool TermGridModel::InsertRow(int row, bool bFromSameRow) {
    CKVModule* module = Module();
    if (!module || m_nRows != module->GetTermCount() || row < 1 || row > m_nRows + 1 ||
        module->GetTermText(bFromSameRow ? row : row - 1).isEmpty()) {
        return false;
    }
    beginInsertRows(QModelIndex(), row - 1, row - 1);
    module->InsertTermCopy(row, bFromSameRow);
    ++m_nRows;
    endInsertRows();
    return true;
}

bool TermGridModel::InsertRowValues(int row, const _termvalues& values) {
    CKVModule* module = Module();
    // The module adds a row only as a copy of a neighbour, which is then overwritten.
    const bool bFromSameRow = module && row <= module->GetTermCount();
    if (!module || m_nRows != module->GetTermCount() || row < 1 || row > m_nRows + 1 ||
        module->GetTermText(bFromSameRow ? row : row - 1).isEmpty()) {
        return false;
    }
    beginInsertRows(QModelIndex(), row - 1, row - 1);
    module->InsertTermCopy(row, bFromSameRow);
    module->SetTermText(row, EmptyIfNull(values.strText));
    module->SetTermSpecial(row, EmptyIfNull(values.strSpecial));
    ++m_nRows;
    endInsertRows();
    return true;
}

bool TermGridModel::RemoveRow(int row) {
    CKVModule* module = Module();
    if (!module || m_nRows != module->GetTermCount() || row < 1 || row > m_nRows) {
        return false;
    }
    beginRemoveRows(QModelIndex(), row - 1, row - 1);
    module->RemoveTerm(row);
    --m_nRows;
    endRemoveRows();
    return true;
}
