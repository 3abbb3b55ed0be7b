#include "CModEditSpecsDlg.h"

#include "CKVModule.h"
#include "Messages.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

CModEditSpecsDlg::CModEditSpecsDlg(CKVModule* module, QWidget* parent)
    : CModDataDlgBase(parent, QStringLiteral("plc_mod_specs")), m_pModule(module) {}

void CModEditSpecsDlg::OnInitDialog() {
    FillDropDowns();
    // No entry until the module's text names one.
    m_form.m_nAddrBaseIndex = -1;
    m_form.m_aPrompts = QStringList(9, QString());
    if (m_pModule) {
        m_form.FillFromModule(*m_pModule);
    }
    ShowDirection(ModuleSpecForm::DirectionMessageOf(m_form.m_strDirFlags));
    SetTermCountRange();
    MoveToParentTop();

    ReadHierarchy();
    ListManufacturers();
    SelectEntry(m_cboManufacturer, m_form.m_strManufacturer);
    RefillSeries(false);
    SelectEntry(m_cboSeries, m_form.m_strSeries);
    RefillTypes(false);

    TransferToControls();
    m_bInited = true;
    setWindowTitle(Messages::Format(10029));
    for (QWidget* shownOnly :
         std::initializer_list<QWidget*>{m_edtTermCount, m_spnTermCount, m_cboManufacturer,
                                         m_cboSeries, m_cboType, m_edtCatalog}) {
        shownOnly->setEnabled(false);
    }
    UpdateOkButton(kOkStart);
}

void CModEditSpecsDlg::MoveToParentTop() {
    if (QWidget* owner = parentWidget() ? parentWidget()->window() : nullptr) {
        move(pos().x(), owner->frameGeometry().top());
    }
}

void CModEditSpecsDlg::SelectEntry(QComboBox* combo, const QString& text) {
    const int index = text.isEmpty() ? -1 : combo->findText(text, Qt::MatchFixedString);
    if (index >= 0) {
        combo->setCurrentIndex(index);
    }
}

// The names only show here: the lists are the store's, and no text is kept.
void CModEditSpecsDlg::RefillSeries(bool bUseSelection) {
    SetComboItems(m_cboSeries, m_form.SeriesOf(ComboText(m_cboManufacturer, bUseSelection)), false);
}

void CModEditSpecsDlg::RefillTypes(bool bUseSelection) {
    SetComboItems(m_cboType,
                  m_form.StoreTypesOf(m_cboManufacturer->currentText(),
                                      ComboText(m_cboSeries, bUseSelection)),
                  false);
}

void CModEditSpecsDlg::accept() {
    if (!TransferFromControls()) {
        return;
    }
    TakeDirectionChoice();
    if (m_pModule) {
        m_form.ApplyToModule(*m_pModule, m_bPromptsChanged);
    }
    QDialog::accept();
}
