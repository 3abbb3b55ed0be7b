#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include <functional>

// The cells under a grid. Grid rows and columns count from 1, as the grids' callers
// count them; row 0 and column 0 are the headers. Each cell has a value text; a drop
// list cell's value is the index of its choice, from 0 or from 1 as the column says,
// and a check box cell's value is "0" or "1". A combo cell offers choices but takes
// any text: its value is the text itself.
class GridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum class ColumnKind { Text, ChoiceFrom0, ChoiceFrom1, Check, Combo };

    explicit GridModel(QObject* parent = nullptr);
    ~GridModel() override;

    virtual int RowCount() const = 0;
    virtual int ColCount() const = 0;
    // The value text of a cell; empty outside the table.
    virtual QString CellValue(int row, int col) const = 0;
    // Writes a value without asking anyone; answers whether something was written.
    virtual bool StoreValue(int row, int col, const QString& value);
    virtual ColumnKind Kind(int col) const;
    // The choices of a drop list column, in value order.
    virtual QStringList Choices(int col) const;
    // The choices a combo cell offers when its editor opens; the column's by default.
    virtual QStringList CellChoices(int row, int col) const;
    virtual QString ColumnHeader(int col) const;
    virtual QString RowHeader(int row) const;
    virtual bool IsReadOnly(int row, int col) const;
    // Every cell refuses the user's edits and the grid's writes (a module shown read-only).
    void SetAllReadOnly(bool readOnly) { m_bAllReadOnly = readOnly; }
    bool IsAllReadOnly() const { return m_bAllReadOnly; }

    // What a cell shows: the chosen line of a drop list, the value otherwise.
    virtual QString DisplayText(int row, int col) const;
    // The choice a drop list value stands for: its position in Choices, or -1.
    int ChoicePosition(int col, const QString& value) const;
    // The value text of the choice at position in a drop list column.
    QString ChoiceValue(int col, int position) const;

    // Edits made in the view go to the handler (the grid), which records and applies
    // them; without one the view cannot edit.
    using EditHandler = std::function<bool(int row, int col, const QString& value)>;
    void SetEditHandler(EditHandler handler);

    // Tells the view that cells of a row changed behind its back.
    void CellsChanged(int row, int firstCol, int lastCol);
    void RowsChanged(int firstRow, int lastRow);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    EditHandler m_editHandler;
    bool m_bAllReadOnly = false;
};
