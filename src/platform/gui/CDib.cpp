#include "CDib.h"

#include "ResourceLibrary.h"

#include <QImageReader>

bool CDib::Attach(const QImage& image) {
    if (image.isNull()) {
        return false;
    }
    m_image = image;
    return true;
}

bool CDib::Load(int resourceId) {
    const ResourceLibrary* resources = CurrentResources();
    const QString path = resources ? resources->bitmapPath(resourceId) : QString();
    return !path.isEmpty() && Attach(QImage(path));
}

bool CDib::LoadFile(const QString& path, QSize size) {
    QImage image(path);
    if (!image.isNull() && !size.isEmpty()) {
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    return Attach(image);
}

bool CDib::LoadBitmapFile(const QString& path, QSize size) {
    QImageReader reader(path, "bmp");
    reader.setDecideFormatFromContent(false);
    QImage image = reader.read();
    if (!image.isNull() && !size.isEmpty()) {
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
    return Attach(image);
}

QPixmap CDib::pixmap() const {
    return m_image.isNull() ? QPixmap() : QPixmap::fromImage(m_image);
}
