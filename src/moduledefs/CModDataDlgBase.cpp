#include "CModDataDlgBase.h"

#include "CModBoxInfoDlg.h"
#include "CPromptDlg.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "ModalRunner.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

// The file question of the two drawing references: an existing file to open.
constexpr int kBrowseFlags = 400;

QComboBox* MakeCombo(QWidget* parent, int id) {
    auto* combo = new QComboBox(parent);
    // Editable at once, so that its line edit follows it in the tab chain.
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    // Names are free text: the list only offers, it never completes.
    combo->setCompleter(nullptr);
    SetControlId(combo, id);
    return combo;
}

QLineEdit* MakeEdit(QWidget* parent, int id) {
    auto* edit = new QLineEdit(parent);
    SetControlId(edit, id);
    return edit;
}

}  // namespace

CModDataDlgBase::CModDataDlgBase(QWidget* parent, const QString& helpTopic)
    : HelpDialog(parent, helpTopic) {
    BuildControls();
    ConnectControls();
}

CModDataDlgBase::~CModDataDlgBase() = default;

void CModDataDlgBase::BuildControls() {
    setWindowTitle(tr("New Module"));
    m_cboManufacturer = MakeCombo(this, kIdManufacturer);
    m_cboSeries = MakeCombo(this, kIdSeries);
    m_cboType = MakeCombo(this, kIdType);
    m_edtCatalog = MakeEdit(this, kIdCatalog);
    m_edtDescription = MakeEdit(this, kIdDescription);
    m_edtColText1 = MakeEdit(this, kIdColText1);
    m_edtColText2 = MakeEdit(this, kIdColText2);
    m_edtColText3 = MakeEdit(this, kIdColText3);
    m_edtSpecNote = MakeEdit(this, kIdSpecNote);
    m_edtSpecTail = MakeEdit(this, kIdSpecTail);
    m_edtTermCount = MakeEdit(this, kIdTermCount);
    m_edtTermCount->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), this));
    // The up-down beside the count: its top arrow counts up.
    m_spnTermCount = new QScrollBar(Qt::Vertical, this);
    m_spnTermCount->setInvertedAppearance(true);
    m_spnTermCount->setFixedHeight(m_edtTermCount->sizeHint().height());
    SetControlId(m_spnTermCount, kIdTermSpin);
    m_cboAddrBase = new QComboBox(this);
    SetControlId(m_cboAddrBase, kIdAddrBase);
    m_cboDirection = MakeCombo(this, kIdDirection);
    m_btnBrowseSpecNote = MakeButton(this, tr("..."), kIdBrowseSpecNote);
    m_btnBrowseSpecTail = MakeButton(this, tr("..."), kIdBrowseSpecTail);
    m_btnPrompts = MakeButton(this, tr("Prompts..."), kIdPrompts);
    m_btnBoxInfo = MakeButton(this, tr("Box Dimensions..."), kIdBoxInfo);
    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    m_btnOK = buttons->button(QDialogButtonBox::Ok);
    SetControlId(m_btnOK, kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);
    connect(buttons, &QDialogButtonBox::accepted, this, &CModDataDlgBase::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CModDataDlgBase::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CModDataDlgBase::ShowHelp);

    auto* grid = new QGridLayout;
    int row = 0;
    const auto addRow = [&](const QString& label, QWidget* field, QWidget* extra = nullptr) {
        grid->addWidget(new QLabel(label, this), row, 0);
        grid->addWidget(field, row, 1);
        if (extra) {
            grid->addWidget(extra, row, 2);
        }
        ++row;
    };
    addRow(tr("Manufacturer"), m_cboManufacturer);
    addRow(tr("Series"), m_cboSeries);
    addRow(tr("Type"), m_cboType);
    addRow(tr("Catalog"), m_edtCatalog);
    addRow(tr("Description"), m_edtDescription);
    addRow(tr("Column text 1"), m_edtColText1);
    addRow(tr("Column text 2"), m_edtColText2);
    addRow(tr("Column text 3"), m_edtColText3);
    addRow(tr("Spec note drawing"), m_edtSpecNote, m_btnBrowseSpecNote);
    addRow(tr("Spec tail drawing"), m_edtSpecTail, m_btnBrowseSpecTail);
    addRow(tr("Terminals"), m_edtTermCount, m_spnTermCount);
    addRow(tr("Address base"), m_cboAddrBase);
    addRow(tr("Direction"), m_cboDirection);
    grid->setColumnStretch(1, 1);
    auto* more = new QHBoxLayout;
    more->addWidget(m_btnPrompts);
    more->addWidget(m_btnBoxInfo);
    more->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(more);
    layout->addWidget(buttons);
    setMinimumWidth(ScaledX(420));
}

void CModDataDlgBase::ConnectControls() {
    for (QComboBox* combo : {m_cboManufacturer, m_cboSeries, m_cboType}) {
        connect(combo->lineEdit(), &QLineEdit::textEdited, this,
                [this, combo] { OnNameEdited(combo); });
        connect(combo, &QComboBox::activated, this, [this, combo] { OnNameSelected(combo); });
        combo->installEventFilter(this);
    }
    connect(m_edtCatalog, &QLineEdit::textEdited, this, &CModDataDlgBase::OnCatalogEdited);
    m_edtCatalog->installEventFilter(this);
    connect(m_edtTermCount, &QLineEdit::textEdited, this, [this](const QString& text) {
        bool bNumber = false;
        const uint count = text.toUInt(&bNumber);
        if (bNumber) {
            const QSignalBlocker quiet(m_spnTermCount);
            m_spnTermCount->setValue(int(qMin<uint>(count, ModuleSpecForm::kMaxTermCount)));
        }
        UpdateOkButton(kOkTermCountEdited);
    });
    connect(m_spnTermCount, &QScrollBar::valueChanged, this, &CModDataDlgBase::OnSpinMoved);
    connect(m_btnBrowseSpecNote, &QPushButton::clicked, this,
            [this] { OnBrowse(m_edtSpecNote, 10032); });
    connect(m_btnBrowseSpecTail, &QPushButton::clicked, this,
            [this] { OnBrowse(m_edtSpecTail, 10033); });
    connect(m_btnPrompts, &QPushButton::clicked, this, &CModDataDlgBase::OnPrompts);
    connect(m_btnBoxInfo, &QPushButton::clicked, this, &CModDataDlgBase::OnBoxInfo);
}

void CModDataDlgBase::SetDbPath(const QString& path) {
    if (!path.isNull()) {
        m_strDbPath = path;
    }
}

void CModDataDlgBase::SetManufacturer(const QString& text) {
    if (!text.isNull()) {
        m_form.m_strManufacturer = text;
    }
}

void CModDataDlgBase::SetSeries(const QString& text) {
    if (!text.isNull()) {
        m_form.m_strSeries = text;
    }
}

void CModDataDlgBase::SetType(const QString& text) {
    if (!text.isNull()) {
        m_form.m_strType = text;
    }
}

void CModDataDlgBase::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bStarted) {
        m_bStarted = true;
        OnInitDialog();
    }
}

bool CModDataDlgBase::eventFilter(QObject* watched, QEvent* event) {
    // Opening a list keeps the focus in its combo: that is no leaving.
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
        if (watched == m_edtCatalog) {
            if (TrimsTexts()) {
                TrimRight(m_edtCatalog);
            }
            UpdateOkButton(kOkCatalogEdited);
        } else if (auto* combo = qobject_cast<QComboBox*>(watched)) {
            OnNameLeft(combo);
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CModDataDlgBase::FillDropDowns() {
    for (const int message : ModuleSpecForm::AddrBaseMessages()) {
        m_cboAddrBase->addItem(Messages::Format(message));
    }
    for (const int message : ModuleSpecForm::DirectionMessages()) {
        m_cboDirection->addItem(Messages::Format(message));
    }
    m_cboDirection->setCurrentIndex(-1);
    // Only the list chooses; the edit part may show a state that is not in it.
    m_cboDirection->lineEdit()->setReadOnly(true);
}

void CModDataDlgBase::SetTermCountRange() {
    m_spnTermCount->setRange(int(ModuleSpecForm::kMinTermCount),
                             int(ModuleSpecForm::kMaxTermCount));
}

void CModDataDlgBase::ShowDirection(int message) {
    m_cboDirection->setCurrentIndex(int(ModuleSpecForm::DirectionMessages().indexOf(message)));
    m_cboDirection->setEditText(Messages::Format(message));
}

void CModDataDlgBase::TakeDirectionChoice() {
    m_form.m_strDirFlags =
        ModuleSpecForm::DirFlagsForChoice(m_cboDirection->currentText(), m_form.m_strDirFlags);
}

void CModDataDlgBase::TransferToControls() {
    m_cboManufacturer->setEditText(m_form.m_strManufacturer);
    m_cboSeries->setEditText(m_form.m_strSeries);
    m_cboType->setEditText(m_form.m_strType);
    m_edtCatalog->setText(m_form.m_strCatalog);
    m_edtDescription->setText(m_form.m_strDescription);
    m_edtColText1->setText(m_form.m_strColText1);
    m_edtColText2->setText(m_form.m_strColText2);
    m_edtColText3->setText(m_form.m_strColText3);
    m_edtSpecNote->setText(m_form.m_strSpecNote);
    m_edtSpecTail->setText(m_form.m_strSpecTail);
    m_edtTermCount->setText(QString::number(m_form.m_nTermCount));
    {
        const QSignalBlocker quiet(m_spnTermCount);
        m_spnTermCount->setValue(int(qMin(m_form.m_nTermCount, ModuleSpecForm::kMaxTermCount)));
    }
    m_cboAddrBase->setCurrentIndex(m_form.m_nAddrBaseIndex);
}

bool CModDataDlgBase::TransferFromControls() {
    m_form.m_strManufacturer = m_cboManufacturer->currentText();
    m_form.m_strSeries = m_cboSeries->currentText();
    m_form.m_strType = m_cboType->currentText();
    m_form.m_strCatalog = m_edtCatalog->text();
    m_form.m_strDescription = m_edtDescription->text();
    m_form.m_strColText1 = m_edtColText1->text();
    m_form.m_strColText2 = m_edtColText2->text();
    m_form.m_strColText3 = m_edtColText3->text();
    m_form.m_strSpecNote = m_edtSpecNote->text();
    m_form.m_strSpecTail = m_edtSpecTail->text();
    m_form.m_nAddrBaseIndex = m_cboAddrBase->currentIndex();
    bool bNumber = false;
    const uint count = m_edtTermCount->text().trimmed().toUInt(&bNumber);
    if (!bNumber || count < ModuleSpecForm::kMinTermCount ||
        count > ModuleSpecForm::kMaxTermCount) {
        Messages::ShowText(tr("Please enter an integer between %1 and %2.")
                               .arg(ModuleSpecForm::kMinTermCount)
                               .arg(ModuleSpecForm::kMaxTermCount),
                           windowTitle(), MsgButtons::Ok, MsgIcon::Warning);
        m_edtTermCount->setFocus();
        m_edtTermCount->selectAll();
        return false;
    }
    m_form.m_nTermCount = count;
    return true;
}

void CModDataDlgBase::ReadHierarchy() {
    if (m_strDbPath.isEmpty()) {
        // A miss is reported by the host's Lisp side; the lists then stay empty.
        FindDatabaseFile(m_strDbPath);
    }
    m_form.ReadHierarchy(m_strDbPath);
}

void CModDataDlgBase::ListManufacturers() {
    SetComboItems(m_cboManufacturer, m_form.Manufacturers(), false);
}

void CModDataDlgBase::SetComboItems(QComboBox* combo, const QStringList& items, bool bKeepText) {
    const QString kept = bKeepText ? combo->currentText() : QString();
    const QSignalBlocker quiet(combo);
    combo->clear();
    combo->addItems(items);
    // The first entry added would become the text; the list only offers.
    combo->setCurrentIndex(-1);
    combo->setEditText(kept);
}

QString CModDataDlgBase::ComboText(const QComboBox* combo, bool bUseSelection) {
    if (bUseSelection && combo->currentIndex() >= 0) {
        return combo->itemText(combo->currentIndex());
    }
    return combo->currentText();
}

void CModDataDlgBase::UpdateOkButton(int nCode) {
    if (!m_bInited) {
        return;
    }
    const QString manufacturer = ComboText(m_cboManufacturer, nCode == kOkManufacturerSelected);
    const QString series = ComboText(m_cboSeries, nCode == kOkSeriesSelected);
    const QString type = ComboText(m_cboType, nCode == kOkTypeSelected);
    m_btnOK->setEnabled(ModuleSpecForm::IsComplete(manufacturer, series, type, m_edtCatalog->text(),
                                                   m_edtTermCount->text()));
}

void CModDataDlgBase::TrimLeftAndCut(QLineEdit* edit, int maxChars) {
    QString text = ModuleSpecForm::TrimmedLeft(edit->text());
    const qsizetype removed = edit->text().size() - text.size();
    if (ModuleSpecForm::CutToChars(text, maxChars)) {
        edit->setText(text);
        edit->setCursorPosition(int(text.size()));
    } else if (removed > 0) {
        // The caret stays behind the character it was behind.
        const int caret = edit->cursorPosition();
        edit->setText(text);
        edit->setCursorPosition(int(qMax<qsizetype>(0, caret - removed)));
    }
}

void CModDataDlgBase::TrimRight(QLineEdit* edit) {
    const QString text = ModuleSpecForm::TrimmedRight(edit->text());
    if (text != edit->text()) {
        edit->setText(text);
    }
}

void CModDataDlgBase::OnNameEdited(QComboBox* combo) {
    if (TrimsTexts()) {
        TrimLeftAndCut(combo->lineEdit(), combo == m_cboType ? ModuleSpecForm::kMaxTypeChars
                                                             : ModuleSpecForm::kMaxNameChars);
    }
    UpdateOkButton(combo == m_cboManufacturer ? kOkManufacturerEdited
                   : combo == m_cboSeries     ? kOkSeriesEdited
                                              : kOkTypeEdited);
    RunFollowUps(combo, false);
}

void CModDataDlgBase::OnNameSelected(QComboBox* combo) {
    // The chosen manufacturer is in the edit part already: it counts as typed.
    if (combo == m_cboManufacturer) {
        OnNameEdited(combo);
        return;
    }
    UpdateOkButton(combo == m_cboSeries ? kOkSeriesSelected : kOkTypeSelected);
    RunFollowUps(combo, true);
}

void CModDataDlgBase::OnNameLeft(QComboBox* combo) {
    if (combo != m_cboManufacturer && combo != m_cboSeries && combo != m_cboType) {
        return;
    }
    if (TrimsTexts()) {
        TrimRight(combo->lineEdit());
    }
    UpdateOkButton(combo == m_cboManufacturer ? kOkManufacturerEdited
                   : combo == m_cboSeries     ? kOkSeriesEdited
                                              : kOkTypeEdited);
    RunFollowUps(combo, false);
}

void CModDataDlgBase::RunFollowUps(const QComboBox* combo, bool bSelected) {
    if (combo == m_cboManufacturer) {
        RefillSeries(false);
        RefillTypes(false);
    } else if (combo == m_cboSeries) {
        RefillTypes(bSelected);
    }
}

void CModDataDlgBase::OnCatalogEdited() {
    if (TrimsTexts()) {
        TrimLeftAndCut(m_edtCatalog, ModuleSpecForm::kMaxCatalogChars);
    }
    UpdateOkButton(kOkCatalogEdited);
}

void CModDataDlgBase::OnSpinMoved(int value) {
    m_edtTermCount->setText(QString::number(value));
    UpdateOkButton(kOkTermCountEdited);
}

void CModDataDlgBase::OnBrowse(QLineEdit* edit, int filterMessage) {
    QString chosen;
    if (HostGetFileNavDialog(QString(), edit->text(), Messages::Format(filterMessage), kBrowseFlags,
                             chosen) == kHostOk) {
        edit->setText(chosen);
    }
}

void CModDataDlgBase::OnPrompts() {
    CPromptDlg dialog(this);
    dialog.SetPrompts(m_form.m_aPrompts);
    if (ModalRunner::Run(dialog) == kIdOk) {
        dialog.GetPrompts(m_form.m_aPrompts);
        m_bPromptsChanged = true;
    }
}

void CModDataDlgBase::OnBoxInfo() {
    CModBoxInfoDlg dialog(this);
    dialog.SetTexts(m_form.m_aBoxText);
    if (ModalRunner::Run(dialog) == kIdOk) {
        m_form.m_aBoxText = dialog.GetTexts();
    }
}
