#include "BlockDefsTable.h"
#include "CKVModule.h"
#include "TerminalFixture.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

using Table = BlockDefsTable;

QStringList BlockFiles(const Table& table) {
    QStringList files;
    for (const BlockDefRow& row : table.Rows()) {
        files << row.blockFile;
    }
    return files;
}

}  // namespace

TEST(BlockDefsTable, OnlyHpAndVpNamesWithAStyleDigitAreRewritten) {
    const struct {
        const char* name;
        int style, orientation;
        const char* result;  // none: not rewritten, the name stays
    } cases[] = {
        {"HP2RELAY", 5, 1, "HP5RELAY"}, {"VP2X", 5, 1, "HP5X"},      {"HP2RELAY", 5, 2, "VP5RELAY"},
        {"hp0abc", 3, 2, "Vp3abc"},     {"HP2", 4, 1, "HP4"},        {"HP2X", 3, 3, "P3X"},
        {"TB1", 5, 1, nullptr},         {"HP?SPACE", 5, 1, nullptr}, {"XP2A", 5, 1, nullptr},
        {"HQ2A", 5, 1, nullptr},        {"HP", 5, 1, nullptr},       {"HP2X", 0, 1, nullptr},
        {"HP2X", 10, 1, nullptr},
    };
    for (const auto& c : cases) {
        QString name = QString::fromLatin1(c.name);
        EXPECT_EQ(Table::RewriteBlockName(name, c.style, c.orientation), c.result != nullptr)
            << c.name;
        EXPECT_EQ(name, QString::fromLatin1(c.result ? c.result : c.name)) << c.name;
    }
}

TEST(BlockDefsTable, TheStartStateComesFromTheFirstName) {
    const struct {
        const char* name;
        int style;
        Table::Orientation orientation;
    } cases[] = {
        {"", 1, Table::kVertical},           {"HP5X", 5, Table::kHorizontal},
        {"hp0x", 1, Table::kHorizontal},     {"VP9", 9, Table::kVertical},
        {"HP?SPACE", 1, Table::kHorizontal}, {"TB7", 7, Table::kVertical},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Table::StyleOfName(QString::fromLatin1(c.name)), c.style) << c.name;
        EXPECT_EQ(Table::OrientationOfName(QString::fromLatin1(c.name)), c.orientation) << c.name;
    }
}

TEST(BlockDefsTable, AStyleRewritesBlockAndSampleOfEveryRowAndNamesTheRowsChanged) {
    Table table;
    table.SetRows({{"TB1", "Cat", "Terminal", "tb.bmp"},
                   {"HP2RELAY", "Relay", "Relay", "VP2X"},
                   {"HP?SPACE", "Spacers", "Header", ""},
                   {"HP5DI", "Digital", "In", "HP5di"}});
    EXPECT_EQ(table.ApplyStyle(5, Table::kHorizontal), QList<int>{2});
    EXPECT_EQ(BlockFiles(table), (QStringList{"TB1", "HP5RELAY", "HP?SPACE", "HP5DI"}));
    EXPECT_EQ(table.Value(2, Table::ColumnSampleFile), QStringLiteral("HP5X"));
    EXPECT_EQ(table.Value(1, Table::ColumnSampleFile), QStringLiteral("tb.bmp"));
    EXPECT_EQ(table.ApplyStyle(5, Table::kVertical), (QList<int>{2, 4}));
    EXPECT_EQ(BlockFiles(table), (QStringList{"TB1", "VP5RELAY", "HP?SPACE", "VP5DI"}));
    EXPECT_EQ(table.Value(4, Table::ColumnSampleFile), QStringLiteral("VP5di"));
    EXPECT_TRUE(table.ApplyStyle(10, Table::kHorizontal).isEmpty());
    EXPECT_EQ(BlockFiles(table), (QStringList{"TB1", "VP5RELAY", "HP?SPACE", "VP5DI"}));
}

TEST(BlockDefsTable, AMergeAddsEachUnknownTerminalOnceWithTheDialogsLetterAndDigit) {
    const auto H = Table::kHorizontal;
    const auto V = Table::kVertical;
    const struct {
        const char *start, *terminals;  // lists split at '|'
        Table::Orientation selected;
        const char* after;
    } cases[] = {
        // Any style and orientation of an H or V row matches.
        {"HP1SPACE", "HP?SPACE|hp?space|VP?SPACE", H, "HP1SPACE"},
        {"VP2SPACE", "HP?SPACE", V, "VP2SPACE"},
        // The letter is the opposite of the selected one, the digit that of the last row
        // compared (1 when masked); the row just added serves the later terminals.
        {"XB7", "HP?SPACE|hp?space|HP?SPACE", H, "XB7|VP7SPACE"},
        {"HP4DI", "HP?DO", V, "HP4DI|HP1DO"},
        {nullptr, "vp?ai|HP?AI", V, "Hp1ai"},
        // A terminal with a digit third never matches an H or V row.
        {"HP2DI", "HP2DI", V, "HP2DI|HP1DI"},
        // Other names compare as they stand, case ignored, rows trimmed; blanks are skipped.
        {" tb9 |HP1AI", "TB9||X1|TB9", V, " tb9 |HP1AI|X1"},
    };
    const auto split = [](const char* list) {
        return list ? QString::fromLatin1(list).split(u'|') : QStringList();
    };
    for (const auto& c : cases) {
        Table table;
        for (const QString& file : split(c.start)) {
            table.AppendRow({file, QStringLiteral("Cat"), file, {}});
        }
        CKVModule module;
        for (const QString& text : split(c.terminals)) {
            module.SetTermText(module.GetTermCount() + 1, text);
        }
        const QStringList after = split(c.after);
        EXPECT_EQ(table.MergeModuleTerminals(module, c.selected),
                  after.size() - split(c.start).size())
            << c.terminals;
        EXPECT_EQ(BlockFiles(table), after) << c.terminals;
        for (int i = int(split(c.start).size()) + 1; i <= table.RowCount(); ++i) {
            EXPECT_TRUE(table.Value(i, Table::ColumnCategory).isEmpty()) << c.terminals;
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

    ProgramTexts m_texts;
    ScriptedMessages m_messages;
    Table m_table;
};

TEST_F(BlockDefsFiles, OkRefusesIncompleteRowsAndDoubledDescriptionsAndAsksForMissingFiles) {
    const struct {
        const char* what;
        BlockDefRow second;
        std::vector<int> answers;  // to the questions about missing files
        int failCol;               // 0: the rows pass
        QList<int> messages;
    } cases[] = {
        {"a complete row", {"HP1B.SHT", " Cat ", "Second", " a.bmp"}, {}, 0, {}},
        {"a row with only a sample", {"", "", "", "a.bmp"}, {}, 0, {}},
        {"an empty row", {" ", "", " ", ""}, {}, 0, {}},
        {"a missing block kept", {"HP9X", "Cat", "Second", ""}, {kIdYes}, 0, {10047}},
        {"a missing block refused", {"HP9X", "Cat", "Second", ""}, {kIdNo}, 1, {10047}},
        {"a missing sample refused", {"HP1B", "Cat", "Second", "x"}, {kIdNo}, 4, {10047}},
        {"both missing, both kept", {"HP9X", "C", "S", "x"}, {kIdYes, kIdYes}, 0, {10047, 10047}},
        {"a description in another case", {"HP1B", "Cat", " FIRST ", ""}, {}, 3, {10048}},
        {"no block file", {"", "Cat", "", ""}, {}, 1, {10050}},
        {"no category", {"HP1B", " ", "Second", ""}, {}, 2, {10051}},
        {"no description", {"HP1B", "Cat", "", ""}, {}, 3, {10052}},
    };
    for (const auto& c : cases) {
        m_messages.shown.clear();
        m_messages.answers = c.answers;
        m_table.SetRows({{"HP1A", "Cat", "First", "a.bmp"}, c.second});
        int row = 0;
        int col = 0;
        EXPECT_EQ(m_table.Validate(row, col), c.failCol == 0) << c.what;
        EXPECT_EQ(row, c.failCol == 0 ? 0 : 2) << c.what;
        EXPECT_EQ(col, c.failCol) << c.what;
        QList<int> numbers;
        for (const MessageRequest& request : m_messages.shown) {
            numbers << request.number;
        }
        EXPECT_EQ(numbers, c.messages) << c.what;
    }
}

TEST_F(BlockDefsFiles, ARoundTripKeepsEveryBlockLineAndThePathListAndDropsTheRest) {
    m_table.SetRows({{"HP1A", "Cat", "First", ""}});
    EXPECT_FALSE(m_table.Read());  // no settings file: no rows
    EXPECT_EQ(m_table.RowCount(), 0);

    writeSettings("* comment\n:HP1A; Cat ;First;a.bmp\nstray line\n:HP1B;Cat;Second\n");
    QFile paths(QDir(settingsFolder()).filePath(QStringLiteral("blkplist.txt")));
    ASSERT_TRUE(paths.open(QIODevice::WriteOnly));
    paths.write("* block folders\n<GBL_kv_lib>\n:/opt/blocks\n");
    paths.close();
    ASSERT_TRUE(m_table.Read());
    EXPECT_EQ(BlockFiles(m_table), (QStringList{"HP1A", "HP1B"}));
    EXPECT_EQ(m_table.Value(1, Table::ColumnCategory), QStringLiteral(" Cat "));
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
