#include "AttribGridModel.h"

AttribGridModel::AttribGridModel(QObject* parent) : GridModel(parent) {}

AttribGridModel::~AttribGridModel() = default;

void AttribGridModel::SetValueRow(bool bShown) {
    if (bShown == m_bValueRow) {
        return;
    }
    beginResetModel();
    m_bValueRow = bShown;
    endResetModel();
}

void AttribGridModel::SetRowCaption(const QString& caption) {
    m_rowCaption = caption;
    emit headerDataChanged(Qt::Vertical, 0, 0);
}

void AttribGridModel::SetAttributes(const QStringList& tags, const QStringList& values) {
    beginResetModel();
    m_tags = tags;
    m_values = values;
    while (m_values.size() < m_tags.size()) {
        m_values.append(QString());
    }
    endResetModel();
}

QString AttribGridModel::CellValue(int row, int col) const {
    return row == 1 && m_bValueRow ? m_values.value(col - 1) : QString();
}

bool AttribGridModel::StoreValue(int row, int col, const QString& value) {
    if (row != 1 || !m_bValueRow || col < 1 || col > ColCount()) {
        return false;
    }
    m_values[col - 1] = value;
    return true;
}

QString AttribGridModel::RowHeader(int row) const {
    return row == 1 ? m_rowCaption : QString();
}
