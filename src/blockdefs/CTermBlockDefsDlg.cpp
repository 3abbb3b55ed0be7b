#include "CTermBlockDefsDlg.h"

#include "CABSelDlg.h"
#include "CBlocksGrid.h"
#include "CModPreviewDlg.h"
#include "CTermSamp.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "ModalRunner.h"
#include "ResourceLibrary.h"
#include "StylePicture.h"
#include "ZelUtils.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QDir>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

constexpr int kStyleCount = 9;
constexpr int kMsgBlockFilter = 10032;
constexpr int kMsgSampleFilter = 10041;
constexpr int kMsgNoBlockToShow = 10042;
constexpr int kMsgNoSampleToShow = 10043;
constexpr int kCaptionNothingToShow = 10044;
constexpr int kCaptionPreview = 10046;
constexpr int kMsgCannotWrite = 10054;
constexpr int kCaptionDialog = 10055;
// The file dialog's flags: with a default name, and without one.
constexpr int kBrowseFlagsNamed = 384;
constexpr int kBrowseFlagsEmpty = 400;

const QString kBlockExtension = QStringLiteral("SHT");
const QString kSampleExtension = QStringLiteral("BMP");

QString OrientationSuffix(BlockDefsTable::Orientation orientation) {
    return orientation == BlockDefsTable::kHorizontal ? QStringLiteral("h") : QStringLiteral("v");
}

}  // namespace

CTermBlockDefsDlg::CTermBlockDefsDlg(QWidget* parent)
    : HelpDialog(parent, QStringLiteral("term_block_set")) {
    BuildControls();
}

CTermBlockDefsDlg::~CTermBlockDefsDlg() = default;

void CTermBlockDefsDlg::BuildControls() {
    setWindowTitle(LoadResString(kCaptionDialog));
    m_grid = new CBlocksGrid(this);
    SetControlId(m_grid, kIdGrid);
    m_grid->SetTable(&m_table);
    m_grid->setMinimumSize(ScaledX(520), ScaledY(260));

    m_btnBrowse = MakeButton(this, tr("Browse..."), kIdBrowse);
    QPushButton* showBlock = MakeButton(this, tr("Show Block..."), kIdShowBlock);
    QPushButton* showSample = MakeButton(this, tr("Show Sample..."), kIdShowSample);
    QPushButton* addFromModule = MakeButton(this, tr("Add From Module..."), kIdAddFromModule);

    m_styles = new QButtonGroup(this);
    QGroupBox* styleBox = StylePicture::MakeStyleButtons(this, m_styles, kIdStyleFirst);
    auto* orientationBox = new QGroupBox(tr("Orientation"), this);
    auto* orientationRow = new QHBoxLayout(orientationBox);
    m_radHorizontal = MakeRadio(orientationBox, tr("Horizontal"), kIdHorizontal);
    m_radVertical = MakeRadio(orientationBox, tr("Vertical"), kIdVertical);
    orientationRow->addWidget(m_radHorizontal);
    orientationRow->addWidget(m_radVertical);
    m_stcPicture = StylePicture::MakePictureControl(this, kIdPicture);

    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    SetControlId(buttons->button(QDialogButtonBox::Ok), kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);

    auto* cellButtons = new QHBoxLayout;
    for (QPushButton* button : {m_btnBrowse, showBlock, showSample, addFromModule}) {
        cellButtons->addWidget(button);
    }
    cellButtons->addStretch(1);
    auto* left = new QVBoxLayout;
    left->addWidget(m_grid, 1);
    left->addLayout(cellButtons);
    auto* right = new QVBoxLayout;
    right->addWidget(styleBox);
    right->addWidget(orientationBox);
    right->addWidget(m_stcPicture);
    right->addStretch(1);
    auto* top = new QHBoxLayout;
    top->addLayout(left, 1);
    top->addLayout(right);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    connect(m_grid, &CBlocksGrid::enableBrowse, m_btnBrowse, &QPushButton::setEnabled);
    connect(m_grid, &CBlocksGrid::cellDoubleClicked, this, &CTermBlockDefsDlg::OnCellDoubleClicked);
    connect(m_btnBrowse, &QPushButton::clicked, this, &CTermBlockDefsDlg::OnBrowse);
    connect(showBlock, &QPushButton::clicked, this, [this] { ShowCell(true); });
    connect(showSample, &QPushButton::clicked, this, [this] { ShowCell(false); });
    connect(addFromModule, &QPushButton::clicked, this, &CTermBlockDefsDlg::OnAddFromModule);
    connect(m_styles, &QButtonGroup::idClicked, this, &CTermBlockDefsDlg::OnStyleRadio);
    // A click on the checked button rewrites as well: the rows may have other names.
    connect(m_radHorizontal, &QRadioButton::clicked, this,
            [this] { OnOrientation(BlockDefsTable::kHorizontal); });
    connect(m_radVertical, &QRadioButton::clicked, this,
            [this] { OnOrientation(BlockDefsTable::kVertical); });
    connect(buttons, &QDialogButtonBox::accepted, this, &CTermBlockDefsDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CTermBlockDefsDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CTermBlockDefsDlg::ShowHelp);
}

void CTermBlockDefsDlg::SetDirectory(const QString& folder) {
    m_table.SetDirectory(folder);
}

void CTermBlockDefsDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited) {
        OnInitDialog();
    }
}

bool CTermBlockDefsDlg::OnInitDialog() {
    m_bInited = true;
    m_btnBrowse->setEnabled(false);
    // A list that can't be read leaves the grid empty; the user may build a new one.
    m_table.Read();
    m_grid->Initialize();
    if (m_table.RowCount() == 0) {
        // Without a row there is no cell to type the first block into.
        m_grid->AppendFreeRow();
    }
    m_grid->SetCurrentCell(1, BlockDefsTable::ColumnBlockFile);

    const QString first = m_table.Value(1, BlockDefsTable::ColumnBlockFile);
    const BlockDefsTable::Orientation orientation = BlockDefsTable::OrientationOfName(first);
    const int style = BlockDefsTable::StyleOfName(first);
    m_nStyleRadio = style - 1;
    ApplyStyle(style, orientation, false);
    (orientation == BlockDefsTable::kHorizontal ? m_radHorizontal : m_radVertical)
        ->setChecked(true);
    if (QAbstractButton* radio = m_styles->button(m_nStyleRadio)) {
        radio->setChecked(true);
    }
    return true;
}

int CTermBlockDefsDlg::CurrentStyle() const {
    const int index = m_styles->checkedId();
    return index < 0 ? 1 : index + 1;
}

BlockDefsTable::Orientation CTermBlockDefsDlg::CurrentOrientation() const {
    return m_radHorizontal->isChecked() ? BlockDefsTable::kHorizontal : BlockDefsTable::kVertical;
}

void CTermBlockDefsDlg::ApplyStyle(int style, BlockDefsTable::Orientation orientation,
                                   bool bRewrite) {
    if (style < 1 || style > kStyleCount) {
        return;
    }
    const QString suffix = OrientationSuffix(orientation);
    m_strPictureFile = StylePicture::FileName(style, suffix);
    m_picture = StylePicture::Load(style, suffix);
    m_stcPicture->setPixmap(m_picture.pixmap());
    if (!bRewrite) {
        return;
    }
    // The rewrite sees what the user is typing.
    m_grid->CommitEditor();
    if (!m_table.ApplyStyle(style, orientation).isEmpty()) {
        m_grid->TableChanged();
    }
}

void CTermBlockDefsDlg::OnStyleRadio(int index) {
    m_nStyleRadio = index;
    ApplyStyle(index + 1, CurrentOrientation(), true);
}

void CTermBlockDefsDlg::OnOrientation(BlockDefsTable::Orientation orientation) {
    ApplyStyle(CurrentStyle(), orientation, true);
}

void CTermBlockDefsDlg::OnCellDoubleClicked(int row, int /*col*/) {
    if (row != 0 && m_btnBrowse->isEnabled()) {
        OnBrowse();
    }
}

void CTermBlockDefsDlg::OnBrowse() {
    const int row = m_grid->CurrentRow();
    const int col = m_grid->CurrentCol();
    if (row >= 1 && col >= 1) {
        const bool block = col == BlockDefsTable::ColumnBlockFile;
        QString name = m_grid->GetCellValue(row, col);
        EnsureExtension(name, block ? kBlockExtension : kSampleExtension);
        QString chosen;
        if (HostGetFileNavDialog(
                QString(), name, Messages::Format(block ? kMsgBlockFilter : kMsgSampleFilter),
                name.isEmpty() ? kBrowseFlagsEmpty : kBrowseFlagsNamed, chosen) == kHostOk) {
            // The user's edit: one undo step.
            m_grid->SetCellValue(row, col, chosen);
        }
    }
    m_grid->setFocus();
}

void CTermBlockDefsDlg::ShowCell(bool bBlock) {
    const int row = m_grid->CurrentRow();
    if (row < 1) {
        return;
    }
    const int col = bBlock ? BlockDefsTable::ColumnBlockFile : BlockDefsTable::ColumnSampleFile;
    QString name = m_grid->GetCellValue(row, col).trimmed();
    if (name.isEmpty()) {
        Messages::Show(bBlock ? kMsgNoBlockToShow : kMsgNoSampleToShow, {QString::number(row)},
                       MsgButtons::Ok, MsgIcon::Information, kCaptionNothingToShow);
        return;
    }
    EnsureExtension(name, bBlock ? kBlockExtension : kSampleExtension);
    // A miss is reported by the host's Lisp side.
    QString path;
    if (bBlock ? !FindBlockFile(name, path, true) : !FindSupportFile(name, path, true)) {
        return;
    }
    if (bBlock) {
        CModPreviewDlg preview(this);
        preview.SetFile(path);
        preview.SetTitle(LoadResString(kCaptionPreview));
        ModalRunner::Run(preview);
    } else {
        CTermSamp sample(this);
        sample.SetBitmapFile(path);
        ModalRunner::Run(sample);
    }
}

void CTermBlockDefsDlg::OnAddFromModule() {
    // A missing database is reported by the host's Lisp side.
    QString database;
    if (!FindDatabaseFile(database)) {
        return;
    }
    CABSelDlg selection(this);
    selection.SetPath(database);
    const int answer = ModalRunner::Run(selection);
    // New rows wait for their category and description there.
    m_grid->setFocus();
    if (answer != kIdOk) {
        return;
    }
    const QStringList names{selection.GetManufacturer(), selection.GetSeries(), selection.GetType(),
                            selection.GetCatalog()};
    for (const QString& name : names) {
        if (name.isEmpty()) {
            return;
        }
    }
    // The merge compares with what the user is typing.
    m_grid->CommitEditor();
    const int added = m_table.MergeFromCatalog(database, names[0], names[1], names[2], names[3],
                                               CurrentOrientation());
    if (added > 0) {
        m_grid->TableChanged();
    }
}

void CTermBlockDefsDlg::accept() {
    m_grid->CommitEditor();
    int failRow = 0;
    int failCol = 0;
    if (!m_table.Validate(failRow, failCol)) {
        m_grid->SetCurrentCell(failRow, failCol);
        m_grid->setFocus();
        return;
    }
    if (!m_table.Write()) {
        Messages::Show(kMsgCannotWrite, {QDir::toNativeSeparators(m_table.Directory())},
                       MsgButtons::Ok, MsgIcon::Error, kCaptionDialog);
        return;
    }
    QDialog::accept();
}
