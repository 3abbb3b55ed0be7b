#include "BlockLookup.h"
#include "CBlockDescEx.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

_termblock Block(const char* file, const char* description) {
    _termblock block;
    block.strBlockFile = QString::fromLatin1(file);
    block.strDescription = QString::fromLatin1(description);
    return block;
}

}  // namespace

TEST(BlockLookup, FindsStoredNamesAsTheBlockListsOwnSearchDoes) {
    CBlockDescEx blocks;
    blocks.SetBlocks({Block("HP1TERM", "Terminal"), Block("VP2FUSE", "Fuse"),
                      Block("XP2SPACE", "Spacer"), Block("HP3TERM", "Terminal, style 3")});
    BlockLookup lookup;
    lookup.Rebuild(&blocks);
    const struct {
        const char* stored;
        int index;
    } cases[] = {
        {"HP?TERM", 1},  // the first block of a family wins
        {"hp?term", 1},  {"HP?FUSE", 2},  {"Hp?Fuse", 2},  {"VP2FUSE", -1},
        {"XP2SPACE", 3}, {"xp2space", 3}, {"HP?NOPE", -1}, {"", -1},
    };
    for (const auto& c : cases) {
        const QString stored = QString::fromLatin1(c.stored);
        EXPECT_EQ(lookup.Find(stored), c.index) << c.stored;
        EXPECT_EQ(lookup.Find(stored), blocks.FindBlock(stored, 1)) << c.stored;
    }
    EXPECT_EQ(lookup.ModuleForm(2), QStringLiteral("HP?FUSE"));
    EXPECT_EQ(lookup.ModuleForm(3), QStringLiteral("XP2SPACE"));
    EXPECT_EQ(lookup.ModuleForm(5), QString());
    EXPECT_EQ(lookup.Descriptions().size(), 4);
    EXPECT_EQ(lookup.Descriptions().at(3), QStringLiteral("Terminal, style 3"));

    // A list read again replaces the old one entirely.
    blocks.SetBlocks({Block("VP2FUSE", "Fuse")});
    lookup.Rebuild(&blocks);
    EXPECT_EQ(lookup.Find(QStringLiteral("HP?FUSE")), 1);
    EXPECT_EQ(lookup.Find(QStringLiteral("HP?TERM")), -1);
    lookup.Rebuild(nullptr);
    EXPECT_EQ(lookup.Find(QStringLiteral("HP?FUSE")), -1);
}
