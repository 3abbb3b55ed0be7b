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
    // A unit read from an empty edit may be a null text; the value beside it stays.
    StyleBoxTable::JoinGroup({"3", "mm", "", "in", "2", QString(), "1", "", "5", "x y", "", ""},
                             false, row);
    const std::array<QString, ModDB::StyleBoxData::kBoxCount> expected = {
        "1", "2", "3 mm", "", "5 x y", "", "g", "h", "i", "j", "k", "l"};
    EXPECT_EQ(row.Box, expected);
}

}  // namespace
