#include "CKVModuleDB.h"
#include "SearchIndex.h"
#include "SqliteDb.h"
#include "ZelPlcDbIO.h"

#include "StoreTestSupport.h"

#include <QHash>

#include <gtest/gtest.h>

#include <functional>

namespace {

// The matches as "Manufacturer/Type/Catalog", in the order found.
QString Found(ZelPlcDbIO& store, const QString& fragment, int limit = 5000) {
    QList<ModDB::ModuleMatch> matches;
    EXPECT_TRUE(store.FindModules(fragment, limit, matches)) << store.m_strLastError.toStdString();
    QStringList found;
    for (const ModDB::ModuleMatch& match : matches) {
        found << match.Manufacturer + '/' + match.Type + '/' + match.Catalog;
    }
    return found.join(' ');
}

// The index's own hits for a fragment, and its rows less twice the modules'.
QString IndexState(const QString& path, const QString& fragment) {
    SqliteDb db;
    EXPECT_TRUE(db.open(path, SqliteOpenMode::ReadWrite));
    SqliteStatement statement = db.prepare(
        "SELECT (SELECT count(*) FROM plc_search WHERE plc_search MATCH ?1),"
        " (SELECT count(*) FROM plc_search) + (SELECT count(*) FROM plc_search_key)"
        " - 2 * (SELECT count(*) FROM plc_spec)");
    EXPECT_TRUE(statement.bind(1, SearchIndex::Phrase(fragment)).next());
    return statement.text(0) + ' ' + statement.text(1);
}

void AddModule(ZelPlcDbIO& store, const QString& manufacturer, const QString& type,
               const QString& code, const QString& description, const QString& colText3 = {}) {
    QString table;
    store.AddIndexData(manufacturer, "S", type);
    ASSERT_TRUE(store.GetTypeTableName(manufacturer, "S", type, table));
    ModDB::ModSpecData spec;
    spec.Code = code;
    spec.Description = description;
    spec.ColText3 = colText3;
    ASSERT_TRUE(store.AddModSpecData(table, spec, false));
}

class SearchFixture : public StoreFileTest {
protected:
    void SetUp() override { CreateWithModules({}); }
};

using SearchTest = OnEachBackend<SearchFixture>;
PLCDB_ON_EACH_BACKEND(SearchTest);

// The expected matches are the file index's: a file without the index and a server scan
// must find the same, in the same order.
TEST_P(SearchTest, TheIndexFindsWhatTheScansOfAFileWithoutItAndOfAServerFind) {
    const char* const modules[][4] = {
        {"Beta", "abc-200", "äbc module", ""},
        {"Beta", "G1", "", "\u1C90\u1C91\u1C92"},  // Georgian capitals: kept apart by the index
        {"alpha", "ÄBC-100", "Relay output", ""},
        {"alpha", "Q\"7", "say \"hi\" now", ""},
    };
    ASSERT_TRUE(m_store.BeginTransaction());
    for (const auto& module : modules) {
        AddModule(m_store, module[0], "T", module[1], module[2], module[3]);
    }
    // More hits than are sorted, made in the reverse of their order.
    for (int module = 2100; module > 0; --module) {
        AddModule(m_store, QStringLiteral("M%1").arg(module % 7),
                  QStringLiteral("T%1").arg(module % 5), QStringLiteral("C%1").arg(module),
                  module % 3 ? "Input module" : "INPUT MODULE, isolated");
    }
    ASSERT_TRUE(m_store.CommitTransaction());
    // On a file, the same file taken for one of version 2, read by the scan alone.
    ZelPlcDbIO fileScan;
    if (!OnServer()) {
        const QString copy = m_dir.filePath("scan.mdb");
        SqliteDb file, older;
        ASSERT_TRUE(file.open(m_path, SqliteOpenMode::ReadWrite) && file.backupTo(copy));
        ASSERT_TRUE(older.open(copy, SqliteOpenMode::ReadWrite) &&
                    older.exec("PRAGMA user_version = 2"));
        ASSERT_TRUE(fileScan.PutConnectionString("Data Source=" + copy + ";Mode=Read"));
    }
    ZelPlcDbIO& scan = OnServer() ? m_store : fileScan;

    const struct {
        const char* fragment;
        int limit;
        const char* found;
    } cases[] = {
        {"äbc", 50, "alpha/T/ÄBC-100 Beta/T/abc-200"},
        {"ÄBC", 50, "alpha/T/ÄBC-100 Beta/T/abc-200"},
        {"\"hi\"", 50, "alpha/T/Q\"7"},
        {"\u10D0\u10D1\u10D2", 50, "Beta/T/G1"},
        {"\u1C90\u1C91\u1C92", 50, "Beta/T/G1"},
        {"bc", 50, "alpha/T/ÄBC-100 Beta/T/abc-200"},
        {"PUT OR x", 50, ""},
        {"put mod", 2, "M0/T0/C1015 M0/T0/C105"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Found(m_store, c.fragment, c.limit), c.found) << c.fragment;
        EXPECT_EQ(Found(scan, c.fragment, c.limit), c.found) << c.fragment;
    }
    EXPECT_EQ(Found(m_store, "put mod").count(' ') + 1, 2100);
    EXPECT_EQ(Found(m_store, "put mod"), Found(scan, "put mod"));
}

TEST_P(SearchTest, EveryChangeOfTheStoreIsFoundAndItsOldTextsLeaveTheIndex) {
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
    const struct {
        std::function<bool()> change;
        const char* fragment;
        const char* found;
        const char* gone;
    } steps[] = {
        {[&] { return m_db.WriteRawModule(t, spec, {}); }, "quartz", "M/T/QZ-100", "amber"},
        {[&] { return describe("amber relay"); }, "amber", "M/T/QZ-100", "quartz"},
        {[&] { return m_db.RenameModule(t, "QZ-100", "QZ-200"); }, "QZ-2", "M/T/QZ-200", "QZ-1"},
        {[&] { return m_db.CopyModule("QZ-200", t, "QZ-300", u); }, "amber",
         "M/T/QZ-200 M/U/QZ-300", "QZ-1"},
        {[&] { return m_db.RemoveEntry("M", "S", "T", "QZ-200"); }, "amber", "M/U/QZ-300", "QZ-2"},
        // Paste after cut: a copy to the other type and a delete.
        {[&] {
             return m_db.CopyModule("QZ-300", u, "QZ-301", t) &&
                    m_db.RemoveEntry("M", "S", "U", "QZ-300");
         },
         "amber", "M/T/QZ-301", "QZ-300"},
        {[&] { return m_db.RemoveEntry("M", "S", "T", QString()); }, "QZ-", "", "amber"},
    };
    for (const auto& step : steps) {
        ASSERT_TRUE(step.change()) << step.fragment;
        EXPECT_EQ(Found(m_store, step.fragment), step.found) << step.fragment;
        if (!OnServer()) {
            EXPECT_EQ(IndexState(m_path, step.gone), "0 0") << step.fragment;
        }
    }
}

// Guards against a Qt or SQLite whose case folding parts in a place the index doesn't know.
TEST(SearchIndex, EveryCharacterThatTheTwoFoldingsPartIsKeptApart) {
    SqliteDb db;
    ASSERT_TRUE(db.open(":memory:", SqliteOpenMode::Create) &&
                db.exec("CREATE VIRTUAL TABLE t USING fts5(x, tokenize = 'trigram');"
                        "CREATE VIRTUAL TABLE v USING fts5vocab(t, instance)"));
    // Each cased character and its fold, three times over: its trigram is its fold thrice.
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        const char32_t folded = QChar::toCaseFolded(c);
        for (const char32_t each : {c, folded}) {
            if (folded != c || QChar::toUpper(c) != c) {
                db.prepare("INSERT OR IGNORE INTO t (rowid, x) VALUES (?1, ?2)")
                    .bindInt64(1, each)
                    .bind(2, QString::fromUcs4(&each, 1).repeated(3))
                    .run();
            }
        }
    }
    QHash<char32_t, char32_t> indexFold;
    SqliteStatement terms = db.prepare("SELECT doc, term FROM v");
    while (terms.next()) {
        indexFold.insert(char32_t(terms.toInt64(0)), terms.text(1).toUcs4().value(0));
    }
    ASSERT_GT(indexFold.size(), 2000);
    for (auto it = indexFold.cbegin(); it != indexFold.cend(); ++it) {
        if (it.value() != indexFold.value(QChar::toCaseFolded(it.key()))) {
            EXPECT_TRUE(SearchIndex::FoldsApart(it.key())) << std::hex << uint(it.key());
        }
    }
}

}  // namespace
