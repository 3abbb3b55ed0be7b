#pragma once

#include "HelpDialog.h"

class CCatalogList;
class CModuleTree;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

// Picks one catalog of the store, so that the block definitions can take over the
// block names of its terminals: the module tree on one side, the catalogs of the
// selected type (or the selected catalog alone) on the other.
class CABSelDlg : public HelpDialog {
    Q_OBJECT

public:
    enum Control { kIdOk = 1, kIdCancel = 2, kIdTree = 200, kIdList = 201, kIdHelp = 203 };

    explicit CABSelDlg(QWidget* parent = nullptr);
    ~CABSelDlg() override;

    // The database to show; set before the dialog runs. A null text is refused.
    bool SetPath(const QString& path);
    // The names of the catalog picked, after OK.
    const QString& GetManufacturer() const { return m_strManufacturer; }
    const QString& GetSeries() const { return m_strSeries; }
    const QString& GetType() const { return m_strType; }
    const QString& GetCatalog() const { return m_strCatalog; }

    // Start-up: fills the tree and restores the last selection. False when the store
    // cannot be shown; the dialog then cancels.
    bool OnInitDialog();
    // OK is enabled exactly while the list has a selected row; answers that.
    bool UpdateOk();
    void accept() override;

    // The tree (200) and the list of catalogs (201).
    CModuleTree& Tree() { return *m_tree; }
    QTreeWidget& List();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void OnTreeSelChanged(QTreeWidgetItem* item);
    void OnListDoubleClick();
    void OnTreeDoubleClick();
    void PostOk();

    CModuleTree* m_tree;
    CCatalogList* m_list;
    QPushButton* m_btnOk;
    QString m_strDatabasePath;
    QString m_strManufacturer;
    QString m_strSeries;
    QString m_strType;
    QString m_strCatalog;
    bool m_bInited = false;
};
