#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "SqliteDb.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

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

    // A version 1 file with two modules of one type, written as the previous program did.
    void makeVersion1File(const QString& path) {
        ASSERT_TRUE(CreateVersion1Database(path));
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(path));
        ASSERT_TRUE(db.AddIndex("M", "S", "T"));
        ASSERT_TRUE(db.GetTypeTableName("M", "S", "T", m_table));
        ASSERT_TRUE(m_store.AddModTermData(
            m_table + "_Data",
            {{"C1", 1, "HP?SPACE", "%%1PROMPT=SLOT; A =1"}, {"C1", 2, "B", ""}}));
        SqliteDb file;
        ASSERT_TRUE(file.open(path, SqliteOpenMode::ReadWrite));
        SqliteStatement insert = file.prepare(
            "INSERT INTO plc_spec (table_name, code_key, \"Code\", \"Description\", \"BoxB6\") "
            "VALUES (?1, 'c1', 'C1', 'old module', '4 mm'), (?1, 'c2', 'C2', '', '')");
        ASSERT_TRUE(insert.bind(1, m_table).run());
    }

    // Everything the open file holds, every module with all its fields and rows.
    QJsonObject exported() {
        QJsonObject document;
        EXPECT_TRUE(CatalogDocument::Export(m_db, document, nullptr));
        return document;
    }

    QTemporaryDir m_dir;
    QString m_path;
    QString m_table;
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};

TEST_F(MigrationTest, Version1FileIsUpgradedAfterABackupAndEveryModuleLoadsUnchanged) {
    makeVersion1File(m_path);
    ASSERT_TRUE(m_db.Open(m_path));
    const QJsonObject before = exported();
    ASSERT_EQ(before.value("modules").toArray().size(), 2);
    EXPECT_TRUE(Required(m_path, false));

    ASSERT_TRUE(MigrateFile(m_path));
    EXPECT_FALSE(Required(m_path, true));
    QList<ModDB::ModuleMatch> found;
    EXPECT_TRUE(m_store.FindModules("LD MOD", 5, found) && found.value(0).Catalog == "C1");
    const QString backup = m_path + ".v1.bak";
    EXPECT_TRUE(Required(backup, false));

    // The store, still connected to the file, reads as before and writes all fields now.
    EXPECT_EQ(exported(), before);
    const int handle = m_db.LoadModule(m_table, "C1", false);
    EXPECT_EQ(m_db.GetModule(handle).GetDescription(), "old module");
    m_db.GetModule(handle).SetSpecTail("tail");
    m_db.GetModule(handle).SetDirFlags("flags");
    ASSERT_TRUE(m_db.SaveModule(handle));
    ModDB::ModSpecData read;
    ASSERT_TRUE(m_store.GetModSpecData(m_table, "C1", read, false));
    EXPECT_EQ(read.SpecTail + "|" + read.DirFlags + "|" + read.BoxB6, "tail|flags|4.000000 mm");

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
    QFile garbage(m_dir.filePath("garbage.mdb"));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly) && garbage.write(QByteArray(2048, 'x')) > 0);
    garbage.close();

    const struct {
        QString path;
        bool requiredFromFalse, requiredFromTrue;
    } cases[] = {
        {m_path, false, false},
        {locked, true, true},
        {garbage.fileName(), false, true},
        {m_dir.filePath("missing.mdb"), false, true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Required(c.path, false), c.requiredFromFalse) << c.path.toStdString();
        EXPECT_EQ(Required(c.path, true), c.requiredFromTrue) << c.path.toStdString();
        EXPECT_FALSE(MigrateFile(c.path)) << c.path.toStdString();
    }
    const QStringList files = QDir(m_dir.path()).entryList(QDir::Files);
    EXPECT_EQ(files.filter(".bak").size(), 0) << files.join(' ').toStdString();
    EXPECT_FALSE(QFile::exists(m_dir.filePath("missing.mdb")));
}

}  // namespace
