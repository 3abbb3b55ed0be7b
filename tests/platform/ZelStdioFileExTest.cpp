#include "ZelStdioFileEx.h"

#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace {

class ZelStdioFileExTest : public testing::Test {
protected:
    QString path(const QString& name = QStringLiteral("file.txt")) const {
        return m_dir.filePath(name);
    }

    void writeBytes(const QByteArray& bytes) const {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray readBytes() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QStringList readLines() {
        QStringList lines;
        ZelStdioFileEx file;
        EXPECT_TRUE(file.Open(path(), ZelStdioFileEx::modeRead | ZelStdioFileEx::typeText));
        QString line;
        while (file.ReadString(line)) {
            lines.append(line);
        }
        EXPECT_TRUE(line.isEmpty());
        return lines;
    }

    static constexpr unsigned kCreate =
        ZelStdioFileEx::modeWrite | ZelStdioFileEx::modeCreate | ZelStdioFileEx::typeText;

    QTemporaryDir m_dir;
};

QByteArray Bytes(const char* text, qsizetype size) {
    return QByteArray(text, size);
}

struct ReadCase {
    const char* name;
    QByteArray bytes;
    QStringList lines;
};

TEST_F(ZelStdioFileExTest, ReadsLinesInEachEncoding) {
    const QString umlaut = QStringLiteral("\u00e4");
    const ReadCase cases[] = {
        {"empty file", QByteArray(), {}},
        {"utf-8 without mark", "a\xc3\xa4\nb\n", {"a" + umlaut, "b"}},
        {"utf-8 with mark", Bytes("\xEF\xBB\xBFx\n", 4), {"x"}},
        {"only a mark", Bytes("\xEF\xBB\xBF", 3), {}},
        {"utf-16 le",
         Bytes("\xFF\xFE"
               "a\0\xE4\0\r\0\n\0b\0",
               12),
         {"a" + umlaut, "b"}},
        {"utf-16 be", Bytes("\xFE\xFF\0a\0\n\0\n", 8), {"a", ""}},
        {"crlf, blank lines, no final line end", "a\r\n\r\n\nb", {"a", "", "", "b"}},
        {"a lone cr stays in the line", "a\rb\n", {"a\rb"}},
        {"invalid utf-8",
         "a\xff\xfe"
         "b\n\xe2\n",
         {"a\uFFFD\uFFFDb", "\uFFFD"}},
        {"utf-16 cut in a character", Bytes("\xFF\xFEx\0\n\0y", 7), {"x", "\uFFFD"}},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        writeBytes(c.bytes);
        EXPECT_EQ(readLines(), c.lines);
    }
}

TEST_F(ZelStdioFileExTest, BinaryGarbageReadsToItsEnd) {
    std::mt19937 engine(7);
    QByteArray bytes(200000, '\0');
    for (char& byte : bytes) {
        byte = char(engine() & 0xff);
    }
    bytes[0] = 'x';  // no byte order mark
    writeBytes(bytes);
    // In UTF-8 a line feed byte is never part of a character, so none may be lost.
    const qsizetype lineEnds = bytes.count('\n');
    EXPECT_EQ(readLines().size(), bytes.endsWith('\n') ? lineEnds : lineEnds + 1);
}

TEST_F(ZelStdioFileExTest, CharactersSplitBetweenReadsStayWhole) {
    // A line end behind an incomplete character at the edge of a read was once lost.
    const QString emoji = QStringLiteral("\U0001F600");
    for (const qsizetype edge : {16 * 1024, 64 * 1024}) {
        for (const qsizetype before : {1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << edge << " " << before);
            const QByteArray pad(edge - before, 'a');
            writeBytes(pad + "\xF0\x9F\x98\x80\nz");
            EXPECT_EQ(readLines(), QStringList({QString::fromLatin1(pad) + emoji, "z"}));
            writeBytes(pad + "\xF0\x9F\x98\nz");
            const QStringList lines = readLines();
            ASSERT_EQ(lines.size(), 2);
            EXPECT_TRUE(
                lines[0].startsWith(QString::fromLatin1(pad) + QChar::ReplacementCharacter));
            EXPECT_EQ(lines[1], "z");
        }
    }
}

// Regression: lines of up to about 64 Ki units past the limit were kept whole.
TEST_F(ZelStdioFileExTest, LinesAreCutExactlyAtTheLimit) {
    const qsizetype limit = ZelStdioFileEx::kMaxLineLength;
    const QByteArray atLimit(limit, 'a');
    const QString cut(limit, u'a');
    const struct {
        const char* name;
        QByteArray bytes;
        QStringList lines;
    } cases[] = {
        {"at the limit", atLimit + "\nz", {cut, "z"}},
        {"at the limit, crlf", atLimit + "\r\nz", {cut, "z"}},
        {"one past", atLimit + "b\nz", {cut, "z"}},
        {"one past, crlf", atLimit + "b\r\nz", {cut, "z"}},
        {"one past, last line", atLimit + "b", {cut}},
        {"30000 past", atLimit + QByteArray(30000, 'b') + "\nz", {cut, "z"}},
        {"three times the limit, then more lines",
         QByteArray(3 * limit + 5, 'a') + "\nnext\n" + QByteArray(limit - 1, 'b') + "\r\nlast",
         {cut, "next", QString(limit - 1, u'b'), "last"}},
        {"a pair across the limit is left out whole",
         QByteArray(limit - 1, 'a') + "\xF0\x9F\x98\x80\nz",
         {QString(limit - 1, u'a'), "z"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeBytes(c.bytes);
        EXPECT_EQ(readLines(), c.lines);
    }
}

// Regression: the UTF-16 decoder let surrogates without their partner through.
TEST_F(ZelStdioFileExTest, UnpairedSurrogatesReadAsReplacementCharacters) {
    // A pair split between two reads of the file stays one character.
    const QString pad(32 * 1024 - 1, u'a');
    QStringEncoder utf16(QStringEncoder::Utf16LE);
    const QByteArray padBytes = utf16(pad);
    const QByteArray split = Bytes("\xFF\xFE", 2) + padBytes + Bytes("\x3D\xD8\x00\xDE\n\0", 6);
    const ReadCase cases[] = {
        {"le", Bytes("\xFF\xFE\x00\xD8x\0\n\0\x00\xDC\n\0", 12), {"\uFFFDx", "\uFFFD"}},
        {"be, low before high", Bytes("\xFE\xFF\xDC\x00\xD8\x00\0\n", 8), {"\uFFFD\uFFFD"}},
        {"high at the end", Bytes("\xFF\xFEx\0\x3D\xD8", 6), {"x\uFFFD"}},
        {"high and half a unit at the end", Bytes("\xFF\xFEx\0\x3D\xD8\x01", 7), {"x\uFFFD\uFFFD"}},
        {"pair split between reads", split, {pad + QStringLiteral("\U0001F600")}},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        writeBytes(c.bytes);
        EXPECT_EQ(readLines(), c.lines);
    }
}

TEST_F(ZelStdioFileExTest, WritingKeepsTheEncodingOfTheEmptiedFile) {
    const struct {
        const char* name;
        bool exists;
        QByteArray before;
        QByteArray after;
    } cases[] = {
        {"new file", false, {}, "\xC3\xA4\n"},
        {"utf-8 without mark", true, "old\n", "\xC3\xA4\n"},
        {"utf-8 with mark", true, "\xEF\xBB\xBFold", "\xEF\xBB\xBF\xC3\xA4\n"},
        {"utf-16 le", true, Bytes("\xFF\xFEo\0", 4), Bytes("\xFF\xFE\xE4\0\n\0", 6)},
        {"utf-16 be", true, Bytes("\xFE\xFF\0o", 4), Bytes("\xFE\xFF\0\xE4\0\n", 6)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QFile::remove(path());
        if (c.exists) {
            writeBytes(c.before);
        }
        ZelStdioFileEx file;
        ASSERT_TRUE(file.Open(path(), kCreate | ZelStdioFileEx::shareDenyWrite));
        EXPECT_TRUE(file.WriteString(QStringLiteral("\u00e4\n")));
        file.Close();
        EXPECT_EQ(readBytes(), c.after);
    }
}

TEST_F(ZelStdioFileExTest, AppendingWritesInTheFileEncodingAfterItsContent) {
    writeBytes(Bytes("\xFF\xFEo\0\n\0", 6));
    ZelStdioFileEx file;
    ASSERT_TRUE(file.Open(path(), kCreate | ZelStdioFileEx::modeNoTruncate));
    file.SeekToEnd();
    EXPECT_TRUE(file.WriteString("p\n"));
    file.Close();
    EXPECT_EQ(readBytes(), Bytes("\xFF\xFEo\0\n\0p\0\n\0", 10));
}

TEST_F(ZelStdioFileExTest, RoundTripOfTextOutsideTheBasicPlane) {
    const QString text = QStringLiteral("\U0001F600 \u00e4\u4e2d");
    {
        ZelStdioFileEx file;
        ASSERT_TRUE(file.Open(path(), kCreate));
        file.WriteString(text + "\n\n");
    }
    EXPECT_EQ(readLines(), QStringList({text, ""}));
}

TEST_F(ZelStdioFileExTest, MissingFilesAndWrongModesFailAndBackslashesSeparate) {
    ZelStdioFileEx file;
    QString line = "stale";
    EXPECT_FALSE(file.Open(path(), ZelStdioFileEx::modeRead));
    EXPECT_FALSE(file.ReadString(line));
    EXPECT_TRUE(line.isEmpty());
    EXPECT_FALSE(file.WriteString("x"));
    // Without the create flag a missing file is not made.
    EXPECT_FALSE(file.Open(path(), ZelStdioFileEx::modeWrite));
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_FALSE(file.Open(QString(), ZelStdioFileEx::modeRead));
    EXPECT_FALSE(file.Open(m_dir.path(), ZelStdioFileEx::modeRead));
    EXPECT_FALSE(file.Open(path("no/such/folder.txt"), kCreate));

    writeBytes("a\n");
    // Backslashes in the path are separators.
    ASSERT_TRUE(file.Open(m_dir.path() + "\\file.txt", ZelStdioFileEx::modeRead));
    EXPECT_FALSE(file.WriteString("x"));
    ASSERT_TRUE(file.Open(path(), kCreate));
    EXPECT_FALSE(file.ReadString(line));
}

TEST_F(ZelStdioFileExTest, FlushReportsAFullDisk) {
    if (!QFile::exists("/dev/full")) {
        GTEST_SKIP() << "no device that is always full";
    }
    ZelStdioFileEx file;
    ASSERT_TRUE(file.Open("/dev/full", kCreate));
    file.WriteString("x\n");
    EXPECT_FALSE(file.Flush());
}

}  // namespace
