#include "StylePicture.h"

#include "DialogControls.h"
#include "HostServices.h"

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
