#include "CKVModule.h"
#include "LispText.h"
#include "MultiBOMGenerator.h"
#include "SelectionList.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

TEST(MultiBOMGeneratorTest, ParseCollectsItemsByNumber) {
    const struct {
        QString text;
        QString items;
        QString numbers;
    } cases[] = {
        // First appearance decides the order; numbers are not sorted.
        {"MFG2=a;MFG1=b", R"((("a" "" "" "" "" "")("b" "" "" "" "" "")))", R"(("2" "1"))"},
        {"CAT7=x", R"((("" "x" "" "" "" "")))", R"(("7"))"},
        {"UMX=1", "", ""},
        {"ASSYCODE=1", "", ""},
        {"MFG=z;=1;\\SPECIAL=BREAK;A=1;noequals", "", ""},
        // Only the first "=" splits; the value stays untrimmed.
        {"KVBLKNAM3=a=b;CNT3= 2", R"((("" "" "" " 2" "" "a=b")))", R"(("3"))"},
        {"MFG1 =x", R"((("x" "" "" "" "" "")))", R"(("1"))"},
        // A leading blank hides the prefix.
        {" MFG1=x", "", ""},
        // Numbers compare as text, and a later key overwrites an earlier one.
        {"CNT01=2;CNT1=3;CNT1=4", R"((("" "" "" "2" "" "")("" "" "" "4" "" "")))", R"(("01" "1"))"},
        {"UM4=m;ASSYCODE4=q;MFG4=;", R"((("" "" "q" "" "m" "")))", R"(("4"))"},
        // The prefixes match in capitals only: other spellings are no keys at all.
        {"mfg1=a;Cat1=b;assycode1=c;cNT1=d;um1=e;KvBlkNam1=f", "", ""},
        {"CAT1=C;cat1=c;Mfg1=m", R"((("" "C" "" "" "" "")))", R"(("1"))"},
    };
    for (const auto& c : cases) {
        MultiBOMGenerator generator;
        generator.Parse(c.text);
        QString items;
        QString numbers;
        generator.ToText(items, numbers);
        EXPECT_EQ(items, c.items) << c.text.toStdString();
        EXPECT_EQ(numbers, c.numbers) << c.text.toStdString();
    }
}

TEST(MultiBOMGeneratorTest, AppendTermRowHasTwoMembersWithoutItemsAndThreeWith) {
    const struct {
        QString row;
        QString entry;
    } cases[] = {
        {"BLK;A=1", R"(("BLK" (("A" "1"))))"},
        {"BLK;MFG1=M;CAT1=C;CNT1=2",
         R"(("BLK" (("MFG1" "M") ("CAT1" "C") ("CNT1" "2")) ((("M" "C" "" "2" "" "")) ("1"))))"},
        // Tokens without "=" are dropped, flag tokens are listed as pairs, and several
        // items keep their order.
        {"BLK;junk;\\SPECIAL=BREAK", R"(("BLK" (("\\SPECIAL" "BREAK"))))"},
        {"BLK", R"(("BLK" nil))"},
        {"BLK;MFG2=a;CAT1=c", R"(("BLK" (("MFG2" "a") ("CAT1" "c")) )"
                              R"(((("a" "" "" "" "" "") ("" "c" "" "" "" "")) ("2" "1"))))"},
    };
    for (const auto& c : cases) {
        CKVModule module;
        module.SetTermRow(1, c.row);
        HostValue list;
        AppendTermRow(module, 1, list);
        EXPECT_EQ(LispText::Print(list), c.entry) << c.row.toStdString();
    }
}

}  // namespace
