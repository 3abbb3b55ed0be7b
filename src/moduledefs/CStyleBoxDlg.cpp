#include "CStyleBoxDlg.h"

#include "BoxTextOrder.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "StoreLocation.h"
#include "StylePicture.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int kCaption = 5000;
constexpr int kMsgCannotOpen = 5003;
// The value and the unit edit of each screen place.
constexpr std::array<int, BoxTextOrder::kFieldCount> kValueIds = {1015, 1017, 1019,
                                                                  1022, 1026, 1029};
constexpr std::array<int, BoxTextOrder::kFieldCount> kUnitIds = {1016, 1018, 1021,
                                                                 1023, 1027, 1031};

}  // namespace

CStyleBoxDlg::CStyleBoxDlg(QWidget* parent)
    : HelpDialog(parent, QStringLiteral("plc_style_bound")) {
    BuildControls();
}

CStyleBoxDlg::~CStyleBoxDlg() = default;

void CStyleBoxDlg::BuildControls() {
    setWindowTitle(tr("Style Box Bounds"));
    m_styles = new QButtonGroup(this);
    m_groups = new QButtonGroup(this);
    m_stcPicture = StylePicture::MakePictureControl(this, kIdPicture);
    QGroupBox* styleBox = StylePicture::MakeStyleButtons(this, m_styles, kIdStyleFirst);
    auto* groupBox = new QGroupBox(tr("Dimension group"), this);
    auto* groupRow = new QHBoxLayout(groupBox);
    groupRow->addWidget(MakeRadio(groupBox, tr("Group A"), kIdGroupA, m_groups, 0));
    groupRow->addWidget(MakeRadio(groupBox, tr("Group B"), kIdGroupB, m_groups, 1));

    auto* fields = new QGridLayout;
    fields->addWidget(new QLabel(tr("Value"), this), 0, 1);
    fields->addWidget(new QLabel(tr("Unit"), this), 0, 2);
    for (int place = 1; place <= BoxTextOrder::kFieldCount; ++place) {
        fields->addWidget(new QLabel(tr("Dimension %1").arg(BoxTextOrder::FieldAt(place)), this),
                          place, 0);
        for (int side = 0; side < 2; ++side) {
            auto* edit = new QLineEdit(this);
            SetControlId(edit, side == 0 ? kValueIds[place - 1] : kUnitIds[place - 1]);
            m_edits[2 * std::size_t(place - 1) + side] = edit;
            fields->addWidget(edit, place, 1 + side);
        }
    }

    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    SetControlId(buttons->button(QDialogButtonBox::Ok), kIdOk);
    SetControlId(buttons->button(QDialogButtonBox::Cancel), kIdCancel);
    SetControlId(buttons->button(QDialogButtonBox::Help), kIdHelp);

    auto* left = new QVBoxLayout;
    left->addWidget(styleBox);
    left->addWidget(m_stcPicture);
    left->addStretch(1);
    auto* right = new QVBoxLayout;
    right->addWidget(groupBox);
    right->addLayout(fields);
    right->addStretch(1);
    auto* top = new QHBoxLayout;
    top->addLayout(left);
    top->addLayout(right, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addWidget(buttons);

    connect(m_styles, &QButtonGroup::idClicked, this, &CStyleBoxDlg::OnStyleRadio);
    connect(m_groups, &QButtonGroup::idClicked, this, &CStyleBoxDlg::OnGroupRadio);
    connect(buttons, &QDialogButtonBox::accepted, this, &CStyleBoxDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CStyleBoxDlg::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &CStyleBoxDlg::ShowHelp);
}

void CStyleBoxDlg::SetDbPath(const QString& path) {
    if (!path.isNull()) {
        m_strDbPath = path;
    }
}

void CStyleBoxDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited && !OnInitDialog()) {
        // Cancelled from inside the start-up: leave once the dialog's loop runs.
        QTimer::singleShot(0, this, [this] { QDialog::reject(); });
    }
}

bool CStyleBoxDlg::OnInitDialog() {
    m_bInited = true;
    if (m_strDbPath.isEmpty()) {
        // A miss is reported by the host's Lisp side.
        FindDatabaseFile(m_strDbPath);
    }
    if (m_strDbPath.isEmpty()) {
        return false;
    }
    // Without the rows there is nothing to show or to write back.
    if (!m_table.Load(m_strDbPath)) {
        Messages::Show(kMsgCannotOpen,
                       {StoreLocation::Shown(m_strDbPath) + u'\n' + m_table.LastFailure()},
                       MsgButtons::Ok, MsgIcon::Error, kCaption);
        return false;
    }
    SelectStyle(1);
    m_nStyleRadio = 0;
    m_nGroupRadio = 0;
    ShowGroup(0);
    TransferToControls();
    return true;
}

void CStyleBoxDlg::SelectStyle(int style) {
    m_picture = StylePicture::Load(style, QStringLiteral("h"));
    m_stcPicture->setPixmap(m_picture.pixmap());
    m_table.SelectStyle(style);
}

void CStyleBoxDlg::ShowGroup(int group) {
    m_nShownGroup = group;
    m_aShown = m_table.Group(group == 1);
}

void CStyleBoxDlg::TransferFromControls() {
    m_aShown.clear();
    for (const QLineEdit* edit : m_edits) {
        m_aShown.append(edit->text());
    }
    m_nStyleRadio = m_styles->checkedId();
    m_nGroupRadio = m_groups->checkedId();
}

void CStyleBoxDlg::TransferToControls() {
    for (int text = 0; text < StyleBoxTable::kGroupTextCount; ++text) {
        m_edits[text]->setText(m_aShown.value(text));
    }
    if (QAbstractButton* style = m_styles->button(m_nStyleRadio)) {
        style->setChecked(true);
    }
    if (QAbstractButton* group = m_groups->button(m_nGroupRadio)) {
        group->setChecked(true);
    }
}

bool CStyleBoxDlg::StoreShown(int group) {
    const StyleFieldCheck check = m_table.StoreGroup(group == 1, m_aShown);
    if (check.IsGood()) {
        return true;
    }
    Messages::Show(check.nMessage, {}, MsgButtons::Ok, MsgIcon::Warning, check.nCaption);
    if (check.nPlace > 0) {
        QLineEdit* value = m_edits[2 * std::size_t(check.nPlace - 1)];
        if (check.bSelectText) {
            value->selectAll();
        }
        value->setFocus();
    }
    return false;
}

void CStyleBoxDlg::OnStyleRadio(int index) {
    TransferFromControls();
    if (!StoreShown(m_nGroupRadio)) {
        m_nStyleRadio = std::max(m_table.CurrentStyle() - 1, 0);
        TransferToControls();
        return;
    }
    SelectStyle(index + 1);
    ShowGroup(m_nGroupRadio);
    TransferToControls();
}

void CStyleBoxDlg::OnGroupRadio(int index) {
    if (index == m_nShownGroup) {
        return;
    }
    TransferFromControls();
    if (!StoreShown(m_nShownGroup)) {
        m_nGroupRadio = m_nShownGroup;
        TransferToControls();
        return;
    }
    ShowGroup(index);
    TransferToControls();
}

void CStyleBoxDlg::accept() {
    TransferFromControls();
    if (!StoreShown(m_nGroupRadio)) {
        return;
    }
    if (!m_table.Save(m_strDbPath)) {
        Messages::Show(kMsgCannotOpen,
                       {StoreLocation::Shown(m_strDbPath) + u'\n' + m_table.LastFailure()},
                       MsgButtons::Ok, MsgIcon::Error, kCaption);
        return;
    }
    QDialog::accept();
}
