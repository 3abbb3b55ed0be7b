#include "CPickTerm.h"

#include "CBlockDescEx.h"
#include "CDib.h"
#include "CRegistryKey.h"
#include "CTermBlockSettings.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "ResourceLibrary.h"
#include "ScaleBitmapInt.h"
#include "TermChoices.h"
#include "ZelUtils.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString kRecentKey = QStringLiteral("Settings\\TermEditDlgControls");
const QString kRecentCount = QStringLiteral("RecentTermCount");
const QString kRecentEntry = QStringLiteral("Recent Terminal%1");
constexpr int kMsgBlockCaption = 10039;
constexpr int kNoSampleBitmap = 146;
constexpr int kNoSampleSize = 32;
constexpr int kLargestSize = 12000;

// The bitmap at the picture size. A bitmap that would grow on one side and shrink on
// the other is scaled in two steps, as the scaler serves only one direction at a time.
QImage FitBitmap(const QImage& image, QSize size) {
    const int w = image.width();
    const int h = image.height();
    const int newW = size.width();
    const int newH = size.height();
    if (w == newW && h == newH) {
        return image;
    }
    if ((w < newW && h > newH) || (w > newW && h < newH)) {
        return ScaleBitmapInt(ScaleBitmapInt(image, newW, h), newW, newH);
    }
    return ScaleBitmapInt(image, newW, newH);
}

void SetupPictureList(QListWidget* list) {
    list->setViewMode(QListView::IconMode);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->setWrapping(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
}

}  // namespace

CPickTerm::CPickTerm(QWidget* parent) : HelpDialog(parent, QStringLiteral("select_term_info")) {
    BuildControls();
}

CPickTerm::~CPickTerm() = default;

void CPickTerm::BuildControls() {
    setWindowTitle(tr("Terminal"));
    m_lstCategories = new QListWidget(this);
    m_stcBlockCaption = new QLabel(this);
    m_lstTerms = new QListWidget(this);
    m_lstRecent = new QListWidget(this);
    m_stcTermCaption = new QLabel(tr("Category"), this);
    m_stcRecentCaption = new QLabel(tr("Recent terminals"), this);
    m_cboShow = new QComboBox(this);
    m_stcShowCaption = new QLabel(tr("Show"), this);
    m_cboRePrompt = new QComboBox(this);
    m_stcRePromptCaption = new QLabel(tr("Re-prompt"), this);
    m_chkBreak = new QCheckBox(tr("Break"), this);
    m_edtSpacing = new QLineEdit(this);
    m_stcSpacingCaption = new QLabel(tr("Spacing"), this);
    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);

    SetControlId(m_lstCategories, kIdCategories);
    SetControlId(m_stcBlockCaption, kIdBlockCaption);
    SetControlId(m_lstTerms, kIdBlocks);
    SetControlId(m_lstRecent, kIdRecent);
    SetControlId(m_stcTermCaption, kIdTermCaption);
    SetControlId(m_stcRecentCaption, kIdRecentCaption);
    SetControlId(m_cboShow, kIdShow);
    SetControlId(m_stcShowCaption, kIdShowCaption);
    SetControlId(m_cboRePrompt, kIdRePrompt);
    SetControlId(m_stcRePromptCaption, kIdRePromptCaption);
    SetControlId(m_chkBreak, kIdBreak);
    SetControlId(m_edtSpacing, kIdSpacing);
    SetControlId(m_stcSpacingCaption, kIdSpacingCaption);
    SetControlId(buttons->button(QDialogButtonBox::Ok), kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);

    SetupPictureList(m_lstTerms);
    SetupPictureList(m_lstRecent);
    m_lstCategories->setMaximumWidth(ScaledX(150));
    m_lstTerms->setMinimumSize(ScaledX(320), ScaledY(180));
    m_lstRecent->setMinimumHeight(ScaledY(90));

    auto* left = new QVBoxLayout;
    left->addWidget(m_stcTermCaption);
    left->addWidget(m_lstCategories, 1);
    auto* right = new QVBoxLayout;
    right->addWidget(m_stcBlockCaption);
    right->addWidget(m_lstTerms, 1);
    right->addWidget(m_stcRecentCaption);
    right->addWidget(m_lstRecent);
    auto* top = new QHBoxLayout;
    top->addLayout(left);
    top->addLayout(right, 1);
    auto* values = new QGridLayout;
    values->addWidget(m_stcShowCaption, 0, 0);
    values->addWidget(m_cboShow, 0, 1);
    values->addWidget(m_stcRePromptCaption, 0, 2);
    values->addWidget(m_cboRePrompt, 0, 3);
    values->addWidget(m_chkBreak, 1, 0);
    values->addWidget(m_stcSpacingCaption, 1, 2);
    values->addWidget(m_edtSpacing, 1, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(values);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &CPickTerm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CPickTerm::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CPickTerm::ShowHelp);
    connect(m_lstTerms, &QListWidget::itemSelectionChanged, this, &CPickTerm::OnTermSelected);
    connect(m_lstRecent, &QListWidget::itemSelectionChanged, this, &CPickTerm::OnRecentSelected);
    connect(m_lstTerms, &QListWidget::itemDoubleClicked, this, &CPickTerm::accept);
    connect(m_lstRecent, &QListWidget::itemDoubleClicked, this, &CPickTerm::accept);
}

void CPickTerm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited) {
        m_bInited = true;
        OnInitDialog();
    }
}

void CPickTerm::OnInitDialog() {
    m_chkBreak->setChecked(m_bBreak == 1);
    m_edtSpacing->setText(m_strSpacing);
    ApplyDisabled();

    m_lstCategoryNames.clear();
    if (m_pBlockDesc) {
        CTermBlockSettings::GetCategories(m_pBlockDesc->GetBlockList(false), m_lstCategoryNames);
    }
    m_lstCategories->addItems(m_lstCategoryNames);
    m_lstCategories->setCurrentRow(0);
    m_cboShow->addItems(TermChoices::Lines(TermChoices::kShow));
    m_cboRePrompt->addItems(TermChoices::Lines(TermChoices::kRePrompt));
    // A filled combo box selects its first line; the members say what stands.
    m_cboShow->setCurrentIndex(m_nShow);
    m_cboRePrompt->setCurrentIndex(m_nRePrompt);

    if (!m_strInitialTerm.isEmpty() && m_pBlockDesc) {
        _termblock block;
        const int index = m_pBlockDesc->FindBlock(m_strInitialTerm, 2);
        int line = 0;
        if (index != -1 && m_pBlockDesc->GetBlockAt(index, block)) {
            line = int(std::find_if(m_lstCategoryNames.cbegin(), m_lstCategoryNames.cend(),
                                    [&block](const QString& name) {
                                        return name.compare(block.strCategory,
                                                            Qt::CaseInsensitive) == 0;
                                    }) -
                       m_lstCategoryNames.cbegin());
            line = line < m_lstCategoryNames.size() ? line : 0;
        }
        m_lstCategories->setCurrentRow(qMax(line, 0));
    }
    if (QListWidgetItem* item = m_lstCategories->currentItem()) {
        m_strCategory = item->text();
    }
    FillTermList();
    SelectInitialTerm();
    if (m_cboShow->isEnabled()) {
        m_cboShow->setCurrentIndex(m_nInitialShow);
    }
    if (m_cboRePrompt->isEnabled()) {
        m_cboRePrompt->setCurrentIndex(m_nInitialRePrompt);
    }
    FillRecentList();
    // Connected only now: the start-up's own selection of the category is no change.
    connect(m_lstCategories, &QListWidget::currentRowChanged, this, &CPickTerm::OnCategoryChanged);
}

void CPickTerm::ApplyDisabled() {
    const QList<QWidget*> termPart = {m_lstCategories,   m_stcTermCaption, m_lstTerms,
                                      m_stcBlockCaption, m_lstRecent,      m_stcRecentCaption};
    for (QWidget* control : termPart) {
        control->setEnabled(!m_bDisableTerm);
    }
    m_cboShow->setEnabled(!m_bDisableShow);
    m_stcShowCaption->setEnabled(!m_bDisableShow);
    m_cboRePrompt->setEnabled(!m_bDisableRePrompt);
    m_stcRePromptCaption->setEnabled(!m_bDisableRePrompt);
    m_chkBreak->setEnabled(!m_bDisableBreak);
    m_edtSpacing->setEnabled(!m_bDisableSpacing);
    m_stcSpacingCaption->setEnabled(!m_bDisableSpacing);
}

// The preset terminal is selected as the user would, so it counts as chosen and goes
// into the recent list.
void CPickTerm::SelectInitialTerm() {
    if (m_strInitialTerm.isEmpty()) {
        return;
    }
    m_lstTerms->clearSelection();
    int found = 0;
    for (int i = 0; i < m_lstTerms->count(); ++i) {
        if (m_lstTerms->item(i)->text().compare(m_strInitialTerm, Qt::CaseInsensitive) == 0) {
            found = i;
            break;
        }
    }
    if (QListWidgetItem* item = m_lstTerms->item(found)) {
        m_lstTerms->setCurrentItem(item);
        item->setSelected(true);
        m_lstTerms->scrollToItem(item);
    }
}

void CPickTerm::DoDataExchange() {
    if (QListWidgetItem* item = m_lstCategories->currentItem()) {
        m_strCategory = item->text();
    }
    m_nShow = m_cboShow->currentIndex();
    m_nRePrompt = m_cboRePrompt->currentIndex();
    m_bBreak = m_chkBreak->isChecked() ? 1 : 0;
    m_strSpacing = m_edtSpacing->text();
}

// No check at OK: the values are taken and the dialog closes.
void CPickTerm::accept() {
    DoDataExchange();
    QDialog::accept();
}

void CPickTerm::OnCategoryChanged() {
    DoDataExchange();
    FillTermList();
}

void CPickTerm::FillTermList() {
    m_stcBlockCaption->setText(Messages::Format(kMsgBlockCaption, {m_strCategory}));
    m_lstTerms->clear();
    if (!m_pBlockDesc) {
        return;
    }
    QStringList paths;
    QStringList descriptions;
    for (const _termblock& block : m_pBlockDesc->GetBlockList(false)) {
        if (block.strCategory.compare(m_strCategory, Qt::CaseInsensitive) == 0) {
            paths.append(SamplePath(block.strSampleFile));
            descriptions.append(block.strDescription);
        }
    }
    m_sizeTermImage = FillImages(*m_lstTerms, paths);
    for (int i = 0; i < descriptions.size(); ++i) {
        m_lstTerms->item(i)->setText(descriptions[i]);
    }
}

void CPickTerm::FillRecentList() {
    m_lstRecent->clear();
    QStringList recent;
    GetRecentTerms(recent);
    QStringList paths;
    QStringList descriptions;
    for (const QString& description : recent) {
        _termblock block;
        const int index = m_pBlockDesc ? m_pBlockDesc->FindBlock(description, 2) : -1;
        if (index != -1 && m_pBlockDesc->GetBlockAt(index, block)) {
            paths.append(SamplePath(block.strSampleFile));
            descriptions.append(block.strDescription);
        }
    }
    m_sizeRecentImage = FillImages(*m_lstRecent, paths);
    for (int i = 0; i < descriptions.size(); ++i) {
        m_lstRecent->item(i)->setText(descriptions[i]);
    }
}

QString CPickTerm::SamplePath(const QString& sampleFile) {
    if (sampleFile.isEmpty()) {
        return {};
    }
    QString name = sampleFile;
    EnsureExtension(name, QStringLiteral("bmp"));
    QString found;
    return FindSupportFile(name, found, false) ? found : QString();
}

QSize CPickTerm::FitImageSize(const QStringList& paths) {
    QSize size(kLargestSize, kLargestSize);
    bool bLoaded = false;
    for (const QString& path : paths) {
        CDib dib;
        if (path.isEmpty() || !dib.LoadBitmapFile(path)) {
            continue;
        }
        size = size.boundedTo(dib.size());
        bLoaded = true;
    }
    return bLoaded ? size : QSize(kNoSampleSize, kNoSampleSize);
}

QSize CPickTerm::FillImages(QListWidget& list, const QStringList& paths) {
    const QSize size = FitImageSize(paths);
    list.setIconSize(size);
    for (const QString& path : paths) {
        CDib dib;
        if (path.isEmpty() || !dib.LoadBitmapFile(path)) {
            dib.Load(kNoSampleBitmap);
        }
        const QImage picture = dib.IsEmpty() ? QImage() : FitBitmap(dib.image(), size);
        list.addItem(new QListWidgetItem(QIcon(QPixmap::fromImage(picture)), QString()));
    }
    return size;
}

void CPickTerm::OnTermSelected() {
    const QList<QListWidgetItem*> selected = m_lstTerms->selectedItems();
    if (selected.isEmpty() || !m_pBlockDesc) {
        return;
    }
    // By position within the category, so that two blocks of one description differ.
    const int item = m_lstTerms->row(selected.first());
    int index = 0;
    int inCategory = 0;
    for (const _termblock& block : m_pBlockDesc->GetBlockList(false)) {
        ++index;
        if (block.strCategory.compare(m_strCategory, Qt::CaseInsensitive) != 0) {
            continue;
        }
        if (inCategory++ == item) {
            m_strTermText = block.strDescription;
            m_nTermIndex = index;
            break;
        }
    }
    QStringList recent;
    GetRecentTerms(recent);
    if (!recent.contains(m_strTermText)) {
        while (recent.size() >= kMaxRecent) {
            recent.removeLast();
        }
        recent.prepend(m_strTermText);
        SaveRecentTerms(recent);
    }
    m_lstRecent->clearSelection();
}

void CPickTerm::OnRecentSelected() {
    const QList<QListWidgetItem*> selected = m_lstRecent->selectedItems();
    if (selected.isEmpty() || !m_pBlockDesc) {
        return;
    }
    m_strTermText = selected.first()->text();
    m_nTermIndex = m_pBlockDesc->FindBlock(m_strTermText, 2);
    m_lstTerms->clearSelection();
}

bool CPickTerm::GetRecentTerms(QStringList& list) {
    CRegistryKey key;
    key.SetRootToHCUK();
    if (!key.Open(kRecentKey)) {
        return false;
    }
    list.clear();
    quint32 count = 0;
    key.GetValue(kRecentCount, count);
    for (quint32 i = 1; i <= count; ++i) {
        QString description;
        if (key.GetValue(kRecentEntry.arg(i), description)) {
            list.append(description);
        }
    }
    return true;
}

// Entries past a shrunken count stay behind, unread.
void CPickTerm::SaveRecentTerms(const QStringList& list) {
    CRegistryKey key;
    key.SetRootToHCUK();
    if (!key.Open(kRecentKey) && !key.Create(kRecentKey)) {
        return;
    }
    key.SetValue(kRecentCount, quint32(list.size()));
    for (int i = 0; i < list.size(); ++i) {
        key.SetValue(kRecentEntry.arg(i + 1), list[i]);
    }
}
