#include "SqliteDb.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString ConnectionText(const QString& path) {
    return QStringLiteral("Provider=Any;Data Source=%1;Mode=Share Deny None").arg(path);
}

bool MigrateFile(const QString& path) {
    return Migrate(path, true, false, nullptr, QString(), QString(), QString(), QString());
}

bool Required(const QString& path, bool preset) {
    bool required = preset;
    CheckForMigration(path, required, false, QStringLiteral("T1"));
    return required;
}

class MigrationTest : public testing::Test {
protected:
    void SetUp() override {
        m_path = m_dir.filePath("ZEL_PLC.MDB");
        ZelPlcDbIO::SetInstance(&m_store);
    }
    void TearDown() override { ZelPlcDbIO::SetInstance(nullptr); }

    // A version 1 file with one type and one module, written as the previous program did.
    void makeVersion1File(const QString& path) {
        ASSERT_TRUE(CreateVersion1Database(path));
        ASSERT_TRUE(m_store.PutConnectionString(ConnectionText(path)));
        ASSERT_TRUE(m_store.AddIndexData("M", "S", "T"));
        ASSERT_TRUE(m_store.GetTypeTableName("M", "S", "T", m_table));
        SqliteDb db;
        ASSERT_TRUE(db.open(path, SqliteOpenMode::ReadWrite));
        SqliteStatement insert = db.prepare(
            "INSERT INTO plc_spec (table_name, code_key, \"Code\", \"Description\", \"BoxB6\") "
            "VALUES (?1, 'c1', 'C1', 'old module', '4 mm')");
        ASSERT_TRUE(insert.bind(1, m_table).run());
    }

    QTemporaryDir m_dir;
    QString m_path;
    QString m_table;
    ZelPlcDbIO m_store;
};

TEST_F(MigrationTest, Version1FileIsUpgradedAfterABackupAndTheStoreSeesEveryField) {
    makeVersion1File(m_path);
    EXPECT_TRUE(Required(m_path, false));
    ModDB::ModSpecData spec;
    ASSERT_TRUE(m_store.GetModSpecData(m_table, "C1", spec, false));
    EXPECT_EQ(spec.Description, "old module");
    EXPECT_EQ(spec.BoxB6, "4 mm");
    EXPECT_TRUE(spec.SpecTail.isEmpty());
    spec.SpecTail = "tail";
    spec.DirFlags = "flags";
    // The old file has no place for the new fields, so it isn't written.
    EXPECT_FALSE(m_store.UpdateModSpecData(m_table, "C1", spec, false));

    ASSERT_TRUE(MigrateFile(m_path));
    EXPECT_FALSE(Required(m_path, true));
    const QString backup = m_path + ".v1.bak";
    EXPECT_TRUE(Required(backup, false));

    // The store, still connected to the file, writes and reads all fields now.
    ASSERT_TRUE(m_store.UpdateModSpecData(m_table, "C1", spec, false));
    ModDB::ModSpecData read;
    ASSERT_TRUE(m_store.GetModSpecData(m_table, "C1", read, false));
    EXPECT_EQ(read.SpecTail, "tail");
    EXPECT_EQ(read.DirFlags, "flags");
    EXPECT_EQ(read.BoxB6, "4 mm");
    EXPECT_FALSE(MigrateFile(m_path));

    // A second old file beside an existing backup gets a fresh backup name.
    m_store.ReleaseFile(m_path);
    ASSERT_TRUE(QFile::remove(m_path));
    makeVersion1File(m_path);
    ASSERT_TRUE(MigrateFile(m_path));
    EXPECT_TRUE(QFile::exists(m_path + ".v1.2.bak"));
    EXPECT_TRUE(Required(backup, false));
}

TEST_F(MigrationTest, OnlyAReadableOldWritableFileIsUpgraded) {
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(m_path));
    const QString locked = m_dir.filePath("locked.mdb");
    makeVersion1File(locked);
    ASSERT_TRUE(QFile::setPermissions(locked, QFile::ReadOwner));
    const QString garbage = m_dir.filePath("garbage.mdb");
    QFile file(garbage);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(2048, 'x'));
    file.close();

    struct Case {
        QString path;
        bool requiredFromFalse, requiredFromTrue;
    };
    const Case cases[] = {
        {m_path, false, false},
        {locked, true, true},
        {garbage, false, true},
        {m_dir.filePath("missing.mdb"), false, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Required(c.path, false), c.requiredFromFalse) << c.path.toStdString();
        EXPECT_EQ(Required(c.path, true), c.requiredFromTrue) << c.path.toStdString();
        EXPECT_FALSE(MigrateFile(c.path)) << c.path.toStdString();
    }
    const QStringList files = QDir(m_dir.path()).entryList(QDir::Files);
    EXPECT_EQ(files.filter(".bak").size(), 0) << files.join(' ').toStdString();
    EXPECT_FALSE(QFile::exists(m_dir.filePath("missing.mdb")));
}

}  // namespace
