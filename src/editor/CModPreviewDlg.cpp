#include "CModPreviewDlg.h"

#include "DialogControls.h"
#include "SheetPreview.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

CModPreviewDlg::CModPreviewDlg(QWidget* parent)
    : HelpDialog(parent, QString()), m_preview(new SheetPreview(this)) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    m_btnOK = buttons->button(QDialogButtonBox::Ok);
    SetControlId(m_preview, kIdPreview);
    SetControlId(m_btnOK, kIdOk);
    m_preview->setMinimumSize(ScaledX(400), ScaledY(300));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_preview, 1);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

void CModPreviewDlg::SetTitle(const QString& title) {
    if (!title.isNull()) {
        m_strTitle = title;
    }
}

void CModPreviewDlg::SetFile(const QString& file) {
    if (!file.isNull()) {
        m_strFile = file;
    }
}

bool CModPreviewDlg::OnInitDialog() {
    m_bInited = true;
    if (!m_preview->SetFile(m_strFile)) {
        return false;
    }
    if (!m_strTitle.isEmpty()) {
        setWindowTitle(m_strTitle);
    }
    m_btnOK->setFocus();
    return true;
}

void CModPreviewDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_bInited && !OnInitDialog()) {
        QTimer::singleShot(0, this, &QDialog::reject);
    }
}
