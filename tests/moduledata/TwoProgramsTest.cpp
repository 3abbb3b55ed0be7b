#include "SqliteDb.h"
#include "SqliteStatement.h"
#include "StoreSchema.h"
#include "StoreTestSupport.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

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
    StoreChild holder({"hold", path});
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
    ASSERT_EQ(holder.finish(), 0);
    EXPECT_EQ(Codes(path), QStringList({"C2", "C3", "C4"}));
    EXPECT_EQ(IntegrityCheck(path), "ok");
}

constexpr int kWritesPerWriter = 500;

// What one writer reported: its successful writes by kind, and its failures.
struct WriterReport {
    QStringList imports;
    QString lastSave;
    int renames = 0;
    QStringList failures;
};

// Reads the lines of store_child's write mode; a failure counts when it gave up
// before the busy timeout, as it then did not wait for the other writer's lock.
WriterReport ReadReport(const QByteArray& output) {
    WriterReport report;
    for (const QByteArray& raw : output.split('\n')) {
        const QStringList words = QString::fromUtf8(raw).split(u' ');
        if (words.size() >= 3 && words[0] == QStringLiteral("ok")) {
            if (words[1] == QStringLiteral("import")) {
                report.imports << words[2];
            } else if (words[1] == QStringLiteral("save")) {
                report.lastSave = words[2];
            } else {
                ++report.renames;
            }
        } else if (words.size() >= 4 && words[0] == QStringLiteral("fail") &&
                   words[3].toInt() < StoreSchema::kBusyTimeoutMs) {
            report.failures << QString::fromUtf8(raw);
        }
    }
    return report;
}

class TwoWritersFixture : public StoreFileTest {
protected:
    void SetUp() override { CreateWithModules({"W1-SAVE", "W2-SAVE", "W1-NAME-0", "W2-NAME-0"}); }
};

using TwoWritersTest = OnEachBackend<TwoWritersFixture>;
PLCDB_ON_EACH_BACKEND(TwoWritersTest);

TEST_P(TwoWritersTest, InterleavedImportsSavesAndRenamesAllLandAndNoneGivesUpEarly) {
    const auto args = [this](int writer) {
        return QStringList{"write", m_path, QString::number(writer),
                           QString::number(kWritesPerWriter)};
    };
    StoreChild writers[2] = {StoreChild(args(1)), StoreChild(args(2))};
    for (StoreChild& writer : writers) {
        ASSERT_EQ(writer.readLine(), "ready")
            << writer.process.readAllStandardError().toStdString();
    }
    for (StoreChild& writer : writers) {
        writer.process.write("go\n");
        ASSERT_TRUE(writer.process.waitForBytesWritten());
    }
    for (StoreChild& writer : writers) {
        ASSERT_EQ(writer.finish(300000), 0) << writer.process.readAllStandardError().toStdString();
    }
    if (!OnServer()) {
        ASSERT_EQ(IntegrityCheck(m_path), "ok");
    }
    for (int w = 0; w < 2; ++w) {
        const QString writer = QString::number(w + 1);
        const WriterReport report = ReadReport(writers[w].process.readAllStandardOutput());
        EXPECT_EQ(report.failures, QStringList()) << "writer " << w + 1;
        // Every third write is an import, save or rename; each that said ok is there.
        EXPECT_EQ(report.imports.size(), kWritesPerWriter / 3) << "writer " << w + 1;
        for (const QString& catalog : report.imports) {
            EXPECT_TRUE(m_db.ModuleExists(m_table, catalog)) << catalog.toStdString();
        }
        EXPECT_EQ(LoadRowTexts(m_db, m_table, QStringLiteral("W%1-SAVE").arg(writer)),
                  QStringList{report.lastSave});
        const QString renamed = QStringLiteral("W%1-NAME-%2").arg(writer).arg(report.renames);
        EXPECT_TRUE(m_db.ModuleExists(m_table, renamed)) << renamed.toStdString();
        EXPECT_EQ(report.renames, (kWritesPerWriter + 1) / 3) << "writer " << w + 1;
    }
}

}  // namespace
