#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "FaultVfs.h"
#include "SqliteDb.h"
#include "ZelPlcDbIO.h"

#include "TestSupport.h"

#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class StoreFaultsTest : public testing::Test {
protected:
    void SetUp() override {
        m_path = m_dir.filePath("ZEL_PLC.MDB");
        ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(m_path));
        ZelPlcDbIO::SetInstance(&m_store);
    }
    void TearDown() override { ZelPlcDbIO::SetInstance(nullptr); }

    // First made, last gone: every connection ends before it.
    FaultVfs m_vfs;
    QTemporaryDir m_dir;
    QString m_path;
    ZelPlcDbIO m_store;
};

// A full disk was reported as "cannot write catalog ...", without its cause.
TEST_F(StoreFaultsTest, AFullDiskIsNamedAndTheModuleStaysWhole) {
    CKVModuleDB db;
    ASSERT_TRUE(db.Open(m_path));
    const int handle = db.NewModule("ACME", "S1", "T1", "C1");
    db.GetModule(handle).SetTermRow(1, "A;N=1");
    db.GetModule(handle).SetTermRow(2, "B;N=2");
    ASSERT_TRUE(db.SaveModule(handle));
    QString table;
    ASSERT_TRUE(db.GetTypeTableName("ACME", "S1", "T1", table));

    m_vfs.setDiskFull(true);
    db.GetModule(handle).RemoveTerm(2);
    db.GetModule(handle).SetTermRow(1, "X;N=9");
    EXPECT_FALSE(db.SaveModule(handle));
    EXPECT_EQ(db.GetLastFailure(), "the disk is full");
    const QJsonObject document = QJsonDocument::fromJson(R"({"format":"plcdb","version":1,
        "modules":[{"manufacturer":"ACME","series":"S1","type":"T1","spec":{"Code":"C2"}}]})")
                                     .object();
    QString error;
    EXPECT_FALSE(CatalogDocument::Import(db, document, &error));
    EXPECT_EQ(error, "cannot write the document to the database: the disk is full");

    m_vfs.setDiskFull(false);
    const CKVModule& saved = db.GetModule(db.LoadModule(table, "C1", false));
    ASSERT_EQ(saved.GetTermCount(), 2);
    EXPECT_EQ(saved.GetTermText(1) + saved.GetTermText(2), "AB");
    EXPECT_FALSE(db.ModuleExists(table, "C2"));
}

// Another program's write lock gave "cannot start a transaction"; its exclusive lock made
// Open wait in each of its three connection modes and fail with a bare code 27.
TEST_F(StoreFaultsTest, AnotherProgramsLockIsNamedAfterOneWaitAndNothingIsLost) {
    const QJsonObject document = QJsonDocument::fromJson(R"({"format":"plcdb","version":1,
        "modules":[{"manufacturer":"ACME","series":"S1","type":"T1","spec":{"Code":"C2"}}]})")
                                     .object();
    CKVModuleDB db;
    {
        SqliteDb writer;
        ASSERT_TRUE(writer.open(m_path, SqliteOpenMode::ReadWrite));
        ASSERT_TRUE(writer.exec("BEGIN IMMEDIATE"));
        ASSERT_TRUE(db.Open(m_path));
        QString error;
        EXPECT_FALSE(CatalogDocument::Import(db, document, &error));
        EXPECT_EQ(error,
                  "cannot start a transaction on the database: locked by another program, "
                  "waited 3 s");
        EXPECT_EQ(m_vfs.sleptMicroseconds(), 3'000'000);
        db.Close();
        m_store.ReleaseFile(m_path);
    }
    SqliteDb owner;
    ASSERT_TRUE(owner.open(m_path, SqliteOpenMode::ReadWrite));
    ASSERT_TRUE(
        owner.exec("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; "
                   "UPDATE plc_style SET \"BoxA1\" = '7 mm' WHERE number = 1"));
    EXPECT_FALSE(db.Open(m_path));
    EXPECT_EQ(db.GetLastError(), CKVModuleDB::kErrCannotOpen);
    EXPECT_EQ(db.GetLastFailure(), "locked by another program, waited 3 s");
    EXPECT_EQ(m_vfs.sleptMicroseconds(), 6'000'000);

    ASSERT_TRUE(owner.exec("COMMIT"));
    owner.close();
    ASSERT_TRUE(db.Open(m_path));
    ModDB::StyleBoxData style;
    ASSERT_TRUE(db.GetStyleBox(1, style));
    EXPECT_EQ(style.Box[0], "7 mm");
}

}  // namespace
