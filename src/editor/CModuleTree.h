#pragma once

#include "CKVModuleDB.h"
#include "HostValue.h"

#include <QAbstractItemDelegate>
#include <QTreeWidget>

#include <functional>

// The module database as a tree: root, manufacturers, series, types and catalogs,
// told apart by item data. In edit mode its commands (new, rename, delete, cut, copy,
// paste) change the store at once. Catalogs of a type are read when it is first
// selected or walked.
class CModuleTree : public QTreeWidget {
    Q_OBJECT

public:
    // Item data of the levels; every other value from 1 up is a catalog.
    static constexpr quint32 kRootData = 4000000000u;
    static constexpr quint32 kManufacturerData = 4000000001u;
    static constexpr quint32 kSeriesData = 4000000002u;
    static constexpr quint32 kTypeData = 4000000003u;
    static constexpr quint32 kCatalogData = 1;

    // Context commands.
    enum Command {
        kCmdCut = 206,
        kCmdCopy = 207,
        kCmdDelete = 208,
        kCmdRename = 209,
        kCmdNew = 210,
        kCmdPaste = 222
    };

    // Answers of FillTree.
    enum FillResult { kFilled = 0, kNoDatabase = 2, kCannotOpen = 3 };

    explicit CModuleTree(QWidget* parent = nullptr);
    ~CModuleTree() override;

    static quint32 ItemData(const QTreeWidgetItem* item);
    static void SetItemData(QTreeWidgetItem* item, quint32 data);
    static bool IsCatalogData(quint32 data) { return data >= 1 && data < kRootData; }

    int SetDatabasePath(const QString& path);
    const QString& GetDatabasePath() const { return m_strDbPath; }
    void SetEditMode(bool bEditMode) { m_bEditMode = bEditMode; }
    int FillTree();
    CKVModuleDB& Database() { return m_db; }

    bool GetItemPath(QString& manufacturer, QString& series, QString& type,
                     QTreeWidgetItem* item = nullptr, bool bPartial = false) const;
    bool GetModuleOfItem(CKVModule& module, QTreeWidgetItem* item, bool bNoTerms);
    bool GetSelectedModule(CKVModule& module);
    bool GetSelectedTable(QString& table, QString& text);
    bool GetTableOfItem(QString& table, QTreeWidgetItem* item = nullptr);
    bool ExpandType(QTreeWidgetItem* item);
    QTreeWidgetItem* FindItem(const QString& manufacturer, const QString& series,
                              const QString& type, const QString& catalog);
    bool SelectModule(const QString& manufacturer, const QString& series, const QString& type,
                      const QString& catalog);
    bool AddModuleItem(const QString& manufacturer, const QString& series, const QString& type,
                       const QString& catalog);
    QTreeWidgetItem* SelectedItem() const { return currentItem(); }

    bool IsEditingLabel() const;
    void EndLabelEdit();
    void CancelLabelEdit();

    bool SaveMru();
    void RestoreMru();

    // The answer of a selection for the selected catalog: the module list, lists A
    // and B and the break flag; null (false) when the module cannot be read.
    bool BuildSelectionList(int style, bool bGroupB, HostValue& out);

    // Context commands act on this item, not on the selection.
    void SetContextItem(QTreeWidgetItem* item) { m_hContextItem = item; }
    QTreeWidgetItem* ContextItem() const { return m_hContextItem; }
    void OnCommand(int command);
    void OnCut();
    void OnCopy();
    void OnDelete();
    void OnRename();
    void OnNew();
    void OnPaste();

    // The owner's say: whether the selection may move to an item (the editor asks
    // to save first), and whether a paste may go on (cut: the clipboard holds a cut).
    // A paste goes on only when the owner answers 1; any other answer, or no owner,
    // ends it before anything is copied.
    std::function<bool(QTreeWidgetItem* item)> selectionChanging;
    std::function<int(bool cut)> pasteApproval;

signals:
    // The selection moved to item (null when there is none).
    void moduleSelectionChanged(QTreeWidgetItem* item);
    // New on a type or a catalog: the owner opens its new-module dialog.
    void newModuleRequested(QTreeWidgetItem* item);
    void catalogRenamed();
    // What is about to be deleted holds the selection.
    void selectionDeleting();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void commitData(QWidget* editor) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    int Level(const QTreeWidgetItem* item) const;
    QTreeWidgetItem* Root() const { return topLevelItemCount() ? topLevelItem(0) : nullptr; }
    QTreeWidgetItem* AppendChild(QTreeWidgetItem* parent, const QString& text, quint32 data);
    QTreeWidgetItem* FindChild(QTreeWidgetItem* parent, const QString& text) const;
    bool BeginLabelEdit(QTreeWidgetItem* item);
    void FinishLabelEdit(const QString& text, bool bCancelled);
    void RenameOrAdd(QTreeWidgetItem* item, const QString& newText);
    void RemoveLater(QTreeWidgetItem* item);
    bool SelectionLiesIn(QTreeWidgetItem* item) const;
    // Whether a module may be renamed or deleted: not while another program holds its
    // edit lock, which is then named. lock is whether this program took it for the change.
    bool MayChangeModule(const QString& table, const QString& catalog, bool& lock);

    QString m_strDbPath;
    QTreeWidgetItem* m_hContextItem = nullptr;
    bool m_bEditMode = false;
    QString m_strEditOld;
    QTreeWidgetItem* m_editItem = nullptr;
    QString m_strClipManufacturer;
    QString m_strClipSeries;
    QString m_strClipType;
    QString m_strClipCatalog;
    bool m_bClipCopy = true;
    bool m_bEditCancelled = false;
    bool m_bReverting = false;
    CKVModuleDB m_db;
};
