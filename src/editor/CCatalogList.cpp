#include "CCatalogList.h"

#include "CKVModule.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "ResourceLibrary.h"

#include <QHelpEvent>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace {

constexpr int kColumnCount = 5;
constexpr int kFirstHeader = 4000;  // catalog, points, rating, remarks, description
constexpr int kColumnWidths[kColumnCount] = {100, 50, 50, 100, 100};

// Shows the full text of a list cell as its tooltip when the cell is too narrow for it.
class TruncatedCellTips : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        if (event->type() != QEvent::ToolTip) {
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        }
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        const QStyle* style = view->style();
        const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &cell, view);
        // The style keeps a margin on each side of the text.
        const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view) + 1;
        if (cell.fontMetrics.horizontalAdvance(cell.text) <= textRect.width() - 2 * margin) {
            QToolTip::hideText();
            return true;
        }
        QToolTip::showText(event->globalPos(), cell.text, view->viewport(), option.rect);
        return true;
    }
};

}  // namespace

CCatalogList::CCatalogList(QWidget* parent) : QTreeWidget(parent) {
    setRootIsDecorated(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setItemDelegate(new TruncatedCellTips(this));
}

void CCatalogList::SetUpColumns() {
    setColumnCount(kColumnCount);
    QStringList headers;
    for (int column = 0; column < kColumnCount; ++column) {
        headers << LoadResString(kFirstHeader + column);
    }
    setHeaderLabels(headers);
    for (int column = 0; column < kColumnCount; ++column) {
        setColumnWidth(column, ScaledX(kColumnWidths[column]));
    }
    // With no rows yet, fitting a column fits its header.
    for (int column : {1, 2, 4}) {
        resizeColumnToContents(column);
    }
}

void CCatalogList::AddModule(const CKVModule& module) {
    addTopLevelItem(new QTreeWidgetItem(QStringList{module.GetCatalog(), module.GetColText1(),
                                                    module.GetColText2(), module.GetColText3(),
                                                    module.GetDescription()}));
}

void CCatalogList::ShowItem(CModuleTree& tree, QTreeWidgetItem* item) {
    clear();
    const quint32 data = CModuleTree::ItemData(item);
    if (data == 0) {
        return;
    }
    if (data == CModuleTree::kTypeData) {
        for (int i = 0; i < item->childCount(); ++i) {
            CKVModule module;
            if (tree.GetModuleOfItem(module, item->child(i), true)) {
                AddModule(module);
            }
        }
        return;
    }
    CKVModule module;
    if (tree.GetSelectedModule(module)) {
        AddModule(module);
        topLevelItem(0)->setSelected(true);
    }
}

bool CCatalogList::HasSelectedRow() const {
    return topLevelItemCount() > 0 && !selectedItems().isEmpty();
}

QTreeWidgetItem* CCatalogList::SelectedCatalogOf(QTreeWidgetItem* typeItem) const {
    const QList<QTreeWidgetItem*> rows = selectedItems();
    if (!typeItem || rows.isEmpty()) {
        return nullptr;
    }
    const QString catalog = rows.first()->text(0);
    for (int i = 0; i < typeItem->childCount(); ++i) {
        if (typeItem->child(i)->text(0).compare(catalog, Qt::CaseInsensitive) == 0) {
            return typeItem->child(i);
        }
    }
    return nullptr;
}

bool CCatalogList::SelectCatalog(const QString& catalog) {
    const QList<QTreeWidgetItem*> rows = findItems(catalog, Qt::MatchFixedString, 0);
    if (rows.isEmpty()) {
        return false;
    }
    setCurrentItem(rows.first());
    scrollToItem(rows.first());
    return true;
}
