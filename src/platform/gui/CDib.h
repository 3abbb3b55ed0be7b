#pragma once

#include <QImage>
#include <QPixmap>
#include <QSize>
#include <QString>

// The holder of a bitmap as the dialogs use it. It starts empty; a load that fails
// leaves what it held.
class CDib {
public:
    CDib() = default;
    virtual ~CDib() = default;

    // False for a null image.
    bool Attach(const QImage& image);
    // Bitmap resourceId of the current resource library.
    bool Load(int resourceId);
    // The picture file, scaled to exactly size (its own size when size is empty).
    bool LoadFile(const QString& path, QSize size);
    // A Windows bitmap file only, whatever its name, stretched to exactly size (its own
    // size when size is empty), as the system's bitmap loader does.
    bool LoadBitmapFile(const QString& path, QSize size = {});

    bool IsEmpty() const { return m_image.isNull(); }
    QImage image() const { return m_image; }
    QPixmap pixmap() const;
    QSize size() const { return m_image.size(); }

private:
    QImage m_image;
};
