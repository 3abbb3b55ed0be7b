#include "BlockNames.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

// The module form makes horizontal any-style names of the two families only; the search
// form takes any H or V name whose third character is a style or a question mark.
TEST(BlockNames, ModuleFormAndSearchFormReplaceTheStyleOfTheirFamilies) {
    using Form = QString (*)(const QString&);
    const Form module = BlockNames::ModuleForm;
    const Form search = BlockNames::SearchForm;
    const struct {
        Form form;
        const char* name;
        const char* expected;
    } cases[] = {
        {module, "VP2ABC", "HP?ABC"},
        {module, "vp2abc", "Hp?abc"},
        {module, "HP1DI", "HP?DI"},
        {module, "hP9x", "hP?x"},
        {module, "XP2ABC", "XP2ABC"},
        {module, "HPABC", "HPABC"},
        {module, "HP?ABC", "HP?ABC"},
        {module, "HV2ABC", "HV2ABC"},
        {module, "VP", "VP"},
        {module, "VP2", "HP?"},
        {module, "", ""},
        {module, "HP2\u00c4BC", "HP?\u00c4BC"},
        {search, "VP2ABC", "HP?ABC"},
        {search, "HP1ABC", "HP?ABC"},
        {search, "hp?ABC", "Hp?ABC"},
        {search, "VX3Y", "HX?Y"},
        {search, "XP2ABC", "XP2ABC"},
        {search, "HPABC", "HPABC"},
        {search, "H1", "H1"},
        {search, "V?", "V?"},
        {search,
         "H\U0001F600"
         "2Z",
         "H\U0001F600?Z"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.form(QString::fromUtf8(c.name)), QString::fromUtf8(c.expected))
            << (c.form == module ? "module form of " : "search form of ") << c.name;
    }
}
