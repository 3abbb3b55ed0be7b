#pragma once

#include "CDib.h"
#include "HelpDialog.h"
#include "StyleBoxTable.h"

#include <QStringList>

#include <array>

class QButtonGroup;
class QLabel;
class QLineEdit;

// Edits the box bounds of the nine symbol styles. One style and one of its two groups
// are shown at a time; leaving a style or a group checks what is shown, and OK writes
// all nine rows back to the store. The rules live in StyleBoxTable.
class CStyleBoxDlg : public HelpDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdCancel = 2,
        kIdHelp = 203,
        kIdGroupA = 239,
        kIdGroupB = 240,
        kIdStyleFirst = 1117,
        kIdPicture = 1126,
    };

    explicit CStyleBoxDlg(QWidget* parent = nullptr);
    ~CStyleBoxDlg() override;

    // Set before the dialog runs; empty: the host's "ZEL_PLC.MDB". A null text does nothing.
    void SetDbPath(const QString& path);
    const StyleBoxTable& Table() const { return m_table; }
    const CDib& Picture() const { return m_picture; }

    // Start-up: false when there are no style rows to edit; the dialog then cancels.
    bool OnInitDialog();
    // OK: checks what is shown and writes the nine rows. A store that refuses them is
    // reported and the dialog stays, so that nothing typed is lost unasked.
    void accept() override;
    void OnStyleRadio(int index);
    void OnGroupRadio(int index);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void BuildControls();
    void SelectStyle(int style);
    void ShowGroup(int group);
    // The shown texts and the radio buttons between the members and the controls.
    void TransferFromControls();
    void TransferToControls();
    // Checks the shown texts and keeps them in the group; a failure is shown to the user.
    bool StoreShown(int group);

    StyleBoxTable m_table;
    QStringList m_aShown;
    int m_nStyleRadio = 0;
    int m_nGroupRadio = 0;
    int m_nShownGroup = 0;
    CDib m_picture;
    QString m_strDbPath = QStringLiteral("");
    bool m_bInited = false;

    QButtonGroup* m_styles;
    QButtonGroup* m_groups;
    QLabel* m_stcPicture;
    // Value and unit edit of each screen place, in the order of the group's twelve texts.
    std::array<QLineEdit*, StyleBoxTable::kGroupTextCount> m_edits{};
};
