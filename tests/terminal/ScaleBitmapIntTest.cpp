#include "ScaleBitmapInt.h"
#include "TestSupport.h"

#include <QLibrary>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Line = std::vector<QRgb>;

// A picture from its lines, top first.
QImage Picture(const std::vector<Line>& lines) {
    QImage image(int(lines.front().size()), int(lines.size()), QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, lines[y][x]);
        }
    }
    return image;
}

std::vector<Line> Lines(const QImage& image) {
    std::vector<Line> lines(image.height(), Line(image.width()));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            lines[y][x] = image.pixel(x, y) & 0xFFFFFFu;
        }
    }
    return lines;
}

struct ScaleCase {
    const char* name;
    std::vector<Line> source;
    int width;
    int height;
    std::vector<Line> expected;
};

void PrintTo(const ScaleCase& c, std::ostream* os) {
    *os << c.name;
}

// Expected bytes are worked out by hand from the weight tables: a weight of 4096 is
// 1.0, and the colour is the top byte of the sum of x weight * y weight * byte.
const ScaleCase kCases[] = {
    // 2 -> 4: every entry has a full weight, the cursor moves on every second one.
    {"TwoPixelsDoubleToFour",
     {{0x0A141E, 0xC86432}},
     4,
     1,
     {{0x0A141E, 0x0A141E, 0xC86432, 0xC86432}}},
    // 2 -> 3: the middle entry crosses a pixel border, weights 2048 and 2048.
    {"TwoPixelsToThreeBlendTheMiddleOneHalfAndHalf",
     {{0x6400FF, 0xC90001}},
     3,
     1,
     {{0x6400FF, 0x960080, 0xC90001}}},
    // 4 -> 2: unit (2 * 4096) / 4 = 2048 per source pixel; (10 + 21) / 2 rounds down.
    {"FourPixelsToTwoAverageEachPair",
     {{0x0A0000, 0x150000, 0x00FF00, 0x00FF02}},
     2,
     1,
     {{0x0F0000, 0x00FF01}}},
    // 3 -> 2: unit 8192 / 3 = 2730; the middle pixel splits 1365 / 1365.
    // 255 * 2730 / 4096 = 169.96 and 255 * 1365 / 4096 = 84.98, both rounded down.
    {"ThreePixelsToTwoSplitTheMiddleOne",
     {{0xFF0000, 0x00FF00, 0x000000}},
     2,
     1,
     {{0xA95400, 0x005400}}},
    // 2 x 2 -> 3 x 3: the centre takes 2048 * 2048 of each corner, a quarter.
    {"TwoByTwoToThreeByThreeMixesAllFourIntoTheCentre",
     {{0x000000, 0x000000}, {0x000000, 0xFF0000}},
     3,
     3,
     {{0x000000, 0x000000, 0x000000},
      {0x000000, 0x3F0000, 0x7F0000},
      {0x000000, 0x7F0000, 0xFF0000}}},
    // 2 x 4 -> 4 x 2, one side growing and the other shrinking: only the size of the
    // first pass carries over, so the bottom two lines are read unscaled and widened.
    {"GrowingWideWhileShrinkingHighWidensTheBottomLinesOnly",
     {{0x010101, 0x020202}, {0x030303, 0x040404}, {0x050505, 0x060606}, {0x070707, 0x080808}},
     4,
     2,
     {{0x050505, 0x050505, 0x060606, 0x060606}, {0x070707, 0x070707, 0x080808, 0x080808}}},
    // 4 x 1 -> 2 x 2: the line the source lacks reads black.
    {"ShrinkingWideWhileGrowingHighLeavesTheMissingLineBlack",
     {{0x0A0000, 0x150000, 0x00FF00, 0x00FF02}},
     2,
     2,
     {{0x000000, 0x000000}, {0x0F0000, 0x00FF01}}},
};

}  // namespace

class ScaleBitmapIntCases : public testing::TestWithParam<ScaleCase> {};

TEST_P(ScaleBitmapIntCases, GivesTheBytesOfTheWeightTables) {
    const ScaleCase& c = GetParam();
    const QImage scaled = ScaleBitmapInt(Picture(c.source), c.width, c.height);
    ASSERT_EQ(scaled.size(), QSize(c.width, c.height));
    EXPECT_EQ(Lines(scaled), c.expected);
}

INSTANTIATE_TEST_SUITE_P(ScaleBitmapInt, ScaleBitmapIntCases, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<ScaleCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ScaleBitmapInt, ANullPictureOrAnEmptySizeGivesANullPicture) {
    EXPECT_TRUE(ScaleBitmapInt(QImage(), 4, 4).isNull());
    EXPECT_TRUE(ScaleBitmapInt(Picture({{0xFFFFFF}}), 0, 4).isNull());
    EXPECT_TRUE(ScaleBitmapInt(Picture({{0xFFFFFF}}), 4, -1).isNull());
}

TEST(ScaleBitmapInt, ThePlugInExportsIt) {
    QLibrary plugin(BuildPath(QStringLiteral("zel_mb.so")));
    ASSERT_TRUE(plugin.load()) << qPrintable(plugin.errorString());
    using Scale = QImage (*)(const QImage&, int, int);
    // The name as the compiler's ABI spells QImage ScaleBitmapInt(const QImage&, int, int).
    const auto scale = reinterpret_cast<Scale>(plugin.resolve("_Z14ScaleBitmapIntRK6QImageii"));
    ASSERT_NE(scale, nullptr) << qPrintable(plugin.errorString());
    EXPECT_EQ(Lines(scale(Picture({{0x0A141E, 0xC86432}}), 4, 1)),
              (std::vector<Line>{{0x0A141E, 0x0A141E, 0xC86432, 0xC86432}}));
}
