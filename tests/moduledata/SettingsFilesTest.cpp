#include "CPathListFile.h"
#include "CStringSettingsFile.h"

#include "ZelUtils.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SettingsFilesTest : public testing::Test {
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }

    void writeBytes(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray readBytes(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_dir;
};

TEST_F(SettingsFilesTest, SettingsLinesAreTrimmedBothWaysAndBlankLinesKeepTheirPlace) {
    writeBytes("KVDEFPMT.DAT", "  first  \n\n \t \r\n\tfourth\r\nfifth");
    CStringSettingsFile settings(path("KVDEFPMT.DAT"));
    QStringList lines{"old"};
    ASSERT_TRUE(settings.ReadArray(lines));
    EXPECT_EQ(lines, QStringList({"first", "", "", "fourth", "fifth"}));

    ASSERT_TRUE(settings.WriteList({" a b ", "", "\tc"}));
    EXPECT_EQ(readBytes("KVDEFPMT.DAT"), "a b\n\nc\n");
    ASSERT_TRUE(settings.ReadList(lines));
    EXPECT_EQ(lines, QStringList({"a b", "", "c"}));
    // Writing again empties the file first.
    ASSERT_TRUE(settings.WriteArray({"d"}));
    EXPECT_EQ(readBytes("KVDEFPMT.DAT"), "d\n");
}

// Regression: a line starting with U+FEFF behind blanks was written first into a file
// without a mark and so read back as a mark; a UTF-16 surrogate without its partner was
// read as it stood, though it is no character.
TEST_F(SettingsFilesTest, ReadWriteReadOfASettingsFileChangesNothing) {
    const QString feff = QStringLiteral("\uFEFF");
    const struct {
        const char* name;
        QByteArray bytes;
        QStringList lines;
        QByteArray written;
    } cases[] = {
        {"utf-8 without mark",
         "  \xEF\xBB\xBF"
         "first\n",
         {feff + "first"},
         "\xEF\xBB\xBF\xEF\xBB\xBF"
         "first\n"},
        {"utf-8",
         "\xEF\xBB\xBF\xEF\xBB\xBF"
         "first\nx\n",
         {feff + "first", "x"},
         "\xEF\xBB\xBF\xEF\xBB\xBF"
         "first\nx\n"},
        {"utf-16 le",
         QByteArray("\xFF\xFE\xFF\xFEo\0\n\0\x00\xD8\n\0", 12),
         {feff + "o", "\uFFFD"},
         QByteArray("\xFF\xFE\xFF\xFEo\0\n\0\xFD\xFF\n\0", 12)},
        {"utf-16 be",
         QByteArray("\xFE\xFF\xFE\xFF\0o\0\n\xDC\x00\0\n", 12),
         {feff + "o", "\uFFFD"},
         QByteArray("\xFE\xFF\xFE\xFF\0o\0\n\xFF\xFD\0\n", 12)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeBytes("KVDEFPMT.DAT", c.bytes);
        CStringSettingsFile settings(path("KVDEFPMT.DAT"));
        QStringList lines;
        ASSERT_TRUE(settings.ReadArray(lines));
        EXPECT_EQ(lines, c.lines);
        ASSERT_TRUE(settings.WriteArray(lines));
        EXPECT_EQ(readBytes("KVDEFPMT.DAT"), c.written);
        QStringList again;
        ASSERT_TRUE(settings.ReadArray(again));
        EXPECT_EQ(again, lines);
    }

    writeBytes("blkplist.txt", QByteArray("\xFF\xFE:\0/\0\x00\xD8\n\0<\0x\0>\0", 16));
    CPathListFile list;
    list.SetFolder(m_dir.path());
    QStringList paths;
    ASSERT_TRUE(list.Read(paths));
    EXPECT_EQ(paths, QStringList({NativePath("/\uFFFD/"), "<x>"}));
    ASSERT_TRUE(list.Write(paths));
    QStringList again;
    ASSERT_TRUE(list.Read(again));
    EXPECT_EQ(again, paths);
}

TEST_F(SettingsFilesTest, FailuresLeaveSettingsLinesAsTheyWereAndEmptyAPathList) {
    const QStringList before{"kept", ""};
    QStringList lines = before;
    CStringSettingsFile missing(path("KVDEFTPS.DAT"));
    EXPECT_FALSE(missing.ReadArray(lines));
    EXPECT_FALSE(missing.ReadList(lines));
    EXPECT_EQ(lines, before);
    // A null name leaves the name as it is; an empty name points nowhere.
    missing.SetFile(QString());
    EXPECT_EQ(missing.GetFile(), path("KVDEFTPS.DAT"));
    EXPECT_FALSE(CStringSettingsFile().ReadArray(lines));
    EXPECT_FALSE(CStringSettingsFile(path("no/folder.dat")).WriteArray(before));
    EXPECT_EQ(lines, before);

    CPathListFile list;
    list.SetFolder(path("nowhere"));
    EXPECT_FALSE(list.Read(lines));
    EXPECT_TRUE(lines.isEmpty());
    EXPECT_FALSE(list.Write({"<x>"}));
}

TEST_F(SettingsFilesTest, PathListKeepsFoldersAndPlaceholdersInOrderBothWays) {
    writeBytes("blkplist.txt",
               "; comment\n"
               ":C:\\blocks\n"
               "<x>\n"
               "\n"
               "  :  /opt/blk/  \r\n"
               "a:b\n"
               "\t<GBL_kv_lib> \n"
               ":\n");
    CPathListFile list;
    // Either separator ends the folder; a null folder changes nothing.
    list.SetFolder(m_dir.path() + "\\");
    list.SetFolder(QString());
    QStringList paths{"old"};
    ASSERT_TRUE(list.Read(paths));
    EXPECT_EQ(paths, QStringList({NativePath("C:/blocks/"), "<x>", NativePath("/opt/blk/"),
                                  "<GBL_kv_lib>", ""}));

    paths.removeLast();
    ASSERT_TRUE(list.Write(paths));
    EXPECT_EQ(readBytes("blkplist.txt"), (":" + NativePath("C:/blocks/") +
                                          "\n<x>\n:" + NativePath("/opt/blk/") + "\n<GBL_kv_lib>\n")
                                             .toUtf8());
    QStringList read;
    ASSERT_TRUE(list.Read(read));
    EXPECT_EQ(read, paths);
}

}  // namespace
