#include "GridCore.h"

#include "CRegistryKey.h"
#include "ChoiceDelegate.h"
#include "GridCommands.h"
#include "GridModel.h"
#include "HostServices.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>
#include <QStyleOptionHeader>

#include <climits>
#include <set>

namespace {

// A settings file edited by hand cannot make the grid loop for long.
constexpr int kMaxStoredColumns = 4096;

QString ColWidthName(int col) {
    return QStringLiteral("ColWidth%1").arg(col);
}

const QString kRowHeightName = QStringLiteral("RowHeight0");

}  // namespace

GridCore::GridCore(QWidget* parent) : QTableView(parent), m_delegate(new ChoiceDelegate(this)) {
    setItemDelegate(m_delegate);
    horizontalHeader()->setSectionsMovable(false);
    verticalHeader()->setSectionsMovable(false);
    setSortingEnabled(false);
    auto* undo = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z), this);
    undo->setContext(Qt::WidgetWithChildrenShortcut);
    connect(undo, &QShortcut::activated, &m_undo, &QUndoStack::undo);
    auto* redo = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Y), this);
    redo->setContext(Qt::WidgetWithChildrenShortcut);
    connect(redo, &QShortcut::activated, &m_undo, &QUndoStack::redo);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int logical, int /*oldSize*/, int newSize) {
                if (!m_model || m_bApplyingWidths) {
                    return;
                }
                const int col = logical + 1;
                if (m_colWidths.size() <= col) {
                    m_colWidths.resize(col + 1);
                }
                m_colWidths[col] = newSize;
            });
    if (auto* corner = findChild<QAbstractButton*>()) {
        corner->installEventFilter(this);
    }
}

GridCore::~GridCore() {
    SaveLayout();
}

void GridCore::SetGridModel(GridModel* model) {
    m_model = model;
    setModel(model);
    if (!model) {
        return;
    }
    model->SetEditHandler(
        [this](int row, int col, const QString& value) { return OnEditCell(row, col, value); });
    // Header sizes go back to defaults when columns come and go; the remembered widths
    // are put back afterwards.
    const auto hold = [this] { m_bApplyingWidths = true; };
    const auto apply = [this] {
        m_bApplyingWidths = false;
        ApplyColWidths();
    };
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, hold);
    connect(model, &QAbstractItemModel::modelReset, this, apply);
    connect(model, &QAbstractItemModel::columnsAboutToBeInserted, this, hold);
    connect(model, &QAbstractItemModel::columnsInserted, this, apply);
}

void GridCore::SetModifiedFlag(int flag) {
    m_bModified = flag;
    if (m_bPostPending) {
        return;
    }
    m_bPostPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_bPostPending = false;
            emit modifiedFlagChanged();
        },
        Qt::QueuedConnection);
}

void GridCore::Execute(QUndoCommand* command) {
    if (m_bUndoEnabled) {
        m_undo.push(command);
        return;
    }
    command->redo();
    delete command;
}

void GridCore::Record(QUndoCommand* command) {
    if (m_bUndoEnabled) {
        m_undo.push(command);
        return;
    }
    delete command;
}

bool GridCore::CanWrite(int row, int col) const {
    return m_model && !m_model->IsAllReadOnly() &&
           !(m_bLockReadOnly && m_model->IsReadOnly(row, col));
}

int GridCore::CurrentRow() const {
    const QModelIndex index = currentIndex();
    return index.isValid() ? index.row() + 1 : -1;
}

int GridCore::CurrentCol() const {
    const QModelIndex index = currentIndex();
    return index.isValid() ? index.column() + 1 : -1;
}

void GridCore::SetCurrentCell(int row, int col) {
    if (!m_model || row < 1 || row > m_model->RowCount() || col < 1 || col > m_model->ColCount()) {
        return;
    }
    selectionModel()->setCurrentIndex(m_model->index(row - 1, col - 1),
                                      QItemSelectionModel::ClearAndSelect);
}

QList<int> GridCore::SelectedRows() const {
    std::set<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
        rows.insert(index.row() + 1);
    }
    return QList<int>(rows.begin(), rows.end());
}

bool GridCore::GetEditorValue(int row, int col, QString& value) const {
    if (!m_model || row < 1 || col < 1) {
        return false;
    }
    return m_delegate->EditorValue(m_model->index(row - 1, col - 1), value);
}

QString GridCore::CellText(int row, int col) const {
    if (!m_model) {
        return {};
    }
    if (row == 0) {
        return col == 0 ? m_cornerText : m_model->ColumnHeader(col);
    }
    if (col == 0) {
        return m_model->RowHeader(row);
    }
    QString value;
    if (GetEditorValue(row, col, value)) {
        return value;
    }
    return m_model->CellValue(row, col);
}

void GridCore::SetLayoutKey(const QString& key, int headerHeightOffset) {
    m_layoutKey = key;
    m_headerHeightOffset = headerHeightOffset;
}

void GridCore::LoadLayout() {
    if (m_layoutKey.isEmpty()) {
        return;
    }
    CRegistryKey key;
    key.SetRootToHCUK();
    if (!key.Open(m_layoutKey)) {
        return;
    }
    const HostScale scale = HostHiDpi();
    quint32 stored = 0;
    for (int col = 0; col < kMaxStoredColumns && key.GetValue(ColWidthName(col), stored); ++col) {
        SetColWidth(col, qRound(static_cast<int>(stored) * scale.x));
    }
    if (key.GetValue(kRowHeightName, stored)) {
        SetHeaderHeight(qRound((static_cast<int>(stored) + m_headerHeightOffset) * scale.y));
    }
}

void GridCore::SaveLayout() const {
    if (m_layoutKey.isEmpty() || !m_model) {
        return;
    }
    CRegistryKey key;
    key.SetRootToHCUK();
    if (!key.Open(m_layoutKey) && !key.Create(m_layoutKey)) {
        return;
    }
    const HostScale scale = HostHiDpi();
    for (int col = 0; col <= m_model->ColCount(); ++col) {
        key.SetValue(ColWidthName(col), static_cast<quint32>(qRound(ColWidth(col) / scale.x)));
    }
    const int height = qRound(HeaderHeight() / scale.y) - m_headerHeightOffset;
    key.SetValue(kRowHeightName, static_cast<quint32>(height));
    key.Close();
}

int GridCore::ColWidth(int col) const {
    if (col == 0) {
        // The row header column grows with the row numbers beyond its remembered width.
        const QHeaderView* header = verticalHeader();
        return qMax(m_colWidths.value(0),
                    header->isVisible() ? header->width() : header->sizeHint().width());
    }
    if (m_model && col <= m_model->ColCount()) {
        return columnWidth(col - 1);
    }
    return m_colWidths.value(col);
}

void GridCore::SetColWidth(int col, int width) {
    if (col < 0 || width < 0) {
        return;
    }
    if (m_colWidths.size() <= col) {
        m_colWidths.resize(col + 1);
    }
    m_colWidths[col] = width;
    if (col == 0) {
        verticalHeader()->setMinimumWidth(width);
    } else if (m_model && col <= m_model->ColCount()) {
        setColumnWidth(col - 1, width);
    }
}

int GridCore::HeaderHeight() const {
    return m_headerHeight > 0 ? m_headerHeight : horizontalHeader()->sizeHint().height();
}

void GridCore::SetHeaderHeight(int height) {
    if (height <= 0) {
        return;
    }
    m_headerHeight = height;
    horizontalHeader()->setFixedHeight(height);
}

void GridCore::SetMinimumTrackSize(int width, int height) {
    horizontalHeader()->setMinimumSectionSize(width);
    verticalHeader()->setMinimumSectionSize(height);
}

void GridCore::SetCornerText(const QString& text) {
    m_cornerText = text;
    if (auto* corner = findChild<QAbstractButton*>()) {
        corner->update();
    }
}

bool GridCore::ClipboardRange(CellRange& range) const {
    if (!m_model) {
        return false;
    }
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    if (selected.isEmpty()) {
        range.top = range.bottom = CurrentRow();
        range.left = range.right = CurrentCol();
        return range.top >= 1 && range.left >= 1;
    }
    range.top = range.left = INT_MAX;
    range.bottom = range.right = 0;
    for (const QModelIndex& index : selected) {
        range.top = qMin(range.top, index.row() + 1);
        range.bottom = qMax(range.bottom, index.row() + 1);
        range.left = qMin(range.left, index.column() + 1);
        range.right = qMax(range.right, index.column() + 1);
    }
    return true;
}

QString GridCore::SelectionText() const {
    CellRange range;
    if (!ClipboardRange(range)) {
        return {};
    }
    QStringList lines;
    for (int row = range.top; row <= range.bottom; ++row) {
        QStringList cells;
        for (int col = range.left; col <= range.right; ++col) {
            cells.append(CellText(row, col));
        }
        lines.append(cells.join(QLatin1Char('\t')));
    }
    return lines.join(QLatin1String("\r\n"));
}

void GridCore::CopySelection() {
    CellRange range;
    if (ClipboardRange(range)) {
        QGuiApplication::clipboard()->setText(SelectionText());
    }
}

void GridCore::CutSelection() {
    CellRange range;
    if (!ClipboardRange(range)) {
        return;
    }
    QGuiApplication::clipboard()->setText(SelectionText());
    const QStringList emptyRow(range.right - range.left + 1);
    WriteCells(range.top, range.left, QList<QStringList>(range.bottom - range.top + 1, emptyRow),
               QStringLiteral("Cut"));
}

bool GridCore::CanPaste(int row, int col) const {
    if (!m_model || row < 1 || row > m_model->RowCount() || col < 1 || col > m_model->ColCount() ||
        !CanWrite(row, col) || m_model->IsReadOnly(row, col)) {
        return false;
    }
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasText();
}

QList<QStringList> GridCore::SplitCellText(const QString& text) {
    QString body = text;
    body.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    if (body.endsWith(QLatin1Char('\n'))) {
        body.chop(1);
    }
    QList<QStringList> rows;
    for (const QString& line : body.split(QLatin1Char('\n'))) {
        rows.append(line.split(QLatin1Char('\t')));
    }
    return rows;
}

bool GridCore::PasteClipboard() {
    CellRange range;
    if (!ClipboardRange(range) || !CanPaste(range.top, range.left)) {
        return false;
    }
    return WriteCells(range.top, range.left, SplitCellText(QGuiApplication::clipboard()->text()),
                      QStringLiteral("Paste"));
}

bool GridCore::WriteCells(int top, int left, const QList<QStringList>& rows,
                          const QString& stepName) {
    bool written = false;
    if (m_bUndoEnabled) {
        m_undo.beginMacro(stepName);
    }
    for (int r = 0; r < rows.size() && top + r <= m_model->RowCount(); ++r) {
        const QStringList& cells = rows[r];
        for (int c = 0; c < cells.size() && left + c <= m_model->ColCount(); ++c) {
            const int row = top + r;
            const int col = left + c;
            if (CanWrite(row, col) && !m_model->IsReadOnly(row, col) &&
                m_model->CellValue(row, col) != cells[c]) {
                written = OnEditCell(row, col, cells[c]) || written;
            }
        }
    }
    if (m_bUndoEnabled) {
        m_undo.endMacro();
    }
    return written;
}

bool GridCore::OnEditCell(int row, int col, const QString& value) {
    if (!CanWrite(row, col)) {
        return false;
    }
    const QString before = m_model->CellValue(row, col);
    if (!m_model->StoreValue(row, col, value)) {
        return false;
    }
    m_model->CellsChanged(row, col, col);
    Record(new CellEditCommand(m_model, row, col, before, m_model->CellValue(row, col),
                               [this](int r, int c) { OnModifyCell(r, c); }));
    OnModifyCell(row, col);
    return true;
}

void GridCore::OnModifyCell(int /*row*/, int /*col*/) {}

void GridCore::OnLeftCell(int /*row*/, int /*col*/, int /*newRow*/, int /*newCol*/) {}

void GridCore::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    // The base commits an open editor of the cell left first.
    QTableView::currentChanged(current, previous);
    const auto rowOf = [](const QModelIndex& index) {
        return index.isValid() ? index.row() + 1 : -1;
    };
    const auto colOf = [](const QModelIndex& index) {
        return index.isValid() ? index.column() + 1 : -1;
    };
    OnLeftCell(rowOf(previous), colOf(previous), rowOf(current), colOf(current));
}

void GridCore::keyPressEvent(QKeyEvent* event) {
    QTableView::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
    }
}

void GridCore::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
}

bool GridCore::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Paint && !m_cornerText.isEmpty()) {
        if (auto* corner = qobject_cast<QAbstractButton*>(watched)) {
            PaintCorner(corner);
            return true;
        }
    }
    return QTableView::eventFilter(watched, event);
}

void GridCore::PaintCorner(QWidget* corner) {
    QStyleOptionHeader option;
    option.initFrom(corner);
    option.rect = corner->rect();
    option.position = QStyleOptionHeader::OnlyOneSection;
    option.text = m_cornerText;
    option.textAlignment = Qt::AlignCenter;
    QPainter painter(corner);
    corner->style()->drawControl(QStyle::CE_Header, &option, &painter, corner);
}

void GridCore::ApplyColWidths() {
    if (!m_model) {
        return;
    }
    const int count = qMin(m_model->ColCount(), int(m_colWidths.size()) - 1);
    for (int col = 1; col <= count; ++col) {
        if (m_colWidths[col] > 0) {
            setColumnWidth(col - 1, m_colWidths[col]);
        }
    }
}
