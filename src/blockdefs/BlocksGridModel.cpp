#include "BlocksGridModel.h"

BlocksGridModel::BlocksGridModel(QObject* parent) : GridModel(parent) {}

BlocksGridModel::~BlocksGridModel() = default;

void BlocksGridModel::SetTable(BlockDefsTable* table) {
    m_pTable = table;
    Reset();
}

void BlocksGridModel::SetHeaders(const QStringList& headers) {
    m_headers = headers;
    emit headerDataChanged(Qt::Horizontal, 0, ColCount() - 1);
}

void BlocksGridModel::Reset() {
    beginResetModel();
    m_nRows = m_pTable ? m_pTable->RowCount() : 0;
    endResetModel();
}

bool BlocksGridModel::InsertRow(int row, const BlockDefRow& values) {
    if (!m_pTable || m_nRows != m_pTable->RowCount() || row < 1 || row > m_nRows + 1) {
        return false;
    }
    beginInsertRows(QModelIndex(), row - 1, row - 1);
    const bool inserted = m_pTable->InsertRow(row, values);
    m_nRows = m_pTable->RowCount();
    endInsertRows();
    return inserted;
}

bool BlocksGridModel::RemoveRow(int row) {
    if (!m_pTable || m_nRows != m_pTable->RowCount() || row < 1 || row > m_nRows) {
        return false;
    }
    beginRemoveRows(QModelIndex(), row - 1, row - 1);
    const bool removed = m_pTable->RemoveRow(row);
    m_nRows = m_pTable->RowCount();
    endRemoveRows();
    return removed;
}

QStringList BlocksGridModel::CategoryChoices(const QStringList& categories, int row) {
    QStringList choices;
    const QString own = categories.value(row - 1).trimmed();
    if (!own.isEmpty()) {
        choices.append(own);
    }
    for (int other = 1; other <= categories.size(); ++other) {
        const QString text = categories[other - 1].trimmed();
        if (other != row && !text.isEmpty() && !choices.contains(text, Qt::CaseSensitive)) {
            choices.append(text);
        }
    }
    return choices;
}

QString BlocksGridModel::CellValue(int row, int col) const {
    if (!m_pTable || row < 1 || row > m_nRows) {
        return {};
    }
    return m_pTable->Value(row, col);
}

bool BlocksGridModel::StoreValue(int row, int col, const QString& value) {
    if (!m_pTable || row < 1 || row > m_nRows) {
        return false;
    }
    return m_pTable->SetValue(row, col, value);
}

GridModel::ColumnKind BlocksGridModel::Kind(int col) const {
    return col == BlockDefsTable::ColumnCategory ? ColumnKind::Combo : ColumnKind::Text;
}

QStringList BlocksGridModel::CellChoices(int row, int col) const {
    if (col != BlockDefsTable::ColumnCategory) {
        return {};
    }
    QStringList categories;
    for (int other = 1; other <= m_nRows; ++other) {
        categories.append(CellValue(other, col));
    }
    return CategoryChoices(categories, row);
}

QString BlocksGridModel::ColumnHeader(int col) const {
    return m_headers.value(col - 1, GridModel::ColumnHeader(col));
}

QVariant BlocksGridModel::data(const QModelIndex& index, int role) const {
    // The cell's tip: its whole text, for columns too narrow to show it.
    if (role == Qt::ToolTipRole && index.isValid()) {
        const QString text = CellValue(index.row() + 1, index.column() + 1).trimmed();
        return text.isEmpty() ? QVariant() : QVariant(text);
    }
    return GridModel::data(index, role);
}
