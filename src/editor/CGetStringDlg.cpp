#include "CGetStringDlg.h"

#include "DialogControls.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

CGetStringDlg::CGetStringDlg(QWidget* parent)
    : QDialog(parent),
      m_stcPrompt(new QLabel(this)),
      m_edtValue(new QLineEdit(this)),
      m_btnOK(nullptr) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_btnOK = buttons->button(QDialogButtonBox::Ok);
    SetControlId(m_stcPrompt, kIdPrompt);
    SetControlId(m_edtValue, kIdValue);
    SetControlId(m_btnOK, kIdOk);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_stcPrompt);
    layout->addWidget(m_edtValue);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CGetStringDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CGetStringDlg::reject);
    connect(m_edtValue, &QLineEdit::textChanged, this, &CGetStringDlg::UpdateOk);
    setMinimumWidth(ScaledX(300));
    UpdateOk();
}

void CGetStringDlg::SetTitle(const QString& title) {
    if (!title.isNull()) {
        m_strTitle = title;
        setWindowTitle(title);
    }
}

void CGetStringDlg::SetPrompt(const QString& prompt) {
    if (!prompt.isNull()) {
        m_strPrompt = prompt;
        m_stcPrompt->setText(prompt);
    }
}

void CGetStringDlg::SetValue(const QString& value) {
    if (!value.isNull()) {
        m_strValue = value;
        m_edtValue->setText(value);
    }
}

void CGetStringDlg::showEvent(QShowEvent* event) {
    m_edtValue->selectAll();
    m_edtValue->setFocus();
    QDialog::showEvent(event);
}

void CGetStringDlg::UpdateOk() {
    m_btnOK->setEnabled(!m_edtValue->text().isEmpty());
}

void CGetStringDlg::accept() {
    m_strValue = m_edtValue->text();
    QDialog::accept();
}
