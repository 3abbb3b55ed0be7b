#pragma once

#include "GridModel.h"

// The attribute grid's cells: one column per attribute of a block, its tag as the
// header, and one row of values. Unlike the terminal grid it keeps its values: they
// reach the module only when the grid saves them into a row.
class AttribGridModel : public GridModel {
    Q_OBJECT
public:
    explicit AttribGridModel(QObject* parent = nullptr);
    ~AttribGridModel() override;

    // Adds or drops the value row.
    void SetValueRow(bool bShown);
    void SetRowCaption(const QString& caption);
    // One column per tag with its value; no tags leave no columns.
    void SetAttributes(const QStringList& tags, const QStringList& values);
    QString Tag(int col) const { return m_tags.value(col - 1); }

    int RowCount() const override { return m_bValueRow ? 1 : 0; }
    int ColCount() const override { return int(m_tags.size()); }
    QString CellValue(int row, int col) const override;
    bool StoreValue(int row, int col, const QString& value) override;
    QString ColumnHeader(int col) const override { return Tag(col); }
    QString RowHeader(int row) const override;

private:
    bool m_bValueRow = false;
    QString m_rowCaption;
    QStringList m_tags;
    QStringList m_values;
};
