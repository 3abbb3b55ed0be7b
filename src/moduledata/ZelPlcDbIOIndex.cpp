// The index of manufacturers, series and types.
#include "ZelPlcDbIO.h"

#include "StoreDb.h"
#include "StoreTransaction.h"

// The names down to the lowest level meant: 1 manufacturer, 2 series, 3 type, 0 when
// not even a manufacturer is given. Names below the level are empty.
struct ZelPlcDbIO::IndexLevel {
    int level = 0;
    QString names[3];

    IndexLevel(const QString& manufacturer, const QString& series, const QString& type) {
        const QString* given[3] = {&manufacturer, &series, &type};
        while (level < 3 && !given[level]->isNull()) {
            names[level] = *given[level];
            ++level;
        }
    }
    QString key(int place) const { return names[place].toCaseFolded(); }
    // The same entry under a new name at its own level.
    IndexLevel renamed(const QString& name) const {
        IndexLevel other = *this;
        other.names[level - 1] = name;
        return other;
    }
};

namespace {

// Rows of an entry and everything below it; parameters 1 to 3 are the keys, 4 the level.
const char* const kMatch =
    " manufacturer_key = ?1"
    " AND (?4 < 2 OR (level >= 2 AND series_key = ?2))"
    " AND (?4 < 3 OR (level = 3 AND type_key = ?3))";

// Reads a column whose text mostly repeats that of the row before: a repeated text
// shares the string read for the first row instead of being read again.
class RepeatedText {
public:
    explicit RepeatedText(int column) : m_column(column) {}

    const QString& read(const StoreStatement& statement) {
        const QByteArrayView bytes = statement.utf8(m_column);
        if (!m_read || bytes != m_bytes) {
            m_bytes = bytes.toByteArray();
            m_text = statement.text(m_column);
            m_read = true;
        }
        return m_text;
    }

private:
    int m_column;
    bool m_read = false;
    QByteArray m_bytes;
    QString m_text;
};

QString Sql(const char* head, const char* tail = "") {
    return QLatin1String(head) + QLatin1String(kMatch) + QLatin1String(tail);
}

// The columns of a name and its key at each level; identifiers of our own schema.
const char* const kRenameSql[3] = {
    "UPDATE plc_index SET manufacturer = ?5, manufacturer_key = ?6 WHERE",
    "UPDATE plc_index SET series = ?5, series_key = ?6 WHERE",
    "UPDATE plc_index SET type = ?5, type_key = ?6 WHERE",
};

}  // namespace

void ZelPlcDbIO::BindLevel(StoreStatement& statement, const IndexLevel& level) {
    for (int place = 0; place < 3; ++place) {
        statement.bind(place + 1, level.key(place));
    }
    statement.bind(4, level.level);
}

bool ZelPlcDbIO::GetArrayOfAllIndexData(QList<ModDB::IndexData>& rows) {
    rows.clear();
    if (!VisitAllIndexData([&rows](const ModDB::IndexData& row) { rows.append(row); })) {
        rows.clear();
        return false;
    }
    return true;
}

bool ZelPlcDbIO::VisitAllIndexData(const std::function<void(const ModDB::IndexData&)>& visit) {
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    // The order of the unique key, so that no sort is needed: the names below the level
    // of a row are empty, so a manufacturer's own row comes before its series and a
    // series' own row before its types.
    StoreStatement statement = db->query(
        QStringLiteral("SELECT manufacturer, series, type, table_name FROM plc_index ORDER BY "
                       "manufacturer_key, series_key, type_key, level"));
    RepeatedText manufacturer(0);
    RepeatedText series(1);
    ModDB::IndexData row;
    while (statement.next()) {
        row.Manufacturer = manufacturer.read(statement);
        row.Series = series.read(statement);
        row.Type = statement.text(2);
        row.TableName = statement.text(3);
        visit(row);
    }
    return !statement.failed() || FailDb();
}

bool ZelPlcDbIO::FindIndexRows(const IndexLevel& level, bool& exists) {
    exists = false;
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement = db->query(Sql("SELECT EXISTS (SELECT 1 FROM plc_index WHERE", ")"));
    BindLevel(statement, level);
    if (!statement.next()) {
        return FailDb();
    }
    exists = statement.toInt(0) != 0;
    return true;
}

bool ZelPlcDbIO::DoesIndexDataExist(const QString& manufacturer, const QString& series,
                                    const QString& type, bool& exists) {
    const IndexLevel level(manufacturer, series, type);
    exists = false;
    if (level.level == 0) {
        return Fail(QStringLiteral("no manufacturer given"));
    }
    return FindIndexRows(level, exists);
}

bool ZelPlcDbIO::InsertIndexRow(StoreDb& db, const IndexLevel& level) {
    StoreStatement statement = db.query(QStringLiteral(
        "INSERT INTO plc_index (level, manufacturer, series, type, table_name, "
        "manufacturer_key, series_key, type_key) VALUES (?1, ?2, ?3, ?4, '', ?5, ?6, ?7) "
        "ON CONFLICT DO NOTHING"));
    statement.bind(1, level.level);
    for (int place = 0; place < 3; ++place) {
        statement.bind(place + 2, level.names[place]).bind(place + 5, level.key(place));
    }
    return statement.run() || FailDb();
}

bool ZelPlcDbIO::AddIndexData(const QString& manufacturer, const QString& series,
                              const QString& type) {
    const IndexLevel level(manufacturer, series, type);
    if (level.level == 0) {
        return Fail(QStringLiteral("no manufacturer given"));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreTransaction transaction(*db);
    bool exists = false;
    if (!transaction.isActive() || !FindIndexRows(level, exists)) {
        return false;
    }
    if (exists) {
        return Fail(QStringLiteral("%1 exists already").arg(level.names[level.level - 1]));
    }
    // The levels above come into being with it, so that the entry stays when its last
    // child goes.
    for (int above = 1; above <= level.level; ++above) {
        IndexLevel parent = level;
        parent.level = above;
        for (int place = above; place < 3; ++place) {
            parent.names[place].clear();
        }
        if (!InsertIndexRow(*db, parent)) {
            return false;
        }
    }
    if (level.level == 3) {
        // Row ids are never reused, so neither is a table name.
        StoreStatement name = db->query(Sql("UPDATE plc_index SET table_name = 'T' || id WHERE"));
        BindLevel(name, level);
        if (!name.run()) {
            return FailDb();
        }
    }
    return transaction.commit() || FailDb();
}

bool ZelPlcDbIO::RemoveIndexData(const QString& manufacturer, const QString& series,
                                 const QString& type) {
    const IndexLevel level(manufacturer, series, type);
    if (level.level == 0) {
        return Fail(QStringLiteral("no manufacturer given"));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreTransaction transaction(*db);
    if (!transaction.isActive()) {
        return FailDb();
    }
    const QString statements[] = {
        Sql("DELETE FROM plc_spec WHERE table_name IN "
            "(SELECT table_name FROM plc_index WHERE level = 3 AND",
            ")"),
        Sql("DELETE FROM plc_term WHERE table_name IN "
            "(SELECT table_name || '_Data' FROM plc_index WHERE level = 3 AND",
            ")"),
        Sql("DELETE FROM plc_index WHERE"),
    };
    for (const QString& sql : statements) {
        StoreStatement statement = db->query(sql);
        BindLevel(statement, level);
        if (!statement.run()) {
            return FailDb();
        }
    }
    if (db->changes() == 0) {
        return Fail(QStringLiteral("%1 isn't in the index").arg(level.names[level.level - 1]));
    }
    return transaction.commit() || FailDb();
}

bool ZelPlcDbIO::IndexNameTaken(const IndexLevel& level, const QString& newName, bool& taken) {
    taken = false;
    // A new spelling of the same name is no clash.
    if (newName.toCaseFolded() == level.key(level.level - 1)) {
        return true;
    }
    return FindIndexRows(level.renamed(newName), taken);
}

bool ZelPlcDbIO::RenameIndexData(const QString& manufacturer, const QString& series,
                                 const QString& type, const QString& newName) {
    const IndexLevel level(manufacturer, series, type);
    if (level.level == 0 || newName.isNull()) {
        return Fail(QStringLiteral("no name given"));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreTransaction transaction(*db);
    bool taken = false;
    if (!transaction.isActive() || !IndexNameTaken(level, newName, taken)) {
        return false;
    }
    if (taken) {
        return Fail(QStringLiteral("%1 exists already").arg(newName));
    }
    StoreStatement statement = db->query(Sql(kRenameSql[level.level - 1]));
    BindLevel(statement, level);
    statement.bind(5, newName).bind(6, newName.toCaseFolded());
    if (!statement.run()) {
        return FailDb();
    }
    if (db->changes() == 0) {
        return Fail(QStringLiteral("%1 isn't in the index").arg(level.names[level.level - 1]));
    }
    return transaction.commit() || FailDb();
}

bool ZelPlcDbIO::GetTypeTableName(const QString& manufacturer, const QString& series,
                                  const QString& type, QString& table) {
    const IndexLevel level(manufacturer, series, type);
    if (level.level != 3) {
        return Fail(QStringLiteral("a type needs all three names"));
    }
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement = db->query(Sql("SELECT table_name FROM plc_index WHERE"));
    BindLevel(statement, level);
    if (!statement.next()) {
        return statement.failed() ? FailDb()
                                  : Fail(QStringLiteral("the type %1 has no table").arg(type));
    }
    table = statement.text(0);
    return true;
}
