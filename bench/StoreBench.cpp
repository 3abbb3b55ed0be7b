// Speed of the module store against raw SQLite doing the same rows, in one run.
// The ratios printed at the end are the figures that matter; absolute times vary.

#include "BenchServer.h"
#include "BenchStore.h"
#include "CKVModuleDB.h"
#include "RatioReporter.h"
#include "ZelPlcDbIO.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

constexpr int kRows = 10000;
constexpr int kIndexRows = 100000;
constexpr int kCatalogs = 10000;

// A new database file, of a name of its own at each call: the bench runs a benchmark
// several times, and the process-wide store keeps its connection to the last file while
// the same connection text comes again, so a file made anew at the same path would go
// unseen.
QString FreshDatabase(const QString& name) {
    static int made = 0;
    const QString path = Folder().filePath(QStringLiteral("%1-%2").arg(++made).arg(name));
    ZelPlcDbIO::CreateDatabase(path);
    return path;
}

// A module of kRows terminal rows in a type of its own, in a new store at location.
struct BigModule {
    CKVModuleDB db;
    int handle = -1;
    QString table;

    explicit BigModule(const QString& location) {
        Store();
        db.Open(location);
        handle = db.NewModule("Bench", "Series", "Type", "BIG-1");
        db.GetTypeTableName("Bench", "Series", "Type", table);
        CKVModule& module = db.GetModule(handle);
        for (int row = 1; row <= kRows; ++row) {
            module.SetTermRow(
                row, QStringLiteral("HP?TERM;TERM_=%1;\\SPECIAL=ADDR_IN;DESC=Channel %1").arg(row));
        }
    }
};

void SaveAndLoad(benchmark::State& state, const QString& location) {
    if (location.isEmpty()) {
        state.SkipWithError("no store");
        return;
    }
    BigModule big(location);
    for (auto _ : state) {
        if (!big.db.SaveModule(big.handle)) {
            state.SkipWithError(qPrintable(big.db.GetLastFailure()));
            break;
        }
        const int loaded = big.db.LoadModule(big.table, QStringLiteral("BIG-1"), false);
        if (big.db.GetModule(loaded).GetTermCount() != kRows) {
            state.SkipWithError("the module did not come back whole");
            break;
        }
        big.db.ReleaseModule(loaded);
    }
}

void BM_ModuleStoreSaveLoad(benchmark::State& state) {
    SaveAndLoad(state, FreshDatabase(QStringLiteral("big.db")));
}
BENCHMARK(BM_ModuleStoreSaveLoad)->Unit(benchmark::kMillisecond);

// The same on a server on this machine, through its Unix socket.
void BM_ServerStoreSaveLoad(benchmark::State& state) {
    SaveAndLoad(state, ServerDatabase(QStringLiteral("bench_big")));
}
BENCHMARK(BM_ServerStoreSaveLoad)->Unit(benchmark::kMillisecond);

// The same rows through raw prepared statements: replace all rows of a code in one
// transaction, then read them back in order.
void BM_RawSqliteSaveLoad(benchmark::State& state) {
    sqlite3* db = nullptr;
    const QByteArray path = QFile::encodeName(Folder().filePath(QStringLiteral("raw.db")));
    QFile::remove(QString::fromLocal8Bit(path));
    sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    // The store's own settings, so that both pay the same for durability.
    sqlite3_exec(db, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    sqlite3_exec(db, "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr);
    sqlite3_exec(db,
                 "CREATE TABLE rows(tbl TEXT, code TEXT, number INTEGER, text TEXT, special TEXT,"
                 " PRIMARY KEY(tbl, code, number)) WITHOUT ROWID",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* remove = nullptr;
    sqlite3_stmt* insert = nullptr;
    sqlite3_stmt* select = nullptr;
    sqlite3_prepare_v2(db, "DELETE FROM rows WHERE tbl=?1 AND code=?2", -1, &remove, nullptr);
    sqlite3_prepare_v2(db, "INSERT INTO rows VALUES(?1,?2,?3,?4,?5)", -1, &insert, nullptr);
    sqlite3_prepare_v2(db,
                       "SELECT number, text, special FROM rows WHERE tbl=?1 AND code=?2 "
                       "ORDER BY number",
                       -1, &select, nullptr);
    // Wide text in and out, as the store's callers have it.
    QStringList specials;
    for (int row = 1; row <= kRows; ++row) {
        specials.append(QStringLiteral("TERM_=%1;\\SPECIAL=ADDR_IN;DESC=Channel %1").arg(row));
    }
    for (auto _ : state) {
        sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_bind_text(remove, 1, "T1_Data", -1, SQLITE_STATIC);
        sqlite3_bind_text(remove, 2, "BIG-1", -1, SQLITE_STATIC);
        sqlite3_step(remove);
        sqlite3_reset(remove);
        for (int row = 1; row <= kRows; ++row) {
            sqlite3_bind_text(insert, 1, "T1_Data", -1, SQLITE_STATIC);
            sqlite3_bind_text(insert, 2, "BIG-1", -1, SQLITE_STATIC);
            sqlite3_bind_int(insert, 3, row);
            sqlite3_bind_text(insert, 4, "HP?TERM", -1, SQLITE_STATIC);
            sqlite3_bind_text16(insert, 5, specials[row - 1].utf16(), -1, SQLITE_STATIC);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_bind_text(select, 1, "T1_Data", -1, SQLITE_STATIC);
        sqlite3_bind_text(select, 2, "BIG-1", -1, SQLITE_STATIC);
        QList<QPair<QString, QString>> rows;
        while (sqlite3_step(select) == SQLITE_ROW) {
            rows.append(
                {QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(select, 1))),
                 QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(select, 2)))});
        }
        sqlite3_reset(select);
        if (rows.size() != kRows) {
            state.SkipWithError("the rows did not come back whole");
            break;
        }
    }
    sqlite3_finalize(remove);
    sqlite3_finalize(insert);
    sqlite3_finalize(select);
    sqlite3_close(db);
}
BENCHMARK(BM_RawSqliteSaveLoad)->Unit(benchmark::kMillisecond);

// What every dialog does: open its own store object on the same file and close it.
void BM_ModuleStoreOpenClose(benchmark::State& state) {
    Store();
    const QString path = FreshDatabase(QStringLiteral("open.db"));
    for (auto _ : state) {
        CKVModuleDB db;
        benchmark::DoNotOptimize(db.Open(path));
        db.Close();
    }
}
BENCHMARK(BM_ModuleStoreOpenClose)->Unit(benchmark::kMicrosecond);

void BM_FreshSqliteOpen(benchmark::State& state) {
    const QByteArray path = QFile::encodeName(FreshDatabase(QStringLiteral("fresh.db")));
    for (auto _ : state) {
        sqlite3* db = nullptr;
        sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_exec(db, "PRAGMA user_version", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }
}
BENCHMARK(BM_FreshSqliteOpen)->Unit(benchmark::kMicrosecond);

// An index of kIndexRows rows, made once for the hierarchy read and its baseline.
QString IndexDatabase() {
    static const QString path = [] {
        Store();
        CKVModuleDB db;
        const QString file = FreshDatabase(QStringLiteral("index.db"));
        db.Open(file);
        db.BeginTransaction();
        int rows = 0;
        for (int m = 0; rows < kIndexRows; ++m) {
            const QString manufacturer = QStringLiteral("Maker %1").arg(m, 4, 10, QLatin1Char('0'));
            db.AddIndex(manufacturer, QString(), QString());
            ++rows;
            for (int s = 0; s < 10 && rows < kIndexRows; ++s) {
                const QString series = QStringLiteral("Series %1").arg(s);
                db.AddIndex(manufacturer, series, QString());
                ++rows;
                for (int t = 0; t < 99 && rows < kIndexRows; ++t, ++rows) {
                    db.AddIndex(manufacturer, series, QStringLiteral("Type %1").arg(t));
                }
            }
        }
        db.CommitTransaction();
        db.Close();
        return file;
    }();
    return path;
}

void BM_GetHierarchy100k(benchmark::State& state) {
    Store();
    CKVModuleDB db;
    db.Open(IndexDatabase());
    for (auto _ : state) {
        QList<_manfams> hierarchy;
        db.GetHierarchy(hierarchy);
        benchmark::DoNotOptimize(hierarchy.size());
    }
}
BENCHMARK(BM_GetHierarchy100k)->Unit(benchmark::kMillisecond);

// The same index rows in the same order through one raw prepared statement, every
// text read into a QString.
void BM_RawSqliteIndexRead(benchmark::State& state) {
    sqlite3* db = nullptr;
    const QByteArray path = QFile::encodeName(IndexDatabase());
    sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* select = nullptr;
    sqlite3_prepare_v2(db,
                       "SELECT manufacturer, series, type, table_name FROM plc_index "
                       "ORDER BY manufacturer_key, series_key, type_key, level",
                       -1, &select, nullptr);
    const auto text = [select](int column) {
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(select, column)),
                                 sqlite3_column_bytes(select, column));
    };
    for (auto _ : state) {
        int rows = 0;
        while (sqlite3_step(select) == SQLITE_ROW) {
            for (int column = 0; column < 4; ++column) {
                benchmark::DoNotOptimize(text(column));
            }
            ++rows;
        }
        sqlite3_reset(select);
        if (rows != kIndexRows) {
            state.SkipWithError("the index did not come back whole");
            break;
        }
    }
    sqlite3_finalize(select);
    sqlite3_close(db);
}
BENCHMARK(BM_RawSqliteIndexRead)->Unit(benchmark::kMillisecond);

void BM_GetCatalogs10k(benchmark::State& state) {
    Store();
    CKVModuleDB db;
    db.Open(FreshDatabase(QStringLiteral("catalogs.db")));
    db.AddIndex("Bench", "Series", "Type");
    QString table;
    db.GetTypeTableName("Bench", "Series", "Type", table);
    db.BeginTransaction();
    for (int i = 0; i < kCatalogs; ++i) {
        ModDB::ModSpecData spec;
        spec.Code = QStringLiteral("CAT-%1").arg(i, 5, 10, QLatin1Char('0'));
        db.WriteRawModule(table, spec, {});
    }
    db.CommitTransaction();
    for (auto _ : state) {
        QList<_idandcatalognum> catalogs;
        db.GetCatalogs(table, catalogs);
        benchmark::DoNotOptimize(catalogs.size());
    }
}
BENCHMARK(BM_GetCatalogs10k)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("save and load of 10,000 rows, store / raw SQLite",
                        "BM_ModuleStoreSaveLoad", "BM_RawSqliteSaveLoad", "at most 1.5");
    reporter.printRatio("save and load of 10,000 rows, server / file", "BM_ServerStoreSaveLoad",
                        "BM_ModuleStoreSaveLoad", "figures beside each other");
    reporter.printRatio("repeated open, store / fresh SQLite open", "BM_ModuleStoreOpenClose",
                        "BM_FreshSqliteOpen", "far below 1");
    reporter.printRatio("hierarchy of 100,000 index rows, store / raw SQLite read",
                        "BM_GetHierarchy100k", "BM_RawSqliteIndexRead", "at most 1.5");
    benchmark::Shutdown();
    return 0;
}
