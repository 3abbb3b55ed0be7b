// Spec, terminal, style box and prompt rows.
#include "ZelPlcDbIO.h"

#include "StoreDb.h"
#include "StoreSchema.h"
#include "StoreTransaction.h"

#include <QStringList>

namespace {

using ModDB::ModSpecData;
using ModDB::StyleBoxData;

constexpr int kFirstStyle = 1;
constexpr int kLastStyle = 9;

QString Quoted(const char* name) {
    return QLatin1Char('"') + QLatin1String(name) + QLatin1Char('"');
}

// "name" or "name" = ?n for the module data fields from place first on; field place
// p binds as parameter p + 3, behind the table and the code key.
QString SpecColumns(int first, int count, bool assign) {
    QStringList columns;
    for (int place = first; place < count; ++place) {
        const QString name = Quoted(ModSpecData::FieldName(place));
        columns << (assign ? QStringLiteral("%1 = ?%2").arg(name).arg(place + 3) : name);
    }
    return columns.join(QLatin1String(", "));
}

// "?first, ?first+1, ..." for count parameters.
QString Placeholders(int first, int count) {
    QStringList marks;
    for (int number = first; number < first + count; ++number) {
        marks << QStringLiteral("?%1").arg(number);
    }
    return marks.join(QLatin1String(", "));
}

// The style box columns through a pattern with the name as %1.
QString StyleColumns(const QString& pattern) {
    QStringList columns;
    for (int box = 0; box < StyleBoxData::kBoxCount; ++box) {
        columns << pattern.arg(Quoted(StyleBoxData::BoxName(box)));
    }
    return columns.join(QLatin1String(", "));
}

// Terminal rows go to the store in batches of one statement each, so that a server
// takes a module in a few round trips instead of one per row. Three batch sizes keep the
// statements that each connection prepares to three.
constexpr int kTermColumns = 6;
constexpr int kTermBatchSizes[] = {100, 10, 1};

// The insert of count terminal rows, the columns of row r bound from r * 6 + 1 on.
QString TermInsertSql(int count) {
    QStringList rows;
    for (int row = 0; row < count; ++row) {
        rows << QLatin1Char('(') + Placeholders(row * kTermColumns + 1, kTermColumns) +
                    QLatin1Char(')');
    }
    return QStringLiteral(
               "INSERT INTO plc_term (table_name, code_key, code, number, text, "
               "special) VALUES ") +
           rows.join(QLatin1String(", "));
}

struct TermBatch {
    int size;
    const QString& sql;
};

// The largest batch that rowsLeft fills.
TermBatch NextTermBatch(qsizetype rowsLeft) {
    static const QString sql[] = {TermInsertSql(kTermBatchSizes[0]),
                                  TermInsertSql(kTermBatchSizes[1]),
                                  TermInsertSql(kTermBatchSizes[2])};
    int place = 0;
    while (kTermBatchSizes[place] > rowsLeft && place < 2) {
        ++place;
    }
    return {kTermBatchSizes[place], sql[place]};
}

QString Key(const QString& code) {
    return code.toCaseFolded();
}

// Gives the rows of a code in table another code; sql binds table, old key, new code
// and new key as ?1 to ?4.
bool UpdateCode(StoreDb& db, const QString& sql, const QString& table, const QString& oldCode,
                const QString& newCode) {
    StoreStatement statement = db.query(sql);
    statement.bind(1, table).bind(2, Key(oldCode)).bind(3, newCode).bind(4, Key(newCode));
    return statement.run();
}

}  // namespace

// A file of an older version reads its missing fields as empty texts.
QString ZelPlcDbIO::SpecSelectList() const {
    const int stored = StoreSchema::SpecFieldCount(m_schemaVersion);
    QString list = SpecColumns(0, stored, false);
    for (int place = stored; place < ModSpecData::kFieldCount; ++place) {
        list += QLatin1String(", ''");
    }
    return list;
}

bool ZelPlcDbIO::DoesSpecDataExist(const QString& table, const QString& code, bool& exists) {
    exists = false;
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement = db->query(QStringLiteral(
        "SELECT EXISTS (SELECT 1 FROM plc_spec WHERE table_name = ?1 AND code_key = ?2)"));
    if (!statement.bind(1, table).bind(2, Key(code)).next()) {
        return FailDb();
    }
    exists = statement.toInt(0) != 0;
    return true;
}

bool ZelPlcDbIO::GetArrayOfModSpecCodes(const QString& table, QStringList& codes) {
    codes.clear();
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement = db->query(
        QStringLiteral("SELECT \"Code\" FROM plc_spec WHERE table_name = ?1 ORDER BY code_key"));
    statement.bind(1, table);
    while (statement.next()) {
        codes.append(statement.text(0));
    }
    if (statement.failed()) {
        codes.clear();
        return FailDb();
    }
    return true;
}

bool ZelPlcDbIO::GetModuleTableNames(QStringList& tables) {
    tables.clear();
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("SELECT DISTINCT table_name FROM plc_spec ORDER BY table_name"));
    while (statement.next()) {
        tables.append(statement.text(0));
    }
    if (statement.failed()) {
        tables.clear();
        return FailDb();
    }
    return true;
}

bool ZelPlcDbIO::GetModSpecData(const QString& table, const QString& code,
                                ModDB::ModSpecData& record, bool bFallback) {
    Q_UNUSED(bFallback);
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("SELECT %1 FROM plc_spec WHERE table_name = ?1 AND code_key = ?2")
                      .arg(SpecSelectList()));
    if (!statement.bind(1, table).bind(2, Key(code)).next()) {
        return statement.failed() ? FailDb()
                                  : Fail(QStringLiteral("no module %1 in %2").arg(code, table));
    }
    for (int place = 0; place < ModSpecData::kFieldCount; ++place) {
        record.field(place) = statement.text(place);
    }
    return true;
}

// Runs an insert or update with the table as parameter 1, the code key as 2 and the
// fields from 3 on; changed tells whether a row was written.
bool ZelPlcDbIO::WriteSpec(const QString& sql, const QString& table, const QString& code,
                           const ModDB::ModSpecData& record, bool& changed) {
    changed = false;
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    if (m_schemaVersion < StoreSchema::kCurrentVersion) {
        return Fail(QStringLiteral("the database needs an upgrade before modules are written"));
    }
    StoreStatement statement = db->query(sql);
    statement.bind(1, table).bind(2, Key(code));
    for (int place = 0; place < ModSpecData::kFieldCount; ++place) {
        statement.bind(place + 3, record.field(place));
    }
    if (!statement.run()) {
        return FailDb();
    }
    changed = db->changes() > 0;
    return true;
}

bool ZelPlcDbIO::AddModSpecData(const QString& table, const ModDB::ModSpecData& record,
                                bool bFallback) {
    Q_UNUSED(bFallback);
    if (record.Code.isEmpty()) {
        return Fail(QStringLiteral("a module needs a catalog code"));
    }
    static const QString sql = QStringLiteral(
                                   "INSERT INTO plc_spec (table_name, code_key, %1) VALUES (%2) "
                                   "ON CONFLICT DO NOTHING")
                                   .arg(SpecColumns(0, ModSpecData::kFieldCount, false),
                                        Placeholders(1, ModSpecData::kFieldCount + 2));
    bool added = false;
    if (!WriteSpec(sql, table, record.Code, record, added)) {
        return false;
    }
    return added || Fail(QStringLiteral("%1 exists already in %2").arg(record.Code, table));
}

// The key stays: a module changes its code by RenameModSpecData.
bool ZelPlcDbIO::UpdateModSpecData(const QString& table, const QString& code,
                                   const ModDB::ModSpecData& record, bool bFallback) {
    Q_UNUSED(bFallback);
    static const QString sql =
        QStringLiteral("UPDATE plc_spec SET %1 WHERE table_name = ?1 AND code_key = ?2")
            .arg(SpecColumns(1, ModSpecData::kFieldCount, true));
    bool updated = false;
    if (!WriteSpec(sql, table, code, record, updated)) {
        return false;
    }
    return updated || Fail(QStringLiteral("no module %1 in %2").arg(code, table));
}

bool ZelPlcDbIO::RemoveModSpecData(const QString& table, const QString& code) {
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("DELETE FROM plc_spec WHERE table_name = ?1 AND code_key = ?2"));
    if (!statement.bind(1, table).bind(2, Key(code)).run()) {
        return FailDb();
    }
    return db->changes() > 0 || Fail(QStringLiteral("no module %1 in %2").arg(code, table));
}

bool ZelPlcDbIO::RenameModSpecData(const QString& table, const QString& oldCode,
                                   const QString& newCode) {
    if (newCode.isEmpty()) {
        return Fail(QStringLiteral("a module needs a catalog code"));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreTransaction transaction(*db);
    bool taken = false;
    if (!transaction.isActive() || !DoesSpecDataExist(table, newCode, taken)) {
        return FailDb();
    }
    if (taken && Key(newCode) != Key(oldCode)) {
        return Fail(QStringLiteral("%1 exists already in %2").arg(newCode, table));
    }
    if (!UpdateCode(*db,
                    QStringLiteral("UPDATE plc_spec SET \"Code\" = ?3, code_key = ?4 "
                                   "WHERE table_name = ?1 AND code_key = ?2"),
                    table, oldCode, newCode)) {
        return FailDb();
    }
    if (db->changes() == 0) {
        return Fail(QStringLiteral("no module %1 in %2").arg(oldCode, table));
    }
    return transaction.commit() || FailDb();
}

bool ZelPlcDbIO::GetModTermData(const QString& table, const QString& code,
                                QList<ModDB::ModTermData>& rows) {
    rows.clear();
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("SELECT code, number, text, special FROM plc_term "
                                 "WHERE table_name = ?1 AND code_key = ?2 ORDER BY number"));
    statement.bind(1, table).bind(2, Key(code));
    while (statement.next()) {
        rows.append({statement.text(0), statement.toInt(1), statement.text(2), statement.text(3)});
    }
    if (statement.failed()) {
        rows.clear();
        return FailDb();
    }
    return true;
}

bool ZelPlcDbIO::DoesTermDataExist(const QString& table, const QString& code, int row,
                                   bool& exists) {
    exists = false;
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    // Row -1 asks for any row of the code.
    StoreStatement statement =
        db->query(QStringLiteral("SELECT EXISTS (SELECT 1 FROM plc_term WHERE table_name = ?1 "
                                 "AND code_key = ?2 AND (?3 = -1 OR number = ?3))"));
    if (!statement.bind(1, table).bind(2, Key(code)).bind(3, row).next()) {
        return FailDb();
    }
    exists = statement.toInt(0) != 0;
    return true;
}

bool ZelPlcDbIO::AddModTermData(const QString& table, const QList<ModDB::ModTermData>& rows) {
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreTransaction transaction(*db);
    if (!transaction.isActive()) {
        return FailDb();
    }
    qsizetype next = 0;
    while (next < rows.size()) {
        const TermBatch batch = NextTermBatch(rows.size() - next);
        StoreStatement statement = db->query(batch.sql);
        for (int place = 0; place < batch.size; ++place) {
            const ModDB::ModTermData& row = rows.at(next + place);
            const int first = place * kTermColumns;
            statement.bind(first + 1, table)
                .bind(first + 2, Key(row.Code))
                .bind(first + 3, row.Code);
            statement.bind(first + 4, int(row.Number)).bind(first + 5, row.Text);
            statement.bind(first + 6, row.Special);
        }
        if (!statement.run()) {
            return FailDb();
        }
        next += batch.size;
    }
    return transaction.commit() || FailDb();
}

// -1 as first or last row leaves that end open; -1, -1 removes all rows of the code.
bool ZelPlcDbIO::RemoveModTermData(const QString& table, const QString& code, int firstRow,
                                   int lastRow) {
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("DELETE FROM plc_term WHERE table_name = ?1 AND code_key = ?2 "
                                 "AND (?3 = -1 OR number >= ?3) AND (?4 = -1 OR number <= ?4)"));
    statement.bind(1, table).bind(2, Key(code)).bind(3, firstRow).bind(4, lastRow);
    return statement.run() || FailDb();
}

bool ZelPlcDbIO::RenameModTermData(const QString& table, const QString& oldCode,
                                   const QString& newCode) {
    if (newCode.isEmpty()) {
        return Fail(QStringLiteral("a module needs a catalog code"));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreTransaction transaction(*db);
    bool taken = false;
    if (!transaction.isActive() || !DoesTermDataExist(table, newCode, -1, taken)) {
        return FailDb();
    }
    if (taken && Key(newCode) != Key(oldCode)) {
        return Fail(QStringLiteral("%1 has rows already in %2").arg(newCode, table));
    }
    if (!UpdateCode(*db,
                    QStringLiteral("UPDATE plc_term SET code = ?3, code_key = ?4 "
                                   "WHERE table_name = ?1 AND code_key = ?2"),
                    table, oldCode, newCode)) {
        return FailDb();
    }
    return transaction.commit() || FailDb();
}

bool ZelPlcDbIO::GetStyleBoxData(int number, ModDB::StyleBoxData& record) {
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    static const QString sql = QStringLiteral("SELECT %1 FROM plc_style WHERE number = ?1")
                                   .arg(StyleColumns(QStringLiteral("%1")));
    StoreStatement statement = db->query(sql);
    if (!statement.bind(1, number).next()) {
        return statement.failed() ? FailDb() : Fail(QStringLiteral("no style box %1").arg(number));
    }
    record.Number = number;
    for (int box = 0; box < StyleBoxData::kBoxCount; ++box) {
        record.Box[box] = statement.text(box);
    }
    return true;
}

bool ZelPlcDbIO::GetStyleBoxNumbers(QList<int>& numbers) {
    numbers.clear();
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("SELECT number FROM plc_style ORDER BY number"));
    while (statement.next()) {
        numbers.append(statement.toInt(0));
    }
    if (statement.failed()) {
        numbers.clear();
        return FailDb();
    }
    return true;
}

bool ZelPlcDbIO::UpdateStyleBoxData(int number, const ModDB::StyleBoxData& record) {
    if (number < kFirstStyle || number > kLastStyle) {
        return Fail(QStringLiteral("no style box %1").arg(number));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    static const QString sql =
        QStringLiteral(
            "INSERT INTO plc_style (number, %1) VALUES (?1, %2) "
            "ON CONFLICT (number) DO UPDATE SET %3")
            .arg(StyleColumns(QStringLiteral("%1")), Placeholders(2, StyleBoxData::kBoxCount),
                 StyleColumns(QStringLiteral("%1 = excluded.%1")));
    StoreStatement statement = db->query(sql);
    statement.bind(1, number);
    for (int box = 0; box < StyleBoxData::kBoxCount; ++box) {
        statement.bind(box + 2, record.Box[box]);
    }
    return statement.run() || FailDb();
}

bool ZelPlcDbIO::CreateHashtableofPrompts() {
    QList<ModDB::PromptData> rows;
    if (!GetPromptRows(rows)) {
        return false;
    }
    m_prompts.clear();
    for (const ModDB::PromptData& row : std::as_const(rows)) {
        m_prompts.insert(row.Prompt, row.Localized);
    }
    m_promptsLoaded = true;
    return true;
}

QString ZelPlcDbIO::ReturnLocalizedPrompt(const QString& prompt) {
    if (!m_promptsLoaded) {
        CreateHashtableofPrompts();
    }
    return m_prompts.value(prompt);
}

bool ZelPlcDbIO::GetPromptRows(QList<ModDB::PromptData>& rows) {
    rows.clear();
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("SELECT prompt, localized FROM plc_prompt ORDER BY prompt"));
    while (statement.next()) {
        rows.append({statement.text(0), statement.text(1)});
    }
    if (statement.failed()) {
        rows.clear();
        return FailDb();
    }
    return true;
}

bool ZelPlcDbIO::AddPromptRow(const ModDB::PromptData& row) {
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    StoreStatement statement =
        db->query(QStringLiteral("INSERT INTO plc_prompt (prompt, localized) VALUES (?1, ?2) "
                                 "ON CONFLICT DO NOTHING"));
    if (!statement.bind(1, row.Prompt).bind(2, row.Localized).run()) {
        return FailDb();
    }
    if (db->changes() == 0) {
        return Fail(QStringLiteral("the prompt %1 exists already").arg(row.Prompt));
    }
    if (m_promptsLoaded) {
        m_prompts.insert(row.Prompt, row.Localized);
    }
    return true;
}
