#include "StyleBoxTable.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

ModDB::StyleBoxData RowOf(const std::array<QString, ModDB::StyleBoxData::kBoxCount>& texts) {
    ModDB::StyleBoxData row;
    row.Box = texts;
    return row;
}

TEST(StyleBoxTable, ARowTextSplitsAtItsFirstBlankAndAnEmptySideKeepsWhatTheSlotHeld) {
    // Fields 1 to 6 of group B; the screen shows them in the order 3, 4, 2, 1, 5, 6.
    const ModDB::StyleBoxData row =
        RowOf({"", "", "", "", "", "", "1.5 in", "2", " cm", "4 ", "5 sq in", ""});
    QStringList twelve = {"9", "mm", "8", "ft", "7", "yd", "6", "m", "5", "km", "4", "pc"};
    StyleBoxTable::SplitGroup(row, true, twelve);
    EXPECT_EQ(twelve,
              QStringList({"9", "cm", "4", "ft", "2", "", "1.5", "in", "5", "sq in", "", ""}));
}

TEST(StyleBoxTable, AGroupJoinsIntoValueAndUnitAndAnEmptyValueDropsItsUnit) {
    ModDB::StyleBoxData row = RowOf({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"});
    // Regression guard: a unit read from an empty edit may be a null text, which must not
    // drop the value beside it.
    StyleBoxTable::JoinGroup({"3", "mm", "", "in", "2", QString(), "1", "", "5", "x y", "", ""},
                             false, row);
    const std::array<QString, ModDB::StyleBoxData::kBoxCount> expected = {
        "1", "2", "3 mm", "", "5 x y", "", "g", "h", "i", "j", "k", "l"};
    EXPECT_EQ(row.Box, expected);
}

TEST(StyleBoxTable, TheFieldCheckWantsGoodNumbersAllFourMainValuesAndAValueForEachUnit) {
    const struct {
        const char* name;
        QStringList twelve;
        int message;
        int place;
    } cases[] = {
        {"all empty", {}, 0, 0},
        {"all four main values", {"1", "", "2", "", "3", "", "4", "", "", "", "", ""}, 0, 0},
        {"value 1 only", {"", "", "", "", "", "", "1", "", "", "", "", ""}, 5006, 0},
        {"a unit alone", {"", "", "", "", "", "", "", "", "", "", "", "mm"}, 5006, 0},
        {"unit 6 alone", {"1", "", "2", "", "3", "", "4", "", "", "", "", "mm"}, 5007, 6},
        {"units 5 and 6 alone", {"1", "", "2", "", "3", "", "4", "", "", "in", "", "mm"}, 5007, 5},
        {"two bad numbers", {"1", "", "x", "", "3", "", "4", "", "", "", ".", ""}, 10123, 6},
        {"a bad number and a missing value",
         {"", "", "", "", "1a", "", "", "", "", "", "", ""},
         10123,
         3},
    };
    for (const auto& c : cases) {
        const StyleFieldCheck check = StyleBoxTable::CheckFields(c.twelve);
        EXPECT_EQ(check.nMessage, c.message) << c.name;
        EXPECT_EQ(check.nPlace, c.place) << c.name;
    }
}

}  // namespace
