#include "CKVModule.h"
#include "CKVModuleDB.h"
#include "LispText.h"
#include "ModDB.h"
#include "RealLisp.h"
#include "SelectionChoices.h"
#include "SelectionList.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <functional>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr int kStyle = 3;

// The printed top-level elements of a chain of cells; an unclosed list ends the chain.
QStringList Elements(const std::vector<HostCell>& cells) {
    QStringList elements;
    std::vector<HostCell> current;
    int depth = 0;
    for (const HostCell& cell : cells) {
        current.push_back(cell);
        depth += cell.type == kHostListBegin ? 1 : cell.type == kHostListEnd ? -1 : 0;
        if (depth == 0) {
            elements.append(LispText::Print(HostValue(current)));
            current.clear();
        }
    }
    if (!current.empty()) {
        elements.append(LispText::Print(HostValue(current)));
    }
    return elements;
}

// The printed members of the module list, the first element of an answer.
QStringList ModuleMembers(const HostValue& answer) {
    HostValue list;
    LispText::Read(Elements(answer.cells()).value(0), list);
    const std::vector<HostCell>& cells = list.cells();
    return cells.size() < 2 ? QStringList() : Elements({cells.begin() + 1, cells.end() - 1});
}

// The texts of the row entries of a printed list A or B, each the first string of its entry.
QString EntryTexts(const QString& list) {
    static const QRegularExpression entryText(R"re(\("(R\d)")re");
    QStringList found;
    for (const QRegularExpressionMatch& match : entryText.globalMatch(list)) {
        found.append(match.captured(1));
    }
    return found.join(' ');
}

class SelectionListTest : public testing::Test {
protected:
    void SetUp() override {
        m_host.setReporter([](const QString&) {});
        SetCurrentHost(&m_host);
        ASSERT_TRUE(m_dir.isValid());
        const QString path = m_dir.filePath("ZEL_PLC.MDB");
        ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(path));
        ZelPlcDbIO::SetInstance(&m_store);
        ASSERT_TRUE(m_db.Open(path));
        ModDB::StyleBoxData style;
        style.Number = kStyle;
        style.Box = {"", "2.2 mm", "3 a b", "7.5 mm", "5", "", "", "", "", "b4", "", "b6"};
        m_db.UpdateStyleBox(kStyle, style);
    }
    void TearDown() override {
        m_db.Close();
        ZelPlcDbIO::SetInstance(nullptr);
        SetCurrentHost(nullptr);
    }

    // Place k holds k + 0.5 "mm" in group A and 100 + k "in" in group B.
    static CKVModule MakeModule(const QStringList& rows = {"HP1TERM;A=1"}) {
        CKVModule module;
        module.SetCatalog("CAT-1");
        module.SetManufacturer("ACME");
        module.SetDescription("Desc");
        module.SetColText3("C3");
        module.SetAddrBase("8");
        module.SetColText1("C1");
        module.SetSpecTail("TAIL");
        for (int place = 1; place <= 6; ++place) {
            module.SetBox(false, place, place + 0.5);
            module.SetUnit(false, place, "mm");
            module.SetBox(true, place, 100 + place);
            module.SetUnit(true, place, "in");
        }
        for (const QString& row : rows) {
            module.SetTermRow(module.GetTermCount() + 1, row);
        }
        return module;
    }

    StandaloneHost m_host;
    QTemporaryDir m_dir;
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};

TEST_F(SelectionListTest, DimensionEntries) {
    EXPECT_EQ(FormatDimension(12.5, "mm"), "12.5000 mm");
    const QString cases[][2] = {
        {"", R"(("0.0"))"},
        {"12.5000 mm", R"(("12.5000" ("mm")))"},
        {"12.5000 ", R"(("12.5000"))"},
        {"a b c", R"(("a" ("b" "c")))"},
    };
    for (const auto& c : cases) {
        HostValue list;
        AppendDimension(c[0], list);
        EXPECT_EQ(LispText::Print(list), c[1]) << c[0].toStdString();
    }
}

TEST_F(SelectionListTest, ModuleListFallsBackOnValuesAndStyleRow) {
    const struct {
        const char* name;
        std::function<void(CKVModule&)> change;
        bool bGroupB;
        CKVModuleDB* db;
        int style;
        // Positions 6 to 9, 12 and 13: D(2) D(1) D(3) D(4) D(6) D(5).
        QString dims;
    } cases[] = {
        {"all set, no store needed", [](CKVModule&) {}, false, nullptr, kStyle,
         R"(("2.5000" ("mm")) ("1.5000" ("mm")) ("3.5000" ("mm")) ("4.5000" ("mm")) )"
         R"(("6.5000" ("mm")) ("5.5000" ("mm")))"},
        {"6 and 5 unset take 4 and 3 with their own units",
         [](CKVModule& m) {
             m.SetBox(false, 6, -1.0);
             m.SetUnit(false, 6, "u6");
             m.SetBox(false, 5, -1.0);
             m.SetUnit(false, 5, "");
         },
         false, nullptr, kStyle,
         R"(("2.5000" ("mm")) ("1.5000" ("mm")) ("3.5000" ("mm")) ("4.5000" ("mm")) )"
         R"(("4.5000" ("u6")) ("3.5000"))"},
        {"3 and 4 from the style row carry 5 and 6 with them",
         [](CKVModule& m) {
             m.SetBox(false, 3, -1.0);
             m.SetBox(false, 4, -1.0);
         },
         false, &m_db, kStyle,
         R"(("2.5000" ("mm")) ("1.5000" ("mm")) ("3" ("a" "b")) ("7.5" ("mm")) )"
         R"(("7.5" ("mm")) ("5"))"},
        {"group B", [](CKVModule& m) { m.SetBox(true, 4, -1.0); }, true, &m_db, kStyle,
         R"(("102.0000" ("in")) ("101.0000" ("in")) ("103.0000" ("in")) ("b4") ("b6") )"
         R"(("105.0000" ("in")))"},
        {"unreadable style row", [](CKVModule& m) { m.SetBox(false, 1, -1.0); }, false, &m_db, 42,
         R"(("6.5000" ("mm")) ("5.5000" ("mm")))"},
    };
    for (const auto& c : cases) {
        CKVModule module = MakeModule();
        c.change(module);
        HostValue out;
        ASSERT_TRUE(BuildSelectionList(module, c.db, c.style, c.bGroupB, out)) << c.name;
        ASSERT_EQ(Elements(out.cells()).size(), 4) << c.name;
        QStringList members = ModuleMembers(out);
        const int dims = members.size() == 15 ? 4 : 0;
        EXPECT_EQ(members.size(), c.style == kStyle ? 15 : 11) << c.name;
        EXPECT_EQ((members.mid(5, dims) + members.mid(7 + dims, 2)).join(' '), c.dims) << c.name;
        members.remove(5, dims);
        EXPECT_EQ(members.mid(0, 7) + members.mid(9),
                  QStringList({R"("CAT-1")", R"("ACME")", R"("Desc")", R"("C3")", R"("")", R"("8")",
                               "nil", R"("C1")", R"("TAIL")"}))
            << c.name;
    }
}

TEST_F(SelectionListTest, UnsetPlaceWithoutOpenStoreStopsAfterFiveStrings) {
    CKVModuleDB closed;
    for (CKVModuleDB* db : {static_cast<CKVModuleDB*>(nullptr), &closed}) {
        CKVModule module = MakeModule();
        module.SetBox(false, 4, -1.0);
        HostValue out;
        ASSERT_TRUE(BuildSelectionList(module, db, kStyle, false, out));
        EXPECT_EQ(
            out,
            HostValue().begin().string("CAT-1").string("ACME").string("Desc").string("C3").string(
                ""));
    }
}

TEST_F(SelectionListTest, RowsAreRoutedByIncludeExcludeAndAnyBreakIsFlagged) {
    const struct {
        QStringList rows;
        QString listA;
        QString listB;
        QString element4;
    } cases[] = {
        {{"R0", "R1;\\SPECIAL=EXCLUDE", "R2;\\SPECIAL=INCLUDE",
          "R3;\\SPECIAL=INCLUDE;\\SPECIAL=EXCLUDE"},
         "R0 R1 R3",
         "R0 R2 R3",
         "nil"},
        {{"R0", "R2;\\SPECIAL=INCLUDE;\\SPECIAL=BREAK"}, "R0", "R0 R2", "(T)"},
        {{"R1;\\special = break;\\SPECIAL=EXCLUDE", "R2"}, "R1 R2", "R2", "(T)"},
        {{}, "", "", "nil"},
    };
    for (const auto& c : cases) {
        CKVModule module = MakeModule(c.rows);
        HostValue out;
        ASSERT_TRUE(BuildSelectionList(module, nullptr, kStyle, false, out));
        const QStringList elements = Elements(out.cells());
        ASSERT_EQ(elements.size(), 4);
        EXPECT_EQ(EntryTexts(elements[1]), c.listA) << elements[1].toStdString();
        EXPECT_EQ(EntryTexts(elements[2]), c.listB) << elements[2].toStdString();
        EXPECT_EQ(elements[3], c.element4);
    }
}

TEST_F(SelectionListTest, PrintedAnswerReadsAsAListOfFiveInLisp) {
    CKVModule module = MakeModule(
        {"HP1TERM;\\SPECIAL=BREAK;MFG1=M;CAT1=C|#1;TAG=a;b", "HP1TERM;\\SPECIAL=INCLUDE"});
    module.SetBox(false, 3, -1.0);
    module.SetSpecNote(R"(say "hi" \ 50% ?)");
    module.SetPrompts({"SLOT", "", "RACK"});
    SelectionChoices chosen;
    chosen.SetStyle(kStyle);
    chosen.SetHorizontal(true);
    chosen.SetScale(2.5);
    chosen.SetExtra(true);
    HostValue answer;
    ASSERT_TRUE(BuildSelectionAnswer(module, &m_db, chosen, false, answer));
    const QStringList elements = Elements(answer.cells());
    ASSERT_EQ(elements.size(), 5);
    EXPECT_EQ(elements[4], R"(("3" "H" 2.5 1))");
    SelectionChoices defaults;
    defaults.SetStyle(9);
    defaults.SetScale(0.0);
    HostValue choices;
    defaults.AppendTo(choices);
    EXPECT_EQ(LispText::Print(choices), R"(("9" "V" 0.0 nil))");

    const QString text = LispText::Print(HostValue().begin().append(answer).end());
    const RealLispRun lisp =
        RunRealLisp(QStringLiteral("(progn (print (length (read))) (terpri))"), text);
    if (!lisp.found) {
        GTEST_SKIP() << "neither sbcl nor clisp is on PATH; the Lisp reader check is skipped";
    }
    ASSERT_TRUE(lisp.finished);
    EXPECT_EQ(lisp.output.section(u' ', 0, 0), "5") << lisp.output.toStdString() << "\n"
                                                    << text.toStdString();
}

}  // namespace
