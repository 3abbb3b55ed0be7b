#include "CKVModule.h"

#include "HostServices.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QLocale>
#include <QMap>

#include <functional>

#include <gtest/gtest.h>

namespace {

CKVModule ModuleWithRows(const QList<QStringList>& rows) {
    CKVModule module;
    for (const QStringList& row : rows) {
        const int number = module.GetTermCount() + 1;
        module.SetTermText(number, row.value(0));
        module.SetTermSpecial(number, row.value(1));
    }
    return module;
}

CKVModule ModuleWithSpecial(const QString& special) {
    return ModuleWithRows({{"HP?SPACE", special}});
}

QStringList Texts(const CKVModule& module) {
    QStringList texts;
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        texts.append(module.GetTermText(row));
    }
    return texts;
}

// A prompt table of the test's own; it records what it was asked.
class PromptStore : public ZelPlcDbIO {
public:
    QString ReturnLocalizedPrompt(const QString& prompt) override {
        asked.append(prompt);
        return known.value(prompt);
    }
    QMap<QString, QString> known;
    QStringList asked;
};

}  // namespace

TEST(CKVModuleTest, ClearKeepsDirFlagsTableNameAndTheNewMarkWhenAsked) {
    CKVModule module = ModuleWithSpecial("A=1");
    module.SetDirFlags("3");
    module.SetTableName("T1");
    module.SetCatalog("C-16");
    module.SetBoxA1(0.0);
    module.SetPrompts({"ONLY"});
    module.SetIsNew(false);
    module.Clear(false);
    EXPECT_FALSE(module.GetIsNew());
    EXPECT_EQ(module.GetDirFlags(), "3");
    EXPECT_EQ(module.GetTableName(), "T1");
    EXPECT_FALSE(module.GetCatalog().isNull());
    EXPECT_EQ(module.GetCatalog(), "");
    EXPECT_EQ(module.GetBoxA1(), -1.0);
    EXPECT_EQ(module.Prompts(), QStringList(CKVModule::kPromptCount, QString()));
    EXPECT_EQ(module.GetTermCount(), 0);
    module.Clear(true);
    EXPECT_TRUE(module.GetIsNew());
}

TEST(CKVModuleTest, CopyDropsTableNameAssignmentKeepsTargetTableAndTrailingRows) {
    CKVModule source = ModuleWithRows({{"S1", "X=1"}, {"S2", ""}});
    source.SetTableName("SOURCE");
    source.SetSpare("spare");
    source.SetBoxB2(0.0);
    source.SetIsNew(false);
    const CKVModule copy(source);
    EXPECT_TRUE(copy.GetTableName().isEmpty());
    EXPECT_EQ(copy.GetSpare(), "spare");
    EXPECT_EQ(copy.GetBoxB2(), 0.0);
    EXPECT_FALSE(copy.GetIsNew());
    EXPECT_EQ(copy.GetTermSpecial(1), "X=1");

    CKVModule target = ModuleWithRows({{"T1", ""}, {"T2", ""}, {"T3", "Y=3"}});
    target.SetTableName("TARGET");
    target = source;
    EXPECT_EQ(target.GetTableName(), "TARGET");
    EXPECT_EQ(Texts(target), QStringList({"S1", "S2", "T3"}));
    EXPECT_EQ(target.GetTermSpecial(3), "Y=3");
    CKVModule empty;
    empty = source;
    EXPECT_EQ(Texts(empty), QStringList({"S1", "S2"}));
}

TEST(CKVModuleTest, BoxAndRowAccessorsIgnoreOutOfRangeNumbers) {
    CKVModule module = ModuleWithRows({{"A", ""}});
    module.SetBox(false, 0, 5.0);
    module.SetBox(true, 7, 5.0);
    EXPECT_EQ(module.GetBox(false, 0), -1.0);
    EXPECT_EQ(module.GetBox(true, 7), -1.0);

    module.SetTermText(3, "C");  // count + 2
    module.SetTermText(1, QString());
    EXPECT_EQ(Texts(module), QStringList({"A"}));
    EXPECT_TRUE(module.GetTermText(2).isNull());
    EXPECT_TRUE(module.GetTermSpecial(0).isNull());
    module.SetTermText(2, "B");
    EXPECT_FALSE(module.GetTermSpecial(2).isNull());
    EXPECT_FALSE(module.RemoveTerm(3));
    EXPECT_TRUE(module.RemoveTerm(1));
    EXPECT_EQ(Texts(module), QStringList({"B"}));
}

TEST(CKVModuleTest, InsertTermCopyTakesTheTextOfTheRowAtOrBeforeThePosition) {
    const struct {
        int row;
        bool bFromSameRow;
        bool inserted;
        QStringList texts;
    } cases[] = {
        {1, true, true, {"A", "A", "B", ""}},  {2, false, true, {"A", "A", "B", ""}},
        {3, false, true, {"A", "B", "B", ""}}, {3, true, false, {"A", "B", ""}},
        {4, false, false, {"A", "B", ""}},     {1, false, false, {"A", "B", ""}},
        {0, true, false, {"A", "B", ""}},      {5, false, false, {"A", "B", ""}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.row);
        CKVModule module = ModuleWithRows({{"A", "S=1"}, {"B", "S=2"}, {"", "S=3"}});
        EXPECT_EQ(module.InsertTermCopy(c.row, c.bFromSameRow), c.inserted);
        EXPECT_EQ(Texts(module), c.texts);
        if (c.inserted) {
            EXPECT_EQ(module.GetTermSpecial(c.row), "");
        }
    }
}

TEST(CKVModuleTest, ValueAndUnitTextsSplitAndBuildBackAlike) {
    // An empty side of the text leaves its part as it was: "7" and "mm" here.
    const struct {
        QString text;
        bool ok;
        QString valueAndUnit, rebuilt;
    } cases[] = {{QString(), false, "7|mm", "7 mm"}, {"2.5 in", true, "2.5|in", "2.5 in"},
                 {"2.5", true, "2.5|", "2.5"},       {" in", true, "7|in", "7 in"},
                 {"2.5 ", true, "2.5|mm", "2.5 mm"}, {"1 x y", true, "1|x y", "1 x y"}};
    for (const auto& c : cases) {
        QString value = "7", unit = "mm", out;
        EXPECT_EQ(CKVModule::SplitValueUnit(c.text, value, unit), c.ok) << c.text.toStdString();
        EXPECT_EQ(value + "|" + unit, c.valueAndUnit);
        EXPECT_TRUE(CKVModule::BuildValueWithUnit(value, unit, out));
        EXPECT_EQ(out, c.rebuilt);
    }
    QString out = "old";
    CKVModule::BuildValueWithUnit("2.5", QString(), out);
    EXPECT_EQ(out, "");
    CKVModule::BuildValueWithUnit("", "in", out);
    EXPECT_EQ(out, "");
}

TEST(RowGrammarTest, SetTermRowSplitsAtTheFirstSemicolon) {
    const struct {
        int row;
        QString joined, text, special;
        int count;
    } cases[] = {
        {1, " ;X=1", "", "X=1", 1},
        {1, "  HP?SPACE  ", "HP?SPACE", "OLD=1", 1},
        {1, "   ", "OLD", "OLD=1", 1},
        {1, QString(), "OLD", "OLD=1", 1},
        {1, "BLK ; ", "BLK", "OLD=1", 1},
        {1, " BLK;  A=1;B=2 ", " BLK", "A=1;B=2 ", 1},
        {2, "NEW;TERM_=1", "NEW", "TERM_=1", 2},
        {3, "FAR;A=1", QString(), QString(), 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.joined.toStdString());
        CKVModule module = ModuleWithRows({{"OLD", "OLD=1"}});
        module.SetTermRow(c.row, c.joined);
        EXPECT_EQ(module.GetTermText(c.row), c.text);
        EXPECT_EQ(module.GetTermSpecial(c.row), c.special);
        EXPECT_EQ(module.GetTermCount(), c.count);
    }
}

TEST(RowGrammarTest, FlagReadersIgnoreBlanksAndCaseButSpacingHeedsCase) {
    const struct {
        QString special;
        int brk, includeExclude, addr;
        double spacing;
    } cases[] = {
        {"\\SPECIAL=EXCLUDE;\\special=include", 0, 3, 0, -1.0},
        {"\\SPECIAL = BREAK;A=1;", 1, 0, 0, -1.0},
        {"\\SPECIAL=ADDR_OUT; \\Special=Addr_In ", 0, 0, 3, -1.0},
        {"\\SPECIAL=INCLUDED;\\SPECIAL=BREAKS;X\\SPECIAL=ADDR_IN", 0, 0, 0, -1.0},
        {"\\SPECIAL=SPACINGFACTOR=1.5;\\SPECIAL = SPACINGFACTOR = 2.25mm", 0, 0, 0, 2.25},
        {"\\special=spacingfactor=2", 0, 0, 0, -1.0},
        {"", 0, 0, 0, -1.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.special.toStdString());
        const CKVModule module = ModuleWithSpecial(c.special);
        EXPECT_EQ(module.GetBreak(1), c.brk);
        EXPECT_EQ(module.GetIncludeExclude(1), c.includeExclude);
        EXPECT_EQ(module.GetAddrFlags(1), c.addr);
        EXPECT_EQ(module.GetSpacingFactor(1), c.spacing);
    }
    const CKVModule module = ModuleWithSpecial("\\SPECIAL=BREAK");
    EXPECT_EQ(module.GetBreak(2), 0);
    EXPECT_EQ(module.GetIncludeExclude(0), -1);
    EXPECT_EQ(module.GetAddrFlags(2), -1);
    EXPECT_EQ(module.GetSpacingFactor(2), -1.0);
}

TEST(RowGrammarTest, WritersAppendOrPrependAndRebuildOnlyWhenRemoving) {
    enum Writer { Break, IncludeExclude, Addr, Spacing };
    const std::function<void(CKVModule&, int, double)> write[] = {
        [](CKVModule& m, int row, double value) { m.SetBreak(row, value != 0); },
        [](CKVModule& m, int row, double value) { m.SetIncludeExclude(row, int(value)); },
        [](CKVModule& m, int row, double value) { m.SetAddrFlags(row, int(value)); },
        [](CKVModule& m, int row, double value) { m.SetSpacingFactor(row, value); },
    };
    const struct {
        QString before;
        Writer writer;
        double value;
        QString after;
    } cases[] = {
        {"", Break, 1, "\\SPECIAL=BREAK"},
        {"A =1", Break, 1, "A =1;\\SPECIAL=BREAK"},
        {"A =1;\\SPECIAL=BREAK", Break, 1, "A =1;\\SPECIAL=BREAK"},
        {" A =1;\\special=break", Break, 0, "A=1"},
        // The rebuild keeps blanks behind "=", so this break cannot be switched off.
        {"A =1;\\SPECIAL= BREAK", Break, 0, "A=1;\\SPECIAL= BREAK"},
        {"", IncludeExclude, 3, "\\SPECIAL=INCLUDE;\\SPECIAL=EXCLUDE"},
        {"A =1;\\SPECIAL=EXCLUDE", IncludeExclude, 3, "A =1;\\SPECIAL=EXCLUDE;\\SPECIAL=INCLUDE"},
        {"A =1;\\SPECIAL=EXCLUDE", IncludeExclude, 2, "A=1;\\SPECIAL=INCLUDE"},
        {"\\SPECIAL=INCLUDE;B =2;\\Special=Exclude", IncludeExclude, 0, "B=2"},
        {"", Addr, 3, "\\SPECIAL=ADDR_OUT;\\SPECIAL=ADDR_IN"},
        {"A =1", Addr, 1, "\\SPECIAL=ADDR_IN;A =1"},
        {"\\SPECIAL=ADDR_IN;A =1", Addr, 2, "\\SPECIAL=ADDR_OUT;A=1"},
        {"A =1", Spacing, 2.5, "A =1;\\SPECIAL=SPACINGFACTOR=2.500000"},
        {"A =1;\\SPECIAL=SPACINGFACTOR=2.5", Spacing, -1, "A=1"},
        {"A =1;\\SPECIAL=SPACINGFACTOR=2", Spacing, 2, "A =1;\\SPECIAL=SPACINGFACTOR=2"},
        {"\\special=spacingfactor=2", Spacing, 3,
         "\\special=spacingfactor=2;\\SPECIAL=SPACINGFACTOR=3.000000"},
    };
    // The stored factor keeps its "." whatever the user's locale.
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before.toStdString());
        CKVModule module = ModuleWithRows({{"HP?SPACE", c.before}, {"HP?SPACE", "A =1"}});
        for (int row : {1, 3}) {  // row 3 lies outside and stays a no-op
            write[c.writer](module, row, c.value);
        }
        EXPECT_EQ(module.GetTermSpecial(1), c.after);
        EXPECT_EQ(module.GetTermCount(), 2);
    }
    QLocale::setDefault(previous);
    EXPECT_EQ(ModuleWithSpecial("\\SPECIAL= BREAK").GetBreak(1), 1);
}

TEST(RowGrammarTest, AttributeValuesAreFoundByUpperCaseSubstring) {
    const struct {
        QString special, name;
        bool found;
        QString value;
    } cases[] = {
        {"TAG = 7", "tag", true, " 7"},
        {"XTAG=1", "TAG", true, "1"},
        {"tag=1", "tag", false, "none"},
        {"A=1;TAG=2;TAG=3", "Tag", true, "2"},
        {"\\SPECIAL=BREAK;TAG=4;", "TAG", true, "4"},
        {"TAG=1", "", false, "none"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.special.toStdString());
        const CKVModule module = ModuleWithSpecial(c.special);
        QString value = "none";
        EXPECT_EQ(module.GetAttrValue(c.name, value, 1), c.found);
        EXPECT_EQ(value, c.value);
    }
    QString value;
    EXPECT_FALSE(ModuleWithSpecial("TAG=1").GetAttrValue("TAG", value, 2));
}

TEST(RowGrammarTest, MergeKeepsReplacesDropsAndAppendsPairs) {
    CKVModule module = ModuleWithSpecial(
        "%%1PROMPT=SLOT;\\SPECIAL=BREAK; NOTE ;TAG = 1;DESC=old;KEEP = k;ONCE=1;ONCE=2");
    QStringList pairs{"tag", "9", "Desc", "", "NEW", "n", "EMPTY", "", "once", "x"};
    module.MergeAttrValues(pairs, 1);
    EXPECT_EQ(module.GetTermSpecial(1),
              "%%1PROMPT=SLOT;\\SPECIAL=BREAK;NOTE;tag=9;KEEP= k;once=x;ONCE=2;NEW=n");
    EXPECT_TRUE(pairs.isEmpty());

    QStringList untouched{"A", "1"};
    module.MergeAttrValues(untouched, 2);
    EXPECT_EQ(untouched.size(), 2);
}

TEST(RowGrammarTest, NextAttrPairConsumesTheTextAndSkipsTokensWithoutValue) {
    const std::pair<QString, QStringList> cases[] = {
        {"NOFLAG; A = 1 ;B=2;LAST", {"A|1|B=2;LAST", "B|2|LAST"}}, {"X = 5 ", {"X|5|"}}};
    for (const auto& [start, expected] : cases) {
        QString text = start, name, value;
        QStringList seen;
        while (seen.size() < 5 && CKVModule::NextAttrPair(text, name, value)) {
            seen << name + "|" + value + "|" + text;
        }
        EXPECT_EQ(seen, expected);
        EXPECT_TRUE(text.isEmpty());
    }
}

class RowGrammarPromptTest : public testing::Test {
protected:
    void SetUp() override {
        m_previousStore = ZelPlcDbIO::Instance();
        m_previousHost = CurrentHost();
        m_store.known = {{"SLOT", "MSG_SLOT"}, {"RACK", "MSG_RACK"}};
        ZelPlcDbIO::SetInstance(&m_store);
        StandaloneHostConfig config;
        config.messages = {{"MSG_SLOT", "Steckplatz"}};
        m_host = std::make_unique<StandaloneHost>(config);
        m_host->openDocument();
        SetCurrentHost(m_host.get());
    }
    void TearDown() override {
        SetCurrentHost(m_previousHost);
        ZelPlcDbIO::SetInstance(m_previousStore);
    }

    PromptStore m_store;
    std::unique_ptr<StandaloneHost> m_host;
    ZelPlcDbIO* m_previousStore = nullptr;
    HostServices* m_previousHost = nullptr;
};

TEST_F(RowGrammarPromptTest, PromptsWithoutLocalizedFormAreLostExceptTheLastToken) {
    CKVModule module = ModuleWithRows(
        {{"HP?SPACE", "%%1PROMPT=SLOT;%%2PROMPT=TYPE;%%0PROMPT=ZERO; X =1;%%3PROMPT=CARD"},
         {"HP?SPACE", "%%4PROMPT=LATER"}});
    ASSERT_TRUE(module.ParsePromptsToArray());
    EXPECT_EQ(module.Prompts(), QStringList({"Steckplatz", "", "CARD", "", "", "", "", "", ""}));
    EXPECT_EQ(m_store.asked, QStringList({"SLOT", "TYPE"}));

    // The next save writes the prompts from the array, numbered prompts first: TYPE is gone.
    module.ApplyPrompts();
    EXPECT_EQ(module.GetTermSpecial(1), "%%1PROMPT=Steckplatz;%%3PROMPT=CARD;X=1");
    EXPECT_EQ(module.GetTermSpecial(2), "");
}

TEST_F(RowGrammarPromptTest, ParseAnswersWhetherARowOnePromptTokenWasMet) {
    const struct {
        QString special;
        bool met;
        QString first;
    } cases[] = {
        {"%%1PROMPT=TYPE;", true, ""},  // cut by ";", unknown to the store
        {"X=1;%%1PROMPT = SLOT", true, " SLOT"}, {"X=1;%%0PROMPT=SLOT", false, ""},
        {"%%APROMPT=SLOT;X=1", false, ""},       {"", false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.special.toStdString());
        CKVModule module = ModuleWithSpecial(c.special);
        EXPECT_EQ(module.ParsePromptsToArray(), c.met);
        EXPECT_EQ(module.Prompts().value(0), c.first);
    }
    EXPECT_FALSE(CKVModule().ParsePromptsToArray());

    SetCurrentHost(nullptr);  // no host: the text itself is taken
    CKVModule module = ModuleWithSpecial("%%2PROMPT=SLOT;X=1");
    ASSERT_TRUE(module.ParsePromptsToArray());
    EXPECT_EQ(module.Prompts().value(1), "SLOT");
}

TEST(RowGrammarTest, ApplyPromptsPlacesPromptsAndStripsRowsBehindTheStop) {
    // Per row: include/exclude value in, and R (rewritten), U (untouched), S (stripped) out.
    const struct {
        QList<int> flags;
        QString expected;
    } cases[] = {
        {{0, 0, 0}, "RSS"}, {{1, 0, 1}, "RRS"}, {{2, 1, 2, 0}, "RRSS"}, {{3, 1, 1, 2}, "URUR"},
        {{1, 1, 1}, "RUU"}, {{3}, "U"},         {{2, 3, 0, 1}, "RURS"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected.toStdString());
        CKVModule module;
        for (int row = 1; row <= c.flags.size(); ++row) {
            module.SetTermRow(row, "HP?SPACE;%%9PROMPT=OLD");
            module.SetIncludeExclude(row, c.flags[row - 1]);
        }
        module.SetPrompts({"SLOT"});
        module.ApplyPrompts();
        QString outcome;
        for (int row = 1; row <= module.GetTermCount(); ++row) {
            const QString special = module.GetTermSpecial(row);
            outcome += special.startsWith("%%1PROMPT=SLOT") ? u'R'
                       : special.contains("%%9PROMPT=OLD")  ? u'U'
                       : special.contains("%%")             ? u'?'
                                                            : u'S';
            EXPECT_EQ(module.GetIncludeExclude(row), c.flags[row - 1]);
        }
        EXPECT_EQ(outcome, c.expected);
    }
}
