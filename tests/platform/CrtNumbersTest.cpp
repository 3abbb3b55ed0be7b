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

// Regression: "1e-400" read as infinity, so a box value "1e-400 mm" reached the
// selection's value list as "inf", which no Lisp reads.
TEST(CrtNumbers, RealsBeyondTheDoubleRangeStayFinite) {
    const RealCase cases[] = {
        {"1e-400 mm", 0.0},
        {"-1e-400", 0.0},
        {"1e-99999999999999999999", 0.0},
        {"4.9e-324", 4.9406564584124654e-324},  // the smallest subnormal still reads
        {"1e999 mm", 1.7976931348623157e308},
        {"-1e999", -1.7976931348623157e308},
        {"99999999999999999999e99999999999999999999", 1.7976931348623157e308},
    };
    for (const RealCase& c : cases) {
        const double value = crt::wtof(QString::fromUtf8(c.text));
        EXPECT_TRUE(std::isfinite(value)) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
}
