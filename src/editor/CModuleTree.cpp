#include "CModuleTree.h"

#include "CGetStringDlg.h"
#include "CRegistryKey.h"
#include "CrtNumbers.h"
#include "HostBridge.h"
#include "Messages.h"
#include "ModalRunner.h"
#include "ResourceLibrary.h"
#include "SelectionList.h"
#include "ZelDbMigrate.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

namespace {

enum Level {
    kNoLevel = -1,
    kLevelRoot,
    kLevelManufacturer,
    kLevelSeries,
    kLevelType,
    kLevelCatalog
};

constexpr int kDataRole = Qt::UserRole;
constexpr int kShortNameLimit = 24;  // manufacturer and series
constexpr int kTypeNameLimit = 60;
constexpr int kMsgModuleHeld = 4039;
const char* const kMruKey = "Settings\\MRUPLC";

// Edits a label with the length limit of its level, and leaves writing the new
// text to the tree, which decides whether the name stands.
class LabelDelegate : public QStyledItemDelegate {
public:
    explicit LabelDelegate(QObject* parent) : QStyledItemDelegate(parent) {}
    int limit = 0;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (auto* line = qobject_cast<QLineEdit*>(editor); line && limit > 0) {
            line->setMaxLength(limit);
        }
        return editor;
    }
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}
};

QString EditorText(QWidget* editor) {
    auto* line = qobject_cast<QLineEdit*>(editor);
    return line ? line->text() : QString();
}

}  // namespace

CModuleTree::CModuleTree(QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setColumnCount(1);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setItemDelegate(new LabelDelegate(this));
}

CModuleTree::~CModuleTree() {
    m_db.Close();
}

quint32 CModuleTree::ItemData(const QTreeWidgetItem* item) {
    return item ? item->data(0, kDataRole).toUInt() : 0;
}

void CModuleTree::SetItemData(QTreeWidgetItem* item, quint32 data) {
    item->setData(0, kDataRole, data);
}

int CModuleTree::Level(const QTreeWidgetItem* item) const {
    const quint32 data = ItemData(item);
    switch (data) {
        case kRootData:
            return kLevelRoot;
        case kManufacturerData:
            return kLevelManufacturer;
        case kSeriesData:
            return kLevelSeries;
        case kTypeData:
            return kLevelType;
        default:
            return IsCatalogData(data) ? kLevelCatalog : kNoLevel;
    }
}

int CModuleTree::SetDatabasePath(const QString& path) {
    if (path.isNull()) {
        return 1;
    }
    m_strDbPath = path;
    return 0;
}

QTreeWidgetItem* CModuleTree::AppendChild(QTreeWidgetItem* parent, const QString& text,
                                          quint32 data) {
    auto* item = new QTreeWidgetItem(QStringList{text});
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    SetItemData(item, data);
    if (parent) {
        parent->addChild(item);
    } else {
        addTopLevelItem(item);
    }
    return item;
}

int CModuleTree::FillTree() {
    if (m_strDbPath.isEmpty()) {
        QString found;
        if (!FindDatabaseFile(found)) {
            return kNoDatabase;
        }
        m_strDbPath = found;
    }
    if (!m_db.IsOpen() && !m_db.Open(m_strDbPath)) {
        return kCannotOpen;
    }
    const QSignalBlocker quiet(this);
    clear();
    QList<_manfams> hierarchy;
    if (m_db.GetHierarchy(hierarchy)) {
        QTreeWidgetItem* root = AppendChild(nullptr, LoadResString(4027), kRootData);
        for (const _manfams& manufacturer : hierarchy) {
            QTreeWidgetItem* m = AppendChild(root, manufacturer.strManufacturer, kManufacturerData);
            for (const _familytypes& series : manufacturer.families) {
                QTreeWidgetItem* s = AppendChild(m, series.strSeries, kSeriesData);
                for (const _typetname& type : series.types) {
                    AppendChild(s, type.strType, kTypeData);
                }
            }
        }
        root->setExpanded(true);
    }
    m_db.LoadPrompts();
    return kFilled;
}

bool CModuleTree::GetItemPath(QString& manufacturer, QString& series, QString& type,
                              QTreeWidgetItem* item, bool bPartial) const {
    if (!item) {
        item = currentItem();
    }
    const int level = Level(item);
    QTreeWidgetItem* typeItem = nullptr;
    if (level == kLevelCatalog) {
        typeItem = item->parent();
    } else if (level == kLevelType) {
        typeItem = item;
    } else if (bPartial && level == kLevelSeries && item->parent()) {
        manufacturer = item->parent()->text(0);
        series = item->text(0);
        type = QStringLiteral("");
        return true;
    } else if (bPartial && level == kLevelManufacturer) {
        manufacturer = item->text(0);
        series = QStringLiteral("");
        type = QStringLiteral("");
        return true;
    }
    if (!typeItem || !typeItem->parent() || !typeItem->parent()->parent()) {
        return false;
    }
    type = typeItem->text(0);
    series = typeItem->parent()->text(0);
    manufacturer = typeItem->parent()->parent()->text(0);
    return true;
}

bool CModuleTree::GetModuleOfItem(CKVModule& module, QTreeWidgetItem* item, bool bNoTerms) {
    if (!item) {
        return false;
    }
    QString manufacturer, series, type;
    if (!GetItemPath(manufacturer, series, type, item, false) || !m_db.IsOpen()) {
        return false;
    }
    QString table;
    m_db.GetTypeTableName(manufacturer, series, type, table);
    const int handle = m_db.LoadModule(table, item->text(0), bNoTerms);
    if (handle == -1) {
        return false;
    }
    module = m_db.GetModule(handle);
    m_db.ReleaseModule(handle);
    module.SetManufacturer(manufacturer);
    module.SetTableName(table);
    return true;
}

bool CModuleTree::GetSelectedModule(CKVModule& module) {
    return GetModuleOfItem(module, currentItem(), false);
}

bool CModuleTree::GetSelectedTable(QString& table, QString& text) {
    QString manufacturer, series, type;
    QTreeWidgetItem* item = currentItem();
    if (!GetItemPath(manufacturer, series, type, item, false) || !m_db.IsOpen() ||
        !m_db.GetTypeTableName(manufacturer, series, type, table)) {
        return false;
    }
    text = item->text(0);
    return true;
}

bool CModuleTree::GetTableOfItem(QString& table, QTreeWidgetItem* item) {
    QString manufacturer, series, type;
    if (!GetItemPath(manufacturer, series, type, item, false) || manufacturer.isEmpty() ||
        series.isEmpty() || type.isEmpty()) {
        return false;
    }
    return m_db.GetTypeTableName(manufacturer, series, type, table);
}

bool CModuleTree::ExpandType(QTreeWidgetItem* item) {
    if (Level(item) != kLevelType || item->childCount() > 0) {
        return true;
    }
    if (!m_db.IsOpen()) {
        return false;
    }
    QString manufacturer, series, type, table;
    if (!GetItemPath(manufacturer, series, type, item, false) ||
        !m_db.GetTypeTableName(manufacturer, series, type, table)) {
        return true;
    }
    if (m_bEditMode) {
        // An older file is upgraded by the owner's handling of the same selection.
        if (TableNeedsMigration(m_strDbPath, table)) {
            return true;
        }
    }
    QList<_idandcatalognum> catalogs;
    m_db.GetCatalogs(table, catalogs);
    for (const _idandcatalognum& catalog : catalogs) {
        AppendChild(item, catalog.strCatalog, quint32(crt::wtol(catalog.strId)));
    }
    return true;
}

void CModuleTree::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeWidget::currentChanged(current, previous);
    if (m_bReverting) {
        return;
    }
    QTreeWidgetItem* item = itemFromIndex(current);
    const bool allowed =
        ExpandType(item) && (!selectionChanging || !item || selectionChanging(item));
    if (!allowed) {
        // The change is refused: the old selection comes back and no one is told.
        m_bReverting = true;
        setCurrentIndex(previous);
        m_bReverting = false;
        return;
    }
    emit moduleSelectionChanged(item);
}

QTreeWidgetItem* CModuleTree::FindChild(QTreeWidgetItem* parent, const QString& text) const {
    for (int i = 0; parent && i < parent->childCount(); ++i) {
        if (parent->child(i)->text(0).compare(text, Qt::CaseInsensitive) == 0) {
            return parent->child(i);
        }
    }
    return nullptr;
}

QTreeWidgetItem* CModuleTree::FindItem(const QString& manufacturer, const QString& series,
                                       const QString& type, const QString& catalog) {
    QTreeWidgetItem* root = Root();
    if (!root || manufacturer.isNull() || series.isNull() || type.isNull() || catalog.isNull()) {
        return nullptr;
    }
    // Equal names may stand twice on a level: the walk goes on among the siblings.
    for (int m = 0; m < root->childCount(); ++m) {
        QTreeWidgetItem* mi = root->child(m);
        if (mi->text(0).compare(manufacturer, Qt::CaseInsensitive) != 0) {
            continue;
        }
        for (int s = 0; s < mi->childCount(); ++s) {
            QTreeWidgetItem* si = mi->child(s);
            if (si->text(0).compare(series, Qt::CaseInsensitive) != 0) {
                continue;
            }
            for (int t = 0; t < si->childCount(); ++t) {
                QTreeWidgetItem* ti = si->child(t);
                if (ti->text(0).compare(type, Qt::CaseInsensitive) != 0) {
                    continue;
                }
                ExpandType(ti);
                if (QTreeWidgetItem* found = FindChild(ti, catalog)) {
                    return found;
                }
            }
        }
    }
    return nullptr;
}

bool CModuleTree::SelectModule(const QString& manufacturer, const QString& series,
                               const QString& type, const QString& catalog) {
    QTreeWidgetItem* item = FindItem(manufacturer, series, type, catalog);
    if (!item) {
        return false;
    }
    setCurrentItem(item);
    return currentItem() == item;
}

bool CModuleTree::AddModuleItem(const QString& manufacturer, const QString& series,
                                const QString& type, const QString& catalog) {
    if (manufacturer.isEmpty() || series.isEmpty() || type.isEmpty() || catalog.isEmpty() ||
        !Root()) {
        return false;
    }
    QTreeWidgetItem* m = FindChild(Root(), manufacturer);
    if (!m) {
        m = AppendChild(Root(), manufacturer, kManufacturerData);
    }
    QTreeWidgetItem* s = FindChild(m, series);
    if (!s) {
        s = AppendChild(m, series, kSeriesData);
    }
    QTreeWidgetItem* t = FindChild(s, type);
    if (!t) {
        t = AppendChild(s, type, kTypeData);
    }
    if (t->childCount() > 0) {
        AppendChild(t, catalog, kCatalogData);
    } else {
        ExpandType(t);
    }
    return true;
}

bool CModuleTree::IsEditingLabel() const {
    return state() == QAbstractItemView::EditingState;
}

void CModuleTree::EndLabelEdit() {
    setFocus();
}

void CModuleTree::CancelLabelEdit() {
    m_bEditCancelled = true;
    setFocus();
}

bool CModuleTree::BeginLabelEdit(QTreeWidgetItem* item) {
    m_bEditCancelled = false;
    const int level = Level(item);
    if (!item || level == kLevelRoot) {
        return false;
    }
    auto* delegate = static_cast<LabelDelegate*>(itemDelegate());
    delegate->limit = (level == kLevelManufacturer || level == kLevelSeries) ? kShortNameLimit
                      : level == kLevelType                                  ? kTypeNameLimit
                                                                             : 0;
    m_strEditOld = item->text(0);
    m_editItem = item;
    return true;
}

bool CModuleTree::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    if (trigger != QAbstractItemView::AllEditTriggers && !m_bEditMode) {
        return false;
    }
    if (!(editTriggers() & trigger) && trigger != QAbstractItemView::AllEditTriggers) {
        return QTreeWidget::edit(index, trigger, event);
    }
    if (!BeginLabelEdit(itemFromIndex(index))) {
        return false;
    }
    return QTreeWidget::edit(index, trigger, event);
}

void CModuleTree::commitData(QWidget* editor) {
    if (m_editItem) {
        FinishLabelEdit(EditorText(editor), m_bEditCancelled);
    }
}

void CModuleTree::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    if (m_editItem) {
        // Closed without a commit: the edit was cancelled.
        FinishLabelEdit(QString(), true);
    }
    Q_UNUSED(hint);
    QTreeWidget::closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void CModuleTree::FinishLabelEdit(const QString& text, bool bCancelled) {
    QTreeWidgetItem* item = m_editItem;
    m_editItem = nullptr;
    const QString newText = text.trimmed();
    if (bCancelled || newText.isEmpty()) {
        m_bEditCancelled = false;
        if (m_strEditOld.isEmpty()) {
            RemoveLater(item);
        }
        return;
    }
    // A rename that changes only the case is refused in silence.
    if (newText.compare(m_strEditOld, Qt::CaseInsensitive) == 0 || !m_db.IsOpen()) {
        return;
    }
    RenameOrAdd(item, newText);
}

void CModuleTree::RemoveLater(QTreeWidgetItem* item) {
    // The editor of the item is still closing; the item goes once it has.
    const QPersistentModelIndex index(indexFromItem(item));
    QMetaObject::invokeMethod(
        this,
        [this, index] {
            if (index.isValid()) {
                delete itemFromIndex(index);
            }
        },
        Qt::QueuedConnection);
}

void CModuleTree::mousePressEvent(QMouseEvent* event) {
    // A right click opens the context menu on the item under it, and selects nothing.
    if (event->button() == Qt::RightButton) {
        event->accept();
        return;
    }
    QTreeWidget::mousePressEvent(event);
}

void CModuleTree::RenameOrAdd(QTreeWidgetItem* item, const QString& newText) {
    const QString& old = m_strEditOld;
    const bool bNew = old.isEmpty();
    QString manufacturer, series, type;
    switch (Level(item)) {
        case kLevelManufacturer:
            if (m_db.IndexExists(newText, QString(), QString())) {
                Messages::Show(10112, {old});
                // From here on the tree does nothing with the store until reopened.
                m_db.Close();
                return;
            }
            bNew ? m_db.AddIndex(newText, QString(), QString())
                 : m_db.RenameIndex(old, QString(), QString(), newText);
            break;
        case kLevelSeries:
            manufacturer = item->parent()->text(0);
            if (m_db.IndexExists(manufacturer, newText, QString())) {
                Messages::Show(10113, {old});
                return;
            }
            bNew ? m_db.AddIndex(manufacturer, newText, QString())
                 : m_db.RenameIndex(manufacturer, old, QString(), newText);
            break;
        case kLevelType:
            series = item->parent()->text(0);
            manufacturer = item->parent()->parent()->text(0);
            if (m_db.IndexExists(manufacturer, series, newText)) {
                Messages::Show(10114, {old});
                m_db.Close();
                return;
            }
            bNew ? m_db.AddIndex(manufacturer, series, newText)
                 : m_db.RenameIndex(manufacturer, series, old, newText);
            break;
        case kLevelCatalog: {
            QString table;
            if (!GetTableOfItem(table, item)) {
                Messages::Show(10116);
                return;
            }
            bool lock = false;
            if (m_db.ModuleExists(table, newText)) {
                Messages::Show(10115, {old});
                return;
            }
            if (!MayChangeModule(table, old, lock)) {
                return;
            }
            m_db.RenameModule(table, old, newText);
            if (lock) {
                m_db.UnlockModule(table, old);
            }
            item->setText(0, newText);
            emit catalogRenamed();
            return;
        }
        default:
            return;
    }
    item->setText(0, newText);
}

void CModuleTree::contextMenuEvent(QContextMenuEvent* event) {
    QTreeWidgetItem* item = itemAt(event->pos());
    if (!item || !m_bEditMode) {
        return;
    }
    m_hContextItem = item;
    const int level = Level(item);
    QMenu menu(this);
    const auto add = [&](int command, const QString& text, bool enabled = true) {
        QAction* action = menu.addAction(text);
        action->setData(command);
        action->setEnabled(enabled);
    };
    add(kCmdNew, level == kLevelType || level == kLevelCatalog ? tr("New Module...") : tr("New"));
    if (level == kLevelCatalog) {
        add(kCmdCut, tr("Cut"));
        add(kCmdCopy, tr("Copy"));
    }
    if (level == kLevelType || level == kLevelCatalog) {
        add(kCmdPaste, tr("Paste"), !m_strClipCatalog.isEmpty());
    }
    if (level != kLevelRoot) {
        menu.addSeparator();
        add(kCmdRename, tr("Rename"));
        add(kCmdDelete, tr("Delete"));
    }
    if (QAction* chosen = menu.exec(event->globalPos())) {
        OnCommand(chosen->data().toInt());
    }
}

void CModuleTree::OnCommand(int command) {
    switch (command) {
        case kCmdCut:
            OnCut();
            break;
        case kCmdCopy:
            OnCopy();
            break;
        case kCmdDelete:
            OnDelete();
            break;
        case kCmdRename:
            OnRename();
            break;
        case kCmdNew:
            OnNew();
            break;
        case kCmdPaste:
            OnPaste();
            break;
        default:
            break;
    }
}

void CModuleTree::OnCut() {
    if (Level(m_hContextItem) != kLevelCatalog) {
        return;
    }
    m_bClipCopy = false;
    m_strClipCatalog = m_hContextItem->text(0);
    GetItemPath(m_strClipManufacturer, m_strClipSeries, m_strClipType, m_hContextItem, false);
}

void CModuleTree::OnCopy() {
    if (Level(m_hContextItem) != kLevelCatalog) {
        return;
    }
    OnCut();
    m_bClipCopy = true;
}

bool CModuleTree::SelectionLiesIn(QTreeWidgetItem* item) const {
    QString manufacturer, series, type;
    QTreeWidgetItem* selected = currentItem();
    if (Level(selected) != kLevelCatalog ||
        !GetItemPath(manufacturer, series, type, selected, false)) {
        return false;
    }
    const auto same = [](const QString& a, const QString& b) {
        return a.compare(b, Qt::CaseInsensitive) == 0;
    };
    QString m, s, t;
    GetItemPath(m, s, t, item, true);
    switch (Level(item)) {
        case kLevelManufacturer:
            return same(m, manufacturer);
        case kLevelSeries:
            return same(m, manufacturer) && same(s, series);
        case kLevelType:
            return same(m, manufacturer) && same(s, series) && same(t, type);
        case kLevelCatalog:
            return same(m, manufacturer) && same(s, series) && same(t, type) &&
                   same(item->text(0), selected->text(0));
        default:
            return false;
    }
}

bool CModuleTree::MayChangeModule(const QString& table, const QString& catalog, bool& lock) {
    ModDB::ModuleLock holder;
    // A store that takes no locks leaves the change to refuse itself.
    if (m_db.LockModule(table, catalog, lock, holder) && !lock) {
        Messages::Show(kMsgModuleHeld, {holder.holder, holder.LocalSince()});
        return false;
    }
    return true;
}

void CModuleTree::OnDelete() {
    QTreeWidgetItem* item = m_hContextItem;
    const int level = Level(item);
    if (!item || !m_db.IsOpen() || level == kLevelRoot || level == kNoLevel) {
        return;
    }
    QString manufacturer, series, type;
    GetItemPath(manufacturer, series, type, item, true);
    const QString name = item->text(0);
    int answer = kIdCancel;
    switch (level) {
        case kLevelManufacturer:
            answer = Messages::Show(10118, {manufacturer}, MsgButtons::YesNoCancel);
            break;
        case kLevelSeries:
            answer = Messages::Show(10119, {series, manufacturer}, MsgButtons::YesNoCancel);
            break;
        case kLevelType:
            answer = Messages::Show(10120, {type, series, manufacturer}, MsgButtons::YesNoCancel);
            break;
        default:
            answer = Messages::Show(10121, {name}, MsgButtons::YesNoCancel);
            break;
    }
    QString table;
    bool lock = false;
    if (answer != kIdYes || (level == kLevelCatalog && GetTableOfItem(table, item) &&
                             !MayChangeModule(table, name, lock))) {
        return;
    }
    if (SelectionLiesIn(item)) {
        emit selectionDeleting();
    }
    switch (level) {
        case kLevelManufacturer:
            m_db.RemoveEntry(manufacturer, QString(), QString(), QString());
            break;
        case kLevelSeries:
            m_db.RemoveEntry(manufacturer, series, QString(), QString());
            break;
        case kLevelType:
            m_db.RemoveEntry(manufacturer, series, type, QString());
            break;
        default:
            m_db.RemoveEntry(manufacturer, series, type, name);
            if (lock) {
                m_db.UnlockModule(table, name);
            }
            break;
    }
    if (m_hContextItem == item) {
        m_hContextItem = nullptr;
    }
    delete item;
}

void CModuleTree::OnRename() {
    if (!m_hContextItem) {
        return;
    }
    setFocus();
    editItem(m_hContextItem, 0);
}

void CModuleTree::OnNew() {
    QTreeWidgetItem* item = m_hContextItem;
    if (!item) {
        return;
    }
    const int level = Level(item);
    if (level == kLevelType || level == kLevelCatalog) {
        // The item may go before the queued call runs; a persistent index notices.
        const QPersistentModelIndex index = indexFromItem(item);
        QMetaObject::invokeMethod(
            this,
            [this, index] {
                if (index.isValid()) {
                    emit newModuleRequested(itemFromIndex(index));
                }
            },
            Qt::QueuedConnection);
        return;
    }
    if (level == kNoLevel) {
        return;
    }
    const quint32 childData = level == kLevelRoot           ? kManufacturerData
                              : level == kLevelManufacturer ? kSeriesData
                                                            : kTypeData;
    item->setExpanded(true);
    QTreeWidgetItem* child = AppendChild(item, QString(), childData);
    setCurrentItem(child);
    if (currentItem() != child) {
        delete child;
        return;
    }
    setFocus();
    editItem(child, 0);
}

void CModuleTree::OnPaste() {
    QTreeWidgetItem* item = m_hContextItem;
    const int level = Level(item);
    if (!m_db.IsOpen() || (level != kLevelType && level != kLevelCatalog)) {
        return;
    }
    QTreeWidgetItem* typeItem = level == kLevelType ? item : item->parent();
    QString table;
    if (!GetTableOfItem(table, typeItem)) {
        return;
    }
    QString name = m_strClipCatalog;
    if (m_db.ModuleExists(table, name)) {
        Messages::Show(10117, {name});
        // Ask for another name until one is free or the user gives up.
        while (true) {
            CGetStringDlg dialog(this);
            dialog.SetTitle(LoadResString(4021));
            dialog.SetPrompt(LoadResString(4022));
            dialog.SetValue(name);
            if (ModalRunner::Run(dialog) != kIdOk) {
                return;
            }
            name = dialog.GetValue();
            if (!m_db.ModuleExists(table, name)) {
                break;
            }
            Messages::Show(10117, {name});
        }
    }
    QString sourceTable;
    if (!m_db.GetTypeTableName(m_strClipManufacturer, m_strClipSeries, m_strClipType,
                               sourceTable)) {
        return;
    }
    if (!pasteApproval || pasteApproval(!m_bClipCopy) != 1) {
        return;
    }
    if (!m_db.CopyModule(m_strClipCatalog, sourceTable, name, table)) {
        return;
    }
    QTreeWidgetItem* pasted = AppendChild(typeItem, name, kCatalogData);
    if (m_bClipCopy) {
        return;
    }
    QTreeWidgetItem* source =
        FindItem(m_strClipManufacturer, m_strClipSeries, m_strClipType, m_strClipCatalog);
    if (!source) {
        return;
    }
    setCurrentItem(pasted);
    if (currentItem() != pasted) {
        return;
    }
    if (m_hContextItem == source) {
        m_hContextItem = nullptr;
    }
    delete source;
    m_db.RemoveEntry(m_strClipManufacturer, m_strClipSeries, m_strClipType, m_strClipCatalog);
}

bool CModuleTree::SaveMru() {
    CKVModule module;
    if (!GetModuleOfItem(module, currentItem(), false)) {
        return false;
    }
    CRegistryKey key;
    key.SetRootToHCUK();
    if (!key.Open(QString::fromLatin1(kMruKey)) && !key.Create(QString::fromLatin1(kMruKey))) {
        return false;
    }
    QString manufacturer, series, type;
    if (!GetItemPath(manufacturer, series, type, currentItem(), false)) {
        return false;
    }
    key.SetValue(QStringLiteral("Manufacturer"), manufacturer);
    key.SetValue(QStringLiteral("Series"), series);
    key.SetValue(QStringLiteral("Type"), type);
    key.SetValue(QStringLiteral("CatNo"), module.GetCatalog());
    key.Close();
    return true;
}

void CModuleTree::RestoreMru() {
    CRegistryKey key;
    key.SetRootToHCUK();
    if (!key.Open(QString::fromLatin1(kMruKey))) {
        return;
    }
    QString manufacturer, series, type, catalog;
    key.GetValue(QStringLiteral("Manufacturer"), manufacturer);
    key.GetValue(QStringLiteral("Series"), series);
    key.GetValue(QStringLiteral("Type"), type);
    key.GetValue(QStringLiteral("CatNo"), catalog);
    if (QTreeWidgetItem* item = FindItem(manufacturer, series, type, catalog)) {
        setCurrentItem(item);
    }
}

bool CModuleTree::BuildSelectionList(int style, bool bGroupB, HostValue& out) {
    CKVModule module;
    if (!GetModuleOfItem(module, currentItem(), false)) {
        return false;
    }
    return ::BuildSelectionList(module, &m_db, style, bGroupB, out);
}
