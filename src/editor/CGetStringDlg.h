#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

// Asks for one line of text. OK is enabled exactly while the text is not empty.
class CGetStringDlg : public QDialog {
    Q_OBJECT

public:
    enum Control { kIdPrompt = 242, kIdValue = 241, kIdOk = 1 };

    explicit CGetStringDlg(QWidget* parent = nullptr);

    // A null text leaves the member as it is.
    void SetTitle(const QString& title);
    void SetPrompt(const QString& prompt);
    void SetValue(const QString& value);
    QString GetValue() const { return m_strValue; }

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void UpdateOk();

    QString m_strTitle;
    QString m_strPrompt;
    QString m_strValue;
    QLabel* m_stcPrompt;
    QLineEdit* m_edtValue;
    QPushButton* m_btnOK;
};
