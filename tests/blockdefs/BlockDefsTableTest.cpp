#include "BlockDefsTable.h"
#include "CKVModule.h"
#include "TerminalFixture.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

QStringList BlockFiles(const BlockDefsTable& table) {
    QStringList files;
    for (const BlockDefRow& row : table.Rows()) {
        files << row.blockFile;
    }
    return files;
}

CKVModule ModuleWith(const QStringList& terminals) {
    CKVModule module;
    for (const QString& text : terminals) {
        module.SetTermText(module.GetTermCount() + 1, text);
    }
    return module;
}

}  // namespace

TEST(BlockDefsTable, OnlyHpAndVpNamesWithAStyleDigitAreRewritten) {
    const struct {
        const char* name;
        int style;
        int orientation;
        bool rewritten;
        const char* result;
    } cases[] = {
        {"HP2RELAY", 5, 1, true, "HP5RELAY"},
        {"VP2X", 5, 1, true, "HP5X"},
        {"HP2RELAY", 5, 2, true, "VP5RELAY"},
        {"hp0abc", 3, 2, true, "Vp3abc"},  // 0 is accepted as the old digit, case kept
        {"HP2", 4, 1, true, "HP4"},
        {"HP2X", 3, 3, true, "P3X"},  // no letter for an unknown orientation
        {"TB1", 5, 1, false, "TB1"},
        {"HP?SPACE", 5, 1, false, "HP?SPACE"},
        {"XP2A", 5, 1, false, "XP2A"},
        {"HQ2A", 5, 1, false, "HQ2A"},
        {"HP", 5, 1, false, "HP"},
        {"HP2X", 0, 1, false, "HP2X"},
        {"HP2X", 10, 1, false, "HP2X"},
    };
    for (const auto& row : cases) {
        QString name = QString::fromLatin1(row.name);
        EXPECT_EQ(BlockDefsTable::RewriteBlockName(name, row.style, row.orientation), row.rewritten)
            << row.name;
        EXPECT_EQ(name, QString::fromLatin1(row.result)) << row.name;
    }
}

TEST(BlockDefsTable, TheStartStateComesFromTheFirstName) {
    const struct {
        const char* name;
        int style;
        BlockDefsTable::Orientation orientation;
    } cases[] = {
        {"", 1, BlockDefsTable::kVertical},           {"HP5X", 5, BlockDefsTable::kHorizontal},
        {"hp0x", 1, BlockDefsTable::kHorizontal},     {"VP9", 9, BlockDefsTable::kVertical},
        {"HP?SPACE", 1, BlockDefsTable::kHorizontal}, {"TB7", 7, BlockDefsTable::kVertical},
    };
    for (const auto& row : cases) {
        const QString name = QString::fromLatin1(row.name);
        EXPECT_EQ(BlockDefsTable::StyleOfName(name), row.style) << row.name;
        EXPECT_EQ(BlockDefsTable::OrientationOfName(name), row.orientation) << row.name;
    }
}

TEST(BlockDefsTable, AStyleRewritesBlockAndSampleOfEveryRowAndNamesTheRowsChanged) {
    BlockDefsTable table;
    table.SetRows({{"TB1", "Cat", "Terminal", "tb.bmp"},
                   {"HP2RELAY", "Relay", "Relay", "VP2X"},
                   {"HP?SPACE", "Spacers", "Header", ""},
                   {"HP5DI", "Digital", "In", "HP5di"}});
    EXPECT_EQ(table.ApplyStyle(5, BlockDefsTable::kHorizontal), QList<int>{2});
    EXPECT_EQ(BlockFiles(table), (QStringList{"TB1", "HP5RELAY", "HP?SPACE", "HP5DI"}));
    EXPECT_EQ(table.Value(2, BlockDefsTable::ColumnSampleFile), QStringLiteral("HP5X"));
    EXPECT_EQ(table.Value(1, BlockDefsTable::ColumnSampleFile), QStringLiteral("tb.bmp"));

    EXPECT_EQ(table.ApplyStyle(5, BlockDefsTable::kVertical), (QList<int>{2, 4}));
    EXPECT_EQ(BlockFiles(table), (QStringList{"TB1", "VP5RELAY", "HP?SPACE", "VP5DI"}));
    EXPECT_EQ(table.Value(4, BlockDefsTable::ColumnSampleFile), QStringLiteral("VP5di"));

    EXPECT_TRUE(table.ApplyStyle(10, BlockDefsTable::kHorizontal).isEmpty());
    EXPECT_EQ(BlockFiles(table), (QStringList{"TB1", "VP5RELAY", "HP?SPACE", "VP5DI"}));
}

TEST(BlockDefsTable, AMergeAddsEachUnknownTerminalOnceWithTheDialogsLetterAndDigit) {
    const struct {
        const char* what;
        QStringList start;
        QStringList terminals;
        BlockDefsTable::Orientation selected;
        QStringList after;
    } cases[] = {
        {"any style and orientation of a row matches",
         {"HP1SPACE"},
         {"HP?SPACE", "hp?space", "VP?SPACE"},
         BlockDefsTable::kHorizontal,
         {"HP1SPACE"}},
        {"a vertical row matches a horizontal terminal",
         {"VP2SPACE"},
         {"HP?SPACE"},
         BlockDefsTable::kVertical,
         {"VP2SPACE"}},
        {"the row just added serves the later terminals; the letter is the opposite of the "
         "selected one and the digit that of the last row compared",
         {"XB7"},
         {"HP?SPACE", "hp?space", "HP?SPACE"},
         BlockDefsTable::kHorizontal,
         {"XB7", "VP7SPACE"}},
        {"a masked row gives style 1",
         {"HP4DI"},
         {"HP?DO"},
         BlockDefsTable::kVertical,
         {"HP4DI", "HP1DO"}},
        {"a terminal with a digit third never matches a row of the H and V kind",
         {"HP2DI"},
         {"HP2DI"},
         BlockDefsTable::kVertical,
         {"HP2DI", "HP1DI"}},
        {"other names compare as they stand, case ignored, rows trimmed",
         {" tb9 ", "HP1AI"},
         {"TB9", "", "X1", "TB9"},
         BlockDefsTable::kVertical,
         {" tb9 ", "HP1AI", "X1"}},
        {"an empty table", {}, {"vp?ai", "HP?AI"}, BlockDefsTable::kVertical, {"Hp1ai"}},
    };
    for (const auto& row : cases) {
        BlockDefsTable table;
        for (const QString& file : row.start) {
            table.AppendRow({file, QStringLiteral("Cat"), file, {}});
        }
        const int added = table.MergeModuleTerminals(ModuleWith(row.terminals), row.selected);
        EXPECT_EQ(BlockFiles(table), row.after) << row.what;
        EXPECT_EQ(added, row.after.size() - row.start.size()) << row.what;
        for (int i = int(row.start.size()) + 1; i <= table.RowCount(); ++i) {
            EXPECT_TRUE(table.Value(i, BlockDefsTable::ColumnCategory).isEmpty()) << row.what;
        }
    }
}

class BlockDefsFiles : public TerminalFixture {
protected:
    void SetUp() override {
        TerminalFixture::SetUp();
        ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());
        writeDrawing(QStringLiteral("HP1A.SHT"), Drawing(QByteArray()));
        writeDrawing(QStringLiteral("HP1B.SHT"), Drawing(QByteArray()));
        QFile picture(QDir(settingsFolder()).filePath(QStringLiteral("a.bmp")));
        ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
        m_table.SetDirectory(settingsFolder());
    }
    // The messages shown while validating rows, by number.
    QList<int> Validate(const QList<BlockDefRow>& rows, const std::vector<int>& answers,
                        bool expected, int row, int col) {
        m_messages.shown.clear();
        m_messages.answers = answers;
        m_table.SetRows(rows);
        int failRow = 0;
        int failCol = 0;
        EXPECT_EQ(m_table.Validate(failRow, failCol), expected);
        EXPECT_EQ(failRow, row);
        EXPECT_EQ(failCol, col);
        QList<int> numbers;
        for (const MessageRequest& request : m_messages.shown) {
            numbers << request.number;
        }
        return numbers;
    }

    ProgramTexts m_texts;
    ScriptedMessages m_messages;
    BlockDefsTable m_table;
};

TEST_F(BlockDefsFiles, OkRefusesIncompleteRowsAndDoubledDescriptionsAndAsksForMissingFiles) {
    const BlockDefRow good{"HP1A", "Cat", "First", "a.bmp"};
    const struct {
        const char* what;
        BlockDefRow second;
        std::vector<int> answers;
        bool passes;
        int col;
        QList<int> messages;
    } cases[] = {
        {"a complete row", {"HP1B.SHT", " Cat ", "Second", " a.bmp"}, {}, true, 0, {}},
        {"a row with only a sample", {"", "", "", "a.bmp"}, {}, true, 0, {}},
        {"an empty row", {" ", "", " ", ""}, {}, true, 0, {}},
        {"a missing block kept", {"HP9X", "Cat", "Second", ""}, {kIdYes}, true, 0, {10047}},
        {"a missing block refused", {"HP9X", "Cat", "Second", ""}, {kIdNo}, false, 1, {10047}},
        {"a missing sample refused", {"HP1B", "Cat", "Second", "x"}, {kIdNo}, false, 4, {10047}},
        {"both missing, both kept",
         {"HP9X", "Cat", "Second", "x"},
         {kIdYes, kIdYes},
         true,
         0,
         {10047, 10047}},
        {"a description in another case", {"HP1B", "Cat", " FIRST ", ""}, {}, false, 3, {10048}},
        {"no block file", {"", "Cat", "", ""}, {}, false, 1, {10050}},
        {"no category", {"HP1B", " ", "Second", ""}, {}, false, 2, {10051}},
        {"no description", {"HP1B", "Cat", "", ""}, {}, false, 3, {10052}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(
            Validate({good, row.second}, row.answers, row.passes, row.passes ? 0 : 2, row.col),
            row.messages);
    }
    // The question names the file as it is searched for, and is a warning with Yes and No.
    Validate({good, {"HP9X", "Cat", "Second", ""}}, {kIdNo}, false, 2, 1);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    const MessageRequest& asked = m_messages.shown.front();
    EXPECT_TRUE(asked.text.contains(QStringLiteral("\"HP9X.SHT\" in row 2")))
        << qPrintable(asked.text);
    EXPECT_EQ(asked.buttons, MsgButtons::YesNo);
    EXPECT_EQ(asked.icon, MsgIcon::Warning);
    EXPECT_EQ(asked.caption, QStringLiteral("File Not Found"));
}

TEST_F(BlockDefsFiles, ARoundTripKeepsEveryBlockLineAndThePathListAndDropsTheRest) {
    writeSettings("* comment\n:HP1A; Cat ;First;a.bmp\nstray line\n:HP1B;Cat;Second\n");
    QFile paths(QDir(settingsFolder()).filePath(QStringLiteral("blkplist.txt")));
    ASSERT_TRUE(paths.open(QIODevice::WriteOnly));
    paths.write("* block folders\n<GBL_kv_lib>\n:/opt/blocks\n");
    paths.close();
    ASSERT_TRUE(m_table.Read());
    EXPECT_EQ(BlockFiles(m_table), (QStringList{"HP1A", "HP1B"}));
    EXPECT_EQ(m_table.Value(1, BlockDefsTable::ColumnCategory), QStringLiteral(" Cat "));
    m_table.AppendRow({"HP1C", "", "Only a file", ""});
    m_table.AppendRow({"", "", "", "a.bmp"});
    ASSERT_TRUE(m_table.Write());
    EXPECT_EQ(readSettings(), QByteArray(":HP1A;Cat;First;a.bmp\n:HP1B;Cat;Second;\n"));
    ASSERT_TRUE(paths.open(QIODevice::ReadOnly));
    EXPECT_EQ(paths.readAll(), QByteArray("<GBL_kv_lib>\n:/opt/blocks/\n"));
    paths.close();

    m_table.SetRows({});
    ASSERT_TRUE(m_table.Write());
    EXPECT_EQ(readSettings(), QByteArray());
}

TEST_F(BlockDefsFiles, WithoutASettingsFileTheTableHasNoRows) {
    m_table.SetRows({{"HP1A", "Cat", "First", ""}});
    EXPECT_FALSE(m_table.Read());
    EXPECT_EQ(m_table.RowCount(), 0);
}

TEST(BlockDefsStore, AMergeFromTheStoreTakesTheCatalogsTerminalsOrAnswersMinusOne) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("ZEL_PLC.MDB"));
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), path));
    ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    BlockDefsTable table;
    table.AppendRow({"HP3AI", "Analog", "Analog input", ""});
    EXPECT_EQ(table.MergeFromCatalog(path, QStringLiteral("Norvale Controls"),
                                     QStringLiteral("NV-100"), QStringLiteral("Analog Input"),
                                     QStringLiteral("NV-1404"), BlockDefsTable::kVertical),
              3);
    EXPECT_EQ(BlockFiles(table), (QStringList{"HP3AI", "HP1SPACE", "HP1SHLD", "HP1PWR"}));

    EXPECT_EQ(table.MergeFromCatalog(path, QStringLiteral("Norvale Controls"),
                                     QStringLiteral("NV-100"), QStringLiteral("Analog Input"),
                                     QStringLiteral("NV-9999"), BlockDefsTable::kVertical),
              -1);
    EXPECT_EQ(table.MergeFromCatalog(path, QStringLiteral("Nobody"), QStringLiteral("NV-100"),
                                     QStringLiteral("Analog Input"), QStringLiteral("NV-1404"),
                                     BlockDefsTable::kVertical),
              -1);
    EXPECT_EQ(table.MergeFromCatalog(dir.filePath(QStringLiteral("none/ZEL_PLC.MDB")),
                                     QStringLiteral("Norvale Controls"), QStringLiteral("NV-100"),
                                     QStringLiteral("Analog Input"), QStringLiteral("NV-1404"),
                                     BlockDefsTable::kVertical),
              -1);
    EXPECT_EQ(table.RowCount(), 4);
    ZelPlcDbIO::SetInstance(nullptr);
}
