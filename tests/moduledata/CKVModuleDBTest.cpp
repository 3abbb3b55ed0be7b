#include "CKVModuleDB.h"
#include "SqliteDb.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <functional>

#include <gtest/gtest.h>

namespace {

const QString kNull;

class CKVModuleDBTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_path = MakeDatabase("ZEL_PLC.MDB");
        ZelPlcDbIO::SetInstance(&m_store);
        ASSERT_TRUE(m_db.Open(m_path));
    }
    void TearDown() override { ZelPlcDbIO::SetInstance(nullptr); }

    QString MakeDatabase(const QString& name) {
        const QString path = m_dir.filePath(name);
        EXPECT_TRUE(ZelPlcDbIO::CreateDatabase(path));
        return path;
    }

    // A saved module of type ACME/S1/T1; answers its table.
    QString SaveModule(const QString& catalog, const QStringList& rows = {"HP?TERM;N=1"}) {
        const int handle = m_db.NewModule("ACME", "S1", "T1", catalog);
        CKVModule& module = m_db.GetModule(handle);
        for (const QString& row : rows) {
            module.SetTermRow(module.GetTermCount() + 1, row);
        }
        EXPECT_TRUE(m_db.SaveModule(handle));
        m_db.ReleaseModule(handle);
        QString table;
        EXPECT_TRUE(m_db.GetTypeTableName("ACME", "S1", "T1", table));
        return table;
    }

    QStringList RowsOf(const QString& table, const QString& catalog) {
        ModDB::ModSpecData spec;
        QList<ModDB::ModTermData> rows;
        QStringList texts;
        if (m_db.ReadRawModule(table, catalog, spec, rows)) {
            for (const ModDB::ModTermData& row : rows) {
                texts.append(row.Text + u';' + row.Special);
            }
        }
        return texts;
    }

    QTemporaryDir m_dir;
    QString m_path;
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};

TEST_F(CKVModuleDBTest, OpenRefusesBadPathsAndForeignFilesWithTheirCodes) {
    QFile garbage(m_dir.filePath("garbage.mdb"));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray(4096, '\x5a'));
    garbage.close();
    const struct {
        QString path;
        int code;
    } cases[] = {
        {kNull, 2},
        {"", 2},
        {"ZEL_PLC.MDB", 3},
        {m_dir.path() + "/", 3},
        {"C:\\data\\", 3},
        {garbage.fileName(), 27},
        {m_dir.filePath("missing.mdb"), 27},
    };
    for (const auto& c : cases) {
        CKVModuleDB db;
        EXPECT_FALSE(db.Open(c.path)) << c.path.toStdString();
        EXPECT_EQ(db.GetLastError(), c.code) << c.path.toStdString();
        EXPECT_FALSE(db.IsOpen());
    }
    EXPECT_FALSE(m_db.Open(m_path));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrAlreadyOpen);
}

TEST_F(CKVModuleDBTest, WriteProtectedFileOpensReadOnlyAndRefusesSaves) {
    const QString path = MakeDatabase("locked.mdb");
    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup));
    CKVModuleDB db;
    ASSERT_TRUE(db.Open(path));
    EXPECT_EQ(db.GetLastError(), CKVModuleDB::kErrReadOnly);
    EXPECT_EQ(db.NewModule("ACME", "S1", "T1", "C1"), -1);
    EXPECT_EQ(db.GetLastError(), CKVModuleDB::kErrIndexNotAdded);
}

TEST_F(CKVModuleDBTest, EveryStoreOperationNeedsAnOpenObjectAndAStore) {
    const int handle = m_db.NewModule("ACME", "S1", "T1", "C1");
    QList<_manfams> hierarchy;
    QList<_idandcatalognum> catalogs;
    QList<ModDB::IndexData> indexRows;
    QList<ModDB::PromptData> prompts;
    QList<ModDB::ModTermData> rows;
    ModDB::ModSpecData spec;
    ModDB::StyleBoxData box;
    QString table;
    const std::function<bool(CKVModuleDB&)> operations[] = {
        [&](CKVModuleDB& db) { return db.NewModule("ACME", "S1", "T1", "C2") >= 0; },
        [&](CKVModuleDB& db) { return db.LoadModule("T", "C1", false) >= 0; },
        [&](CKVModuleDB& db) { return db.SaveModule(handle); },
        [&](CKVModuleDB& db) { return db.ReleaseModule(handle); },
        [&](CKVModuleDB& db) { return db.ModuleExists("T", "C1"); },
        [&](CKVModuleDB& db) { return db.CopyModule("C1", "T", "C2", "T"); },
        [&](CKVModuleDB& db) { return db.RenameModule("T", "C1", "C2"); },
        [&](CKVModuleDB& db) { return db.RemoveEntry("ACME", kNull, kNull, kNull); },
        [&](CKVModuleDB& db) { return db.GetHierarchy(hierarchy); },
        [&](CKVModuleDB& db) { return db.GetTypeTableName("ACME", "S1", "T1", table); },
        [&](CKVModuleDB& db) { return db.GetCatalogs("T", catalogs); },
        [&](CKVModuleDB& db) { return db.AddIndex("ACME", kNull, kNull); },
        [&](CKVModuleDB& db) { return db.RenameIndex("ACME", kNull, kNull, "X"); },
        [&](CKVModuleDB& db) { return db.IndexExists("ACME", kNull, kNull); },
        [&](CKVModuleDB& db) { return db.GetStyleBox(1, box); },
        [&](CKVModuleDB& db) { return db.LoadPrompts(); },
        [&](CKVModuleDB& db) { return db.GetIndexRows(indexRows); },
        [&](CKVModuleDB& db) { return db.ReadRawModule("T", "C1", spec, rows); },
        [&](CKVModuleDB& db) { return db.WriteRawModule("T", spec, rows); },
        [&](CKVModuleDB& db) { return db.GetPromptRows(prompts); },
        [&](CKVModuleDB& db) {
            return db.AddPromptRow({"P", "Q"});
        },
        [&](CKVModuleDB& db) { return db.BeginTransaction(); },
        [&](CKVModuleDB& db) { return db.CommitTransaction(); },
    };
    const auto expectAllRefused = [&](const char* state) {
        for (size_t i = 0; i < std::size(operations); ++i) {
            EXPECT_FALSE(operations[i](m_db)) << state << ", operation " << i;
            EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNotOpen)
                << state << ", operation " << i;
        }
    };
    ZelPlcDbIO::SetInstance(nullptr);
    expectAllRefused("open without a store");
    ZelPlcDbIO::SetInstance(&m_store);
    ASSERT_TRUE(m_db.Close());
    expectAllRefused("closed");
    EXPECT_FALSE(m_db.Close());
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNotOpen);
}

TEST_F(CKVModuleDBTest, NewModuleAddsTheIndexRowAtOnceAndRefusesAnExistingCatalog) {
    ASSERT_GT(m_db.NewModule("ACME", "S1", "T9", "NEVER-SAVED"), 0);
    QString table;
    EXPECT_TRUE(m_db.GetTypeTableName("ACME", "S1", "T9", table));
    EXPECT_FALSE(table.isEmpty());
    EXPECT_FALSE(m_db.ModuleExists(table, "NEVER-SAVED"));

    SaveModule("C1");
    EXPECT_EQ(m_db.NewModule("ACME", "S1", "T1", "c1"), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrCatalogExists);
}

TEST_F(CKVModuleDBTest, NewModuleRefusesATypeWithoutTableName) {
    ASSERT_TRUE(m_db.AddIndex("ACME", "S1", "T1"));
    // Only a damaged file has such a type; the API can't make one.
    SqliteDb file;
    ASSERT_TRUE(file.open(m_path, SqliteOpenMode::ReadWrite));
    ASSERT_TRUE(file.exec("UPDATE plc_index SET table_name = ''"));
    file.close();
    EXPECT_EQ(m_db.NewModule("ACME", "S1", "T1", "C1"), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoTableName);
}

TEST_F(CKVModuleDBTest, LoadAndHandleFailuresHaveTheirCodes) {
    const QString table = SaveModule("C1");
    EXPECT_EQ(m_db.LoadModule(table, "", false), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoTableOrCatalog);
    EXPECT_EQ(m_db.LoadModule(table, "MISSING", false), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoSpecRow);

    bool found = true;
    m_db.GetModule(99, &found).SetDescription("scribbled");
    EXPECT_FALSE(found);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoHandle);
    EXPECT_TRUE(m_db.GetModule(99).GetDescription().isEmpty());
    EXPECT_FALSE(m_db.SaveModule(99));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoHandle);
    EXPECT_FALSE(m_db.ReleaseModule(99));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoHandle);
}

TEST_F(CKVModuleDBTest, HandlesSurviveTheReleaseOfAnother) {
    const int first = m_db.NewModule("ACME", "S1", "T1", "C1");
    const int second = m_db.NewModule("ACME", "S1", "T1", "C2");
    const int third = m_db.NewModule("ACME", "S1", "T1", "C3");
    m_db.GetModule(third).SetTableName("kept");
    ASSERT_TRUE(m_db.ReleaseModule(second));
    EXPECT_EQ(m_db.GetModule(first).GetCatalog(), "C1");
    ASSERT_TRUE(m_db.ReleaseModule(first));
    bool found = false;
    EXPECT_EQ(m_db.GetModule(third, &found).GetCatalog(), "C3");
    EXPECT_TRUE(found);
    // Moving modules inside the object must not go through their copy rules.
    EXPECT_EQ(m_db.GetModule(third).GetTableName(), "kept");
    EXPECT_FALSE(m_db.ReleaseModule(first));
    EXPECT_EQ(m_db.NewModule("ACME", "S1", "T1", "C4"), third + 1);
}

TEST_F(CKVModuleDBTest, ValueFieldsLoadAndSaveInTheirTextForm) {
    const struct {
        QString stored;
        double value;
        QString unit;
        QString saved;
    } cases[] = {
        {"12.5 mm", 12.5, "mm", "12.500000 mm"},
        {"abc", 0.0, "", "0.000000"},
        {" mm", -1.0, "mm", ""},  // an unset value loses its unit on save
        {"", -1.0, "", ""},
        {"3 two words", 3.0, "two words", "3.000000 two words"},
        {"-2 in", -2.0, "in", ""},
    };
    const QString table = SaveModule("C1");
    // Stored numbers keep "." whatever the user's locale.
    struct LocaleGuard {
        LocaleGuard() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
        ~LocaleGuard() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    } german;
    for (const auto& c : cases) {
        ModDB::ModSpecData spec;
        spec.Code = "V";
        spec.BoxB4 = c.stored;
        spec.Reserved = "dropped by every save";
        ASSERT_TRUE(m_db.WriteRawModule(table, spec, {}));
        const int handle = m_db.LoadModule(table, "V", false);
        EXPECT_DOUBLE_EQ(m_db.GetModule(handle).GetBoxB4(), c.value) << c.stored.toStdString();
        EXPECT_EQ(m_db.GetModule(handle).GetUnitB4(), c.unit);
        ASSERT_TRUE(m_db.SaveModule(handle));
        QList<ModDB::ModTermData> rows;
        ASSERT_TRUE(m_db.ReadRawModule(table, "V", spec, rows));
        EXPECT_EQ(spec.BoxB4, c.saved) << c.stored.toStdString();
        EXPECT_TRUE(spec.Reserved.isEmpty());
        m_db.ReleaseModule(handle);
        ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", "T1", "V"));
    }
}

TEST_F(CKVModuleDBTest, ModuleRoundTripsWithSpecificationRowsAndPrompts) {
    ASSERT_TRUE(m_db.AddPromptRow({"SLOT", "SLOT"}));
    ASSERT_TRUE(m_db.LoadPrompts());
    const int handle = m_db.NewModule("ACME", "S1", "T1", "C1");
    CKVModule& module = m_db.GetModule(handle);
    module.SetColText3("three");
    module.SetDirFlags("3");
    module.SetBoxA2(1.25);
    module.SetUnitA2("in");
    module.SetPrompts({"SLOT", "", "RACK"});
    module.SetTermRow(1, "HP?SPACE;TERM_=1");
    module.SetTermRow(2, "HP1TERM;TAG=X1;\\SPECIAL=BREAK");
    ASSERT_TRUE(m_db.SaveModule(handle));
    QString table;
    ASSERT_TRUE(m_db.GetTypeTableName("ACME", "S1", "T1", table));

    const int loaded = m_db.LoadModule(table, "C1", false);
    const CKVModule& copy = m_db.GetModule(loaded);
    EXPECT_FALSE(copy.GetIsNew());
    EXPECT_EQ(copy.GetColText3(), "three");
    EXPECT_EQ(copy.GetDirFlags(), "3");
    EXPECT_DOUBLE_EQ(copy.GetBoxA2(), 1.25);
    EXPECT_EQ(copy.GetUnitA2(), "in");
    EXPECT_DOUBLE_EQ(copy.GetBoxA1(), -1.0);
    EXPECT_EQ(copy.GetTermCount(), 2);
    EXPECT_EQ(copy.GetTermText(2), "HP1TERM");
    EXPECT_EQ(copy.GetBreak(2), 1);
    // "RACK" has no localized form and is not the last token, so the load drops it.
    EXPECT_EQ(copy.Prompts().mid(0, 3), QStringList({"SLOT", "", ""}));
}

TEST_F(CKVModuleDBTest, HierarchyGroupsRowsWithoutRegardToCase) {
    QList<_manfams> hierarchy{{"stale", {}}};
    ASSERT_TRUE(m_db.GetHierarchy(hierarchy));
    EXPECT_TRUE(hierarchy.isEmpty());
    ASSERT_TRUE(m_db.AddIndex("ACME", kNull, kNull));
    ASSERT_TRUE(m_db.AddIndex("ACME", "S1", kNull));
    ASSERT_TRUE(m_db.AddIndex("acme", "S1", "T1"));
    ASSERT_TRUE(m_db.AddIndex("Zeta", kNull, kNull));
    ASSERT_TRUE(m_db.GetHierarchy(hierarchy));
    ASSERT_EQ(hierarchy.size(), 2);
    EXPECT_EQ(hierarchy[0].strManufacturer, "ACME");
    ASSERT_EQ(hierarchy[0].families.size(), 1);
    EXPECT_EQ(hierarchy[0].families[0].strSeries, "S1");
    ASSERT_EQ(hierarchy[0].families[0].types.size(), 1);
    EXPECT_EQ(hierarchy[0].families[0].types[0].strType, "T1");
    EXPECT_FALSE(hierarchy[0].families[0].types[0].strTableName.isEmpty());
    EXPECT_TRUE(hierarchy[1].families.isEmpty());
}

TEST_F(CKVModuleDBTest, CatalogsOfATypeAndOfAnUnknownTable) {
    const QString table = SaveModule("C1");
    SaveModule("C2");
    QList<_idandcatalognum> catalogs;
    ASSERT_TRUE(m_db.GetCatalogs(table, catalogs));
    ASSERT_EQ(catalogs.size(), 2);
    EXPECT_EQ(catalogs[0].strId, "1");
    ASSERT_TRUE(m_db.GetCatalogs("NO_SUCH_TABLE", catalogs));
    EXPECT_TRUE(catalogs.isEmpty());
    EXPECT_FALSE(m_db.GetCatalogs(kNull, catalogs));
}

TEST_F(CKVModuleDBTest, RemoveEntryTakesTheLevelOfTheFirstNull) {
    const QString table = SaveModule("C1");
    ASSERT_TRUE(m_db.AddIndex("ACME", "S2", kNull));
    EXPECT_FALSE(m_db.RemoveEntry(kNull, kNull, kNull, kNull));

    ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", "T1", "C1"));
    EXPECT_FALSE(m_db.ModuleExists(table, "C1"));
    QList<ModDB::ModTermData> rows;
    ASSERT_TRUE(m_store.GetModTermData(table + "_Data", "C1", rows));
    EXPECT_TRUE(rows.isEmpty());
    EXPECT_TRUE(m_db.IndexExists("ACME", "S1", "T1"));

    ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", "T1", kNull));
    EXPECT_FALSE(m_db.IndexExists("ACME", "S1", "T1"));
    EXPECT_TRUE(m_db.IndexExists("ACME", "S1", kNull));
    ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", kNull, kNull));
    EXPECT_FALSE(m_db.IndexExists("ACME", "S1", kNull));
    EXPECT_TRUE(m_db.IndexExists("ACME", "S2", kNull));
    ASSERT_TRUE(m_db.RemoveEntry("ACME", kNull, kNull, kNull));
    EXPECT_FALSE(m_db.IndexExists("ACME", kNull, kNull));
}

TEST_F(CKVModuleDBTest, CopyAndRenameRefuseTakenOrMissingNames) {
    const QString table = SaveModule("C1", {"A;N=1", "B;N=2"});
    SaveModule("C2");
    EXPECT_FALSE(m_db.CopyModule("C1", table, "c2", table));
    EXPECT_FALSE(m_db.CopyModule("C1", table, kNull, table));
    EXPECT_FALSE(m_db.CopyModule("MISSING", table, "C3", table));
    EXPECT_FALSE(m_db.ModuleExists(table, "C3"));
    EXPECT_FALSE(m_db.RenameModule(table, "C1", "C2"));
    EXPECT_FALSE(m_db.RenameModule(table, "C1", ""));

    ASSERT_TRUE(m_db.CopyModule("C1", table, "C3", table));
    EXPECT_EQ(RowsOf(table, "C3"), RowsOf(table, "C1"));
    ASSERT_TRUE(m_db.RenameModule(table, "C1", "C4"));
    EXPECT_FALSE(m_db.ModuleExists(table, "C1"));
    EXPECT_EQ(RowsOf(table, "C4"), QStringList({"A;N=1", "B;N=2"}));
}

TEST_F(CKVModuleDBTest, RawWritesKeepTheTextsAndRollBackWithTheOuterTransaction) {
    const QString table = SaveModule("C1");
    ModDB::ModSpecData spec;
    spec.Code = "RAW";
    ASSERT_TRUE(m_db.WriteRawModule(table, spec, {{"RAW", 1, "T", "  A =1"}}));
    EXPECT_EQ(RowsOf(table, "RAW"), QStringList({"T;  A =1"}));
    EXPECT_FALSE(m_db.WriteRawModule(table, spec, {}));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrCatalogExists);

    spec.Code = "UNDONE";
    ASSERT_TRUE(m_db.BeginTransaction());
    ASSERT_TRUE(m_db.WriteRawModule(table, spec, {{"UNDONE", 1, "T", "X=1"}}));
    m_db.RollbackTransaction();
    EXPECT_FALSE(m_db.ModuleExists(table, "UNDONE"));
}

TEST_F(CKVModuleDBTest, PromptCensusCountsPromptsAndLogsTheCutTokens) {
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_dir.path()));
    CKVModule module;
    module.SetTermRow(1, "T;%%1PROMPT=SLOT NO.; %%2PROMPT =X;A=1;%%3PROMPT=Y");
    CKVModule bare;
    bare.SetTermRow(1, "T;A=1");
    QStringList prompts, files, filePrompts;
    QList<int> counts;
    EXPECT_FALSE(m_db.CollectPrompts(bare, prompts, counts, files, filePrompts, "F0"));
    EXPECT_TRUE(m_db.CollectPrompts(module, prompts, counts, files, filePrompts, "F1"));
    EXPECT_TRUE(m_db.CollectPrompts(module, prompts, counts, files, filePrompts, "F2"));
    QFile log("Termdata_List.txt");
    const bool logged = log.open(QIODevice::ReadOnly);
    QDir::setCurrent(previous);

    EXPECT_EQ(prompts, QStringList({"SLOT NO.", "X", "Y"}));
    EXPECT_EQ(counts, QList<int>({2, 2, 2}));
    EXPECT_EQ(files, QStringList({"F1", "F2"}));
    EXPECT_EQ(filePrompts, QStringList({"SLOT NO.", "SLOT NO."}));
    EXPECT_EQ(module.Prompts().mid(0, 3), QStringList({"SLOT NO.", "X", "Y"}));
    ASSERT_TRUE(logged);
    EXPECT_EQ(log.readAll(),
              "%%1PROMPT=SLOT NO.\n%%2PROMPT=X\nA=1\n"
              "%%1PROMPT=SLOT NO.\n%%2PROMPT=X\nA=1\n");
}

}  // namespace
