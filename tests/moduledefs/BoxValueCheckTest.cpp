#include "BoxDialogFixture.h"
#include "BoxValueCheck.h"

#include <optional>

TEST(BoxValueCheck, ValuesAreDigitsAndSeparatorsButNotSeparatorsAlone) {
    const struct {
        bool bComma;
        const char* text;
        bool bGood;
    } cases[] = {
        {false, "", true},          {false, "1.2.3", true}, {false, ".5", true},
        {false, ".", false},        {false, "..", false},   {false, "1,5", false},
        {false, "-1", false},       {false, " 1", false},   {false, "1e3", false},
        {false, "\xd9\xa1", false},  // an Arabic-Indic one
        {true, "2,5", true},        {true, "1,2.3", true},  {true, ",", false},
        {true, ",.", false},        {true, ".", false},     {true, "2;5", false},
    };
    for (const auto& c : cases) {
        std::optional<CommaLocale> comma;
        if (c.bComma) {
            comma.emplace();
        }
        EXPECT_EQ(BoxValueCheck::IsGoodValue(QString::fromUtf8(c.text)), c.bGood)
            << c.text << (c.bComma ? " under a comma locale" : "");
    }
}

TEST(BoxValueCheck, TheLastBadValueOnTheScreenIsChosenAndUnitsAreNotLookedAt) {
    // Texts 2, 4 and 8 are the values of screen places 2, 3 and 5.
    EXPECT_EQ(BoxValueCheck::LastBadPlace(Texts(12, {{2, "x"}, {8, "."}, {4, "3"}})), 5);
    EXPECT_EQ(BoxValueCheck::LastBadPlace(Texts(12, {{10, "1.5"}, {11, "!?"}})), 0);
    EXPECT_EQ(BoxValueCheck::LastBadPlace(QStringList{"?"}), 1);  // short, yet no crash
}

TEST(BoxValueCheck, TheStyleRuleWantsAllFourMainValuesOnceTheGroupHasText) {
    // The values of fields 1 to 4 are texts 6, 4, 0 and 2 (screen places 4, 3, 1, 2).
    EXPECT_FALSE(BoxValueCheck::LacksAnyMainValue(Texts(12, {})));
    EXPECT_FALSE(
        BoxValueCheck::LacksAnyMainValue(Texts(12, {{0, "1"}, {2, "2"}, {4, "3"}, {6, "4"}})));
    EXPECT_TRUE(
        BoxValueCheck::LacksAnyMainValue(Texts(12, {{0, "1"}, {2, "2"}, {4, "3"}, {8, "5"}})));
    EXPECT_TRUE(BoxValueCheck::LacksAnyMainValue(Texts(12, {{11, "mm"}})));
}
