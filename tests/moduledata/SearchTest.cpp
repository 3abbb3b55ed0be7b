#include "CKVModuleDB.h"
#include "SearchIndex.h"
#include "SqliteDb.h"
#include "StoreSchema.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include "StoreTestSupport.h"

#include <QFile>
#include <QHash>

#include <gtest/gtest.h>

#include <functional>

namespace {

QString Utf8(const char* text) {
    return QString::fromUtf8(text);
}

// The matches as "Type/Catalog" (or "Manufacturer/Catalog"), in the order found.
QString Found(ZelPlcDbIO& store, const QString& fragment, int limit = 50, bool byType = true) {
    QList<ModDB::ModuleMatch> matches;
    EXPECT_TRUE(store.FindModules(fragment, limit, matches)) << store.m_strLastError.toStdString();
    QStringList found;
    for (const ModDB::ModuleMatch& match : matches) {
        found << (byType ? match.Type : match.Manufacturer) + '/' + match.Catalog;
    }
    return found.join(' ');
}

// What the index itself holds for a fragment, and its rows against the modules', read
// through a connection of its own.
QString IndexState(const QString& path, const QString& fragment) {
    SqliteDb db;
    EXPECT_TRUE(db.open(path, SqliteOpenMode::ReadWrite));
    SqliteStatement statement = db.prepare(
        "SELECT (SELECT count(*) FROM plc_search WHERE plc_search MATCH ?1),"
        " (SELECT count(*) FROM plc_search) - (SELECT count(*) FROM plc_spec),"
        " (SELECT count(*) FROM plc_search_key) - (SELECT count(*) FROM plc_spec)");
    EXPECT_TRUE(statement.bind(1, SearchIndex::Phrase(fragment)).next())
        << db.lastError().toStdString();
    return QStringLiteral("%1 hits, %2 %3")
        .arg(statement.toInt(0))
        .arg(statement.toInt(1))
        .arg(statement.toInt(2));
}

class SearchTest : public StoreFileTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_path = m_dir.filePath("ZEL_PLC.MDB");
        ZelPlcDbIO::SetInstance(&m_store);
    }
    void createEmpty() { ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(m_path) && m_db.Open(m_path)); }
    // A copy of the file taken for one of version 2, read by the scan alone.
    void openScanCopy() {
        const QString copy = m_dir.filePath("scan.mdb");
        SqliteDb file;
        ASSERT_TRUE(file.open(m_path, SqliteOpenMode::ReadWrite) && file.backupTo(copy));
        SqliteDb older;
        ASSERT_TRUE(older.open(copy, SqliteOpenMode::ReadWrite) &&
                    older.exec("PRAGMA user_version = 2"));
        older.close();
        ASSERT_TRUE(m_scan.PutConnectionString("Data Source=" + copy + ";Mode=Read"));
    }

    ZelPlcDbIO m_scan;
};

TEST_F(SearchTest, TheIndexFindsWhatTheScanOfAFileWithoutItFinds) {
    createEmpty();
    struct Module {
        const char* manufacturer;
        const char* code;
        const char* description;
        const char* colText3;
    };
    const Module modules[] = {
        {"Beta", "abc-200", "äbc module", ""},
        {"Beta", "G1", "", "\u1C90\u1C91\u1C92"},  // Georgian capitals, which the index keeps apart
        {"alpha", "ÄBC-100", "Relay output", ""},
        {"alpha", "Q\"7", "say \"hi\" now", ""},
        {"alpha", "ΟΣΟΣ", "", ""},
    };
    for (const Module& module : modules) {
        QString table;
        m_db.AddIndex(Utf8(module.manufacturer), "S", "T");
        ASSERT_TRUE(m_db.GetTypeTableName(Utf8(module.manufacturer), "S", "T", table));
        ModDB::ModSpecData spec;
        spec.Code = Utf8(module.code);
        spec.Description = Utf8(module.description);
        spec.ColText3 = Utf8(module.colText3);
        ASSERT_TRUE(m_db.WriteRawModule(table, spec, {}));
    }
    openScanCopy();

    struct Case {
        const char* fragment;
        int limit;
        const char* found;
    };
    const Case cases[] = {
        {"äbc", 50, "alpha/ÄBC-100 Beta/abc-200"},
        {"ÄBC", 50, "alpha/ÄBC-100 Beta/abc-200"},
        {"ABC", 50, "Beta/abc-200"},
        {"ÄBC", 1, "alpha/ÄBC-100"},
        {"\"hi\"", 50, "alpha/Q\"7"},
        {"y \"h", 50, "alpha/Q\"7"},
        {"σος", 50, "alpha/ΟΣΟΣ"},
        {"\u10D0\u10D1\u10D2", 50, "Beta/G1"},
        {"\u1C90\u1C91\u1C92", 50, "Beta/G1"},
        {"bc", 50, "alpha/ÄBC-100 Beta/abc-200"},
        {"PUT OR x", 50, ""},
        {"xyz", 50, ""},
    };
    for (const Case& c : cases) {
        const QString fragment = Utf8(c.fragment);
        EXPECT_EQ(Found(m_store, fragment, c.limit, false), Utf8(c.found)) << c.fragment;
        EXPECT_EQ(Found(m_scan, fragment, c.limit, false), Utf8(c.found)) << c.fragment;
    }
}

TEST_F(SearchTest, ManyHitsComeInTheScansOrder) {
    createEmpty();
    ASSERT_TRUE(m_store.BeginTransaction());
    // Made in the reverse of their order, so that neither the file nor the index holds them
    // in it.
    for (int module = 2100; module > 0; --module) {
        const QString manufacturer = QStringLiteral("M%1").arg(module % 7);
        const QString type = QStringLiteral("T%1").arg(module % 5);
        QString table;
        m_store.AddIndexData(manufacturer, "S", type);
        ASSERT_TRUE(m_store.GetTypeTableName(manufacturer, "S", type, table));
        ModDB::ModSpecData spec;
        spec.Code = QStringLiteral("C%1").arg(module);
        spec.Description = module % 3 ? "Input module" : "INPUT MODULE, isolated";
        ASSERT_TRUE(m_store.AddModSpecData(table, spec, false));
    }
    ASSERT_TRUE(m_store.CommitTransaction());
    openScanCopy();
    for (const int limit : {50, 3000}) {
        const QString found = Found(m_store, "put mod", limit);
        EXPECT_EQ(found.count(' ') + 1, qMin(limit, 2100));
        EXPECT_EQ(found, Found(m_scan, "put mod", limit));
    }
    EXPECT_EQ(Found(m_store, "odule, i", 3000), Found(m_scan, "odule, i", 3000));
}

TEST_F(SearchTest, EveryChangeOfTheStoreIsFoundAndItsOldTextsLeaveTheIndex) {
    createEmpty();
    QString t, u;
    ASSERT_TRUE(m_db.AddIndex("M", "S", "T") && m_db.AddIndex("M", "S", "U"));
    ASSERT_TRUE(m_db.GetTypeTableName("M", "S", "T", t) && m_db.GetTypeTableName("M", "S", "U", u));
    ModDB::ModSpecData spec;
    spec.Code = "QZ-100";
    spec.Description = "quartz relay";
    const auto describe = [this, &t](const char* description) {
        const int handle = m_db.LoadModule(t, "QZ-100", false);
        m_db.GetModule(handle).SetDescription(description);
        return m_db.SaveModule(handle) && m_db.ReleaseModule(handle);
    };
    struct Step {
        const char* what;
        std::function<bool()> change;
        const char* fragment;
        const char* found;
        const char* gone;
    };
    const Step steps[] = {
        {"import", [&] { return m_db.WriteRawModule(t, spec, {}); }, "quartz", "T/QZ-100", "amber"},
        {"save", [&] { return describe("amber relay"); }, "amber", "T/QZ-100", "quartz"},
        {"rename", [&] { return m_db.RenameModule(t, "QZ-100", "QZ-200"); }, "QZ-2", "T/QZ-200",
         "QZ-1"},
        {"copy", [&] { return m_db.CopyModule("QZ-200", t, "QZ-300", u); }, "amber",
         "T/QZ-200 U/QZ-300", "QZ-1"},
        {"delete", [&] { return m_db.RemoveEntry("M", "S", "T", "QZ-200"); }, "amber", "U/QZ-300",
         "QZ-2"},
        {"paste cut",
         [&] {
             return m_db.CopyModule("QZ-300", u, "QZ-301", t) &&
                    m_db.RemoveEntry("M", "S", "U", "QZ-300");
         },
         "amber", "T/QZ-301", "QZ-300"},
        {"remove type", [&] { return m_db.RemoveEntry("M", "S", "T", QString()); }, "QZ-", "",
         "amber"},
    };
    for (const Step& step : steps) {
        ASSERT_TRUE(step.change()) << step.what;
        EXPECT_EQ(Found(m_store, step.fragment), Utf8(step.found)) << step.what;
        EXPECT_EQ(IndexState(m_path, step.gone), QString("0 hits, 0 0")) << step.what;
    }
}

TEST_F(SearchTest, MigrationGivesAnOlderFileItsIndex) {
    for (const int version : {1, 2}) {
        const QString path = m_dir.filePath(QStringLiteral("v%1.mdb").arg(version));
        ASSERT_TRUE(StoreSchema::CreateFile(path, version, nullptr));
        QString table;
        ASSERT_TRUE(m_db.Open(path) && m_db.AddIndex("M", "S", "T") &&
                    m_db.GetTypeTableName("M", "S", "T", table));
        SqliteDb file;
        ASSERT_TRUE(file.open(path, SqliteOpenMode::ReadWrite));
        ASSERT_TRUE(file.prepare("INSERT INTO plc_spec (table_name, code_key, \"Code\", "
                                 "\"Description\") VALUES (?1, 'old-1', 'OLD-1', 'kept module')")
                        .bind(1, table)
                        .run());
        file.close();
        ASSERT_TRUE(Migrate(path, false, true, nullptr, {}, {}, {}, {})) << version;
        EXPECT_TRUE(QFile::exists(path + QStringLiteral(".v%1.bak").arg(version)));
        EXPECT_EQ(Found(m_store, "pt modu"), "T/OLD-1") << version;
        EXPECT_EQ(IndexState(path, "kept"), "1 hits, 0 0") << version;
        m_db.Close();
    }
}

// Guards against a Qt or SQLite whose case folding parts in a place the index doesn't know.
TEST(SearchIndex, EveryCharacterThatTheTwoFoldingsPartIsKeptApart) {
    SqliteDb db;
    ASSERT_TRUE(db.open(":memory:", SqliteOpenMode::Create));
    ASSERT_TRUE(
        db.exec("CREATE VIRTUAL TABLE t USING fts5(x, tokenize = 'trigram');"
                "CREATE VIRTUAL TABLE v USING fts5vocab(t, instance)"));
    // Each cased character and its fold, three times over: its trigram is its fold thrice.
    QHash<char32_t, char32_t> qtFold;
    db.beginTransaction();
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        const char32_t folded = QChar::toCaseFolded(c);
        if (folded != c || QChar::toUpper(c) != c) {
            qtFold.insert(c, folded);
            for (const char32_t each : {c, folded}) {
                db.prepare("INSERT OR IGNORE INTO t (rowid, x) VALUES (?1, ?2)")
                    .bindInt64(1, each)
                    .bind(2, QString::fromUcs4(&each, 1).repeated(3))
                    .run();
            }
        }
    }
    db.commitTransaction();
    QHash<char32_t, char32_t> indexFold;
    SqliteStatement terms = db.prepare("SELECT doc, term FROM v");
    while (terms.next()) {
        indexFold.insert(char32_t(terms.toInt64(0)), terms.text(1).toUcs4().value(0));
    }
    ASSERT_GT(indexFold.size(), 2000);
    for (auto it = qtFold.cbegin(); it != qtFold.cend(); ++it) {
        if (indexFold.value(it.key()) != indexFold.value(it.value())) {
            EXPECT_TRUE(SearchIndex::FoldsApart(it.key())) << std::hex << uint(it.key());
        }
    }
}

}  // namespace
