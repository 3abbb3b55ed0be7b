#include "BlockNames.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

TEST(BlockNames, ModuleFormMakesHorizontalAnyStyleNamesOfTheTwoFamiliesOnly) {
    const struct {
        const char* name;
        const char* moduleForm;
    } cases[] = {
        {"VP2ABC", "HP?ABC"},
        {"vp2abc", "Hp?abc"},
        {"HP1DI", "HP?DI"},
        {"hP9x", "hP?x"},
        {"XP2ABC", "XP2ABC"},
        {"HPABC", "HPABC"},
        {"HP?ABC", "HP?ABC"},
        {"HV2ABC", "HV2ABC"},
        {"VP", "VP"},
        {"VP2", "HP?"},
        {"", ""},
        {"HP2\u00c4BC", "HP?\u00c4BC"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(BlockNames::ModuleForm(QString::fromUtf8(row.name)),
                  QString::fromUtf8(row.moduleForm))
            << row.name;
    }
}

TEST(BlockNames, SearchFormTakesAnyHOrVNameWithAStyleOrQuestionMarkThird) {
    const struct {
        const char* name;
        const char* searchForm;
    } cases[] = {
        {"VP2ABC", "HP?ABC"},
        {"HP1ABC", "HP?ABC"},
        {"hp?ABC", "Hp?ABC"},
        {"VX3Y", "HX?Y"},
        {"XP2ABC", "XP2ABC"},
        {"HPABC", "HPABC"},
        {"H1", "H1"},
        {"V?", "V?"},
        {"H\U0001F600"
         "2Z",
         "H\U0001F600?Z"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(BlockNames::SearchForm(QString::fromUtf8(row.name)),
                  QString::fromUtf8(row.searchForm))
            << row.name;
    }
}
