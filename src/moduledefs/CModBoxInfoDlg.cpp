#include "CModBoxInfoDlg.h"

#include "BoxTextOrder.h"
#include "BoxValueCheck.h"
#include "DialogControls.h"
#include "HostServices.h"
#include "Messages.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cstddef>

namespace {

constexpr int kGroupTexts = BoxTextOrder::kTextCount / 2;
constexpr int kGroupA = 0;
constexpr int kGroupB = 1;

// The value and unit edits of each screen place.
constexpr int kTextIds[kGroupTexts] = {
    CModBoxInfoDlg::kIdValue1, CModBoxInfoDlg::kIdUnit1,  CModBoxInfoDlg::kIdValue2,
    CModBoxInfoDlg::kIdUnit2,  CModBoxInfoDlg::kIdValue3, CModBoxInfoDlg::kIdUnit3,
    CModBoxInfoDlg::kIdValue4, CModBoxInfoDlg::kIdUnit4,  CModBoxInfoDlg::kIdValue5,
    CModBoxInfoDlg::kIdUnit5,  CModBoxInfoDlg::kIdValue6, CModBoxInfoDlg::kIdUnit6};

constexpr int kBoxCaption = 5005;
constexpr int kBadNumberCaption = 10122;

// Where the value of a field lies among the twelve texts of its group.
int GroupValueIndex(int field) {
    return BoxTextOrder::ValueIndex(false, field);
}

}  // namespace

CModBoxInfoDlg::CModBoxInfoDlg(QWidget* parent)
    : HelpDialog(parent, QStringLiteral("plc_modbox_dims")),
      m_aGroupA(kGroupTexts),
      m_aGroupB(kGroupTexts),
      m_aShown(kGroupTexts),
      m_radGroupA(new QRadioButton(tr("Group &A"), this)),
      m_radGroupB(new QRadioButton(tr("Group &B"), this)) {
    setWindowTitle(tr("Box Dimensions"));
    SetControlId(m_radGroupA, kIdGroupA);
    SetControlId(m_radGroupB, kIdGroupB);
    auto* radios = new QButtonGroup(this);
    radios->addButton(m_radGroupA, kGroupA);
    radios->addButton(m_radGroupB, kGroupB);
    connect(radios, &QButtonGroup::idClicked, this, &CModBoxInfoDlg::OnGroupRadio);

    auto* grid = new QGridLayout;
    grid->addWidget(m_radGroupA, 0, 0);
    grid->addWidget(m_radGroupB, 0, 1);
    grid->addWidget(new QLabel(tr("Value"), this), 1, 1);
    grid->addWidget(new QLabel(tr("Unit"), this), 1, 2);
    for (int place = 1; place <= BoxTextOrder::kFieldCount; ++place) {
        const int row = place + 1;
        grid->addWidget(new QLabel(tr("Dimension %1").arg(BoxTextOrder::FieldAt(place)), this), row,
                        0);
        for (int column = 0; column < 2; ++column) {
            const int index = 2 * (place - 1) + column;
            m_edtText[index] = new QLineEdit(this);
            SetControlId(m_edtText[index], kTextIds[index]);
            grid->addWidget(m_edtText[index], row, column + 1);
        }
    }

    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    SetControlId(buttons->button(QDialogButtonBox::Ok), kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);
    connect(buttons, &QDialogButtonBox::accepted, this, &CModBoxInfoDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CModBoxInfoDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CModBoxInfoDlg::ShowHelp);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(buttons);
}

void CModBoxInfoDlg::SetValue(bool bGroupB, int field, const QString& text) {
    const int index = GroupValueIndex(field);
    if (!text.isNull() && index >= 0) {
        Group(bGroupB)[index] = BoxValueCheck::ToLocaleSeparator(text);
    }
}

void CModBoxInfoDlg::SetUnit(bool bGroupB, int field, const QString& text) {
    const int index = GroupValueIndex(field);
    if (!text.isNull() && index >= 0) {
        Group(bGroupB)[index + 1] = text;
    }
}

QString CModBoxInfoDlg::GetValue(bool bGroupB, int field) const {
    return BoxValueCheck::ToPointSeparator(Group(bGroupB).value(GroupValueIndex(field)));
}

QString CModBoxInfoDlg::GetUnit(bool bGroupB, int field) const {
    const int index = GroupValueIndex(field);
    return index < 0 ? QString() : Group(bGroupB).value(index + 1);
}

void CModBoxInfoDlg::SetTexts(const QStringList& twentyFour) {
    for (const bool bGroupB : {false, true}) {
        for (int field = 1; field <= BoxTextOrder::kFieldCount; ++field) {
            SetValue(bGroupB, field, twentyFour.value(BoxTextOrder::ValueIndex(bGroupB, field)));
            SetUnit(bGroupB, field, twentyFour.value(BoxTextOrder::UnitIndex(bGroupB, field)));
        }
    }
}

QStringList CModBoxInfoDlg::GetTexts() const {
    QStringList texts(BoxTextOrder::kTextCount);
    for (const bool bGroupB : {false, true}) {
        for (int field = 1; field <= BoxTextOrder::kFieldCount; ++field) {
            texts[BoxTextOrder::ValueIndex(bGroupB, field)] = GetValue(bGroupB, field);
            texts[BoxTextOrder::UnitIndex(bGroupB, field)] = GetUnit(bGroupB, field);
        }
    }
    return texts;
}

void CModBoxInfoDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited) {
        m_bInited = true;
        OnInitDialog();
    }
}

void CModBoxInfoDlg::OnInitDialog() {
    m_radGroupA->setChecked(true);
    m_nShownGroup = kGroupA;
    ShowGroup(kGroupA);
}

void CModBoxInfoDlg::OnGroupRadio(int group) {
    if (group != m_nShownGroup) {
        SwitchToGroup(group);
    }
}

// The shown group is kept only when its numbers are good; otherwise its radio button
// comes back and the user stays on it.
bool CModBoxInfoDlg::SwitchToGroup(int group) {
    TransferFromControls();
    if (!StoreShownTo(m_nShownGroup)) {
        (m_nShownGroup == kGroupA ? m_radGroupA : m_radGroupB)->setChecked(true);
        return false;
    }
    (group == kGroupA ? m_radGroupA : m_radGroupB)->setChecked(true);
    ShowGroup(group);
    m_nShownGroup = group;
    return true;
}

void CModBoxInfoDlg::TransferFromControls() {
    for (int i = 0; i < kGroupTexts; ++i) {
        m_aShown[i] = m_edtText[i]->text();
    }
}

void CModBoxInfoDlg::ShowGroup(int group) {
    m_aShown = Group(group == kGroupB);
    for (int i = 0; i < kGroupTexts; ++i) {
        m_edtText[i]->setText(m_aShown[i]);
    }
}

bool CModBoxInfoDlg::CheckNumbers() {
    const int place = BoxValueCheck::LastBadPlace(m_aShown);
    if (place == 0) {
        return true;
    }
    Messages::Show(10123, {}, MsgButtons::Ok, MsgIcon::Warning, kBadNumberCaption);
    FocusValue(place, true);
    return false;
}

bool CModBoxInfoDlg::StoreShownTo(int group) {
    if (!CheckNumbers()) {
        return false;
    }
    Group(group == kGroupB) = m_aShown;
    return true;
}

bool CModBoxInfoDlg::CheckGroups() {
    return CheckMainValues(kGroupA) && CheckMainValues(kGroupB) && CheckUnits(kGroupA) &&
           CheckUnits(kGroupB);
}

bool CModBoxInfoDlg::CheckMainValues(int group) {
    if (!BoxValueCheck::LacksAllMainValues(Group(group == kGroupB))) {
        return true;
    }
    if (m_nShownGroup != group) {
        SwitchToGroup(group);
    }
    Messages::Show(5006, {}, MsgButtons::Ok, MsgIcon::Warning, kBoxCaption);
    return false;
}

bool CModBoxInfoDlg::CheckUnits(int group) {
    const int place = BoxValueCheck::FirstUnitWithoutValue(Group(group == kGroupB));
    if (place == 0) {
        return true;
    }
    if (m_nShownGroup != group) {
        SwitchToGroup(group);
    }
    Messages::Show(5007, {}, MsgButtons::Ok, MsgIcon::Warning, kBoxCaption);
    FocusValue(place, false);
    return false;
}

void CModBoxInfoDlg::FocusValue(int place, bool bSelect) {
    QLineEdit* edit = m_edtText[2 * std::size_t(place - 1)];
    if (bSelect) {
        edit->selectAll();  // leaves the caret at the end, in view
    }
    edit->setFocus();
}

void CModBoxInfoDlg::accept() {
    TransferFromControls();
    if (!StoreShownTo(m_radGroupA->isChecked() ? kGroupA : kGroupB)) {
        return;
    }
    if (CheckGroups()) {
        QDialog::accept();
    }
}
