#include "GridModel.h"

GridModel::GridModel(QObject* parent) : QAbstractTableModel(parent) {}

GridModel::~GridModel() = default;

bool GridModel::StoreValue(int /*row*/, int /*col*/, const QString& /*value*/) {
    return false;
}

GridModel::ColumnKind GridModel::Kind(int /*col*/) const {
    return ColumnKind::Text;
}

QStringList GridModel::Choices(int /*col*/) const {
    return {};
}

QStringList GridModel::CellChoices(int /*row*/, int col) const {
    return Choices(col);
}

QString GridModel::ColumnHeader(int col) const {
    return QString::number(col);
}

QString GridModel::RowHeader(int row) const {
    return QString::number(row);
}

bool GridModel::IsReadOnly(int /*row*/, int /*col*/) const {
    return false;
}

QString GridModel::DisplayText(int row, int col) const {
    const QString value = CellValue(row, col);
    const ColumnKind kind = Kind(col);
    if (kind != ColumnKind::ChoiceFrom0 && kind != ColumnKind::ChoiceFrom1) {
        return value;
    }
    const int position = ChoicePosition(col, value);
    return position < 0 ? value : Choices(col).at(position);
}

int GridModel::ChoicePosition(int col, const QString& value) const {
    bool ok = false;
    const int number = value.trimmed().toInt(&ok);
    if (!ok) {
        return -1;
    }
    const int position = Kind(col) == ColumnKind::ChoiceFrom1 ? number - 1 : number;
    return position >= 0 && position < Choices(col).size() ? position : -1;
}

QString GridModel::ChoiceValue(int col, int position) const {
    return QString::number(Kind(col) == ColumnKind::ChoiceFrom1 ? position + 1 : position);
}

void GridModel::SetEditHandler(EditHandler handler) {
    m_editHandler = std::move(handler);
}

void GridModel::CellsChanged(int row, int firstCol, int lastCol) {
    if (row < 1 || row > RowCount() || ColCount() < 1) {
        return;
    }
    emit dataChanged(index(row - 1, qMax(firstCol, 1) - 1),
                     index(row - 1, qMin(lastCol, ColCount()) - 1));
}

void GridModel::RowsChanged(int firstRow, int lastRow) {
    firstRow = qMax(firstRow, 1);
    lastRow = qMin(lastRow, RowCount());
    if (firstRow > lastRow || ColCount() < 1) {
        return;
    }
    emit dataChanged(index(firstRow - 1, 0), index(lastRow - 1, ColCount() - 1));
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : RowCount();
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColCount();
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const int row = index.row() + 1;
    const int col = index.column() + 1;
    const bool check = Kind(col) == ColumnKind::Check;
    switch (role) {
        case Qt::DisplayRole:
            return check ? QVariant() : QVariant(DisplayText(row, col));
        case Qt::EditRole:
            return CellValue(row, col);
        case Qt::CheckStateRole:
            if (!check) {
                return {};
            }
            return CellValue(row, col).trimmed() == QLatin1String("1") ? Qt::Checked
                                                                       : Qt::Unchecked;
        case Qt::TextAlignmentRole:
            return check ? QVariant(Qt::AlignCenter) : QVariant();
        default:
            return {};
    }
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || !m_editHandler) {
        return false;
    }
    const int row = index.row() + 1;
    const int col = index.column() + 1;
    if (m_bAllReadOnly || IsReadOnly(row, col)) {
        return false;
    }
    if (role == Qt::CheckStateRole && Kind(col) == ColumnKind::Check) {
        const bool checked = value.toInt() == Qt::Checked;
        return m_editHandler(row, col, checked ? QStringLiteral("1") : QStringLiteral("0"));
    }
    if (role != Qt::EditRole) {
        return false;
    }
    return m_editHandler(row, col, value.toString());
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const int row = index.row() + 1;
    const int col = index.column() + 1;
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (m_bAllReadOnly || IsReadOnly(row, col)) {
        return flags;
    }
    return flags | (Kind(col) == ColumnKind::Check ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::DisplayRole) {
        return orientation == Qt::Horizontal ? ColumnHeader(section + 1) : RowHeader(section + 1);
    }
    if (role == Qt::TextAlignmentRole && orientation == Qt::Vertical) {
        return QVariant(Qt::AlignCenter);
    }
    return {};
}
