#include "CBlockDescEx.h"
#include "TerminalFixture.h"
#include "TestSupport.h"

namespace {

TermBlockList Blocks(std::initializer_list<std::pair<const char*, const char*>> rows) {
    TermBlockList list;
    for (const auto& [file, description] : rows) {
        list.append({QString::fromLatin1(file),
                     QStringLiteral("Cat"),
                     QString::fromLatin1(description),
                     QString(),
                     {}});
    }
    return list;
}

}  // namespace

using BlockDesc = TerminalFixture;

TEST_F(BlockDesc, FindBlockMatchesByNameOrDescriptionIgnoringCaseAndTheFirstWins) {
    CBlockDescEx blocks;
    blocks.SetBlocks(Blocks({{"HP1DI", "Digital in"},
                             {"VP2ABC", "Relay"},
                             {"HP3ABC", "relay"},
                             {"XX", "Two"},
                             {"hp?DO", "Out"}}));
    const struct {
        const char* text;
        int mode;
        int index;
    } cases[] = {
        {"HP?DI", 1, 1},  {"hp?di", 1, 1},  {"HP?ABC", 1, 2},      {"HP?DO", 1, 5},
        {"XX", 1, 4},     {"xx", 1, 4},     {"HP1DI", 1, -1},      {"RELAY", 2, 2},
        {"out", 2, 5},    {"HP?DI", 2, -1}, {"Digital in", 1, -1}, {"HP?DI", 3, -1},
        {"HP?DI", 0, -1},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(blocks.FindBlock(QString::fromLatin1(row.text), row.mode), row.index)
            << row.text << " mode " << row.mode;
    }
    EXPECT_EQ(blocks.FindBlock(QString(), 1), -1);
}

TEST_F(BlockDesc, GetBlockAtCountsFromOneAndPastTheEndLeavesTheLastBlock) {
    CBlockDescEx blocks;
    _termblock out;
    EXPECT_FALSE(blocks.GetBlockAt(1, out));
    blocks.SetBlocks(Blocks({{"HP1A", "First"}, {"HP1B", "Second"}}));
    EXPECT_TRUE(blocks.GetBlockAt(1, out));
    EXPECT_EQ(out.strDescription, QStringLiteral("First"));
    out = _termblock();
    EXPECT_FALSE(blocks.GetBlockAt(0, out));
    EXPECT_EQ(out.strDescription, QString());
    EXPECT_FALSE(blocks.GetBlockAt(3, out));
    EXPECT_EQ(out.strDescription, QStringLiteral("Second"));
    EXPECT_EQ(blocks.GetCount(), 2);
}

TEST_F(BlockDesc, AnEmptyListIsReadAgainAtEachCallAndAFullOneOnlyOnReload) {
    CBlockDescEx blocks;
    blocks.SetDirectory(settingsFolder());
    EXPECT_EQ(blocks.FindBlock(QStringLiteral("HP?A"), 1), -1);  // no read behind it
    EXPECT_TRUE(blocks.GetBlockList(false).isEmpty());           // no file yet

    writeSettings(":HP1A;C;First\n");
    EXPECT_EQ(blocks.GetBlockList(false).size(), 1);
    writeSettings(":HP1A;C;First\n:HP1B;C;Second\n");
    EXPECT_EQ(blocks.GetBlockList(false).size(), 1);
    EXPECT_EQ(blocks.GetBlockList(true).size(), 2);
    EXPECT_EQ(blocks.FindBlock(QStringLiteral("second"), 2), 2);
    EXPECT_EQ(blocks.GetDirectory(), settingsFolder());
}

TEST_F(BlockDesc, SameBlocksComparesCountsThenNamesAndDescriptionsIgnoringCase) {
    CBlockDescEx mine;
    mine.SetBlocks(Blocks({{"HP1A", "First"}, {"HP1B", "Second"}}));
    CBlockDescEx other;
    other.SetBlocks(Blocks({{"hp1a", "FIRST"}, {"HP1B", "second"}}));
    EXPECT_TRUE(mine.SameBlocks(other));
    TermBlockList changed = Blocks({{"HP1A", "First"}, {"HP1B", "Second"}});
    changed[1].strCategory = QStringLiteral("Other");  // categories do not count
    other.SetBlocks(changed);
    EXPECT_TRUE(mine.SameBlocks(other));
    other.SetBlocks(Blocks({{"HP1A", "First"}, {"HP1C", "Second"}}));
    EXPECT_FALSE(mine.SameBlocks(other));
    other.SetBlocks(Blocks({{"HP1A", "First"}, {"HP1B", "Second!"}}));
    EXPECT_FALSE(mine.SameBlocks(other));
    other.SetBlocks(Blocks({{"HP1A", "First"}}));
    EXPECT_FALSE(mine.SameBlocks(other));
}
