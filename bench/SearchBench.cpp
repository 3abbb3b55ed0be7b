// Finding modules by a fragment: the first 50 matches through the store's search against
// the same query as a LIKE scan over the same rows, one run each, in one database of
// 100,000 modules. The goal is under 20 ms and at most a tenth of the scan.

#include "BenchStore.h"
#include "RatioReporter.h"
#include "ZelPlcDbIO.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <iterator>
#include <random>

namespace {

constexpr int kModules = 100000;
constexpr int kManufacturers = 40;
constexpr int kSeries = 10;
constexpr int kFirstMatches = 50;

// A fragment found in thousands of modules, and one found in a few.
const char* const kCommon = "rel";
const char* const kRare = "7QX";

const char* const kTypes[] = {
    "Digital Input", "Digital Output", "Analog Input",  "Analog Output",
    "Relay Output",  "Counter",        "Communication", "Power Supply",
};

struct Kind {
    const char* description;
    const char* colText2;
    const char* colText3;
};

// What modules of each type say of themselves; %1 is their point or channel count.
const Kind kKinds[] = {
    {"%1 point 24V DC sink input", "24V DC", "sink"},
    {"%1 point transistor output 0.5A", "24V DC", "source"},
    {"%1 channel analog input 4-20 mA, 16 bit", "4-20 mA", "diff"},
    {"%1 channel analog output +/-10 V", "+/-10 V", "single"},
    {"%1 point relay output 2A, Form A", "250V AC", "relay"},
    {"%1 channel high speed counter 100 kHz", "5V TTL", "A/B/Z"},
    {"Communication module, %1 ports, fieldbus", "RS-485", "bus"},
    {"Power supply %1 W, 120/240V AC in", "24V DC", "PSU"},
};

// What some modules add to their description.
const char* const kFeatures[] = {
    "",
    "",
    "",
    ", spring clamp",
    ", screw terminals",
    ", isolated",
    ", diagnostics",
    ", conformal coated",
    ", hot swap",
    ", extended temperature",
};

QString Maker(int m) {
    static const char* const kWords[] = {"Norvale", "Ardent", "Kestrel", "Brightline",
                                         "Halvard", "Quorra", "Tamsin",  "Veloria"};
    return QStringLiteral("%1 %2 Controls").arg(QLatin1String(kWords[m % 8])).arg(m);
}

// A catalog number in one of four house styles of the makers ("LN-08947", "6QB 712-4CD385",
// "KT7W-ZD211", "750-430/12"), with digits and letters drawn at random.
QString Catalog(std::mt19937& random, int maker, int type, int serial) {
    const auto letter = [&random] { return QChar(u'A' + int(random() % 26)); };
    const auto digits = [&random](int count) {
        return QString::number(random() % 100000).rightJustified(count, u'0').right(count);
    };
    switch (maker % 4) {
        case 0:
            return QStringLiteral("%1%2-%3%4").arg(letter()).arg(letter()).arg(type).arg(digits(4));
        case 1:
            return QStringLiteral("%1%2%3 %4-%5%6%7")
                       .arg(digits(1))
                       .arg(letter())
                       .arg(letter())
                       .arg(digits(3))
                       .arg(digits(1))
                       .arg(letter())
                       .arg(letter()) +
                   digits(2) + QString::number(serial % 10);
        case 2:
            return QStringLiteral("%1%2%3W-%4%5%6")
                .arg(letter())
                .arg(letter())
                .arg(digits(1))
                .arg(letter())
                .arg(letter())
                .arg(digits(3));
        default:
            return QStringLiteral("%1-%2/%3").arg(digits(3)).arg(digits(3)).arg(serial);
    }
}

// The database of kModules modules, made once through the store.
QString Database() {
    static const QString path = [] {
        const QString file = Folder().filePath(QStringLiteral("search.db"));
        ZelPlcDbIO::CreateDatabase(file);
        ZelPlcDbIO& store = Store();
        store.PutConnectionString(QStringLiteral("Data Source=%1;Mode=Share Deny None").arg(file));
        std::mt19937 random(12);
        constexpr int kTypeCount = kManufacturers * kSeries * 8;
        int serial = 0;
        store.BeginTransaction();
        for (int m = 0; m < kManufacturers; ++m) {
            for (int s = 0; s < kSeries; ++s) {
                const QString series = QStringLiteral("S%1-%2").arg(m % 8).arg(s * 100);
                for (int t = 0; t < 8; ++t) {
                    const QString type = QLatin1String(kTypes[t]);
                    QString table;
                    store.AddIndexData(Maker(m), series, type);
                    store.GetTypeTableName(Maker(m), series, type, table);
                    const int typeIndex = (m * kSeries + s) * 8 + t;
                    const int modules = kModules / kTypeCount + (typeIndex < kModules % kTypeCount);
                    for (int i = 0; i < modules; ++i, ++serial) {
                        const int count = 2 << (random() % 5);
                        ModDB::ModSpecData spec;
                        spec.Code = Catalog(random, m, t, serial);
                        spec.Description =
                            QString(QLatin1String(kKinds[t].description)).arg(count) +
                            QLatin1String(kFeatures[random() % std::size(kFeatures)]);
                        spec.ColText1 = QStringLiteral("%1 pts").arg(count);
                        spec.ColText2 = QLatin1String(kKinds[t].colText2);
                        spec.ColText3 = QLatin1String(kKinds[t].colText3);
                        store.AddModSpecData(table, spec, false);
                    }
                }
            }
        }
        store.CommitTransaction();
        return file;
    }();
    return path;
}

void Search(benchmark::State& state, const char* fragment) {
    const QString file = Database();
    ZelPlcDbIO& store = Store();
    store.PutConnectionString(QStringLiteral("Data Source=%1;Mode=Read").arg(file));
    QList<ModDB::ModuleMatch> matches;
    for (auto _ : state) {
        store.FindModules(QLatin1String(fragment), kFirstMatches, matches);
    }
    state.counters["matches"] = double(matches.size());
}

// The same matches by LIKE over every text column, in the same order. SQLite walks the
// modules in that order and stops at the 50th match, which for a common fragment comes
// after a few hundred modules; with whole the "+" makes it read every module first, as a
// full scan does.
void LikeScan(benchmark::State& state, const char* fragment, bool whole) {
    const QByteArray path = QFile::encodeName(Database());
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* statement = nullptr;
    const QByteArray sql =
        QByteArray(
            "SELECT i.manufacturer, i.series, i.type, i.table_name, s.\"Code\", s.\"Description\""
            " FROM plc_spec s JOIN plc_index i ON i.level = 3 AND i.table_name = s.table_name"
            " WHERE s.\"Code\" LIKE ?1 OR s.\"Description\" LIKE ?1 OR s.\"ColText1\" LIKE ?1"
            " OR s.\"ColText2\" LIKE ?1 OR s.\"ColText3\" LIKE ?1 ORDER BY ") +
        (whole ? "+" : "") + "i.manufacturer_key, i.series_key, i.type_key, s.code_key LIMIT ?2";
    sqlite3_prepare_v2(db, sql.constData(), -1, &statement, nullptr);
    const QByteArray pattern = QByteArray("%") + fragment + "%";
    int rows = 0;
    for (auto _ : state) {
        sqlite3_bind_text(statement, 1, pattern.constData(), -1, SQLITE_STATIC);
        sqlite3_bind_int(statement, 2, kFirstMatches);
        for (rows = 0; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
        }
        sqlite3_reset(statement);
    }
    state.counters["matches"] = rows;
    sqlite3_finalize(statement);
    sqlite3_close(db);
}

void BM_SearchCommon(benchmark::State& state) {
    Search(state, kCommon);
}
void BM_LikeScanCommon(benchmark::State& state) {
    LikeScan(state, kCommon, false);
}
void BM_LikeFullScanCommon(benchmark::State& state) {
    LikeScan(state, kCommon, true);
}
void BM_SearchRare(benchmark::State& state) {
    Search(state, kRare);
}
void BM_LikeScanRare(benchmark::State& state) {
    LikeScan(state, kRare, false);
}
BENCHMARK(BM_SearchCommon)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LikeScanCommon)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LikeFullScanCommon)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SearchRare)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LikeScanRare)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    Database();
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("first 50 matches of a common fragment, search / LIKE scan",
                        "BM_SearchCommon/iterations:1", "BM_LikeScanCommon/iterations:1",
                        "< 0.1, and under 20 ms");
    reporter.printRatio("the same, search / LIKE scan of every module",
                        "BM_SearchCommon/iterations:1", "BM_LikeFullScanCommon/iterations:1",
                        "< 0.1, and under 20 ms");
    reporter.printRatio("first 50 matches of a rare fragment, search / LIKE scan",
                        "BM_SearchRare/iterations:1", "BM_LikeScanRare/iterations:1",
                        "< 0.1, and under 20 ms");
    return 0;
}
