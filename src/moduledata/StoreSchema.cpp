#include "StoreSchema.h"

#include "ModDB.h"
#include "SearchIndex.h"
#include "SqliteDb.h"
#include "SqliteStatement.h"
#include "StoreFailure.h"
#include "StoreTransaction.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <sqlite3.h>

#include <iterator>

namespace StoreSchema {
namespace {

// The first version with all spec fields.
constexpr int kFullSpecVersion = 2;

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

// A write-ahead log or a rollback journal beside the file: some program is writing it,
// or was when it stopped.
bool LogBeside(const QString& path) {
    return QFileInfo::exists(path + QStringLiteral("-wal")) ||
           QFileInfo::exists(path + QStringLiteral("-journal"));
}

// Decided by the permission bits too, since a privileged user could write anyway.
bool IsWriteProtected(const QFileInfo& file) {
    return !file.permissions().testFlag(QFileDevice::WriteOwner) || !file.isWritable();
}

// A reader goes through a connection that the system lets write, held back by
// query_only: only such a connection removes, when it closes, the log files that SQLite
// makes beside a WAL file; a read-only one leaves them behind. A write-protected file
// with no log beside it is being written by nobody and is read as it stands, without
// locks and without making a log.
bool OpenToRead(SqliteDb& db, const QString& path, const QFileInfo& file) {
    if (!IsWriteProtected(file)) {
        return db.open(path, SqliteOpenMode::ReadWrite) && db.setQueryOnly();
    }
    return LogBeside(path) ? db.open(path, SqliteOpenMode::ReadOnly) : db.openImmutable(path);
}

// Whether db holds every table of the store and a version; error names what is amiss.
bool ReadVersion(SqliteDb& db, int& version, QString& error) {
    SqliteStatement statement =
        db.prepare(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name IN "
                                  "(?, ?, ?, ?, ?)"));
    for (int table = 0; table < kTableCount; ++table) {
        statement.bind(table + 1, QLatin1String(kTableNames[table]));
    }
    QStringList present;
    while (statement.next()) {
        present << statement.text(0);
    }
    if (statement.failed()) {
        error = StoreFailure::Describe(db);
        return false;
    }
    if (present.isEmpty()) {
        error = StoreFailure::NotOurs();
        return false;
    }
    for (const char* table : kTableNames) {
        if (!present.contains(QLatin1String(table))) {
            error = StoreFailure::MissingTable(QLatin1String(table));
            return false;
        }
    }
    if (!db.userVersion(version)) {
        error = StoreFailure::Describe(db);
        return false;
    }
    if (version < kFirstVersion) {
        error = StoreFailure::NotOurs();
        return false;
    }
    return true;
}

// The first access failed without reaching the file's content, as when the shared
// memory of a WAL file can't be made in a folder we can't write.
bool NotReached(const SqliteDb& db) {
    const int code = db.lastCode() & 0xff;
    return code == SQLITE_CANTOPEN || code == SQLITE_READONLY;
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
    return version >= kFullSpecVersion ? ModDB::ModSpecData::kFieldCount
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
    StoreTransaction transaction(db);
    return transaction.isActive() && db.exec(statements.join(QLatin1String("; "))) &&
           (!SearchIndex::IsIn(version) || SearchIndex::Create(db)) && transaction.commit();
}

namespace {

// Whether the file that db opened is still empty: only then is it the one we made, since
// another program may have made one at the path in the meantime.
bool IsEmpty(SqliteDb& db) {
    SqliteStatement statement = db.prepare(QStringLiteral("PRAGMA page_count"));
    return statement.next() && statement.toInt(0) == 0;
}

}  // namespace

bool CreateFile(const QString& path, int version, QString* error) {
    SqliteDb db;
    QString reason;
    if (!QFileInfo::exists(path) && !db.open(path, SqliteOpenMode::Create)) {
        reason = db.lastError();
    } else if (!db.isOpen() || !IsEmpty(db)) {
        reason = QStringLiteral("%1 exists already").arg(path);
    } else {
        // A new file starts with the write-ahead log; a file system without shared memory
        // keeps the rollback journal.
        db.enableWal();
        if (!Create(db, version)) {
            reason = db.lastError();
            db.close();
            QFile::remove(path);
        }
    }
    if (error) {
        *error = reason;
    }
    return reason.isEmpty();
}

bool Open(SqliteDb& db, const QString& path, Access access, int& version, QString& error) {
    const QFileInfo file(path);
    if (file.isDir()) {
        error = StoreFailure::Folder();
        return false;
    }
    if (!file.isFile()) {
        error = StoreFailure::Missing();
        return false;
    }
    const bool write = access == Access::Write;
    if (write && IsWriteProtected(file)) {
        error = StoreFailure::WriteProtected();
        return false;
    }
    const bool opened =
        write ? db.open(path, SqliteOpenMode::ReadWrite) : OpenToRead(db, path, file);
    if (!opened) {
        error = StoreFailure::Describe(db);
        return false;
    }
    db.setBusyTimeout(kBusyTimeoutMs);
    if (write && db.isReadOnly()) {
        error = StoreFailure::WriteProtected();
        db.close();
        return false;
    }
    if (!ReadVersion(db, version, error)) {
        if (write || !NotReached(db) || LogBeside(path) || !db.openImmutable(path) ||
            !ReadVersion(db, version, error)) {
            db.close();
            return false;
        }
    }
    if (write && version > kCurrentVersion) {
        error = StoreFailure::Newer();
        db.close();
        return false;
    }
    // Only a rollback journal lets a reader lock writers out; in WAL mode a reader always
    // shares the file. The lock is taken at the next read and held from then on.
    if (access == Access::ReadExclusive && db.journalMode() != QLatin1String("wal")) {
        db.setExclusiveLocking();
    }
    return true;
}

bool Upgrade(SqliteDb& db, int fromVersion) {
    for (int place = SpecFieldCount(fromVersion); place < SpecFieldCount(kCurrentVersion);
         ++place) {
        const QString column = TextColumn(ModDB::ModSpecData::FieldName(place));
        if (!db.exec(QStringLiteral("ALTER TABLE plc_spec ADD COLUMN ") + column)) {
            return false;
        }
    }
    return (SearchIndex::IsIn(fromVersion) || SearchIndex::Create(db)) &&
           db.setUserVersion(kCurrentVersion);
}

}  // namespace StoreSchema
