#include "CKVModuleDB.h"
#include "StoreDb.h"
#include "StoreTestSupport.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QDir>
#include <QFile>
#include <QLocale>

#include <functional>

#include <gtest/gtest.h>

namespace {

const QString kNull;

class CKVModuleDBFixture : public StoreFileTest {
protected:
    void SetUp() override { CreateWithModules({}); }

    // A saved module of type ACME/series/T1; answers its table.
    QString SaveModule(const QString& catalog, const QStringList& rows = {"HP?TERM;N=1"},
                       const QString& series = "S1") {
        const int handle = m_db.NewModule("ACME", series, "T1", catalog);
        CKVModule& module = m_db.GetModule(handle);
        for (const QString& row : rows) {
            module.SetTermRow(module.GetTermCount() + 1, row);
        }
        EXPECT_TRUE(m_db.SaveModule(handle));
        m_db.ReleaseModule(handle);
        QString table;
        EXPECT_TRUE(m_db.GetTypeTableName("ACME", series, "T1", table));
        return table;
    }

    // The stored terminal rows of a catalog code, found even when its module is gone.
    QStringList RowsOf(const QString& table, const QString& catalog) {
        QList<ModDB::ModTermData> rows;
        EXPECT_TRUE(m_store.GetModTermData(table + "_Data", catalog, rows));
        QStringList texts;
        for (const ModDB::ModTermData& row : rows) {
            texts.append(row.Text + u';' + row.Special);
        }
        return texts;
    }
};

using CKVModuleDBTest = OnEachBackend<CKVModuleDBFixture>;
PLCDB_ON_EACH_BACKEND(CKVModuleDBTest);

// Paths, write protection and the files of the working folder.
class CKVModuleDBFileTest : public CKVModuleDBFixture {};

TEST_F(CKVModuleDBFileTest, OpenRefusesBadPathsAndUnopenableFilesWithTheirCodes) {
    const struct {
        QString path;
        int code;
    } cases[] = {{kNull, 2},         {"", 2},
                 {"ZEL_PLC.MDB", 3}, {m_dir.path() + "/", 3},
                 {"C:\\data\\", 3},  {m_dir.filePath("missing.mdb"), 27}};
    for (const auto& c : cases) {
        CKVModuleDB db;
        EXPECT_FALSE(db.Open(c.path)) << c.path.toStdString();
        EXPECT_EQ(db.GetLastError(), c.code) << c.path.toStdString();
        EXPECT_FALSE(db.IsOpen());
    }
    EXPECT_FALSE(m_db.Open(m_path));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrAlreadyOpen);
}

TEST_F(CKVModuleDBFileTest, WriteProtectedFileOpensReadOnlyAndRefusesEveryWrite) {
    const QString table = SaveModule("C1");
    m_store.ReleaseFile(m_path);
    ASSERT_TRUE(QFile::setPermissions(m_path, QFile::ReadOwner | QFile::ReadGroup));
    CKVModuleDB db;
    ASSERT_TRUE(db.Open(m_path));
    EXPECT_EQ(db.GetLastError(), CKVModuleDB::kErrReadOnly);
    const int handle = db.LoadModule(table, "C1", false);
    db.GetModule(handle).SetTermRow(2, "HP?TERM;N=2");
    ModDB::ModSpecData spec;
    spec.Code = "RAW";
    const ModDB::PromptData prompt{"P", "Q"};
    const std::function<bool()> writes[] = {
        [&] { return db.SaveModule(handle); },
        [&] { return db.RenameModule(table, "C1", "C2"); },
        [&] { return db.CopyModule("C1", table, "C2", table); },
        [&] { return db.RemoveEntry("ACME", "S1", "T1", "C1"); },
        [&] { return db.RemoveEntry("ACME", kNull, kNull, kNull); },
        [&] { return db.RenameIndex("ACME", kNull, kNull, "X"); },
        [&] { return db.WriteRawModule(table, spec, {}); },
        [&] { return db.AddPromptRow(prompt); },
    };
    for (size_t i = 0; i < std::size(writes); ++i) {
        m_store.m_strLastError.clear();
        EXPECT_FALSE(writes[i]()) << "write " << i;
        EXPECT_FALSE(m_store.m_strLastError.isEmpty()) << "write " << i;
    }
    EXPECT_EQ(db.NewModule("ACME", "S1", "T2", "C1"), -1);
    EXPECT_EQ(db.GetLastError(), CKVModuleDB::kErrIndexNotAdded);
    EXPECT_EQ(RowsOf(table, "C1"), QStringList({"HP?TERM;N=1"}));
}

TEST_P(CKVModuleDBTest, EveryStoreOperationNeedsAnOpenObjectAndAStore) {
    const int handle = m_db.NewModule("ACME", "S1", "T1", "C1");
    QList<_manfams> hierarchy;
    QList<_idandcatalognum> catalogs;
    QList<ModDB::IndexData> indexRows;
    QList<ModDB::PromptData> prompts;
    QList<ModDB::ModTermData> rows;
    ModDB::ModSpecData spec;
    ModDB::StyleBoxData box;
    QString table;
    const ModDB::PromptData prompt{"P", "Q"};
    const std::function<bool()> operations[] = {
        [&] { return m_db.NewModule("ACME", "S1", "T1", "C2") >= 0; },
        [&] { return m_db.LoadModule("T", "C1", false) >= 0; },
        [&] { return m_db.SaveModule(handle); },
        [&] { return m_db.ReleaseModule(handle); },
        [&] { return m_db.ModuleExists("T", "C1"); },
        [&] { return m_db.CopyModule("C1", "T", "C2", "T"); },
        [&] { return m_db.RenameModule("T", "C1", "C2"); },
        [&] { return m_db.RemoveEntry("ACME", kNull, kNull, kNull); },
        [&] { return m_db.GetHierarchy(hierarchy); },
        [&] { return m_db.GetTypeTableName("ACME", "S1", "T1", table); },
        [&] { return m_db.GetCatalogs("T", catalogs); },
        [&] { return m_db.AddIndex("ACME", kNull, kNull); },
        [&] { return m_db.RenameIndex("ACME", kNull, kNull, "X"); },
        [&] { return m_db.IndexExists("ACME", kNull, kNull); },
        [&] { return m_db.GetStyleBox(1, box); },
        [&] { return m_db.LoadPrompts(); },
        [&] { return m_db.GetIndexRows(indexRows); },
        [&] { return m_db.ReadRawModule("T", "C1", spec, rows); },
        [&] { return m_db.WriteRawModule("T", spec, rows); },
        [&] { return m_db.GetPromptRows(prompts); },
        [&] { return m_db.AddPromptRow(prompt); },
        [&] { return m_db.BeginTransaction(); },
        [&] { return m_db.CommitTransaction(); },
    };
    ZelPlcDbIO::SetInstance(nullptr);
    for (const QString state : {"open without a store", "closed"}) {
        for (size_t i = 0; i < std::size(operations); ++i) {
            EXPECT_FALSE(operations[i]()) << state.toStdString() << ", operation " << i;
            EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNotOpen)
                << state.toStdString() << ", operation " << i;
        }
        ZelPlcDbIO::SetInstance(&m_store);
        EXPECT_EQ(m_db.Close(), state != "closed");
    }
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNotOpen);
}

TEST_P(CKVModuleDBTest, NewModuleAddsTheIndexRowAtOnceAndRefusesATakenCatalogOrNoTable) {
    ASSERT_GT(m_db.NewModule("ACME", "S1", "T9", "NEVER-SAVED"), 0);
    QString table;
    EXPECT_TRUE(m_db.GetTypeTableName("ACME", "S1", "T9", table));
    EXPECT_FALSE(m_db.ModuleExists(table, "NEVER-SAVED"));

    table = SaveModule("C1");
    EXPECT_EQ(m_db.NewModule("ACME", "S1", "T1", "c1"), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrCatalogExists);

    // Only a damaged store has a type without table name; the API can't make one.
    ASSERT_TRUE(OpenRaw()->exec("UPDATE plc_index SET table_name = ''"));
    EXPECT_EQ(m_db.NewModule("ACME", "S1", "T1", "C2"), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoTableName);
    ModDB::ModSpecData spec;
    spec.Code = "c1";
    EXPECT_FALSE(m_db.WriteRawModule(table, spec, {}));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrCatalogExists);
}

TEST_P(CKVModuleDBTest, HandlesSurviveTheReleaseOfAnotherAndBadOnesFailWithTheirCodes) {
    const QString table = SaveModule("C0");
    EXPECT_EQ(m_db.LoadModule(table, "", false), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoTableOrCatalog);
    EXPECT_EQ(m_db.LoadModule(table, "MISSING", false), -1);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoSpecRow);

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
    EXPECT_EQ(m_db.NewModule("ACME", "S1", "T1", "C4"), third + 1);

    // A released handle is unknown, and what is written to its stand-in is lost.
    m_db.GetModule(first, &found).SetDescription("scribbled");
    EXPECT_FALSE(found);
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoHandle);
    EXPECT_TRUE(m_db.GetModule(first).GetDescription().isEmpty());
    EXPECT_FALSE(m_db.SaveModule(first));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoHandle);
    EXPECT_FALSE(m_db.ReleaseModule(first));
    EXPECT_EQ(m_db.GetLastError(), CKVModuleDB::kErrNoHandle);
}

TEST_P(CKVModuleDBTest, ValueFieldsLoadAndSaveInTheirTextForm) {
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
        ASSERT_TRUE(m_db.SaveModule(handle)) << m_store.m_strLastError.toStdString();
        QList<ModDB::ModTermData> rows;
        ASSERT_TRUE(m_db.ReadRawModule(table, "V", spec, rows));
        EXPECT_EQ(spec.BoxB4, c.saved) << c.stored.toStdString();
        EXPECT_TRUE(spec.Reserved.isEmpty());
        m_db.ReleaseModule(handle);
        ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", "T1", "V"));
    }
}

TEST_P(CKVModuleDBTest, ModuleRoundTripsWithItsFieldsRowsAndPrompts) {
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

    const CKVModule& copy = m_db.GetModule(m_db.LoadModule(table, "C1", false));
    EXPECT_FALSE(copy.GetIsNew());
    EXPECT_EQ(copy.GetColText3() + "|" + copy.GetDirFlags() + "|" + copy.GetUnitA2(), "three|3|in");
    EXPECT_DOUBLE_EQ(copy.GetBoxA2(), 1.25);
    EXPECT_DOUBLE_EQ(copy.GetBoxA1(), -1.0);
    EXPECT_EQ(copy.GetTermCount(), 2);
    EXPECT_EQ(copy.GetTermText(2), "HP1TERM");
    EXPECT_EQ(copy.GetBreak(2), 1);
    // "RACK" has no localized form and is not the last token, so the load drops it.
    EXPECT_EQ(copy.Prompts().mid(0, 3), QStringList({"SLOT", "", ""}));
}

TEST_P(CKVModuleDBTest, HierarchyGroupsRowsWithoutRegardToCase) {
    QList<_manfams> hierarchy{{"stale", {}}};
    ASSERT_TRUE(m_db.AddIndex("ACME", "S1", kNull));
    ASSERT_TRUE(m_db.AddIndex("acme", "s1", "T1"));
    ASSERT_TRUE(m_db.AddIndex("Zeta", kNull, kNull));
    ASSERT_TRUE(m_db.GetHierarchy(hierarchy));
    ASSERT_EQ(hierarchy.size(), 2);
    EXPECT_EQ(hierarchy[0].strManufacturer, "ACME");
    ASSERT_EQ(hierarchy[0].families.size(), 1);
    ASSERT_EQ(hierarchy[0].families[0].types.size(), 1);
    EXPECT_FALSE(hierarchy[0].families[0].types[0].strTableName.isEmpty());
    EXPECT_TRUE(hierarchy[1].families.isEmpty());
}

TEST_P(CKVModuleDBTest, RemoveEntryTakesTheLevelOfTheFirstNullWithEverythingBelowIt) {
    const QString table = SaveModule("C1");
    SaveModule("C2");
    const QString kept = SaveModule("C1", {"K;N=1"}, "S2");
    EXPECT_FALSE(m_db.RemoveEntry(kNull, kNull, kNull, kNull));

    ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", "T1", "C1"));
    EXPECT_FALSE(m_db.ModuleExists(table, "C1"));
    EXPECT_TRUE(RowsOf(table, "C1").isEmpty());
    EXPECT_TRUE(m_db.ModuleExists(table, "C2"));
    EXPECT_TRUE(m_db.IndexExists("ACME", "S1", "T1"));

    ASSERT_TRUE(m_db.RemoveEntry("acme", "s1", kNull, kNull));
    EXPECT_FALSE(m_db.RemoveEntry("ACME", "S1", kNull, kNull));
    EXPECT_FALSE(m_db.IndexExists("ACME", "S1", kNull));
    EXPECT_FALSE(m_db.ModuleExists(table, "C2"));
    EXPECT_TRUE(RowsOf(table, "C2").isEmpty());
    EXPECT_EQ(RowsOf(kept, "C1"), QStringList({"K;N=1"}));
    // A type made again under the old names gets a table name of its own.
    EXPECT_NE(SaveModule("C3"), table);

    ASSERT_TRUE(m_db.RemoveEntry("ACME", "S1", "T1", kNull));
    EXPECT_FALSE(m_db.IndexExists("ACME", "S1", "T1"));
    EXPECT_TRUE(m_db.IndexExists("ACME", "S1", kNull));
    ASSERT_TRUE(m_db.RemoveEntry("ACME", kNull, kNull, kNull));
    QList<ModDB::IndexData> index;
    ASSERT_TRUE(m_db.GetIndexRows(index));
    EXPECT_TRUE(index.isEmpty());
}

TEST_P(CKVModuleDBTest, CopyAndRenameRefuseTakenOrMissingNames) {
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

TEST_F(CKVModuleDBFileTest, PromptCensusCountsPromptsAndLogsTheCutTokens) {
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
