#pragma once

#include "CBlockDescEx.h"
#include "CKVModuleDB.h"
#include "TermRowChange.h"

#include <QDialog>

class CAttribGridWnd;
class CModuleSearch;
class CModuleTree;
class CTermGridWnd;
class CPathLabel;
class QLabel;
class QPushButton;
class QTreeWidgetItem;

// The database editor: the module tree in edit mode on the left, the terminal rows of
// the module selected in it on the right. It holds at most one module open in its own
// store object and writes it back only on Save or when the user says so on leaving it.
// Every way out ends with OK, so the caller reads GetInsertRequested afterwards.
class CMEditDlg : public QDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdTree = 200,
        kIdHelp = 203,
        kIdBlockDefs = 209,
        kIdTermGrid = 210,
        kIdAttribGrid = 211,
        kIdInsert = 212,
        kIdDone = 213,
        kIdNewModule = 214,
        kIdEditSpecs = 215,
        kIdStyleBox = 216,
        kIdSave = 217,
        kIdDbPath = 243,
        kIdTable = 244,
    };

    explicit CMEditDlg(QWidget* parent = nullptr);
    ~CMEditDlg() override;

    // Set before the dialog runs; empty: the host's "ZEL_PLC.MDB". A null text is refused.
    void SetDbPath(const QString& path);
    bool GetInsertRequested() const { return m_bInsert; }
    // The open module, for the grids; null when none is loaded.
    CKVModule* GetCurrentModule();

    // Start-up: false when the dialog cannot run (no database); it then cancels.
    bool OnInitDialog();
    // Return and the cancel key: during a label edit they end it, else they close.
    void accept() override;
    void reject() override;
    void OnDone();
    void OnInsert();
    bool OnSave();
    // Asks message 4012 when something is unsaved; false when the user cancels.
    bool PromptToSave(bool bCanCancel);
    void UpdateSaveButton();
    // The open module's spec data was changed (its dialog's OK).
    void MarkSpecChanged();
    // Makes a module with the names of the tree's new item, or of the selection, and
    // selects it in the tree.
    void OnNewModule();
    // The open module's data in its dialog; OK marks it changed.
    void OnEditSpecs();
    // The terminal block definitions of the editor's block folder; on OK a changed list
    // is read again, after the user was asked to save and no module stays loaded.
    void OnBlockDefs();

    // The terminal grid's row change and the flush before a save: the attribute grid
    // stores what it shows into the row left and shows the new row.
    void OnRowChange(int blockIndex, const _rowchange* change);

    CModuleTree& Tree() { return *m_tree; }
    CModuleSearch& Search() { return *m_search; }
    CTermGridWnd& TermGrid() { return *m_termGrid; }
    CAttribGridWnd& AttribGrid() { return *m_attribGrid; }
    bool IsModuleLoaded() const { return m_bModuleLoaded; }
    bool IsRowsDirty() const { return m_bRowsDirty; }
    bool IsSpecDirty() const { return m_bSpecDirty; }
    // The open module is another program's, or no lock could be had: it is shown, not
    // changed, and never saved.
    bool IsModuleReadOnly() const { return m_bModuleReadOnly; }

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void BuildControls();
    void ReadBlockList();
    bool OnSelChanging(QTreeWidgetItem* item);
    void OnSelChanged(QTreeWidgetItem* item);
    int OnPasteApproval(bool bMove);
    void OnCatalogRenamed();
    void OnSelectionDeleting();
    void OnStyleBox();
    bool IsAnythingUnsaved() const;
    void ClearFlags();
    void ClearGridFlags();
    void ShowHelp();
    // Takes the edit lock of the module just loaded; when another program holds it or no
    // lock can be had, says so and shows the module read-only.
    void LockLoadedModule(const QString& table, const QString& catalog);
    void UnlockModule();
    void SetModuleReadOnly(bool readOnly);

    CModuleTree* m_tree;
    CModuleSearch* m_search;
    CTermGridWnd* m_termGrid;
    CAttribGridWnd* m_attribGrid;
    QPushButton* m_btnInsert;
    QPushButton* m_btnDone;
    QPushButton* m_btnNewModule;
    QPushButton* m_btnEditSpecs;
    QPushButton* m_btnStyleBox;
    QPushButton* m_btnSave;
    QPushButton* m_btnBlockDefs;
    QPushButton* m_btnHelp;
    CPathLabel* m_stcDbPath;
    QLabel* m_stcTable;

    QString m_strDbPath = QStringLiteral("");
    CBlockDescEx m_blockDesc;
    QString m_strBlockDir = QStringLiteral("");
    bool m_bInsert = false;
    CKVModuleDB m_db;
    bool m_bModuleLoaded = false;
    int m_nHandle = -1;
    bool m_bRowsDirty = false;
    bool m_bSpecDirty = false;
    QTreeWidgetItem* m_hNewItem = nullptr;
    // The module whose lock the dialog holds; empty when none.
    QString m_strLockedTable;
    QString m_strLockedCatalog;
    bool m_bModuleReadOnly = false;
    // A failure to lock is told once; a module of another is told each time it opens.
    bool m_bLockFailureTold = false;
    bool m_bInited = false;
};
