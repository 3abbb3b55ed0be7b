#include "CModuleSearch.h"

#include "CModuleTree.h"
#include "DialogControls.h"
#include "ResourceLibrary.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int kPlaceholder = 4032;
constexpr int kNoMatch = 4036;
// Catalog and description as the catalog list heads them, then manufacturer, series, type.
constexpr int kHeaders[] = {4000, 4004, 4033, 4034, 4035};
constexpr int kMatchRole = Qt::UserRole;
constexpr int kNoMatchRow = -1;

QStringList Texts(const ModDB::ModuleMatch& match) {
    return {match.Catalog, match.Description, match.Manufacturer, match.Series, match.Type};
}

}  // namespace

CModuleSearch::CModuleSearch(CModuleTree* tree, QWidget* parent)
    : QWidget(parent),
      m_tree(tree),
      m_field(new QLineEdit(this)),
      m_stack(new QStackedWidget(this)),
      m_matches(new QTreeWidget(this)) {
    SetControlId(m_field, kIdField);
    SetControlId(m_matches, kIdMatches);
    m_field->setPlaceholderText(LoadResString(kPlaceholder));
    m_field->setClearButtonEnabled(true);

    QStringList headers;
    for (int id : kHeaders) {
        headers << LoadResString(id);
    }
    m_matches->setHeaderLabels(headers);
    m_matches->setRootIsDecorated(false);
    m_matches->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_matches->setSelectionMode(QAbstractItemView::SingleSelection);
    m_matches->header()->setStretchLastSection(false);

    m_stack->addWidget(m_tree);
    m_stack->addWidget(m_matches);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_field);
    layout->addWidget(m_stack, 1);
    // Tab goes from the field to whichever of the two stands below it.
    setTabOrder(m_field, m_matches);
    setTabOrder(m_matches, m_tree);

    m_field->installEventFilter(this);
    m_matches->installEventFilter(this);
    connect(m_field, &QLineEdit::textChanged, this, &CModuleSearch::OnTextChanged);
    connect(m_matches, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* row) { Choose(row); });
}

void CModuleSearch::Clear() {
    m_field->clear();
}

void CModuleSearch::OnTextChanged(const QString& text) {
    if (text.isEmpty()) {
        m_matches->clear();
        m_found.clear();
        m_stack->setCurrentWidget(m_tree);
        return;
    }
    ShowMatches(text);
    m_stack->setCurrentWidget(m_matches);
}

void CModuleSearch::ShowMatches(const QString& fragment) {
    m_matches->clear();
    // A store that cannot be read finds nothing, which the list says.
    if (!m_tree->Database().FindModules(fragment, kMatchLimit, m_found)) {
        m_found.clear();
    }
    if (m_found.isEmpty()) {
        auto* row = new QTreeWidgetItem(QStringList{LoadResString(kNoMatch)});
        row->setData(0, kMatchRole, kNoMatchRow);
        row->setFlags(Qt::ItemIsEnabled);
        m_matches->addTopLevelItem(row);
        row->setFirstColumnSpanned(true);
        return;
    }
    QList<QTreeWidgetItem*> rows;
    rows.reserve(m_found.size());
    for (qsizetype i = 0; i < m_found.size(); ++i) {
        const QStringList texts = Texts(m_found[i]);
        auto* row = new QTreeWidgetItem(texts);
        row->setData(0, kMatchRole, int(i));
        for (int column = 0; column < texts.size(); ++column) {
            row->setToolTip(column, texts[column]);
        }
        rows << row;
    }
    m_matches->addTopLevelItems(rows);
    for (int column = 0; column < m_matches->columnCount(); ++column) {
        m_matches->resizeColumnToContents(column);
    }
    // Return takes the highlighted row: at first the best one.
    m_matches->setCurrentItem(rows.first());
}

void CModuleSearch::MoveCurrent(int step) {
    const int count = m_matches->topLevelItemCount();
    if (count == 0) {
        return;
    }
    const int now = m_matches->indexOfTopLevelItem(m_matches->currentItem());
    const int next = qBound(0, now + step, count - 1);
    m_matches->setCurrentItem(m_matches->topLevelItem(next));
}

void CModuleSearch::ChooseCurrent() {
    QTreeWidgetItem* row = m_matches->currentItem();
    Choose(row ? row : m_matches->topLevelItem(0));
}

void CModuleSearch::Choose(QTreeWidgetItem* row) {
    const int index = row ? row->data(0, kMatchRole).toInt() : kNoMatchRow;
    if (index < 0 || index >= m_found.size()) {
        return;
    }
    const ModDB::ModuleMatch match = m_found[index];
    const bool went =
        walkTo ? walkTo(match)
               : m_tree->SelectModule(match.Manufacturer, match.Series, match.Type, match.Catalog);
    if (!went) {
        return;
    }
    Clear();
    RevealSelection();
    m_tree->setFocus();
    emit moduleChosen();
}

void CModuleSearch::RevealSelection() {
    QTreeWidgetItem* item = m_tree->currentItem();
    if (!item) {
        return;
    }
    for (QTreeWidgetItem* parent = item->parent(); parent; parent = parent->parent()) {
        parent->setExpanded(true);
    }
    m_tree->scrollToItem(item);
}

bool CModuleSearch::OnKey(const QObject* watched, int key) {
    const bool inField = watched == m_field;
    // An empty field leaves every key to the dialog: Return still confirms a selection
    // made in the tree, and the cancel key still closes.
    if (inField && m_field->text().isEmpty()) {
        return false;
    }
    switch (key) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            ChooseCurrent();
            return true;
        case Qt::Key_Escape:
            Clear();
            m_field->setFocus();
            return true;
        case Qt::Key_Down:
        case Qt::Key_Up:
            // The list moves by itself; from the field the keys move it.
            if (!inField) {
                return false;
            }
            MoveCurrent(key == Qt::Key_Down ? 1 : -1);
            return true;
        default:
            return false;
    }
}

bool CModuleSearch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    if (watched == m_field || watched == m_matches) {
        return OnKey(watched, static_cast<QKeyEvent*>(event)->key());
    }
    return QWidget::eventFilter(watched, event);
}
