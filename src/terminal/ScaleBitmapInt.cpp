#include "ScaleBitmapInt.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

constexpr int kOne = 4096;  // weight 1.0 in 12-bit fixed point
constexpr int kChannels = 3;

// One entry of an axis's table: the weight of the pixel under the cursor and of the
// next one. A non-zero b moves the cursor on after the entry; -1 moves it without a
// second pixel.
struct Weight {
    int a = 0;
    int b = 0;
};

// The table of one axis, one entry per pixel of the longer side.
std::vector<Weight> AxisWeights(int oldSize, int newSize, bool bEnlarge) {
    const int total = std::max(oldSize, newSize);
    const int step = std::min(oldSize, newSize);
    const int unit = bEnlarge ? kOne : (step * kOne) / total;
    const int divisor = bEnlarge ? step : total;
    std::vector<Weight> table(total);
    int offset = 0;
    for (Weight& entry : table) {
        if (offset + step > total) {
            entry.a = ((total - offset) * kOne) / divisor;
            entry.b = ((offset + step - total) * kOne) / divisor;
            offset = offset + step - total;
        } else if (offset + step == total) {
            entry.a = unit;
            entry.b = -1;
            offset = 0;
        } else {
            entry.a = unit;
            offset += step;
        }
    }
    return table;
}

// The pixels as a device-independent bitmap holds them: three bytes each, the bottom
// line first. Lines past the picture read as zero.
class DibRows {
public:
    DibRows(const QImage& image, int width, int height)
        : m_image(image.convertToFormat(QImage::Format_RGB888)), m_width(width), m_height(height) {}

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    std::uint32_t Byte(int x, int row, int channel) const {
        if (row >= m_image.height() || x >= m_image.width()) {
            return 0;
        }
        return m_image.constScanLine(m_image.height() - 1 - row)[x * kChannels + channel];
    }

private:
    QImage m_image;
    int m_width;
    int m_height;
};

// Target bytes, bottom line first, as 32-bit sums whose top byte is the colour.
class DibSums {
public:
    DibSums(int width, int height)
        : m_width(width), m_height(height), m_sums(std::size_t(width) * height * kChannels) {}

    std::uint32_t& At(int x, int row, int channel) {
        return m_sums[(std::size_t(row) * m_width + x) * kChannels + channel];
    }

    QImage ToImage() const {
        QImage image(m_width, m_height, QImage::Format_RGB888);
        for (int row = 0; row < m_height; ++row) {
            uchar* line = image.scanLine(m_height - 1 - row);
            for (int i = 0; i < m_width * kChannels; ++i) {
                line[i] = uchar(m_sums[std::size_t(row) * m_width * kChannels + i] >> 24);
            }
        }
        // The screen's own format, as a bitmap made compatible with it.
        return image.convertToFormat(QImage::Format_RGB32);
    }

private:
    int m_width;
    int m_height;
    std::vector<std::uint32_t> m_sums;
};

// Each target pixel mixes the source pixel under the cursors with its right and upper
// neighbours, by the weights of both axes.
void Enlarge(const DibRows& source, DibSums& target, const std::vector<Weight>& xWeights,
             const std::vector<Weight>& yWeights) {
    int sy = 0;
    for (std::size_t ty = 0; ty < yWeights.size(); ++ty) {
        const Weight wy = yWeights[ty];
        int sx = 0;
        for (std::size_t tx = 0; tx < xWeights.size(); ++tx) {
            const Weight wx = xWeights[tx];
            for (int c = 0; c < kChannels; ++c) {
                std::uint32_t sum = std::uint32_t(wx.a * wy.a) * source.Byte(sx, sy, c);
                if (wx.b > 0) {
                    sum += std::uint32_t(wx.b * wy.a) * source.Byte(sx + 1, sy, c);
                }
                if (wy.b > 0) {
                    sum += std::uint32_t(wx.a * wy.b) * source.Byte(sx, sy + 1, c);
                    if (wx.b > 0) {
                        sum += std::uint32_t(wx.b * wy.b) * source.Byte(sx + 1, sy + 1, c);
                    }
                }
                target.At(int(tx), int(ty), c) = sum;
            }
            if (wx.b != 0) {
                ++sx;
            }
        }
        if (wy.b != 0) {
            ++sy;
        }
    }
}

// Each source pixel adds its weighted bytes to the target pixel under the cursors and
// to the neighbours it overlaps.
void Shrink(const DibRows& source, DibSums& target, const std::vector<Weight>& xWeights,
            const std::vector<Weight>& yWeights) {
    int ty = 0;
    for (int sy = 0; sy < source.Height(); ++sy) {
        const Weight wy = yWeights[sy];
        int tx = 0;
        for (int sx = 0; sx < source.Width(); ++sx) {
            const Weight wx = xWeights[sx];
            for (int c = 0; c < kChannels; ++c) {
                const std::uint32_t byte = source.Byte(sx, sy, c);
                target.At(tx, ty, c) += std::uint32_t(wx.a * wy.a) * byte;
                if (wx.b > 0) {
                    target.At(tx + 1, ty, c) += std::uint32_t(wx.b * wy.a) * byte;
                }
                if (wy.b > 0) {
                    target.At(tx, ty + 1, c) += std::uint32_t(wx.a * wy.b) * byte;
                    if (wx.b > 0) {
                        target.At(tx + 1, ty + 1, c) += std::uint32_t(wx.b * wy.b) * byte;
                    }
                }
            }
            if (wx.b != 0) {
                ++tx;
            }
        }
        if (wy.b != 0) {
            ++ty;
        }
    }
}

// One pass from rows read as width by height to the new size.
QImage ScalePass(const QImage& pixels, int width, int height, int newWidth, int newHeight) {
    const bool bEnlarge = width < newWidth || height < newHeight;
    const DibRows source(pixels, width, height);
    DibSums target(newWidth, newHeight);
    const std::vector<Weight> xWeights = AxisWeights(width, newWidth, bEnlarge);
    const std::vector<Weight> yWeights = AxisWeights(height, newHeight, bEnlarge);
    if (bEnlarge) {
        Enlarge(source, target, xWeights, yWeights);
    } else {
        Shrink(source, target, xWeights, yWeights);
    }
    return target.ToImage();
}

}  // namespace

QImage ScaleBitmapInt(const QImage& source, int newWidth, int newHeight) {
    if (source.isNull() || newWidth < 1 || newHeight < 1) {
        return {};
    }
    const int width = source.width();
    const int height = source.height();
    const bool bMixed =
        (width < newWidth && height > newHeight) || (width > newWidth && height < newHeight);
    if (bMixed) {
        // The first pass's picture is dropped; only its size carries over.
        return ScalePass(source, width, newHeight, newWidth, newHeight);
    }
    return ScalePass(source, width, height, newWidth, newHeight);
}
