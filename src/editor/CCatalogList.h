#pragma once

#include <QTreeWidget>

class CKVModule;
class CModuleTree;

// The modules a tree selection stands for, one a row: catalog, the three column texts
// and the description. The selection dialogs show it beside the module tree.
class CCatalogList : public QTreeWidget {
    Q_OBJECT

public:
    explicit CCatalogList(QWidget* parent = nullptr);

    // The five columns with their headers, at their widths scaled to the screen; the
    // short ones and the description then fit their headers.
    void SetUpColumns();
    void AddModule(const CKVModule& module);
    // Lists what item of tree stands for: the catalogs of a type, or a catalog alone and
    // selected. An item without data, and one whose module cannot be read, list nothing.
    void ShowItem(CModuleTree& tree, QTreeWidgetItem* item);
    // The child of typeItem named as the selected row, ignoring case; null when no row
    // is selected or no child has that name.
    QTreeWidgetItem* SelectedCatalogOf(QTreeWidgetItem* typeItem) const;
    bool HasSelectedRow() const;
    // Selects the row of catalog, ignoring case, as a click does; false when none has it.
    bool SelectCatalog(const QString& catalog);
};
