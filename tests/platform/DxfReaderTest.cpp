#include "DxfReader.h"

#include "TestSupport.h"

#include <QtMath>

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace {

using Pairs = std::vector<std::pair<int, QByteArray>>;

QByteArray Join(const Pairs& pairs, const char* eol = "\n") {
    QByteArray text;
    for (const auto& [code, value] : pairs) {
        text += QByteArray::number(code) + eol + value + eol;
    }
    return text;
}

// A drawing with these groups as its ENTITIES section.
QByteArray Entities(const Pairs& body, const char* eol = "\n") {
    Pairs pairs{{0, "SECTION"}, {2, "ENTITIES"}};
    pairs.insert(pairs.end(), body.begin(), body.end());
    pairs.insert(pairs.end(), {{0, "ENDSEC"}, {0, "EOF"}});
    return Join(pairs, eol);
}

// Groups written as "code value code value ...", for values without blanks.
Pairs Groups(const char* text) {
    const QList<QByteArray> tokens = QByteArray(text).simplified().split(' ');
    Pairs pairs;
    for (qsizetype i = 0; i + 1 < tokens.size(); i += 2) {
        pairs.emplace_back(tokens[i].toInt(), tokens[i + 1]);
    }
    return pairs;
}

const Pairs kLine = Groups("0 LINE 8 0 10 1.5 20 2 30 0 11 4 21 6 31 0");

Pairs operator+(Pairs first, const Pairs& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(DxfReaderTest, ReadsEachEntityKind) {
    const Pairs body =
        kLine + Groups(
                    "0 ARC 10 1 20 1 40 2 50 90 51 180 0 CIRCLE 10 -3 20 0.5 40 1.25 "
                    "0 LWPOLYLINE 90 3 70 1 10 0 20 0 10 5 20 0 42 0.5 10 5 20 5 "
                    "0 POLYLINE 66 1 70 0 0 VERTEX 10 1 20 2 0 VERTEX 10 3 20 4 0 SEQEND "
                    "0 TEXT 10 2 20 3 40 0.5 50 90 1 K1 "
                    "0 MTEXT 10 0 20 9 40 1 11 0 21 1 3 {\\fArial|b1;Top}\\P 1 \\H2x;Bottom "
                    "0 ATTDEF 10 7 20 8 40 0.25 1 24V 2 VOLT 3 Voltage? 70 8");
    DxfDrawing drawing;
    QString error;
    ASSERT_TRUE(DxfReader::ReadText(Entities(body), drawing, &error)) << error.toStdString();

    ASSERT_EQ(drawing.lines.size(), 1);
    EXPECT_EQ(drawing.lines[0].start, QPointF(1.5, 2));
    EXPECT_EQ(drawing.lines[0].end, QPointF(4, 6));
    ASSERT_EQ(drawing.arcs.size(), 1);
    EXPECT_DOUBLE_EQ(drawing.arcs[0].radius, 2);
    EXPECT_DOUBLE_EQ(drawing.arcs[0].endAngle, 180);
    ASSERT_EQ(drawing.circles.size(), 1);
    EXPECT_EQ(drawing.circles[0].center, QPointF(-3, 0.5));
    ASSERT_EQ(drawing.polylines.size(), 2);
    EXPECT_TRUE(drawing.polylines[0].closed);
    EXPECT_EQ(drawing.polylines[0].points,
              (QList<QPointF>{QPointF(0, 0), QPointF(5, 0), QPointF(5, 5)}));
    EXPECT_FALSE(drawing.polylines[1].closed);
    EXPECT_EQ(drawing.polylines[1].points, (QList<QPointF>{QPointF(1, 2), QPointF(3, 4)}));
    ASSERT_EQ(drawing.texts.size(), 2);
    EXPECT_EQ(drawing.texts[0].text, QStringLiteral("K1"));
    EXPECT_DOUBLE_EQ(drawing.texts[0].rotation, 90);
    EXPECT_FALSE(drawing.texts[0].paragraph);
    EXPECT_EQ(drawing.texts[1].text, QStringLiteral("Top\nBottom"));
    EXPECT_DOUBLE_EQ(drawing.texts[1].rotation, 90);  // from the direction vector
    EXPECT_TRUE(drawing.texts[1].paragraph);
    ASSERT_EQ(drawing.attributes.size(), 1);
    const DxfAttributeDefinition& attribute = drawing.attributes[0];
    EXPECT_EQ(attribute.tag, QStringLiteral("VOLT"));
    EXPECT_EQ(attribute.prompt, QStringLiteral("Voltage?"));
    EXPECT_EQ(attribute.defaultValue, QStringLiteral("24V"));
    EXPECT_EQ(attribute.position, QPointF(7, 8));
    EXPECT_DOUBLE_EQ(attribute.height, 0.25);
    EXPECT_EQ(attribute.flags, 8);
}

TEST(DxfReaderTest, ReadsEveryLayoutOfTheSameDrawing) {
    struct Case {
        const char* name;
        QByteArray text;
    };
    const Case cases[] = {
        {"LF", Entities(kLine)},
        {"CRLF", Entities(kLine, "\r\n")},
        {"lower-case names, padded codes",
         Join(Groups("0 section 2 entities 0 line 10 1.5 20 2 11 4 21 6 0 endsec 0 eof"))
             .replace("\n0\n", "\n  0\n")},
        {"byte order mark, no EOF after the last section",
         "\xEF\xBB\xBF" + Join(Groups("0 SECTION 2 ENTITIES") + kLine + Groups("0 ENDSEC"))},
        {"in a block, after a header", Join(Pairs{{999, "written by hand"}} +
                                            Groups("0 SECTION 2 HEADER 9 $INSUNITS 70 4 0 ENDSEC "
                                                   "0 SECTION 2 BLOCKS 0 BLOCK 2 TB1 10 0 20 0") +
                                            kLine + Groups("0 ENDBLK 0 ENDSEC 0 EOF"))},
        {"odd groups and unknown entities",
         Entities(Groups("0 INSERT 2 TB1 10 9 20 9 0 LINE 5 2F 102 {APP_REACTORS 330 1A 102 } "
                         "100 AcDbEntity") +
                  Pairs{{999, "a comment"}} +
                  Groups("10 1.5 20 2 11 4 21 6 1001 APP 1000 x 1040 1e300 0 HATCH 91 0"))},
    };
    for (const Case& c : cases) {
        DxfDrawing drawing;
        QString error;
        EXPECT_TRUE(DxfReader::ReadText(c.text, drawing, &error))
            << c.name << ": " << error.toStdString();
        ASSERT_EQ(drawing.lines.size(), 1) << c.name;
        EXPECT_EQ(drawing.lines[0].end, QPointF(4, 6)) << c.name;
        EXPECT_TRUE(drawing.circles.isEmpty() && drawing.texts.isEmpty()) << c.name;
    }
}

TEST(DxfReaderTest, RefusesWhatIsNoDrawingWithAReason) {
    const QByteArray truncated =
        Join({{0, "SECTION"}, {2, "ENTITIES"}}) + Join(kLine) + "0\nLINE\n10\n1\n20\n";
    struct Case {
        const char* name;
        QByteArray text;
        const char* reason;
        int linesRead;
    };
    const Case cases[] = {
        {"empty", "", "empty", 0},
        {"blank line", "\n", "empty", 0},
        {"binary", QByteArray("\x01\x02\x00\x03\x04", 5), "binary", 0},
        {"prose", "Dear reader,\nthis is a letter.\n", "group code expected", 0},
        {"starts inside an entity", Join({{10, "1"}, {0, "EOF"}}), "starts with group code 0", 0},
        {"ends in the middle of an entity", truncated.chopped(1) + "\n2\n", "LINE", 1},
        {"ends after a group code", truncated, "group code 20 has no value", 1},
        {"ends inside the header", Join({{0, "SECTION"}, {2, "HEADER"}, {9, "$X"}}), "without EOF",
         0},
        {"number that is none", Entities({{0, "CIRCLE"}, {10, "1,5"}, {20, "1"}}),
         "\"1,5\" is no number (group 10 of CIRCLE)", 0},
        {"infinite number", Entities({{0, "CIRCLE"}, {40, "inf"}}), "is no number", 0},
        {"number beyond any drawing", Entities({{0, "CIRCLE"}, {40, "1e300"}}), "is no number", 0},
        {"endless line", "0\n" + QByteArray(DxfReader::kMaxLineLength + 10, 'A'), "longer", 0},
    };
    for (const Case& c : cases) {
        DxfDrawing drawing;
        QString error;
        EXPECT_FALSE(DxfReader::ReadText(c.text, drawing, &error)) << c.name;
        EXPECT_TRUE(error.contains(QLatin1String(c.reason)))
            << c.name << ": " << error.toStdString();
        EXPECT_EQ(drawing.lines.size(), c.linesRead) << c.name;
    }
}

// Regression: a line of exactly the longest length was refused.
TEST(DxfReaderTest, TheLongestLineIsReadAndOneByteMoreIsNot) {
    const QByteArray longest(DxfReader::kMaxLineLength, 'x');
    const struct {
        const char* name;
        QByteArray text;
        bool read;
    } cases[] = {
        {"at the limit", Entities({{0, "TEXT"}, {1, longest}}), true},
        {"at the limit, crlf", Entities({{0, "TEXT"}, {1, longest}}, "\r\n"), true},
        {"at the limit, first line behind a mark",
         "\xEF\xBB\xBF" + QByteArray(DxfReader::kMaxLineLength - 1, ' ') + Entities({}), true},
        {"one past", Entities({{0, "TEXT"}, {1, longest + "y"}}), false},
        {"one past, crlf", Entities({{0, "TEXT"}, {1, longest + "y"}}, "\r\n"), false},
        {"one past, last line",
         Join({{0, "SECTION"}, {2, "ENTITIES"}, {0, "TEXT"}, {1, longest + "y"}}).chopped(1),
         false},
    };
    for (const auto& c : cases) {
        DxfDrawing drawing;
        QString error;
        EXPECT_EQ(DxfReader::ReadText(c.text, drawing, &error), c.read)
            << c.name << ": " << error.toStdString();
        if (c.read) {
            EXPECT_EQ(drawing.texts.size(), c.text.contains("TEXT") ? 1 : 0) << c.name;
        } else {
            EXPECT_EQ(error, QStringLiteral("line 8: the line is longer than 1048576 bytes"))
                << c.name;
        }
    }
    DxfDrawing drawing;
    ASSERT_TRUE(DxfReader::ReadText(cases[0].text, drawing, nullptr));
    EXPECT_EQ(drawing.texts.value(0).text, QString::fromLatin1(longest));
}

TEST(DxfReaderTest, ManyEntitiesAcrossTheReadChunksComeWhole) {
    Pairs body;
    for (int i = 0; i < 4000; ++i) {
        const QByteArray n = QByteArray::number(i);
        body.insert(body.end(),
                    {{0, "LINE"}, {10, n}, {20, "0.5"}, {11, n + ".25"}, {21, "-" + n}});
    }
    DxfDrawing drawing;
    ASSERT_TRUE(DxfReader::ReadText(Entities(body, "\r\n"), drawing, nullptr));
    ASSERT_EQ(drawing.lines.size(), 4000);
    for (int i : {0, 1234, 2999, 3999}) {
        EXPECT_EQ(drawing.lines[i].start, QPointF(i, 0.5));
        EXPECT_EQ(drawing.lines[i].end, QPointF(i + 0.25, -i));
    }
}

// Plain text decodes its encodings and codes; paragraph text also drops its formatting.
TEST(DxfReaderTest, DecodesTextValuesAndStripsParagraphFormatting) {
    struct Case {
        const char* entity;
        QByteArray value;
        QString text;
    };
    const Case cases[] = {
        {"TEXT", "Schütz", QStringLiteral("Sch\u00fctz")},
        {"TEXT", "Sch\xfctz", QStringLiteral("Sch\u00fctz")},  // Latin-1
        {"TEXT", "\\U+00FCber", QStringLiteral("\u00fcber")},
        {"TEXT", "45%%d %%p0.1 %%c5 100%%% %%uUnder",
         QStringLiteral("45\u00b0 \u00b10.1 \u23005 100% Under")},
        {"MTEXT", "plain", QStringLiteral("plain")},
        {"MTEXT", "one\\Ptwo", QStringLiteral("one\ntwo")},
        {"MTEXT", "{\\C1;red} {\\LUnder\\l}", QStringLiteral("red Under")},
        {"MTEXT", "\\A1;\\pxqc;\\W0.8;\\Q15;\\T1.1;x", QStringLiteral("x")},
        {"MTEXT", "\\S1^2; in", QStringLiteral("1/2 in")},
        {"MTEXT", "a\\~b \\\\ \\{c\\}", QStringLiteral("a b \\ {c}")},
        {"MTEXT", "ends with \\", QStringLiteral("ends with \\")},
        {"MTEXT", "\\Hunterminated", QStringLiteral("unterminated")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value.toStdString());
        DxfDrawing drawing;
        ASSERT_TRUE(DxfReader::ReadText(Entities({{0, c.entity}, {1, c.value}}), drawing, nullptr));
        ASSERT_EQ(drawing.texts.size(), 1);
        EXPECT_EQ(drawing.texts[0].text, c.text);
    }
}

TEST(DxfReaderTest, AttributePromptIgnoresTheEmbeddedObject) {
    DxfDrawing drawing;
    ASSERT_TRUE(DxfReader::ReadText(
        Entities(Groups("0 ATTDEF 10 1 20 2 2 TAG 3 Prompt") +
                 Pairs{{101, "Embedded Object"}, {10, "99"}, {3, "not the prompt"}}),
        drawing, nullptr));
    ASSERT_EQ(drawing.attributes.size(), 1);
    EXPECT_EQ(drawing.attributes[0].prompt, QStringLiteral("Prompt"));
    EXPECT_EQ(drawing.attributes[0].position, QPointF(1, 2));
}

TEST(DxfReaderTest, AttributeTellsItsSpaceAndTextSettings) {
    const Pairs blocks = Groups(
        "0 SECTION 2 BLOCKS 0 BLOCK 2 *Model_Space 0 ATTDEF 2 INMODEL 0 ENDBLK "
        "0 BLOCK 2 *paper_space 0 ATTDEF 2 INPAPER 0 ENDBLK 0 BLOCK 2 TERMINAL 0 ATTDEF "
        "2 INBLOCK 0 ENDBLK 0 ATTDEF 2 AFTERBLOCKS 0 ENDSEC");
    const Pairs entities =
        Groups("0 ATTDEF 67 1 2 PAPER 0 ATTDEF 67 0 2 MODEL 30 1.5 41 0.75 51 12 72 4 74 3");
    DxfDrawing drawing;
    ASSERT_TRUE(DxfReader::ReadText(Join(blocks) + Entities(entities), drawing, nullptr));
    const std::pair<const char*, DxfSpace> expected[] = {
        {"INMODEL", DxfSpace::Model},    {"INPAPER", DxfSpace::Paper}, {"INBLOCK", DxfSpace::None},
        {"AFTERBLOCKS", DxfSpace::None}, {"PAPER", DxfSpace::Paper},   {"MODEL", DxfSpace::Model}};
    ASSERT_EQ(drawing.attributes.size(), 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(drawing.attributes[i].tag, QString::fromLatin1(expected[i].first));
        EXPECT_EQ(drawing.attributes[i].space, expected[i].second) << expected[i].first;
    }
    const DxfAttributeDefinition& model = drawing.attributes[5];
    EXPECT_EQ((std::vector<double>{model.z, model.widthFactor, model.oblique}),
              (std::vector<double>{1.5, 0.75, 12}));
    EXPECT_EQ(model.horizontalMode, 4);
    EXPECT_EQ(model.verticalMode, 3);
    EXPECT_DOUBLE_EQ(drawing.attributes[0].widthFactor, 1.0);  // the default when missing
}

TEST(DxfReaderTest, BoundsCoverWhatIsDrawnAndArcsFollowTheirSweepAcrossZero) {
    DxfDrawing drawing;
    EXPECT_TRUE(drawing.bounds().isNull());
    drawing.lines.append({QPointF(0, 0), QPointF(10, 5)});
    drawing.arcs.append({QPointF(20, 0), 2.0, 0.0, 90.0});  // reaches (22, 0) and (20, 2)
    drawing.circles.append({QPointF(0, -4), 1.0});
    EXPECT_EQ(drawing.bounds(), QRectF(QPointF(-1, -5), QPointF(22, 5)));

    DxfDrawing arc;
    arc.arcs.append({QPointF(0, 0), 1.0, 710.0, 10.0});  // 350 to 10 degrees
    EXPECT_DOUBLE_EQ(arc.bounds().right(), 1.0);
    EXPECT_NEAR(arc.bounds().left(), std::cos(qDegreesToRadians(10.0)), 1e-12);
}

// Regression: a text cut anywhere must neither crash nor read beyond its end.
TEST(DxfReaderTest, SurvivesBeingCutAtEveryByte) {
    const QByteArray whole = Entities(kLine + Groups("0 MTEXT 1 a\\Pb 0 LINE"), "\r\n");
    qsizetype previous = 0;
    for (qsizetype size = 0; size < whole.size(); ++size) {
        DxfDrawing drawing;
        QString error;
        const bool read = DxfReader::ReadText(whole.left(size), drawing, &error);
        EXPECT_TRUE(read || !error.isEmpty()) << size;
        EXPECT_GE(drawing.lines.size(), previous) << size;  // never fewer for more text
        previous = drawing.lines.size();
    }
}

TEST(DxfReaderTest, ReadFileNamesTheMissingFile) {
    DxfDrawing drawing;
    QString error;
    const QString path = BuildPath(QStringLiteral("no-such-drawing.sht"));
    EXPECT_FALSE(DxfReader::ReadFile(path, drawing, &error));
    EXPECT_TRUE(error.contains(path)) << error.toStdString();
}

}  // namespace
