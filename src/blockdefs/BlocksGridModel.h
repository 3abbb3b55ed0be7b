#pragma once

#include "GridModel.h"

#include "BlockDefsTable.h"

// The rows of a BlockDefsTable as grid cells, four columns, the category column a combo
// that offers the categories of the other rows. It keeps no copy of the rows: every
// cell is read from the table and every write goes to it at once. The row count the
// view sees changes only through this model, so that a table changed behind its back
// is shown again by Reset.
class BlocksGridModel : public GridModel {
    Q_OBJECT
public:
    explicit BlocksGridModel(QObject* parent = nullptr);
    ~BlocksGridModel() override;

    void SetTable(BlockDefsTable* table);
    BlockDefsTable* Table() const { return m_pTable; }
    // The header texts of columns 1 to 4.
    void SetHeaders(const QStringList& headers);
    // Takes the table's rows as they are now.
    void Reset();

    // Rows through the table, told to the view.
    bool InsertRow(int row, const BlockDefRow& values = {});
    bool RemoveRow(int row);

    // The choices of a category cell: its own trimmed value first, then the other rows'
    // trimmed values in row order, each once (exact match), empties skipped; rows from 1.
    static QStringList CategoryChoices(const QStringList& categories, int row);

    int RowCount() const override { return m_nRows; }
    int ColCount() const override { return BlockDefsTable::ColumnCount; }
    QString CellValue(int row, int col) const override;
    bool StoreValue(int row, int col, const QString& value) override;
    ColumnKind Kind(int col) const override;
    QStringList CellChoices(int row, int col) const override;
    QString ColumnHeader(int col) const override;

    QVariant data(const QModelIndex& index, int role) const override;

private:
    BlockDefsTable* m_pTable = nullptr;
    int m_nRows = 0;
    QStringList m_headers;
};
