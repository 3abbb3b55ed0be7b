#include "CTermSamp.h"

#include "DialogControls.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

CTermSamp::CTermSamp(QWidget* parent) : QDialog(parent), m_stcPicture(new QLabel(this)) {
    setWindowTitle(tr("Terminal Sample"));
    SetControlId(m_stcPicture, kIdPicture);
    m_stcPicture->setFixedSize(ScaledX(kPictureSize), ScaledY(kPictureSize));
    m_stcPicture->setAlignment(Qt::AlignCenter);
    m_stcPicture->setFrameShape(QFrame::StyledPanel);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    SetControlId(buttons->button(QDialogButtonBox::Ok), kIdOk);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_stcPicture, 0, Qt::AlignHCenter);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CTermSamp::accept);
}

CTermSamp::~CTermSamp() = default;

void CTermSamp::SetBitmapFile(const QString& path) {
    if (path.isNull()) {
        return;
    }
    m_dib = CDib();
    m_dib.LoadBitmapFile(path, QSize(ScaledX(kPictureSize), ScaledY(kPictureSize)));
}

void CTermSamp::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    m_stcPicture->setPixmap(m_dib.pixmap());
}
