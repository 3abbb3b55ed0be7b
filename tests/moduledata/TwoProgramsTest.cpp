#include "SqliteDb.h"
#include "SqliteStatement.h"
#include "StoreTestSupport.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A program that holds the database open, as the module tree does, and writes on command.
class Holder {
public:
    explicit Holder(const QString& path) {
        m_process.start(BuildPath("store_child"), {"hold", path});
        m_process.waitForStarted();
    }
    ~Holder() {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    // Sends a command and answers the child's reply to it.
    QString command(const QString& line) {
        m_process.write((line + u'\n').toUtf8());
        while (!m_process.canReadLine() && m_process.waitForReadyRead()) {
        }
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }
    bool finish() {
        m_process.closeWriteChannel();
        return m_process.waitForFinished() && m_process.exitCode() == 0;
    }

private:
    QProcess m_process;
};

// The codes of the modules, read through a connection of our own that is closed after.
QStringList Codes(const QString& path) {
    SqliteDb db;
    EXPECT_TRUE(db.open(path, SqliteOpenMode::ReadWrite));
    SqliteStatement statement = db.prepare("SELECT \"Code\" FROM plc_spec ORDER BY code_key");
    QStringList codes;
    while (statement.next()) {
        codes << statement.text(0);
    }
    return codes;
}

// Another program reads the file and checkpoints its log, thinking itself alone with it.
void ReadAndCheckpoint(const QString& path) {
    SqliteDb db;
    ASSERT_TRUE(db.open(path, SqliteOpenMode::ReadWrite));
    {
        SqliteStatement count = db.prepare("SELECT count(*) FROM plc_spec");
        ASSERT_TRUE(count.next());
    }
    SqliteStatement checkpoint = db.prepare("PRAGMA wal_checkpoint(TRUNCATE)");
    ASSERT_TRUE(checkpoint.next()) << db.lastError().toStdString();
}

// A file opened and closed behind SQLite's back (the migration check read the header
// with its own descriptor) dropped the holder's locks: another program then took its log
// away and the holder's later writes were lost to everyone else.
TEST(TwoPrograms, WritesOfAProgramThatHoldsTheFileReachAnotherThatCheckpointsMeanwhile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("ZEL_PLC.MDB");
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(path));
    Holder holder(path);
    ASSERT_EQ(holder.command("save C1"), "ok");
    ASSERT_EQ(holder.command("check"), "ok");
    ReadAndCheckpoint(path);
    ASSERT_EQ(holder.command("rename C1 C2"), "ok");
    ASSERT_EQ(holder.command("save C3"), "ok");
    ASSERT_EQ(holder.command("check"), "ok");
    ReadAndCheckpoint(path);
    ASSERT_EQ(holder.command("save C4"), "ok");

    EXPECT_EQ(Codes(path), QStringList({"C2", "C3", "C4"}));
    EXPECT_EQ(IntegrityCheck(path), "ok");
    ASSERT_TRUE(holder.finish());
    EXPECT_EQ(Codes(path), QStringList({"C2", "C3", "C4"}));
    EXPECT_EQ(IntegrityCheck(path), "ok");
}

}  // namespace
