#include "CABSelDlg.h"

#include "CCatalogList.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "Messages.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

CABSelDlg::CABSelDlg(QWidget* parent)
    : HelpDialog(parent, QStringLiteral("plc_settings_addblocks")),
      m_tree(new CModuleTree(this)),
      m_list(new CCatalogList(this)),
      m_btnOk(nullptr) {
    setWindowTitle(tr("Add Blocks from a Module"));
    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    m_btnOk = buttons->button(QDialogButtonBox::Ok);
    SetControlId(m_tree, kIdTree);
    SetControlId(m_list, kIdList);
    SetControlId(m_btnOk, kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);
    m_tree->setMinimumWidth(ScaledX(220));
    m_list->setMinimumWidth(ScaledX(400));

    auto* top = new QHBoxLayout;
    top->addWidget(m_tree);
    top->addWidget(m_list, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &CABSelDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CABSelDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CABSelDlg::ShowHelp);
    connect(m_tree, &CModuleTree::moduleSelectionChanged, this, &CABSelDlg::OnTreeSelChanged);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, &CABSelDlg::OnTreeDoubleClick);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &CABSelDlg::UpdateOk);
    connect(m_list, &QTreeWidget::itemChanged, this, &CABSelDlg::UpdateOk);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &CABSelDlg::OnListDoubleClick);
}

CABSelDlg::~CABSelDlg() = default;

QTreeWidget& CABSelDlg::List() {
    return *m_list;
}

bool CABSelDlg::SetPath(const QString& path) {
    if (path.isNull()) {
        return false;
    }
    m_strDatabasePath = path;
    return true;
}

void CABSelDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited && !OnInitDialog()) {
        // Cancelled from inside the start-up: leave once the dialog's loop runs.
        QTimer::singleShot(0, this, &CABSelDlg::reject);
    }
}

bool CABSelDlg::OnInitDialog() {
    m_bInited = true;
    m_tree->SetDatabasePath(m_strDatabasePath);
    const int filled = m_tree->FillTree();
    if (filled == CModuleTree::kCannotOpen) {
        Messages::Show(5003, {m_tree->GetDatabasePath()}, MsgButtons::Ok, MsgIcon::Error, 5000);
    }
    if (filled != CModuleTree::kFilled) {
        return false;
    }
    m_list->SetUpColumns();
    m_tree->RestoreMru();
    UpdateOk();
    return true;
}

bool CABSelDlg::UpdateOk() {
    const bool enable = m_list->HasSelectedRow();
    m_btnOk->setEnabled(enable);
    return enable;
}

void CABSelDlg::OnTreeSelChanged(QTreeWidgetItem* item) {
    m_list->ShowItem(*m_tree, item);
    UpdateOk();
}

void CABSelDlg::PostOk() {
    QMetaObject::invokeMethod(this, &CABSelDlg::accept, Qt::QueuedConnection);
}

void CABSelDlg::OnListDoubleClick() {
    if (UpdateOk()) {
        PostOk();
    }
}

void CABSelDlg::OnTreeDoubleClick() {
    // The tree itself expands a manufacturer, series or type; only a catalog confirms.
    if (UpdateOk() && CModuleTree::IsCatalogData(CModuleTree::ItemData(m_tree->currentItem()))) {
        PostOk();
    }
}

void CABSelDlg::accept() {
    QTreeWidgetItem* item = m_tree->currentItem();
    const quint32 data = CModuleTree::ItemData(item);
    if (!item || data == 0 || data == CModuleTree::kManufacturerData ||
        data == CModuleTree::kSeriesData) {
        return;
    }
    if (data == CModuleTree::kTypeData) {
        if (!m_list->HasSelectedRow()) {
            Messages::Show(4005);
            return;
        }
        QTreeWidgetItem* catalog = m_list->SelectedCatalogOf(item);
        if (!catalog) {
            return;
        }
        m_tree->setCurrentItem(catalog);
        item = catalog;
    }
    QString manufacturer, series, type;
    // The root has no path: it names no catalog, and the dialog stays.
    if (!m_tree->GetItemPath(manufacturer, series, type, item, false)) {
        return;
    }
    m_strManufacturer = manufacturer;
    m_strSeries = series;
    m_strType = type;
    m_strCatalog = item->text(0);
    m_tree->SaveMru();
    HelpDialog::accept();
}
