#pragma once

#include "CCatalogList.h"
#include "CDib.h"
#include "HelpDialog.h"
#include "HostValue.h"
#include "ModDB.h"
#include "SelectionChoices.h"

class CModuleSearch;
class CModuleTree;
class CPathLabel;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;

// The module selection: the user walks the tree to a catalog, picks a style, an
// orientation and a scale, and the dialog answers the value list of that module.
// It only reads the database.
class CMSelDlg : public HelpDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdCancel = 2,
        kIdTree = 200,
        kIdList = 201,
        kIdHelp = 203,
        kIdScale = 204,
        kIdExtra = 206,
        kIdStyleLabel = 208,
        kIdExtract = 209,
        kIdDbPath = 243,
        kIdTable = 244,
        kIdPromptReport = 247,
        kIdStyleFirst = 1117,  // styles 1 to 9: 1117 .. 1125
        kIdPreview = 1126,
        kIdVertical = 1131,
        kIdHorizontal = 1132,
    };

    explicit CMSelDlg(QWidget* parent = nullptr);
    ~CMSelDlg() override;

    // Set between construction and running the dialog.
    void SetDbPath(const QString& path);  // a null text is refused
    void SetExtraFlag(bool bExtra);
    void SetOrientation(int orientation);  // 1 "H", 2 "V"
    void SetScale(double scale);
    void SetStyle(int style);  // 1 to 9; other values leave the style as it is
    void SetLockStyle(bool bLock);
    void SetBoxGroupB(bool bGroupB);

    // The answer after OK; empty when the module could not be read.
    const HostValue& GetResult() const { return m_pResult; }
    bool HasResult() const { return m_bHasResult; }

    // Start-up: false when the dialog cannot run (no database); it then cancels.
    bool OnInitDialog();
    void OnOK();
    bool UpdateOK();
    void OnPromptReport();

    CModuleTree& Tree() { return *m_tree; }
    CModuleSearch& Search() { return *m_search; }
    QTreeWidget& List() { return *m_lstCatalogs; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void BuildControls();
    void OnTreeSelectionChanged(QTreeWidgetItem* item);
    void OnTreeDoubleClick(QTreeWidgetItem* item);
    bool SelectMatch(const ModDB::ModuleMatch& match);
    void OnListDoubleClick();
    int CheckedStyle() const;
    void ShowPreview(int style, int orientation);
    void ApplyLock();
    void PostOk();
    void SetTabOrder(QDialogButtonBox* buttons);
    QTreeWidgetItem* ChosenCatalog() const;
    void OnExtract();

    CModuleTree* m_tree;
    CModuleSearch* m_search;
    QPushButton* m_btnOK;
    QLabel* m_stcPreview;
    CCatalogList* m_lstCatalogs;
    QButtonGroup* m_styles;
    QRadioButton* m_btnVertical;
    QRadioButton* m_btnHorizontal;
    QComboBox* m_cboScale;
    QCheckBox* m_chkExtra;
    QLabel* m_stcStyleLabel;
    QPushButton* m_btnExtract;
    QPushButton* m_btnPromptReport;
    CPathLabel* m_stcDbPath;
    QLabel* m_stcTable;

    SelectionChoices m_choices;  // style, scale text and extra flag
    CDib m_preview;
    HostValue m_pResult;
    bool m_bHasResult = false;
    bool m_bLockStyle = false;
    bool m_bBoxGroupB = false;
    int m_nOrientation = 2;
    QString m_strDbPath = QStringLiteral("");
    bool m_bInited = false;
};
