#pragma once

#include "HelpDialog.h"
#include "ModuleSpecForm.h"

class QComboBox;
class QLineEdit;
class QPushButton;
class QScrollBar;

// The controls of a module's data that the new-module and the module-data dialogs
// share: names, catalog, texts, file references, terminal count, address base,
// direction, prompts and box dimensions. The rules live in the form; the dialog shows
// its members and forwards the user's edits to it.
class CModDataDlgBase : public HelpDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdCancel = 2,
        kIdHelp = 203,
        kIdAddrBase = 1008,
        kIdDirection = 1009,
        kIdType = 1010,
        kIdManufacturer = 1011,
        kIdCatalog = 1012,
        kIdSeries = 1013,
        kIdSpecNote = 1024,
        kIdColText3 = 1028,
        kIdTermCount = 1030,
        kIdSpecTail = 1032,
        kIdBrowseSpecNote = 1033,
        kIdBrowseSpecTail = 1034,
        kIdColText2 = 1035,
        kIdColText1 = 1036,
        kIdPrompts = 1048,
        kIdBoxInfo = 1049,
        kIdTermSpin = 1052,
        kIdDescription = 1121,
    };

    // What changed when the OK test runs. At a selection the test reads the chosen
    // entry of that list rather than the edit part.
    enum OkCode {
        kOkStart = 0,
        kOkManufacturerSelected = 1,
        kOkManufacturerEdited = 2,
        kOkSeriesSelected = 3,
        kOkSeriesEdited = 4,
        kOkTypeSelected = 6,
        kOkTypeEdited = 7,
        kOkCatalogEdited = 8,
        kOkTermCountEdited = 9,
    };

    ~CModDataDlgBase() override;

    // Set before the dialog runs; empty: the host's "ZEL_PLC.MDB". A null text does nothing.
    void SetDbPath(const QString& path);
    void SetManufacturer(const QString& text);
    void SetSeries(const QString& text);
    void SetType(const QString& text);
    const QString& GetManufacturer() const { return m_form.m_strManufacturer; }
    const QString& GetSeries() const { return m_form.m_strSeries; }
    const QString& GetType() const { return m_form.m_strType; }
    const QString& GetCatalog() const { return m_form.m_strCatalog; }

    // OK is enabled exactly when the five texts are there; nothing before start-up.
    void UpdateOkButton(int nCode);

protected:
    CModDataDlgBase(QWidget* parent, const QString& helpTopic);

    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    // Start-up on the first show.
    virtual void OnInitDialog() = 0;
    virtual void RefillSeries(bool bUseSelection) = 0;
    virtual void RefillTypes(bool bUseSelection) = 0;
    // Whether the name and catalog edits are trimmed and cut as the user types.
    virtual bool TrimsTexts() const = 0;

    // Address base and direction entries; the direction's edit part is read-only.
    void FillDropDowns();
    void SetTermCountRange();
    void TransferToControls();
    // False, after the range message, when the terminal count is not in its range.
    bool TransferFromControls();
    // Finds the database when no path was given, and reads its hierarchy.
    void ReadHierarchy();
    void ListManufacturers();
    // The combo's entries, its text kept when bKeepText.
    static void SetComboItems(QComboBox* combo, const QStringList& items, bool bKeepText);
    // The chosen entry when bUseSelection and one is chosen, else the edit part.
    static QString ComboText(const QComboBox* combo, bool bUseSelection);
    // The direction bits of the form after the user's choice in the direction drop-down.
    void TakeDirectionChoice();
    void ShowDirection(int message);

    ModuleSpecForm m_form;
    QString m_strDbPath;
    bool m_bInited = false;
    bool m_bPromptsChanged = false;

    QComboBox* m_cboManufacturer;
    QComboBox* m_cboSeries;
    QComboBox* m_cboType;
    QLineEdit* m_edtCatalog;
    QLineEdit* m_edtDescription;
    QLineEdit* m_edtColText1;
    QLineEdit* m_edtColText2;
    QLineEdit* m_edtColText3;
    QLineEdit* m_edtSpecNote;
    QLineEdit* m_edtSpecTail;
    QLineEdit* m_edtTermCount;
    QScrollBar* m_spnTermCount;
    QComboBox* m_cboAddrBase;
    QComboBox* m_cboDirection;
    QPushButton* m_btnBrowseSpecNote;
    QPushButton* m_btnBrowseSpecTail;
    QPushButton* m_btnPrompts;
    QPushButton* m_btnBoxInfo;
    QPushButton* m_btnOK;

private:
    void BuildControls();
    void ConnectControls();
    void OnNameEdited(QComboBox* combo);
    void OnNameSelected(QComboBox* combo);
    void OnNameLeft(QComboBox* combo);
    void RunFollowUps(const QComboBox* combo, bool bSelected);
    void OnCatalogEdited();
    void OnSpinMoved(int value);
    void OnBrowse(QLineEdit* edit, int filterMessage);
    void OnPrompts();
    void OnBoxInfo();
    // Left trim, then the cut at maxChars with the caret behind the last character.
    void TrimLeftAndCut(QLineEdit* edit, int maxChars);
    void TrimRight(QLineEdit* edit);

    bool m_bStarted = false;
};
