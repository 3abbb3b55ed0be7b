#include "ScaleBitmapInt.h"
#include "TestSupport.h"

#include <QLibrary>

#include <gtest/gtest.h>

#include <string>

namespace {

// A picture written as its pixels in hex, lines top first and split by " / ".
QImage Picture(const char* text) {
    const QStringList lines = QString::fromLatin1(text).split(QStringLiteral(" / "));
    const QStringList first = lines.front().split(u' ');
    QImage image(int(first.size()), int(lines.size()), QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        const QStringList pixels = lines[y].split(u' ');
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, pixels.value(x).toUInt(nullptr, 16));
        }
    }
    return image;
}

// The picture in the same writing, colours only.
std::string Text(const QImage& image) {
    QStringList lines;
    for (int y = 0; y < image.height(); ++y) {
        QStringList pixels;
        for (int x = 0; x < image.width(); ++x) {
            pixels.append(
                QString::number(image.pixel(x, y) & 0xFFFFFFu, 16).rightJustified(6, u'0'));
        }
        lines.append(pixels.join(u' '));
    }
    return lines.join(QStringLiteral(" / ")).toUpper().toStdString();
}

struct ScaleCase {
    const char* name;
    const char* source;
    int width;
    int height;
    const char* expected;
};

void PrintTo(const ScaleCase& c, std::ostream* os) {
    *os << c.name;
}

// Expected bytes are worked out by hand from the weight tables: a weight of 4096 is
// 1.0, and the colour is the top byte of the sum of x weight * y weight * byte.
const ScaleCase kCases[] = {
    // 2 -> 4: every entry has a full weight, the cursor moves on every second one.
    {"TwoPixelsDoubleToFour", "0A141E C86432", 4, 1, "0A141E 0A141E C86432 C86432"},
    // 2 -> 3: the middle entry crosses a pixel border, weights 2048 and 2048.
    {"TwoPixelsToThreeBlendTheMiddleOneHalfAndHalf", "6400FF C90001", 3, 1, "6400FF 960080 C90001"},
    // 4 -> 2: unit (2 * 4096) / 4 = 2048 per source pixel; (10 + 21) / 2 rounds down.
    {"FourPixelsToTwoAverageEachPair", "0A0000 150000 00FF00 00FF02", 2, 1, "0F0000 00FF01"},
    // 3 -> 2: unit 8192 / 3 = 2730; the middle pixel splits 1365 / 1365.
    // 255 * 2730 / 4096 = 169.96 and 255 * 1365 / 4096 = 84.98, both rounded down.
    {"ThreePixelsToTwoSplitTheMiddleOne", "FF0000 00FF00 000000", 2, 1, "A95400 005400"},
    // 2 x 2 -> 3 x 3: the centre takes 2048 * 2048 of each corner, a quarter.
    {"TwoByTwoToThreeByThreeMixesAllFourIntoTheCentre", "000000 000000 / 000000 FF0000", 3, 3,
     "000000 000000 000000 / 000000 3F0000 7F0000 / 000000 7F0000 FF0000"},
    // 2 x 4 -> 4 x 2, one side growing and the other shrinking: only the size of the
    // first pass carries over, so the bottom two lines are read unscaled and widened.
    {"GrowingWideWhileShrinkingHighWidensTheBottomLinesOnly",
     "010101 020202 / 030303 040404 / 050505 060606 / 070707 080808", 4, 2,
     "050505 050505 060606 060606 / 070707 070707 080808 080808"},
    // 4 x 1 -> 2 x 2: the line the source lacks reads black.
    {"ShrinkingWideWhileGrowingHighLeavesTheMissingLineBlack", "0A0000 150000 00FF00 00FF02", 2, 2,
     "000000 000000 / 0F0000 00FF01"},
};

}  // namespace

class ScaleBitmapIntCases : public testing::TestWithParam<ScaleCase> {};

TEST_P(ScaleBitmapIntCases, GivesTheBytesOfTheWeightTables) {
    const ScaleCase& c = GetParam();
    const QImage scaled = ScaleBitmapInt(Picture(c.source), c.width, c.height);
    ASSERT_EQ(scaled.size(), QSize(c.width, c.height));
    EXPECT_EQ(Text(scaled), c.expected);
}

INSTANTIATE_TEST_SUITE_P(ScaleBitmapInt, ScaleBitmapIntCases, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<ScaleCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ScaleBitmapInt, ANullPictureOrAnEmptySizeGivesANullPicture) {
    EXPECT_TRUE(ScaleBitmapInt(QImage(), 4, 4).isNull());
    EXPECT_TRUE(ScaleBitmapInt(Picture("FFFFFF"), 0, 4).isNull());
    EXPECT_TRUE(ScaleBitmapInt(Picture("FFFFFF"), 4, -1).isNull());
}

TEST(ScaleBitmapInt, ThePlugInExportsIt) {
    QLibrary plugin(BuildPath(QStringLiteral("zel_mb.so")));
    ASSERT_TRUE(plugin.load()) << qPrintable(plugin.errorString());
    using Scale = QImage (*)(const QImage&, int, int);
    // The name as the compiler's ABI spells QImage ScaleBitmapInt(const QImage&, int, int).
    const auto scale = reinterpret_cast<Scale>(plugin.resolve("_Z14ScaleBitmapIntRK6QImageii"));
    ASSERT_NE(scale, nullptr) << qPrintable(plugin.errorString());
    EXPECT_EQ(Text(scale(Picture("0A141E C86432"), 4, 1)), "0A141E 0A141E C86432 C86432");
}
