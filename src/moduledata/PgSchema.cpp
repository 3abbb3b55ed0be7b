#include "PgSchema.h"

#include "ModDB.h"
#include "PgDb.h"
#include "StoreFailure.h"
#include "StoreTransaction.h"

#include <QStringList>

namespace PgSchema {
namespace {

// The tables of a store file; plc_meta holds the version that a file keeps in its header.
const char* const kTableNames[] = {"plc_index", "plc_spec", "plc_term", "plc_style", "plc_prompt"};

// "C" sorts texts by their code points, as a file does.
QString TextColumn(const QString& name) {
    return name + QStringLiteral(" TEXT COLLATE \"C\" NOT NULL DEFAULT ''");
}

QString Quoted(const char* name) {
    return QLatin1Char('"') + QLatin1String(name) + QLatin1Char('"');
}

QString SpecTable() {
    QStringList columns{TextColumn(QStringLiteral("table_name")),
                        TextColumn(QStringLiteral("code_key"))};
    for (int place = 0; place < ModDB::ModSpecData::kFieldCount; ++place) {
        columns << TextColumn(Quoted(ModDB::ModSpecData::FieldName(place)));
    }
    columns << QStringLiteral("PRIMARY KEY (table_name, code_key)");
    return QStringLiteral("CREATE TABLE plc_spec (%1)").arg(columns.join(QLatin1String(", ")));
}

QString StyleTable() {
    QStringList columns{QStringLiteral("number INTEGER PRIMARY KEY")};
    for (int box = 0; box < ModDB::StyleBoxData::kBoxCount; ++box) {
        columns << TextColumn(Quoted(ModDB::StyleBoxData::BoxName(box)));
    }
    return QStringLiteral("CREATE TABLE plc_style (%1)").arg(columns.join(QLatin1String(", ")));
}

QStringList CreateStatements() {
    return {
        QStringLiteral("CREATE TABLE plc_meta (version INTEGER NOT NULL)"),
        // Index rows: level 1 a manufacturer, 2 a series, 3 a type with its table name.
        // Identity values are never reused, so neither is a table name.
        QStringLiteral("CREATE TABLE plc_index (id BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY "
                       "KEY, level INTEGER NOT NULL, %1, %2, %3, %4, %5, %6, %7, UNIQUE "
                       "(manufacturer_key, series_key, type_key, level))")
            .arg(TextColumn(QStringLiteral("manufacturer")), TextColumn(QStringLiteral("series")),
                 TextColumn(QStringLiteral("type")), TextColumn(QStringLiteral("table_name")),
                 TextColumn(QStringLiteral("manufacturer_key")),
                 TextColumn(QStringLiteral("series_key")), TextColumn(QStringLiteral("type_key"))),
        SpecTable(),
        QStringLiteral("CREATE TABLE plc_term (%1, %2, %3, number INTEGER NOT NULL, %4, %5, "
                       "PRIMARY KEY (table_name, code_key, number))")
            .arg(TextColumn(QStringLiteral("table_name")), TextColumn(QStringLiteral("code_key")),
                 TextColumn(QStringLiteral("code")), TextColumn(QStringLiteral("text")),
                 TextColumn(QStringLiteral("special"))),
        StyleTable(),
        QStringLiteral("CREATE TABLE plc_prompt (prompt TEXT COLLATE \"C\" PRIMARY KEY, %1)")
            .arg(TextColumn(QStringLiteral("localized"))),
        QStringLiteral("INSERT INTO plc_style (number) VALUES (1), (2), (3), (4), (5), (6), (7), "
                       "(8), (9)"),
        QStringLiteral("INSERT INTO plc_meta (version) VALUES (%1)")
            .arg(StoreSchema::kCurrentVersion),
    };
}

// The store's tables that the connection's schema holds.
bool PresentTables(PgDb& db, QStringList& present) {
    StoreStatement statement = db.query(QStringLiteral(
        "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema() "
        "AND table_name IN ('plc_meta', 'plc_index', 'plc_spec', 'plc_term', 'plc_style', "
        "'plc_prompt')"));
    while (statement.next()) {
        present << statement.text(0);
    }
    return !statement.failed();
}

bool ReadVersion(PgDb& db, int& version, QString& error) {
    QStringList present;
    if (!PresentTables(db, present)) {
        error = db.failureText();
        return false;
    }
    if (present.isEmpty() || !present.contains(QLatin1String("plc_meta"))) {
        error = StoreFailure::NotOurs();
        return false;
    }
    for (const char* table : kTableNames) {
        if (!present.contains(QLatin1String(table))) {
            error = QStringLiteral("the database is damaged: its table %1 is missing")
                        .arg(QLatin1String(table));
            return false;
        }
    }
    StoreStatement statement = db.query(QStringLiteral("SELECT max(version) FROM plc_meta"));
    if (!statement.next()) {
        error = db.failureText();
        return false;
    }
    version = statement.toInt(0);
    if (version < StoreSchema::kFirstVersion) {
        error = StoreFailure::NotOurs();
        return false;
    }
    return true;
}

// Why the store's tables were not dropped; empty when they were.
QString DropEmptyTables(PgDb& db, const QString& connection) {
    if (!db.open(connection)) {
        return db.failureText();
    }
    StoreTransaction transaction(db);
    StoreStatement rows =
        db.query(QStringLiteral("SELECT (SELECT count(*) FROM plc_index) + (SELECT count(*) FROM "
                                "plc_spec) + (SELECT count(*) FROM plc_prompt)"));
    if (!transaction.isActive() || !rows.next()) {
        return db.failureText();
    }
    if (rows.toInt64(0) != 0) {
        return QStringLiteral("%1 holds a catalog").arg(db.location());
    }
    if (!db.exec(QStringLiteral(
            "DROP TABLE plc_meta, plc_index, plc_spec, plc_term, plc_style, plc_prompt")) ||
        !transaction.commit()) {
        return db.failureText();
    }
    return {};
}

}  // namespace

bool CreateIn(const QString& connection, QString* error) {
    PgDb db;
    QString reason;
    QStringList present;
    if (!db.open(connection) || !PresentTables(db, present)) {
        reason = db.failureText();
    } else if (!present.isEmpty()) {
        reason = QStringLiteral("%1 holds a catalog already").arg(db.location());
    } else {
        StoreTransaction transaction(db);
        if (!transaction.isActive() || !db.exec(CreateStatements().join(QLatin1String("; "))) ||
            !transaction.commit()) {
            reason = db.failureText();
        }
    }
    if (error) {
        *error = reason;
    }
    return reason.isEmpty();
}

bool RemoveEmpty(const QString& connection, QString* error) {
    PgDb db;
    const QString reason = DropEmptyTables(db, connection);
    if (error) {
        *error = reason;
    }
    return reason.isEmpty();
}

bool Open(PgDb& db, const QString& connection, StoreSchema::Access access, int& version,
          QString& error) {
    if (!db.open(connection)) {
        error = db.failureText();
        return false;
    }
    if (!ReadVersion(db, version, error)) {
        db.close();
        return false;
    }
    const bool write = access == StoreSchema::Access::Write;
    if (write && version > StoreSchema::kCurrentVersion) {
        error = StoreFailure::Newer();
        db.close();
        return false;
    }
    if (!write && !db.setReadOnly()) {
        error = db.failureText();
        db.close();
        return false;
    }
    return true;
}

}  // namespace PgSchema
