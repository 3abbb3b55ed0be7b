#include "CMSelDlg.h"

#include "CCatalogList.h"
#include "CModuleSearch.h"
#include "CModuleTree.h"
#include "CPathLabel.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "ResourceLibrary.h"
#include "SelectionList.h"
#include "StoreLocation.h"
#include "ZelStdioFileEx.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kStyleCount = SelectionChoices::kStyleCount;
constexpr int kPreviewWidth = 162;
constexpr int kPreviewHeight = 115;
constexpr int kNoPreviewBitmap = 201;
const char* const kPromptCountFile = "Prompt_Strings_and_Count_A.txt";
const char* const kPromptFileFile = "Prompt_Strings_File_Name.txt";

// Appends lines to a report file in the current folder.
void AppendLines(const QString& file, const QStringList& lines) {
    ZelStdioFileEx out;
    if (!out.Open(file, ZelStdioFileEx::modeWrite | ZelStdioFileEx::modeCreate |
                            ZelStdioFileEx::modeNoTruncate | ZelStdioFileEx::typeText)) {
        return;
    }
    out.SeekToEnd();
    for (const QString& line : lines) {
        out.WriteString(line);
    }
    out.Close();
}

// Tab stops at the checked button of a radio group only, as on any desktop; the arrow
// keys move within the group.
void TabStopWhenChecked(QAbstractButton* radio) {
    const auto apply = [radio](bool bChecked) {
        radio->setFocusPolicy(bChecked ? Qt::StrongFocus : Qt::ClickFocus);
    };
    apply(radio->isChecked());
    QObject::connect(radio, &QAbstractButton::toggled, radio, apply);
}

}  // namespace

CMSelDlg::CMSelDlg(QWidget* parent) : HelpDialog(parent, QStringLiteral("plc_selection")) {
    BuildControls();
}

CMSelDlg::~CMSelDlg() = default;

void CMSelDlg::BuildControls() {
    setWindowTitle(LoadResString(5000));
    m_tree = new CModuleTree(this);
    m_search = new CModuleSearch(m_tree, this);
    m_lstCatalogs = new CCatalogList(this);
    m_stcPreview = new QLabel(this);
    m_stcStyleLabel = new QLabel(tr("Style"), this);
    m_styles = new QButtonGroup(this);
    m_btnVertical = new QRadioButton(QStringLiteral("V"), this);
    m_btnHorizontal = new QRadioButton(QStringLiteral("H"), this);
    m_cboScale = new QComboBox(this);
    // Made editable at once, so that its line edit follows it in the tab chain.
    m_cboScale->setEditable(true);
    m_chkExtra = new QCheckBox(tr("Extra"), this);
    m_btnExtract = new QPushButton(tr("PLC Data..."), this);
    m_stcDbPath = new CPathLabel(this);
    m_stcTable = new QLabel(this);
    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    m_btnOK = buttons->button(QDialogButtonBox::Ok);
    m_btnPromptReport = new QPushButton(tr("Prompt Report"), this);

    SetControlId(m_tree, kIdTree);
    SetControlId(m_lstCatalogs, kIdList);
    SetControlId(m_stcPreview, kIdPreview);
    SetControlId(m_stcStyleLabel, kIdStyleLabel);
    SetControlId(m_btnVertical, kIdVertical);
    SetControlId(m_btnHorizontal, kIdHorizontal);
    SetControlId(m_cboScale, kIdScale);
    SetControlId(m_chkExtra, kIdExtra);
    SetControlId(m_btnExtract, kIdExtract);
    SetControlId(m_stcDbPath, kIdDbPath);
    SetControlId(m_stcTable, kIdTable);
    SetControlId(m_btnOK, kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);
    SetControlId(m_btnPromptReport, kIdPromptReport);

    auto* styleBox = new QGroupBox(this);
    auto* styleGrid = new QGridLayout(styleBox);
    for (int style = 1; style <= kStyleCount; ++style) {
        auto* radio = new QRadioButton(QString::number(style), styleBox);
        SetControlId(radio, kIdStyleFirst + style - 1);
        m_styles->addButton(radio, style - 1);
        TabStopWhenChecked(radio);
        styleGrid->addWidget(radio, (style - 1) / 3, (style - 1) % 3);
    }
    auto* orientBox = new QGroupBox(this);
    auto* orientLayout = new QHBoxLayout(orientBox);
    orientLayout->addWidget(m_btnVertical);
    orientLayout->addWidget(m_btnHorizontal);
    TabStopWhenChecked(m_btnVertical);
    TabStopWhenChecked(m_btnHorizontal);

    m_cboScale->addItems({QStringLiteral("0.5"), QStringLiteral("0.75"), QStringLiteral("1.0"),
                          QStringLiteral("1.5"), QStringLiteral("2.0")});
    m_stcPreview->setFixedSize(ScaledX(kPreviewWidth), ScaledY(kPreviewHeight));
    m_stcPreview->setFrameShape(QFrame::StyledPanel);
    m_tree->setMinimumWidth(ScaledX(220));

    auto* right = new QVBoxLayout;
    right->addWidget(m_lstCatalogs, 1);
    auto* choices = new QHBoxLayout;
    auto* styleColumn = new QVBoxLayout;
    styleColumn->addWidget(m_stcStyleLabel);
    styleColumn->addWidget(styleBox);
    styleColumn->addWidget(orientBox);
    choices->addLayout(styleColumn);
    choices->addWidget(m_stcPreview);
    auto* options = new QVBoxLayout;
    options->addWidget(new QLabel(tr("Scale"), this));
    options->addWidget(m_cboScale);
    options->addWidget(m_chkExtra);
    options->addWidget(m_btnExtract);
    options->addWidget(m_btnPromptReport);
    options->addStretch();
    choices->addLayout(options);
    right->addLayout(choices);
    right->addWidget(m_stcDbPath);
    right->addWidget(m_stcTable);
    auto* top = new QHBoxLayout;
    top->addWidget(m_search);
    top->addLayout(right, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &CMSelDlg::OnOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &CMSelDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CMSelDlg::ShowHelp);
    connect(m_tree, &CModuleTree::moduleSelectionChanged, this, &CMSelDlg::OnTreeSelectionChanged);
    m_search->walkTo = [this](const ModDB::ModuleMatch& match) { return SelectMatch(match); };
    // The chosen module's row has the focus, so that Return confirms it.
    connect(m_search, &CModuleSearch::moduleChosen, m_lstCatalogs, qOverload<>(&QWidget::setFocus));
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { OnTreeDoubleClick(item); });
    connect(m_lstCatalogs, &QTreeWidget::itemSelectionChanged, this, &CMSelDlg::UpdateOK);
    connect(m_lstCatalogs, &QTreeWidget::itemDoubleClicked, this, &CMSelDlg::OnListDoubleClick);
    connect(m_cboScale, &QComboBox::editTextChanged, this, &CMSelDlg::UpdateOK);
    connect(m_styles, &QButtonGroup::idClicked, this,
            [this](int index) { ShowPreview(index + 1, m_btnHorizontal->isChecked() ? 1 : 2); });
    connect(m_btnVertical, &QRadioButton::clicked, this,
            [this] { ShowPreview(CheckedStyle(), 2); });
    connect(m_btnHorizontal, &QRadioButton::clicked, this,
            [this] { ShowPreview(CheckedStyle(), 1); });
    connect(m_btnExtract, &QPushButton::clicked, this, &CMSelDlg::OnExtract);
    connect(m_btnPromptReport, &QPushButton::clicked, this, &CMSelDlg::OnPromptReport);
    SetTabOrder(buttons);
}

void CMSelDlg::SetTabOrder(QDialogButtonBox* buttons) {
    // Tab walks the dialog as it reads: search, tree (or the matches standing in for
    // it), list, styles, orientation, scale, extra, then the buttons from the top and, in
    // the bottom row, from the left.
    QList<QWidget*> order = {&m_search->Field(), &m_search->Matches(), m_tree, m_lstCatalogs};
    for (QAbstractButton* style : m_styles->buttons()) {
        order << style;
    }
    order << m_btnVertical << m_btnHorizontal << m_cboScale << m_chkExtra << m_btnExtract
          << m_btnPromptReport;
    // The button box places its buttons by the platform's habit, not in the order made.
    QList<QAbstractButton*> row = buttons->buttons();
    std::sort(row.begin(), row.end(), [buttons](QAbstractButton* a, QAbstractButton* b) {
        return buttons->layout()->indexOf(a) < buttons->layout()->indexOf(b);
    });
    for (QAbstractButton* button : row) {
        order << button;
    }
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
    }
}

void CMSelDlg::SetDbPath(const QString& path) {
    if (!path.isNull()) {
        m_strDbPath = path;
    }
}

void CMSelDlg::SetExtraFlag(bool bExtra) {
    m_choices.SetExtra(bExtra);
}
void CMSelDlg::SetOrientation(int orientation) {
    m_nOrientation = orientation;
}

void CMSelDlg::SetScale(double scale) {
    m_choices.SetScale(scale);
}

void CMSelDlg::SetStyle(int style) {
    m_choices.SetStyle(style);
}

void CMSelDlg::SetLockStyle(bool bLock) {
    m_bLockStyle = bLock;
}
void CMSelDlg::SetBoxGroupB(bool bGroupB) {
    m_bBoxGroupB = bGroupB;
}

void CMSelDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited && !OnInitDialog()) {
        // Cancelled from inside the start-up: leave once the dialog's loop runs.
        QTimer::singleShot(0, this, &CMSelDlg::reject);
    }
}

bool CMSelDlg::OnInitDialog() {
    m_bInited = true;
    if (QAbstractButton* style = m_styles->button(m_choices.Style() - 1)) {
        style->setChecked(true);
    }
    m_cboScale->setEditText(m_choices.ScaleText());
    m_chkExtra->setChecked(m_choices.HasExtra());

    QString defaultPath;
    FindDatabaseFile(defaultPath);
    m_tree->SetDatabasePath(m_strDbPath);
    const int filled = m_tree->FillTree();
    if (filled == CModuleTree::kCannotOpen) {
        Messages::Show(5003, {StoreLocation::Shown(defaultPath)}, MsgButtons::Ok, MsgIcon::Error,
                       5000);
    }
    if (filled != CModuleTree::kFilled) {
        return false;
    }
    m_stcDbPath->SetPath(m_strDbPath.isEmpty() ? defaultPath : m_strDbPath);

    m_lstCatalogs->SetUpColumns();
    m_tree->RestoreMru();
    (m_nOrientation == 2 ? m_btnVertical : m_btnHorizontal)->setChecked(true);
    ShowPreview(CheckedStyle(), m_nOrientation);
    ApplyLock();
    UpdateOK();
    return true;
}

void CMSelDlg::ApplyLock() {
    if (!m_bLockStyle) {
        return;
    }
    m_stcStyleLabel->setEnabled(false);
    m_stcPreview->setEnabled(false);
    for (QAbstractButton* button : m_styles->buttons()) {
        button->setEnabled(false);
    }
    m_btnVertical->setEnabled(false);
    m_btnHorizontal->setEnabled(false);
}

int CMSelDlg::CheckedStyle() const {
    const int index = m_styles->checkedId();
    return index >= 0 ? index + 1 : 1;
}

void CMSelDlg::ShowPreview(int style, int orientation) {
    if (style < 1 || style > kStyleCount) {
        return;
    }
    const QString suffix = orientation == 1   ? QStringLiteral("h")
                           : orientation == 2 ? QStringLiteral("v")
                                              : QString();
    QString file = QStringLiteral("style%1%2.bmp").arg(style).arg(suffix);
    QString found;
    if (HostFindFile(file, found) == kHostOk) {
        file = found;
    }
    m_preview = CDib();
    if (!m_preview.LoadFile(file, QSize(ScaledX(kPreviewWidth), ScaledY(kPreviewHeight)))) {
        m_preview.Load(kNoPreviewBitmap);
    }
    m_stcPreview->setPixmap(m_preview.pixmap());
}

bool CMSelDlg::UpdateOK() {
    const bool enable = m_lstCatalogs->HasSelectedRow() && !m_cboScale->currentText().isEmpty();
    m_btnOK->setEnabled(enable);
    return enable;
}

void CMSelDlg::OnTreeSelectionChanged(QTreeWidgetItem* item) {
    m_lstCatalogs->ShowItem(*m_tree, item);
    if (CModuleTree::ItemData(item) == 0) {
        m_stcTable->clear();
        UpdateOK();
        return;
    }
    QString table;
    if (m_tree->GetTableOfItem(table)) {
        m_stcTable->setText(Messages::Format(4020, {table}));
    }
    UpdateOK();
}

bool CMSelDlg::SelectMatch(const ModDB::ModuleMatch& match) {
    // As a user walks there: the type in the tree, then the module's row in its list.
    QTreeWidgetItem* catalog =
        m_tree->FindItem(match.Manufacturer, match.Series, match.Type, match.Catalog);
    if (!catalog) {
        return false;
    }
    QTreeWidgetItem* type = catalog->parent();
    m_tree->setCurrentItem(type);
    return m_tree->currentItem() == type && m_lstCatalogs->SelectCatalog(catalog->text(0));
}

void CMSelDlg::PostOk() {
    QMetaObject::invokeMethod(this, &CMSelDlg::OnOK, Qt::QueuedConnection);
}

void CMSelDlg::OnListDoubleClick() {
    if (UpdateOK()) {
        PostOk();
    }
}

void CMSelDlg::OnTreeDoubleClick(QTreeWidgetItem* item) {
    // Double clicks on a manufacturer, series or type never confirm.
    if (CModuleTree::IsCatalogData(CModuleTree::ItemData(item)) && UpdateOK()) {
        PostOk();
    }
}

void CMSelDlg::OnOK() {
    m_choices.SetStyle(CheckedStyle());
    m_choices.SetScaleText(m_cboScale->currentText());
    m_choices.SetExtra(m_chkExtra->isChecked());
    m_choices.SetHorizontal(m_btnHorizontal->isChecked());
    QTreeWidgetItem* item = m_tree->currentItem();
    if (!item) {
        return;
    }
    const quint32 data = CModuleTree::ItemData(item);
    if (data == 0 || data == CModuleTree::kRootData || data == CModuleTree::kManufacturerData ||
        data == CModuleTree::kSeriesData) {
        return;
    }
    if (data == CModuleTree::kTypeData) {
        if (!m_lstCatalogs->HasSelectedRow()) {
            Messages::Show(4005);
            return;
        }
        QTreeWidgetItem* match = m_lstCatalogs->SelectedCatalogOf(item);
        if (!match) {
            return;
        }
        m_tree->setCurrentItem(match);
    }
    m_pResult.clear();
    m_bHasResult = m_tree->BuildSelectionList(m_choices.Style(), m_bBoxGroupB, m_pResult);
    if (m_bHasResult) {
        m_choices.AppendTo(m_pResult);
    }
    m_tree->SaveMru();
    accept();
}

QTreeWidgetItem* CMSelDlg::ChosenCatalog() const {
    QTreeWidgetItem* item = m_tree->currentItem();
    const quint32 data = CModuleTree::ItemData(item);
    if (data == CModuleTree::kTypeData) {
        return m_lstCatalogs->SelectedCatalogOf(item);
    }
    return CModuleTree::IsCatalogData(data) ? item : nullptr;
}

void CMSelDlg::OnExtract() {
    HostValue call;
    call.string(QStringLiteral("kv_plca_plc_xtr")).shortInt(1);
    HostInvoke(call, nullptr);
    // What the drawing program extracts lies in its Lisp; here the user sees the data of
    // the module the dialog would answer with.
    CKVModule module;
    if (!m_tree->GetModuleOfItem(module, ChosenCatalog(), false)) {
        Messages::ShowText(tr("Choose a module in the list first."), tr("PLC Data"));
    } else {
        QString manufacturer, series, type;
        m_tree->GetItemPath(manufacturer, series, type, ChosenCatalog(), false);
        Messages::ShowText(
            tr("Catalog: %1\nManufacturer: %2\nSeries: %3\nType: %4\n"
               "Description: %5\nColumns: %6 | %7 | %8\nAddress base: %9\n"
               "Terminal rows: %10")
                .arg(module.GetCatalog(), manufacturer, series, type, module.GetDescription(),
                     module.GetColText1(), module.GetColText2(), module.GetColText3(),
                     module.GetAddrBase(), QString::number(module.GetTermCount())),
            tr("PLC Data"), MsgButtons::Ok, MsgIcon::Information);
    }
    m_btnExtract->setFocus();
}

void CMSelDlg::OnPromptReport() {
    QTreeWidgetItem* root = m_tree->topLevelItemCount() ? m_tree->topLevelItem(0) : nullptr;
    if (!root || root->childCount() == 0) {
        return;
    }
    QStringList prompts, files, filePrompts;
    QList<int> counts;
    for (int m = 0; m < root->childCount(); ++m) {
        QTreeWidgetItem* manufacturer = root->child(m);
        Messages::ShowText(QStringLiteral("Processing Prompt Strings for: ") +
                           manufacturer->text(0));
        for (int s = 0; s < manufacturer->childCount(); ++s) {
            QTreeWidgetItem* series = manufacturer->child(s);
            for (int t = 0; t < series->childCount(); ++t) {
                QTreeWidgetItem* type = series->child(t);
                m_tree->ExpandType(type);
                for (int c = 0; c < type->childCount(); ++c) {
                    CKVModule module;
                    if (m_tree->GetModuleOfItem(module, type->child(c), false)) {
                        m_tree->Database().CollectPrompts(module, prompts, counts, files,
                                                          filePrompts, module.GetTableName());
                    }
                }
            }
        }
    }
    QStringList countLines, fileLines;
    for (int i = 0; i < prompts.size(); ++i) {
        countLines << QStringLiteral("%1\t%2\n").arg(prompts[i]).arg(counts.value(i));
    }
    for (int i = 0; i < files.size(); ++i) {
        fileLines << QStringLiteral("%1\t%2\n").arg(files[i], filePrompts.value(i));
    }
    AppendLines(QString::fromLatin1(kPromptCountFile), countLines);
    AppendLines(QString::fromLatin1(kPromptFileFile), fileLines);
    Messages::ShowText(QStringLiteral("Generated List of Prompt Strings saved at: ") +
                       QString::fromLatin1(kPromptCountFile));
}
