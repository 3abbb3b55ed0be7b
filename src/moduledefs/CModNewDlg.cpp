#include "CModNewDlg.h"

#include "Messages.h"
#include "MigrationQuestion.h"
#include "ModuleDefaults.h"

#include <QComboBox>
#include <QLineEdit>

CModNewDlg::CModNewDlg(QWidget* parent)
    : CModDataDlgBase(parent, QStringLiteral("plc_new_module")) {}

void CModNewDlg::OnInitDialog() {
    FillDropDowns();
    ShowDirection(4030);
    SetTermCountRange();
    m_form.m_nTermCount = 8;
    m_form.m_nAddrBaseIndex = 3;
    TransferToControls();

    m_strDefaultsFolder = ModuleDefaults::Folder();
    ApplyInfoDefaults(ModuleDefaults::ReadInfo(m_strDefaultsFolder));
    TransferToControls();
    m_form.m_aPrompts = ModuleDefaults::ReadPrompts(m_strDefaultsFolder);

    ReadHierarchy();
    ListManufacturers();
    m_cboManufacturer->setEditText(m_form.m_strManufacturer);
    RefillSeries(false);
    m_cboSeries->setEditText(m_form.m_strSeries);
    RefillTypes(false);
    m_cboType->setEditText(m_form.m_strType);

    m_bInited = true;
    UpdateOkButton(kOkStart);
    m_edtCatalog->setMaxLength(ModuleSpecForm::kMaxCatalogChars);
}

void CModNewDlg::ApplyInfoDefaults(const ModuleInfoDefaults& defaults) {
    // The named address base is chosen only until the next transfer puts the
    // member's entry back: the dialog always opens on the last entry.
    if (defaults.bHasAddrBase) {
        m_cboAddrBase->setCurrentIndex(
            m_cboAddrBase->findText(defaults.strAddrBase, Qt::MatchStartsWith));
    }
    m_form.ApplyInfoDefaults(defaults);
}

void CModNewDlg::RefillSeries(bool bUseSelection) {
    SetComboItems(m_cboSeries, m_form.SeriesOf(ComboText(m_cboManufacturer, bUseSelection)), true);
}

void CModNewDlg::RefillTypes(bool bUseSelection) {
    const QStringList choices =
        m_form.TypeChoices(m_cboManufacturer->currentText(), ComboText(m_cboSeries, bUseSelection),
                           ModuleDefaults::ReadTypes(m_strDefaultsFolder));
    SetComboItems(m_cboType, choices, true);
}

void CModNewDlg::accept() {
    if (!TransferFromControls()) {
        return;
    }
    TakeDirectionChoice();
    switch (m_form.CreateModule(m_strDbPath)) {
        case ModuleSpecForm::Outcome::Created:
            QDialog::accept();
            return;
        case ModuleSpecForm::Outcome::StoreNotOpen:
            Messages::Show(5003, {m_strDbPath}, MsgButtons::Ok, MsgIcon::Error);
            return;
        case ModuleSpecForm::Outcome::NeedsMigration:
            // Nothing was made, whatever the answer: the user presses OK again.
            AskToMigrate(m_strDbPath);
            return;
        case ModuleSpecForm::Outcome::CatalogExists:
            Messages::Show(10117, {m_form.m_strCatalog}, MsgButtons::Ok, MsgIcon::Warning);
            m_edtCatalog->setFocus();
            return;
        case ModuleSpecForm::Outcome::Failed:
            Messages::Show(5004, {}, MsgButtons::Ok, MsgIcon::Error);
            return;
    }
}
