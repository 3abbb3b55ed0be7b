#pragma once

#include "HelpDialog.h"

#include <QStringList>

class QLineEdit;
class QRadioButton;

// Edits the box dimensions of one module: two independent groups, A and B, of six
// value and unit pairs, shown one group at a time on the same edits. The callers hold
// values with "." as decimal separator; the dialog shows the locale's. It only checks
// the texts; the callers take them back after OK.
class CModBoxInfoDlg : public HelpDialog {
    Q_OBJECT

public:
    // The value and unit edits in screen order (fields 3, 4, 2, 1, 5, 6).
    enum Control {
        kIdValue1 = 1015,
        kIdUnit1 = 1016,
        kIdValue2 = 1017,
        kIdUnit2 = 1018,
        kIdValue3 = 1019,
        kIdUnit3 = 1021,
        kIdValue4 = 1022,
        kIdUnit4 = 1023,
        kIdValue5 = 1026,
        kIdUnit5 = 1027,
        kIdValue6 = 1029,
        kIdUnit6 = 1031,
        kIdGroupA = 239,
        kIdGroupB = 240,
        kIdHelp = 203,
        kIdOk = 1,
        kIdCancel = 2
    };

    explicit CModBoxInfoDlg(QWidget* parent = nullptr);

    // A null text does nothing. Values are given with "." and come back with it.
    void SetValueA1(const QString& text) { SetValue(false, 1, text); }
    void SetValueA2(const QString& text) { SetValue(false, 2, text); }
    void SetValueA3(const QString& text) { SetValue(false, 3, text); }
    void SetValueA4(const QString& text) { SetValue(false, 4, text); }
    void SetValueA5(const QString& text) { SetValue(false, 5, text); }
    void SetValueA6(const QString& text) { SetValue(false, 6, text); }
    void SetValueB1(const QString& text) { SetValue(true, 1, text); }
    void SetValueB2(const QString& text) { SetValue(true, 2, text); }
    void SetValueB3(const QString& text) { SetValue(true, 3, text); }
    void SetValueB4(const QString& text) { SetValue(true, 4, text); }
    void SetValueB5(const QString& text) { SetValue(true, 5, text); }
    void SetValueB6(const QString& text) { SetValue(true, 6, text); }
    void SetUnitA1(const QString& text) { SetUnit(false, 1, text); }
    void SetUnitA2(const QString& text) { SetUnit(false, 2, text); }
    void SetUnitA3(const QString& text) { SetUnit(false, 3, text); }
    void SetUnitA4(const QString& text) { SetUnit(false, 4, text); }
    void SetUnitA5(const QString& text) { SetUnit(false, 5, text); }
    void SetUnitA6(const QString& text) { SetUnit(false, 6, text); }
    void SetUnitB1(const QString& text) { SetUnit(true, 1, text); }
    void SetUnitB2(const QString& text) { SetUnit(true, 2, text); }
    void SetUnitB3(const QString& text) { SetUnit(true, 3, text); }
    void SetUnitB4(const QString& text) { SetUnit(true, 4, text); }
    void SetUnitB5(const QString& text) { SetUnit(true, 5, text); }
    void SetUnitB6(const QString& text) { SetUnit(true, 6, text); }

    QString GetValueA1() const { return GetValue(false, 1); }
    QString GetValueA2() const { return GetValue(false, 2); }
    QString GetValueA3() const { return GetValue(false, 3); }
    QString GetValueA4() const { return GetValue(false, 4); }
    QString GetValueA5() const { return GetValue(false, 5); }
    QString GetValueA6() const { return GetValue(false, 6); }
    QString GetValueB1() const { return GetValue(true, 1); }
    QString GetValueB2() const { return GetValue(true, 2); }
    QString GetValueB3() const { return GetValue(true, 3); }
    QString GetValueB4() const { return GetValue(true, 4); }
    QString GetValueB5() const { return GetValue(true, 5); }
    QString GetValueB6() const { return GetValue(true, 6); }
    QString GetUnitA1() const { return GetUnit(false, 1); }
    QString GetUnitA2() const { return GetUnit(false, 2); }
    QString GetUnitA3() const { return GetUnit(false, 3); }
    QString GetUnitA4() const { return GetUnit(false, 4); }
    QString GetUnitA5() const { return GetUnit(false, 5); }
    QString GetUnitA6() const { return GetUnit(false, 6); }
    QString GetUnitB1() const { return GetUnit(true, 1); }
    QString GetUnitB2() const { return GetUnit(true, 2); }
    QString GetUnitB3() const { return GetUnit(true, 3); }
    QString GetUnitB4() const { return GetUnit(true, 4); }
    QString GetUnitB5() const { return GetUnit(true, 5); }
    QString GetUnitB6() const { return GetUnit(true, 6); }

    // All 24 texts in BoxTextOrder order, under the rules of the single setters and
    // getters.
    void SetTexts(const QStringList& twentyFour);
    QStringList GetTexts() const;

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void SetValue(bool bGroupB, int field, const QString& text);
    void SetUnit(bool bGroupB, int field, const QString& text);
    QString GetValue(bool bGroupB, int field) const;
    QString GetUnit(bool bGroupB, int field) const;
    QStringList& Group(bool bGroupB) { return bGroupB ? m_aGroupB : m_aGroupA; }
    const QStringList& Group(bool bGroupB) const { return bGroupB ? m_aGroupB : m_aGroupA; }

    void OnInitDialog();
    void OnGroupRadio(int group);
    bool SwitchToGroup(int group);
    void TransferFromControls();
    void ShowGroup(int group);
    bool CheckNumbers();
    bool StoreShownTo(int group);
    bool CheckGroups();
    bool CheckMainValues(int group);
    bool CheckUnits(int group);
    void FocusValue(int place, bool bSelect);

    QStringList m_aGroupA;  // value, unit per screen place; locale separator
    QStringList m_aGroupB;
    QStringList m_aShown;
    int m_nShownGroup = 0;
    bool m_bInited = false;
    QLineEdit* m_edtText[12] = {};  // the shown texts, in the order of a group
    QRadioButton* m_radGroupA;
    QRadioButton* m_radGroupB;
};
