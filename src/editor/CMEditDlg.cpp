#include "CMEditDlg.h"

#include "AttribGridModel.h"
#include "BlockSettingsFolder.h"
#include "CAttribGridWnd.h"
#include "CModEditSpecsDlg.h"
#include "CModNewDlg.h"
#include "CModuleSearch.h"
#include "CModuleTree.h"
#include "CPathLabel.h"
#include "CStyleBoxDlg.h"
#include "CTermBlockDefsDlg.h"
#include "CTermGridWnd.h"
#include "CrtNumbers.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "MigrationQuestion.h"
#include "ModalRunner.h"
#include "ResourceLibrary.h"
#include "StoreLocation.h"
#include "ZelDbMigrate.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int kCaption = 5000;
constexpr int kMsgLockedByOther = 4037;
constexpr int kMsgCannotLock = 4038;

}  // namespace

CMEditDlg::CMEditDlg(QWidget* parent) : QDialog(parent) {
    BuildControls();
}

CMEditDlg::~CMEditDlg() {
    UnlockModule();
    if (m_db.IsOpen()) {
        m_db.Close();
    }
}

void CMEditDlg::BuildControls() {
    setWindowTitle(LoadResString(kCaption));
    m_tree = new CModuleTree(this);
    SetControlId(m_tree, kIdTree);
    m_tree->setMinimumWidth(ScaledX(220));
    // A chosen match is selected in the tree as a click selects it, question included.
    m_search = new CModuleSearch(m_tree, this);
    m_stcDbPath = new CPathLabel(this);
    SetControlId(m_stcDbPath, kIdDbPath);
    m_stcTable = new QLabel(this);
    SetControlId(m_stcTable, kIdTable);
    m_termGrid = new CTermGridWnd(this);
    SetControlId(m_termGrid, kIdTermGrid);
    m_attribGrid = new CAttribGridWnd(this);
    SetControlId(m_attribGrid, kIdAttribGrid);
    // The grids reach the open module on each use; it changes with the selection.
    const auto module = [this] { return GetCurrentModule(); };
    m_termGrid->SetModuleSource(module);
    m_attribGrid->SetModuleSource(module);

    m_btnInsert = MakeButton(this, tr("Insert"), kIdInsert);
    m_btnDone = MakeButton(this, tr("Done"), kIdDone);
    m_btnNewModule = MakeButton(this, tr("New Module..."), kIdNewModule);
    m_btnEditSpecs = MakeButton(this, tr("Edit Specs..."), kIdEditSpecs);
    m_btnStyleBox = MakeButton(this, tr("Style Box..."), kIdStyleBox);
    m_btnSave = MakeButton(this, tr("Save"), kIdSave);
    m_btnBlockDefs = MakeButton(this, tr("Block Definitions..."), kIdBlockDefs);
    m_btnHelp = MakeButton(this, tr("Help"), kIdHelp);

    auto* right = new QVBoxLayout;
    right->addWidget(m_stcTable);
    right->addWidget(m_termGrid, 3);
    right->addWidget(m_attribGrid, 1);
    right->addWidget(m_stcDbPath);
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {m_btnInsert, m_btnDone, m_btnSave, m_btnNewModule, m_btnEditSpecs,
                                m_btnStyleBox, m_btnBlockDefs, m_btnHelp}) {
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_search);
    layout->addLayout(right, 1);
    layout->addLayout(buttons);

    connect(m_btnInsert, &QPushButton::clicked, this, &CMEditDlg::OnInsert);
    connect(m_btnDone, &QPushButton::clicked, this, &CMEditDlg::OnDone);
    connect(m_btnSave, &QPushButton::clicked, this, [this] { OnSave(); });
    connect(m_btnStyleBox, &QPushButton::clicked, this, &CMEditDlg::OnStyleBox);
    connect(m_btnBlockDefs, &QPushButton::clicked, this, &CMEditDlg::OnBlockDefs);
    connect(m_btnHelp, &QPushButton::clicked, this, &CMEditDlg::ShowHelp);
    connect(m_btnNewModule, &QPushButton::clicked, this, &CMEditDlg::OnNewModule);
    connect(m_btnEditSpecs, &QPushButton::clicked, this, &CMEditDlg::OnEditSpecs);
    connect(m_termGrid, &CTermGridWnd::termRowChange, this,
            [this](int blockIndex, const _rowchange& change) { OnRowChange(blockIndex, &change); });
    connect(m_termGrid, &CTermGridWnd::modifiedFlagChanged, this, &CMEditDlg::UpdateSaveButton);
    connect(m_attribGrid, &CAttribGridWnd::modifiedFlagChanged, this, &CMEditDlg::UpdateSaveButton);
    m_tree->selectionChanging = [this](QTreeWidgetItem* item) { return OnSelChanging(item); };
    m_tree->pasteApproval = [this](bool bMove) { return OnPasteApproval(bMove); };
    connect(m_tree, &CModuleTree::moduleSelectionChanged, this, &CMEditDlg::OnSelChanged);
    connect(m_tree, &CModuleTree::catalogRenamed, this, &CMEditDlg::OnCatalogRenamed);
    connect(m_tree, &CModuleTree::selectionDeleting, this, &CMEditDlg::OnSelectionDeleting);
    // New on a type or catalog opens the new-module dialog with that item's names.
    connect(m_tree, &CModuleTree::newModuleRequested, this, [this](QTreeWidgetItem* item) {
        m_hNewItem = item;
        OnNewModule();
    });
}

void CMEditDlg::SetDbPath(const QString& path) {
    if (!path.isNull()) {
        m_strDbPath = path;
    }
}

CKVModule* CMEditDlg::GetCurrentModule() {
    bool found = false;
    CKVModule& module = m_db.GetModule(m_nHandle, &found);
    return found ? &module : nullptr;
}

void CMEditDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited && !OnInitDialog()) {
        // Cancelled from inside the start-up: leave once the dialog's loop runs. Only
        // this way out ends without OK.
        QTimer::singleShot(0, this, [this] { QDialog::reject(); });
    }
}

bool CMEditDlg::OnInitDialog() {
    m_bInited = true;
    if (m_strDbPath.isEmpty()) {
        // A miss is reported by the host's Lisp side.
        FindDatabaseFile(m_strDbPath);
    }
    if (m_strDbPath.isEmpty()) {
        return false;
    }
    m_btnEditSpecs->setEnabled(false);
    m_stcDbPath->SetPath(m_strDbPath);

    m_tree->SetDatabasePath(m_strDbPath);
    m_tree->SetEditMode(true);
    const int filled = m_tree->FillTree();
    if (filled == CModuleTree::kCannotOpen) {
        Messages::Show(5003, {StoreLocation::Shown(m_strDbPath)}, MsgButtons::Ok, MsgIcon::Error,
                       kCaption);
    }
    if (filled != CModuleTree::kFilled) {
        return false;
    }
    ReadBlockList();
    m_tree->RestoreMru();
    m_bInsert = false;
    m_btnSave->setEnabled(false);
    return true;
}

void CMEditDlg::ReadBlockList() {
    m_strBlockDir = BlockSettingsFolder::Find(true);
    m_blockDesc.SetDirectory(m_strBlockDir);
    m_blockDesc.GetBlockList(false);
    m_termGrid->SetBlockDesc(&m_blockDesc);
    m_termGrid->Initialize();
    m_attribGrid->Initialize();
}

void CMEditDlg::accept() {
    if (m_tree->IsEditingLabel()) {
        m_tree->EndLabelEdit();
        return;
    }
    OnDone();
}

void CMEditDlg::reject() {
    if (m_tree->IsEditingLabel()) {
        m_tree->CancelLabelEdit();
        return;
    }
    OnDone();
}

void CMEditDlg::OnDone() {
    if (!PromptToSave(true)) {
        return;
    }
    m_tree->SaveMru();
    UnlockModule();
    QDialog::accept();
}

void CMEditDlg::OnInsert() {
    // Stays set when the user stays, so that a later close inserts.
    m_bInsert = true;
    OnDone();
}

bool CMEditDlg::IsAnythingUnsaved() const {
    return m_bRowsDirty || m_bSpecDirty || m_attribGrid->IsModified() || m_termGrid->IsModified();
}

void CMEditDlg::UpdateSaveButton() {
    m_btnSave->setEnabled(!m_bModuleReadOnly && IsAnythingUnsaved());
}

void CMEditDlg::MarkSpecChanged() {
    if (m_bModuleReadOnly) {
        return;
    }
    m_bSpecDirty = true;
    UpdateSaveButton();
}

void CMEditDlg::ClearGridFlags() {
    // Each clear tells the dialog, posted, which refreshes the Save button.
    m_termGrid->SetModifiedFlag(0);
    m_attribGrid->SetModifiedFlag(0);
}

void CMEditDlg::ClearFlags() {
    m_bRowsDirty = false;
    m_bSpecDirty = false;
    ClearGridFlags();
}

bool CMEditDlg::PromptToSave(bool bCanCancel) {
    if (!IsAnythingUnsaved()) {
        return true;
    }
    const int answer =
        Messages::Show(4012, {}, bCanCancel ? MsgButtons::YesNoCancel : MsgButtons::YesNo,
                       MsgIcon::Question, kCaption);
    if (answer == kIdCancel) {
        return false;
    }
    if (answer == kIdYes) {
        OnSave();
    }
    if (!bCanCancel) {
        ClearFlags();
    }
    return true;
}

bool CMEditDlg::OnSave() {
    if (m_bModuleReadOnly) {
        return false;
    }
    // The attribute grid stores what it shows before the module is written.
    const int row = m_termGrid->CurrentRow();
    const int blockIndex =
        int(crt::wtol(m_termGrid->GetCellValue(row, CTermGridWnd::ColumnTerminal)));
    const _rowchange change{row, row, true};
    OnRowChange(blockIndex, &change);
    const bool saved = m_db.SaveModule(m_nHandle);
    if (saved) {
        ClearFlags();
    }
    UpdateSaveButton();
    return saved;
}

bool CMEditDlg::OnSelChanging(QTreeWidgetItem* item) {
    if (!PromptToSave(true)) {
        return false;
    }
    m_attribGrid->SetModifiedFlag(0);
    m_bRowsDirty = false;
    QString table;
    if (!m_tree->GetTableOfItem(table, item)) {
        return true;
    }
    if (!TableNeedsMigration(m_strDbPath, table)) {
        return true;
    }
    return AskToMigrate(m_strDbPath);
}

void CMEditDlg::OnSelChanged(QTreeWidgetItem* item) {
    SetModuleReadOnly(false);
    if (CModuleTree::ItemData(item) == 0) {
        // A new item that has no name yet.
        m_bModuleLoaded = false;
    } else {
        if (m_nHandle != -1) {
            UnlockModule();
            m_db.ReleaseModule(m_nHandle);
            m_nHandle = -1;
        }
        m_bModuleLoaded = false;
        QString table, text;
        if (m_tree->GetSelectedTable(table, text) && (m_db.IsOpen() || m_db.Open(m_strDbPath))) {
            // At type level the text is the type's name, and nothing is found.
            m_nHandle = m_db.LoadModule(table, text, false);
            m_bModuleLoaded = m_nHandle != -1;
        }
        if (m_bModuleLoaded) {
            LockLoadedModule(table, text);
        }
    }
    m_termGrid->LoadModule(m_bModuleLoaded ? m_nHandle : -1);
    QString table;
    m_stcTable->setText(m_tree->GetTableOfItem(table) ? Messages::Format(4020, {table})
                                                      : QString());
    m_btnEditSpecs->setEnabled(m_bModuleLoaded);
    ClearFlags();
    UpdateSaveButton();
}

int CMEditDlg::OnPasteApproval(bool bMove) {
    if (!PromptToSave(true)) {
        return 0;
    }
    if (bMove) {
        // The move selects the pasted module; what stood unsaved is given up.
        ClearFlags();
        UpdateSaveButton();
    }
    return 1;
}

void CMEditDlg::OnNewModule() {
    QString manufacturer, series, type;
    // A manufacturer or series alone gives the names it has.
    m_tree->GetItemPath(manufacturer, series, type, m_hNewItem, true);
    m_hNewItem = nullptr;
    CModNewDlg dialog(this);
    dialog.SetDbPath(m_strDbPath);
    dialog.SetManufacturer(manufacturer);
    dialog.SetSeries(series);
    dialog.SetType(type);
    if (ModalRunner::Run(dialog) != kIdOk) {
        return;
    }
    if (m_tree->AddModuleItem(dialog.GetManufacturer(), dialog.GetSeries(), dialog.GetType(),
                              dialog.GetCatalog())) {
        m_tree->SelectModule(dialog.GetManufacturer(), dialog.GetSeries(), dialog.GetType(),
                             dialog.GetCatalog());
    }
}

void CMEditDlg::OnEditSpecs() {
    CKVModule* module = GetCurrentModule();
    if (!module) {
        return;
    }
    QString manufacturer, series, type;
    if (m_tree->GetItemPath(manufacturer, series, type)) {
        // A read-only module is shown through a copy, which takes what OK writes.
        CKVModule shown;
        if (m_bModuleReadOnly) {
            shown = *module;
        }
        CModEditSpecsDlg dialog(m_bModuleReadOnly ? &shown : module, this);
        dialog.SetDbPath(m_strDbPath);
        dialog.SetManufacturer(manufacturer);
        dialog.SetSeries(series);
        dialog.SetType(type);
        if (ModalRunner::Run(dialog) == kIdOk) {
            MarkSpecChanged();
        }
    }
    UpdateSaveButton();
}

void CMEditDlg::OnCatalogRenamed() {
    QString table, text;
    if (!m_tree->GetSelectedTable(table, text)) {
        return;
    }
    if (CKVModule* module = GetCurrentModule()) {
        module->SetCatalog(text);
        // The lock goes with the module to its new code.
        if (!m_strLockedCatalog.isEmpty()) {
            UnlockModule();
            LockLoadedModule(table, text);
        }
    }
}

void CMEditDlg::LockLoadedModule(const QString& table, const QString& catalog) {
    bool granted = false;
    ModDB::ModuleLock holder;
    if (!m_db.LockModule(table, catalog, granted, holder)) {
        if (!m_bLockFailureTold) {
            m_bLockFailureTold = true;
            Messages::Show(kMsgCannotLock, {m_db.GetLastFailure()}, MsgButtons::Ok,
                           MsgIcon::Information, kCaption);
        }
    } else if (!granted) {
        Messages::Show(kMsgLockedByOther, {holder.holder, holder.LocalSince()}, MsgButtons::Ok,
                       MsgIcon::Information, kCaption);
    } else {
        m_strLockedTable = table;
        m_strLockedCatalog = catalog;
    }
    SetModuleReadOnly(!granted);
}

void CMEditDlg::UnlockModule() {
    if (!m_strLockedCatalog.isEmpty()) {
        m_db.UnlockModule(m_strLockedTable, m_strLockedCatalog);
    }
    m_strLockedTable.clear();
    m_strLockedCatalog.clear();
}

void CMEditDlg::SetModuleReadOnly(bool readOnly) {
    m_bModuleReadOnly = readOnly;
    m_termGrid->Model()->SetAllReadOnly(readOnly);
    m_attribGrid->Model()->SetAllReadOnly(readOnly);
}

void CMEditDlg::OnSelectionDeleting() {
    // The rows go with the module; a changed spec data is still asked about.
    m_bRowsDirty = false;
    ClearGridFlags();
}

void CMEditDlg::OnRowChange(int blockIndex, const _rowchange* change) {
    if (!change) {
        return;
    }
    m_attribGrid->SetBlockDesc(&m_blockDesc);
    if (m_bModuleLoaded) {
        m_attribGrid->SetModuleHandle(m_nHandle);
        // Moved into the dialog's flag before the grid stores the values and forgets
        // them, so that they still count as unsaved.
        if (m_attribGrid->IsModified()) {
            m_bRowsDirty = true;
            m_attribGrid->SetModifiedFlag(0);
        }
    } else {
        m_attribGrid->SetModuleHandle(-1);
        m_attribGrid->SetSkipSave(true);
    }
    m_attribGrid->OnTermRowChange(blockIndex, change);
    UpdateSaveButton();
}

void CMEditDlg::OnStyleBox() {
    CStyleBoxDlg dialog(this);
    // The style rows of the database shown here, not of whatever the host would find.
    dialog.SetDbPath(m_strDbPath);
    ModalRunner::Run(dialog);
}

void CMEditDlg::OnBlockDefs() {
    CTermBlockDefsDlg dialog(this);
    dialog.SetDirectory(m_strBlockDir);
    if (ModalRunner::Run(dialog) != kIdOk) {
        return;
    }
    CBlockDescEx fresh;
    fresh.SetDirectory(m_strBlockDir);
    fresh.GetBlockList(true);
    if (fresh.SameBlocks(m_blockDesc)) {
        return;
    }
    if (m_btnSave->isEnabled()) {
        PromptToSave(false);
    }
    // No module stays loaded over a changed list: its rows name blocks by position.
    QTreeWidgetItem* selected = m_tree->SelectedItem();
    if (selected && selected->parent() &&
        CModuleTree::IsCatalogData(CModuleTree::ItemData(selected))) {
        m_tree->setCurrentItem(selected->parent());
    }
    m_blockDesc.GetBlockList(true);
    // The terminal column's drop list and lookups follow the new list.
    m_termGrid->SetBlockDesc(&m_blockDesc);
}

void CMEditDlg::ShowHelp() {
    HostHelp(QString(), QStringLiteral("plc_dbeditor"), 0);
}

void CMEditDlg::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_F1:
            ShowHelp();
            event->accept();
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            accept();
            event->accept();
            return;
        default:
            QDialog::keyPressEvent(event);
    }
}
