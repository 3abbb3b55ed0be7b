#include "BlockLookup.h"
#include "CBlockDescEx.h"
#include "TermColumns.h"
#include "TerminalCsv.h"

#include <gtest/gtest.h>

TEST(TerminalCsv, FieldsAreQuotedAsRfc4180AsksAndSplitBackAsWritten) {
    const struct {
        const char* text;
        const char* written;
    } cases[] = {
        {"plain", "plain"},
        {"", ""},
        {" blanks ", " blanks "},
        {"a,b", "\"a,b\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\""},
        {"two\r\nlines", "\"two\r\nlines\""},
        {"cr\r", "\"cr\r\""},
        {"lf\n", "\"lf\n\""},
    };
    QList<QStringList> records;
    int record = -1;
    int field = -1;
    QString error;
    for (const auto& c : cases) {
        const QString text = QString::fromUtf8(c.text);
        const QString written = TerminalCsv::Field(text);
        EXPECT_EQ(written, QString::fromUtf8(c.written));
        ASSERT_TRUE(TerminalCsv::SplitRecords(written + u',' + written + QStringLiteral("\r\n"),
                                              records, record, field, error))
            << qPrintable(error);
        EXPECT_EQ(records, (QList<QStringList>{{text, text}})) << c.text;
    }
    // Lines may end in LF alone, and the last line needs no end.
    ASSERT_TRUE(TerminalCsv::SplitRecords("a,b\nc,\"\"", records, record, field, error));
    EXPECT_EQ(records, (QList<QStringList>{{"a", "b"}, {"c", ""}}));

    const struct {
        const char* text;
        int record;
        int field;
    } broken[] = {{"a,b\r\nc,d\"e\r\n", 1, 1}, {"a,\"b\"c\r\n", 0, 1}, {"a\r\nb,\"c,d\r\n", 1, 1}};
    for (const auto& b : broken) {
        EXPECT_FALSE(TerminalCsv::SplitRecords(b.text, records, record, field, error)) << b.text;
        EXPECT_EQ(record, b.record) << b.text;
        EXPECT_EQ(field, b.field) << b.text;
    }
}

TEST(TerminalCsv, PromptsOddTokensAndUnknownNamesComeBackAndAreMadeFromTheTextsAlone) {
    CBlockDescEx blocks;
    _termblock block;
    block.strBlockFile = QStringLiteral("HP1TERM");
    block.strDescription = QStringLiteral("Terminal, plain");
    blocks.SetBlocks({block});
    BlockLookup lookup;
    lookup.Rebuild(&blocks);
    TermColumns columns;
    columns.SetBlocks(&lookup);
    columns.SetTexts({"Terminal", "Show", "Re-prompt", "Break", "Spacing"},
                     {"Always", "Exclude", "Include", "Both"}, {"None", "In", "Out", "In and out"});
    const TerminalCsv csv(columns);

    CKVModule module;
    module.SetTermRow(1,
                      "HP?TERM;%%1PROMPT=SLOT;TAG = 7;\\SPECIAL = BREAK;NOTE;A=1;a=2;;"
                      "\\SPECIAL=SPACINGFACTOR=1.234567");
    // A spacing below 0.1 shows as the grid shows it (".750") and came back ten times larger.
    module.SetTermRow(2,
                      "HP?GONE;\\SPECIAL=ADDR_OUT;\\SPECIAL=INCLUDE;B=x,\"y\";"
                      "\\SPECIAL=SPACINGFACTOR=0.075000");
    const QByteArray written = csv.Write(module);
    EXPECT_EQ(written,
              "Terminal,Show,Re-prompt,Break,Spacing,%%1PROMPT,TAG,A,B,Other tokens (;)\r\n"
              "\"Terminal, plain\",Always,None,1,1.2346,SLOT, 7,1,,NOTE;a=2\r\n"
              "HP?GONE,Include,Out,0,.750,,,,\"x,\"\"y\"\"\",\r\n");

    // Read back over the same rows, every row is kept as stored.
    QList<TermCsvRow> rows;
    QStringList errors;
    ASSERT_TRUE(csv.Read(written, module, rows, errors)) << qPrintable(errors.join(u'\n'));
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0].keptRow, 1);
    EXPECT_EQ(rows[1].keptRow, 2);

    // Over rows that hold nothing but the names, the rows are made from the texts.
    CKVModule names;
    names.SetTermRow(1, "HP?TERM;");
    names.SetTermRow(2, "HP?GONE;");
    ASSERT_TRUE(csv.Read(written, names, rows, errors)) << qPrintable(errors.join(u'\n'));
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0].keptRow, 0);
    EXPECT_EQ(rows[0].values.strText, "HP?TERM");
    EXPECT_EQ(rows[0].values.strSpecial,
              "%%1PROMPT=SLOT;TAG= 7;A=1;NOTE;a=2;\\SPECIAL=BREAK;"
              "\\SPECIAL=SPACINGFACTOR=1.234600");
    EXPECT_EQ(rows[1].values.strSpecial,
              "\\SPECIAL=ADDR_OUT;B=x,\"y\";\\SPECIAL=INCLUDE;"
              "\\SPECIAL=SPACINGFACTOR=0.075000");
    CKVModule made;
    for (const TermCsvRow& row : rows) {
        made.SetTermRow(made.GetTermCount() + 1, row.values.strText + u';' + row.values.strSpecial);
    }
    EXPECT_EQ(csv.Write(made), written);

    // What would read back elsewhere is refused where it stands.
    QByteArray odd = written;
    odd.replace("NOTE;a=2", "NOTE;\\SPECIAL=EXCLUDE;C=1").replace("SLOT", "SL;OT");
    EXPECT_FALSE(csv.Read(odd, names, rows, errors));
    EXPECT_EQ(errors,
              (QStringList{"row 1, column %%1PROMPT: a value cannot hold \";\", which ends a token",
                           "row 1, column Other tokens (;): \"\\SPECIAL=EXCLUDE\" belongs in the "
                           "columns Show to Spacing",
                           "row 1, column Other tokens (;): \"C=1\" belongs in a column C"}));
    EXPECT_TRUE(rows.isEmpty());
}
