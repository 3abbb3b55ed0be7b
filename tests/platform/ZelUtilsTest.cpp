#include "CRegistryKey.h"
#include "ZelUtils.h"

#include <QDir>

#include <gtest/gtest.h>

struct TokenCase {
    const char* text;
    const char* delimiters;
    bool found;
    const char* token;
    const char* rest;
};

class GetTokenTest : public testing::TestWithParam<TokenCase> {};

TEST_P(GetTokenTest, CutsAtTheFirstDelimiter) {
    const TokenCase& c = GetParam();
    QString text = QString::fromUtf8(c.text);
    QString token = QStringLiteral("old");
    EXPECT_EQ(GetToken(text, token, QString::fromUtf8(c.delimiters)), c.found);
    EXPECT_EQ(token, QString::fromUtf8(c.token));
    EXPECT_EQ(text, QString::fromUtf8(c.rest));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, GetTokenTest,
    testing::Values(TokenCase{"A=1;B=2", ";", true, "A=1", "B=2"},
                    TokenCase{";B=2", ";", true, "", "B=2"},     // leading delimiter
                    TokenCase{"B=2", ";", false, "", "B=2"},     // nothing left to cut
                    TokenCase{"A=1;", ";", true, "A=1", ""},     // empty rest
                    TokenCase{"a b;c", " ;", true, "a", "b;c"},  // any of the delimiters
                    TokenCase{"", ";", false, "", ""}));

TEST(ZelUtils, ReplaceCountsEveryOccurrence) {
    QString text = QStringLiteral("A  =1 =2");
    EXPECT_EQ(ReplaceStringInString(text, QStringLiteral(" ="), QStringLiteral("=")), 2);
    EXPECT_EQ(text, QStringLiteral("A =1=2"));
    EXPECT_EQ(ReplaceStringInString(text, QString(), QStringLiteral("x")), 0);
}

TEST(ZelUtils, PathsTakeTheNativeSeparator) {
    const QString sep = QDir::separator();
    EXPECT_EQ(NativePath(QStringLiteral("a/b\\c")), QStringLiteral("a") + sep + "b" + sep + "c");
    QString folder = QStringLiteral("blocks");
    EnsureEndingBackslash(folder);
    EXPECT_EQ(folder, QStringLiteral("blocks") + sep);
    QString already = QStringLiteral("blocks\\");
    EnsureEndingBackslash(already);
    EXPECT_EQ(already, QStringLiteral("blocks\\"));
    QString empty;
    EnsureEndingBackslash(empty);
    EXPECT_TRUE(empty.isEmpty());
}

TEST(ZelUtils, EnsureExtensionAddsOnlyWhatIsMissing) {
    QString name = QStringLiteral("HP1TERM");
    EnsureExtension(name, QStringLiteral("SHT"));
    EXPECT_EQ(name, QStringLiteral("HP1TERM.SHT"));
    QString lower = QStringLiteral("hp1term.sht");
    EnsureExtension(lower, QStringLiteral("SHT"));
    EXPECT_EQ(lower, QStringLiteral("hp1term.sht"));
    QString empty;
    EnsureExtension(empty, QStringLiteral("SHT"));
    EXPECT_TRUE(empty.isEmpty());
}

TEST(ZelUtils, CharacterCountsTreatSurrogatePairsAsOneCharacter) {
    const QString text = QStringLiteral("A\U0001F600\u00e9B");
    EXPECT_EQ(GetCharCount(text), 4);
    EXPECT_EQ(GetByteCount(text), 1 + 4 + 2 + 1);
    EXPECT_EQ(GetStringAtCharCount(text, 2), QStringLiteral("A\U0001F600"));
    EXPECT_EQ(GetStringAtCharCount(text, 99), text);
    EXPECT_TRUE(GetStringAtCharCount(text, 0).isEmpty());
    QString cut;
    SetStringWithLength(cut, QStringLiteral("Manufacturer name"), 5);
    EXPECT_EQ(cut, QStringLiteral("Manuf"));
}

TEST(ZelUtils, ExcerptsCutLongTextsNeverInsideACharacter) {
    EXPECT_EQ(TextExcerpt(QStringLiteral("abc"), 3), QStringLiteral("abc"));
    EXPECT_EQ(TextExcerpt(QStringLiteral("abcd"), 3), QStringLiteral("abc... (4 characters)"));
    EXPECT_EQ(TextExcerpt(QStringLiteral("ab\U0001F600c"), 3),
              QStringLiteral("ab... (5 characters)"));
    // Text that looks like a placeholder stays as it is.
    EXPECT_EQ(TextExcerpt(QStringLiteral("%2%1xx"), 4), QStringLiteral("%2%1... (6 characters)"));
}

TEST(CRegistryKey, ValuesSurviveAReopenAndMissingKeysDoNotOpen) {
    CRegistryKey writer;
    writer.SetRootToHCUK();
    ASSERT_TRUE(writer.Create(QStringLiteral("\\Settings\\MRUPLC")));
    EXPECT_TRUE(writer.SetValue(QStringLiteral("Catalog"), QStringLiteral("IO-16")));
    EXPECT_TRUE(writer.SetValue(QStringLiteral("Style"), quint32(3)));
    writer.Close();

    CRegistryKey reader;
    ASSERT_TRUE(reader.Open(QStringLiteral("Settings/MRUPLC")));
    QString catalog;
    quint32 style = 0;
    EXPECT_TRUE(reader.GetValue(QStringLiteral("Catalog"), catalog));
    EXPECT_TRUE(reader.GetValue(QStringLiteral("Style"), style));
    EXPECT_EQ(catalog, QStringLiteral("IO-16"));
    EXPECT_EQ(style, 3u);
    QString missing = QStringLiteral("unchanged");
    EXPECT_FALSE(reader.GetValue(QStringLiteral("Nothing"), missing));
    EXPECT_EQ(missing, QStringLiteral("unchanged"));
    quint32 notNumber = 7;
    EXPECT_FALSE(reader.GetValue(QStringLiteral("Catalog"), notNumber));
    EXPECT_EQ(notNumber, 7u);

    CRegistryKey absent;
    EXPECT_FALSE(absent.Open(QStringLiteral("Settings\\NoSuchKey")));
    EXPECT_FALSE(absent.SetValue(QStringLiteral("x"), QStringLiteral("y")));
}
