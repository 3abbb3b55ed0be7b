#include "StylePicture.h"

#include "DialogControls.h"
#include "HostServices.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QSize>

QString StylePicture::FileName(int style, const QString& suffix) {
    return QStringLiteral("style%1%2.bmp").arg(style).arg(suffix);
}

CDib StylePicture::Load(int style, const QString& suffix) {
    QString file = FileName(style, suffix);
    QString found;
    if (HostFindFile(file, found) == kHostOk) {
        file = found;
    }
    CDib picture;
    if (!picture.LoadBitmapFile(file, QSize(ScaledX(kWidth), ScaledY(kHeight)))) {
        picture.Load(kMissingBitmap);
    }
    return picture;
}

QGroupBox* StylePicture::MakeStyleButtons(QWidget* parent, QButtonGroup* group, int firstId) {
    constexpr int kStyleCount = 9;
    constexpr int kPerRow = 3;
    auto* box = new QGroupBox(QObject::tr("Style"), parent);
    auto* grid = new QGridLayout(box);
    for (int style = 1; style <= kStyleCount; ++style) {
        grid->addWidget(
            MakeRadio(box, QString::number(style), firstId + style - 1, group, style - 1),
            (style - 1) / kPerRow, (style - 1) % kPerRow);
    }
    return box;
}

QLabel* StylePicture::MakePictureControl(QWidget* parent, int id) {
    auto* picture = new QLabel(parent);
    SetControlId(picture, id);
    picture->setFixedSize(ScaledX(kWidth), ScaledY(kHeight));
    picture->setFrameShape(QFrame::StyledPanel);
    return picture;
}
