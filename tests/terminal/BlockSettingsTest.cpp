#include "CTermBlockSettings.h"
#include "TerminalFixture.h"
#include "TestSupport.h"

#include <QLocale>

using BlockSettings = TerminalFixture;

TEST_F(BlockSettings, ReadSkipsEveryLineThatIsNoCompleteBlockAndKeepsTheRestInOrder) {
    writeSettings(
        "* comment\n"
        "\n"
        ":\n"
        ":ONLY;TWO\n"
        "HP1X;Cat;Desc;x.bmp\n"
        " :HP1Y;Cat;Desc\n"
        ":HP1A;Digital;Input 24 V;in.bmp\n"
        ":HP1B; Analog ;Analog in;\n"
        ":HP1C;Power;Feed\r\n"
        ":HP1D;Power;Feed 2;pic.bmp;extra;more\n"
        ":;Power;No file\n");
    CTermBlockSettings settings;
    settings.SetDirectory(settingsFolder());
    TermBlockList list;
    ASSERT_TRUE(settings.Read(list));
    ASSERT_EQ(list.size(), 4);
    const QStringList expected[] = {{"HP1A", "Digital", "Input 24 V", "in.bmp"},
                                    {"HP1B", " Analog ", "Analog in", ""},
                                    {"HP1C", "Power", "Feed", ""},
                                    {"HP1D", "Power", "Feed 2", "pic.bmp"}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ((QStringList{list[i].strBlockFile, list[i].strCategory, list[i].strDescription,
                               list[i].strSampleFile}),
                  expected[i]);
    }
    EXPECT_EQ(settings.GetOpenMode(), 0);
}

TEST_F(BlockSettings, WriteTrimsDropsIncompleteBlocksAndEndsAMissingSampleWithASemicolon) {
    writeSettings("* this comment is lost\n:OLD;Cat;Old\n");
    TermBlockList list(4);
    list[0] = {" HP1A ", "Digital ", " In", "", {}};
    list[1] = {"HP1B", "", "No category", "b.bmp", {}};
    list[2] = {"HP1C", "Power", "Feed", " c.bmp ", {}};
    list[3] = {"HP1D", "Power", "  ", "", {}};
    CTermBlockSettings settings;
    settings.SetDirectory(settingsFolder());
    ASSERT_TRUE(settings.Write(list));
    EXPECT_EQ(readSettings(), QByteArray(":HP1A;Digital;In;\n:HP1C;Power;Feed;c.bmp\n"));
}

TEST_F(BlockSettings, WithoutAFolderOrFileNothingIsReadOrWritten) {
    CTermBlockSettings settings;
    TermBlockList list(1);
    list[0] = {"HP1A", "Cat", "Desc", "", {}};
    EXPECT_FALSE(settings.Read(list));
    EXPECT_EQ(list.size(), 1);  // left as it was
    EXPECT_FALSE(settings.Write(list));
    settings.SetDirectory(QString());  // a null folder changes nothing
    EXPECT_FALSE(settings.Open(1));

    settings.SetDirectory(settingsFolder());
    EXPECT_FALSE(settings.Read(list));  // no file yet
    EXPECT_EQ(list.size(), 1);
    EXPECT_TRUE(settings.Open(2));  // writing creates it
    EXPECT_EQ(settings.GetOpenMode(), 2);
    EXPECT_TRUE(settings.Close());
    EXPECT_TRUE(settings.Read(list));
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(BlockSettings, AttributesOfBothSpacesComeSortedWithDuplicatesInFileOrder) {
    const QByteArray blocks = BlockDef("*Model_Space", AttDef("beta", "Beta in block", 9, 9)) +
                              BlockDef("*PAPER_SPACE", AttDef("Alpha", "Paper block", 8, 8)) +
                              BlockDef("INNER", AttDef("AAA", "Ignored", 0, 0));
    writeDrawing(QStringLiteral("HP1A.SHT"),
                 Drawing(AttDef("TAG", "first", 1, 1) + AttDef("alpha", "", 2, 2, true) +
                             AttDef("Tag", "second", 3, 3) + AttDef("", "no tag", 4, 4) +
                             AttDef("Zeta", "last", 5, 5, true),
                         blocks));
    CTermBlockSettings settings;
    QList<_attrinfo> attribs;
    ASSERT_TRUE(settings.LoadBlockAttribs(QStringLiteral("HP1A"), attribs));
    // Model space gives beta, TAG, Tag; paper space Alpha (its block comes first), alpha,
    // Zeta; the stable sort keeps the order of equal tags.
    EXPECT_EQ(Tags(attribs), (QStringList{"Alpha", "alpha", "beta", "TAG", "Tag", "Zeta"}));
    EXPECT_EQ(attribs[1].strPrompt, QStringLiteral("alpha"));  // the tag stands in
    EXPECT_EQ(attribs[3].strPrompt, QStringLiteral("first"));
    EXPECT_EQ(attribs[4].strPrompt, QStringLiteral("second"));
    EXPECT_DOUBLE_EQ(attribs[4].dX, 3.0);
}

TEST_F(BlockSettings, ABlockWhoseDrawingFailsKeepsTheAttributesOfTheBlockBeforeIt) {
    writeDrawing(QStringLiteral("HP1A.SHT"), Drawing(AttDef("A1", "a", 0, 0)));
    writeDrawing(QStringLiteral("HP1BAD.SHT"), "0\nSECTION\n2\nENTITIES\n0\nATTDEF\n10\nx\n");
    writeDrawing(QStringLiteral("HP1NONE.SHT"), Drawing(QByteArray()));
    writeSettings(
        ":HP1A;C;A\n:HP1MISSING;C;Missing\n:HP1BAD;C;Bad\n:HP1NONE;C;None\n"
        ":HP1MISSING;C;Missing again\n");
    CTermBlockSettings settings;
    settings.SetDirectory(settingsFolder());
    TermBlockList list;
    ASSERT_TRUE(settings.Read(list));
    ASSERT_EQ(list.size(), 5);
    EXPECT_EQ(Tags(list[0].lstAttribs), QStringList{"A1"});
    EXPECT_EQ(Tags(list[1].lstAttribs), QStringList{"A1"});
    EXPECT_EQ(Tags(list[2].lstAttribs), QStringList{"A1"});
    EXPECT_EQ(Tags(list[3].lstAttribs), QStringList());  // no definitions clears them
    EXPECT_EQ(Tags(list[4].lstAttribs), QStringList());
}

TEST_F(BlockSettings, SortFollowsTheLocaleIgnoresCaseAndKeepsEqualTagsInOrder) {
    QList<_attrinfo> attribs(5);
    const char* tags[] = {"b", "\xc3\xa4", "A", "a", "Z"};
    for (int i = 0; i < 5; ++i) {
        attribs[i].strTag = QString::fromUtf8(tags[i]);
        attribs[i].dX = i;
    }
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    CTermBlockSettings::SortAttribs(attribs);
    QLocale::setDefault(previous);
    EXPECT_EQ(Tags(attribs), (QStringList{"A", "a", QString::fromUtf8("\xc3\xa4"), "b", "Z"}));
    EXPECT_DOUBLE_EQ(attribs[0].dX, 2.0);
}

TEST_F(BlockSettings, CategoriesComeOnceInOrderOfFirstAppearanceWithCaseCounting) {
    TermBlockList list(5);
    const char* categories[] = {"Power", "Digital", "power", "Power", "Digital"};
    for (int i = 0; i < 5; ++i) {
        list[i].strCategory = QString::fromLatin1(categories[i]);
    }
    QStringList found{"stale"};
    CTermBlockSettings::GetCategories(list, found);
    EXPECT_EQ(found, (QStringList{"Power", "Digital", "power"}));
}
