#include "CrtNumbers.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

struct RealCase {
    const char* text;
    double value;
};

class WtofTest : public testing::TestWithParam<RealCase> {};

TEST_P(WtofTest, ReadsTheLeadingNumber) {
    EXPECT_DOUBLE_EQ(crt::wtof(QString::fromUtf8(GetParam().text)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Texts, WtofTest,
                         testing::Values(RealCase{"12.5 mm", 12.5}, RealCase{"  -3.25", -3.25},
                                         RealCase{"abc", 0.0}, RealCase{" mm", 0.0},
                                         RealCase{"", 0.0}, RealCase{".5", 0.5},
                                         RealCase{"7.", 7.0}, RealCase{"-.5x", -0.5},
                                         RealCase{"2.5e3", 2500.0}, RealCase{"2.5e", 2.5},
                                         RealCase{"2.5e+x", 2.5}, RealCase{"1,5", 1.0},
                                         RealCase{"+4", 4.0}, RealCase{".", 0.0},
                                         RealCase{"-", 0.0}, RealCase{"1e-3", 0.001}));

TEST(CrtNumbers, IntegersStopAtTheFirstNonDigitAndClamp) {
    EXPECT_EQ(crt::wtoi(QStringLiteral("3")), 3);
    EXPECT_EQ(crt::wtoi(QStringLiteral(" 12abc")), 12);
    EXPECT_EQ(crt::wtoi(QStringLiteral("-7.9")), -7);
    EXPECT_EQ(crt::wtoi(QStringLiteral("x1")), 0);
    EXPECT_EQ(crt::wtoi(QStringLiteral("99999999999")), INT_MAX);
    EXPECT_EQ(crt::wtoi(QStringLiteral("-99999999999")), INT_MIN);
    EXPECT_EQ(crt::wtol(QStringLiteral("1")), 1L);
    EXPECT_EQ(crt::wtol(QStringLiteral("")), 0L);
}

TEST(CrtNumbers, AHugeExponentGivesAnInfiniteValueOfTheRightSign) {
    EXPECT_TRUE(std::isinf(crt::wtof(QStringLiteral("1e999"))));
    EXPECT_LT(crt::wtof(QStringLiteral("-1e999")), 0.0);
}
