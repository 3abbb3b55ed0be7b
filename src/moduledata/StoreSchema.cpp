#include "StoreSchema.h"

#include "ModDB.h"
#include "SqliteDb.h"
#include "SqliteStatement.h"
#include "SqliteTransaction.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <iterator>

namespace StoreSchema {
namespace {

// Index rows: level 1 a manufacturer, 2 a series, 3 a type with its table name. The
// *_key columns hold the case-folded names that all look-ups and uniqueness use.
const char* const kIndexTable =
    "CREATE TABLE plc_index ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " level INTEGER NOT NULL,"
    " manufacturer TEXT NOT NULL, series TEXT NOT NULL, type TEXT NOT NULL,"
    " table_name TEXT NOT NULL COLLATE NOCASE,"
    " manufacturer_key TEXT NOT NULL, series_key TEXT NOT NULL, type_key TEXT NOT NULL,"
    " UNIQUE (manufacturer_key, series_key, type_key, level))";

const char* const kTermTable =
    "CREATE TABLE plc_term ("
    " table_name TEXT NOT NULL COLLATE NOCASE, code_key TEXT NOT NULL, code TEXT NOT NULL,"
    " number INTEGER NOT NULL, text TEXT NOT NULL, special TEXT NOT NULL,"
    " PRIMARY KEY (table_name, code_key, number)) WITHOUT ROWID";

const char* const kPromptTable =
    "CREATE TABLE plc_prompt (prompt TEXT PRIMARY KEY NOT NULL, localized TEXT NOT NULL)";

const char* const kTableNames[] = {"plc_index", "plc_spec", "plc_term", "plc_style", "plc_prompt"};
constexpr int kTableCount = int(std::size(kTableNames));

QString TextColumn(const char* name) {
    return QStringLiteral("\"%1\" TEXT NOT NULL DEFAULT ''").arg(QLatin1String(name));
}

QString SpecTable(int version) {
    QStringList columns{QStringLiteral("table_name TEXT NOT NULL COLLATE NOCASE"),
                        QStringLiteral("code_key TEXT NOT NULL")};
    for (int place = 0; place < SpecFieldCount(version); ++place) {
        columns << TextColumn(ModDB::ModSpecData::FieldName(place));
    }
    columns << QStringLiteral("PRIMARY KEY (table_name, code_key)");
    return QStringLiteral("CREATE TABLE plc_spec (%1) WITHOUT ROWID")
        .arg(columns.join(QLatin1String(", ")));
}

QString StyleTable() {
    QStringList columns{QStringLiteral("number INTEGER PRIMARY KEY")};
    for (int box = 0; box < ModDB::StyleBoxData::kBoxCount; ++box) {
        columns << TextColumn(ModDB::StyleBoxData::BoxName(box));
    }
    return QStringLiteral("CREATE TABLE plc_style (%1)").arg(columns.join(QLatin1String(", ")));
}

}  // namespace

int SpecFieldCount(int version) {
    return version >= kCurrentVersion ? ModDB::ModSpecData::kFieldCount
                                      : ModDB::ModSpecData::kFieldCount - 2;
}

bool Create(SqliteDb& db, int version) {
    const QStringList statements{
        QLatin1String(kIndexTable),
        SpecTable(version),
        QLatin1String(kTermTable),
        StyleTable(),
        QLatin1String(kPromptTable),
        QStringLiteral("INSERT INTO plc_style (number) VALUES (1), (2), (3), (4), (5), (6), "
                       "(7), (8), (9)"),
        QStringLiteral("PRAGMA user_version = %1").arg(version),
    };
    SqliteTransaction transaction(db);
    return transaction.isActive() && db.exec(statements.join(QLatin1String("; "))) &&
           transaction.commit();
}

bool CreateFile(const QString& path, int version, QString* error) {
    SqliteDb db;
    QString reason;
    if (QFileInfo::exists(path)) {
        reason = QStringLiteral("%1 exists already").arg(path);
    } else if (!db.open(path, SqliteOpenMode::Create) || !Create(db, version)) {
        reason = db.lastError();
        db.close();
        QFile::remove(path);
    }
    if (error) {
        *error = reason;
    }
    return reason.isEmpty();
}

bool OpenForReading(SqliteDb& db, const QString& path, bool exclusive) {
    if (!db.open(path, SqliteOpenMode::ReadOnly)) {
        return false;
    }
    db.setBusyTimeout(kBusyTimeoutMs);
    // Only a rollback journal lets a reader lock writers out; in WAL mode a reader
    // always shares the file.
    const bool wal = SqliteDb::isWalFile(path);
    if (exclusive && !wal) {
        db.setExclusiveLocking();
    }
    if (HasTables(db)) {
        return true;
    }
    // A WAL file in a folder we can't write can't be read the usual way, as its shared
    // memory file can't be made; when no log is waiting, nobody is writing and the file
    // can be read as it stands.
    if (wal && !QFileInfo::exists(path + QStringLiteral("-wal")) && db.openImmutable(path) &&
        HasTables(db)) {
        return true;
    }
    db.close();
    return false;
}

bool HasTables(SqliteDb& db) {
    SqliteStatement statement = db.prepare(
        QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name IN "
                       "(?, ?, ?, ?, ?)"));
    for (int table = 0; table < kTableCount; ++table) {
        statement.bind(table + 1, QLatin1String(kTableNames[table]));
    }
    return statement.next() && statement.toInt(0) == kTableCount;
}

bool Upgrade(SqliteDb& db, int fromVersion) {
    for (int place = SpecFieldCount(fromVersion); place < SpecFieldCount(kCurrentVersion);
         ++place) {
        const QString column = TextColumn(ModDB::ModSpecData::FieldName(place));
        if (!db.exec(QStringLiteral("ALTER TABLE plc_spec ADD COLUMN ") + column)) {
            return false;
        }
    }
    return db.setUserVersion(kCurrentVersion);
}

}  // namespace StoreSchema
