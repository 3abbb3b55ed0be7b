#include "SearchIndex.h"

#include "SqliteDb.h"
#include "StoreSchema.h"

#include <QStringList>

#include <iterator>

namespace SearchIndex {
namespace {

struct CodeRange {
    char32_t first;
    char32_t last;
};

// Where the trigram tokenizer's case folding, of an older Unicode, parts from Qt's: each
// range holds the letters that Qt folds to another one while the tokenizer keeps them (or
// folds them elsewhere), with their neighbours in the same rare scripts. Outside these
// ranges both fold every character alike.
constexpr CodeRange kApart[] = {
    {0x037F, 0x037F},   {0x0528, 0x052F},   {0x13F8, 0x13FD},   {0x1C80, 0x1CBF},
    {0x2C2F, 0x2C2F},   {0xA698, 0xA69A},   {0xA796, 0xA7F5},   {0xAB70, 0xABBF},
    {0x104B0, 0x104D3}, {0x10570, 0x10595}, {0x10C80, 0x10CB2}, {0x118A0, 0x118BF},
    {0x16E40, 0x16E5F}, {0x1E900, 0x1E921},
};

// A GLOB pattern that matches a text holding any character of kApart.
QString ApartPattern() {
    QString pattern = QStringLiteral("*[");
    for (const CodeRange& range : kApart) {
        pattern += QString::fromUcs4(&range.first, 1);
        if (range.last != range.first) {
            pattern += QLatin1Char('-') + QString::fromUcs4(&range.last, 1);
        }
    }
    return pattern + QStringLiteral("]*");
}

// Whether the row named by prefix (NEW or s) holds a character of kApart.
QString ApartTest(const QString& prefix) {
    const QString texts = QStringLiteral(
        "(%1.\"Code\" || %1.\"Description\" || %1.\"ColText1\" || %1.\"ColText2\" || "
        "%1.\"ColText3\")");
    return texts.arg(prefix) + QStringLiteral(" GLOB '") + ApartPattern() + QLatin1Char('\'');
}

const char* const kKeyTable =
    "CREATE TABLE plc_search_key ("
    " id INTEGER PRIMARY KEY,"
    " table_name TEXT NOT NULL COLLATE NOCASE, code_key TEXT NOT NULL,"
    " apart INTEGER NOT NULL,"
    " UNIQUE (table_name, code_key))";

const char* const kApartIndex = "CREATE INDEX plc_search_apart ON plc_search_key (id) WHERE apart";

// Looks up a type by its table, to sort the hits in the order of the index.
const char* const kTypeByTable =
    "CREATE INDEX plc_index_table ON plc_index (table_name) WHERE level = 3";

const char* const kTextTable =
    "CREATE VIRTUAL TABLE plc_search USING fts5(code, description, coltext1, coltext2, "
    "coltext3, tokenize = 'trigram')";

const char* const kKeyOfOld =
    "(SELECT id FROM plc_search_key WHERE table_name = OLD.table_name AND"
    " code_key = OLD.code_key)";

QString InsertTrigger() {
    return QStringLiteral(
               "CREATE TRIGGER plc_search_insert AFTER INSERT ON plc_spec BEGIN"
               " INSERT INTO plc_search_key (table_name, code_key, apart)"
               " VALUES (NEW.table_name, NEW.code_key, %1);"
               " INSERT INTO plc_search (rowid, code, description, coltext1, coltext2, coltext3)"
               " VALUES (last_insert_rowid(), NEW.\"Code\", NEW.\"Description\","
               " NEW.\"ColText1\", NEW.\"ColText2\", NEW.\"ColText3\");"
               " END")
        .arg(ApartTest(QStringLiteral("NEW")));
}

QString DeleteTrigger() {
    return QStringLiteral(
               "CREATE TRIGGER plc_search_delete AFTER DELETE ON plc_spec BEGIN"
               " DELETE FROM plc_search WHERE rowid = %1;"
               " DELETE FROM plc_search_key WHERE table_name = OLD.table_name AND"
               " code_key = OLD.code_key;"
               " END")
        .arg(QLatin1String(kKeyOfOld));
}

// The key row follows a renamed module, so the text row keeps its id.
QString UpdateTrigger() {
    return QStringLiteral(
               "CREATE TRIGGER plc_search_update AFTER UPDATE OF table_name, code_key, \"Code\","
               " \"Description\", \"ColText1\", \"ColText2\", \"ColText3\" ON plc_spec BEGIN"
               " UPDATE plc_search SET code = NEW.\"Code\", description = NEW.\"Description\","
               " coltext1 = NEW.\"ColText1\", coltext2 = NEW.\"ColText2\","
               " coltext3 = NEW.\"ColText3\" WHERE rowid = %1;"
               " UPDATE plc_search_key SET table_name = NEW.table_name, code_key = NEW.code_key,"
               " apart = %2 WHERE table_name = OLD.table_name AND code_key = OLD.code_key;"
               " END")
        .arg(QLatin1String(kKeyOfOld), ApartTest(QStringLiteral("NEW")));
}

// The modules that are there before the triggers.
QStringList Fill() {
    return {
        QStringLiteral("INSERT INTO plc_search_key (table_name, code_key, apart)"
                       " SELECT s.table_name, s.code_key, %1 FROM plc_spec s")
            .arg(ApartTest(QStringLiteral("s"))),
        QStringLiteral(
            "INSERT INTO plc_search (rowid, code, description, coltext1, coltext2, coltext3)"
            " SELECT k.id, s.\"Code\", s.\"Description\", s.\"ColText1\", s.\"ColText2\","
            " s.\"ColText3\" FROM plc_spec s JOIN plc_search_key k"
            " ON k.table_name = s.table_name AND k.code_key = s.code_key"),
    };
}

}  // namespace

bool Create(SqliteDb& db) {
    QStringList statements{QLatin1String(kKeyTable), QLatin1String(kApartIndex),
                           QLatin1String(kTypeByTable), QLatin1String(kTextTable)};
    statements << Fill() << InsertTrigger() << DeleteTrigger() << UpdateTrigger();
    return db.exec(statements.join(QLatin1String("; ")));
}

bool IsIn(int version) {
    return version >= kFirstVersion && version <= StoreSchema::kCurrentVersion;
}

bool FoldsApart(char32_t c) {
    for (const CodeRange& range : kApart) {
        if (c >= range.first && c <= range.last) {
            return true;
        }
    }
    return false;
}

bool Takes(const QString& fragment) {
    if (!fragment.isValidUtf16()) {
        return false;
    }
    const QList<uint> characters = fragment.toUcs4();
    if (characters.size() < kShortestFragment) {
        return false;
    }
    // A character that stands for bytes that were no UTF-8 is one the index never saw.
    for (const uint c : characters) {
        if (FoldsApart(c) || c == 0 || c == QChar::ReplacementCharacter) {
            return false;
        }
    }
    return true;
}

QString Phrase(const QString& fragment) {
    QString quoted = fragment;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

}  // namespace SearchIndex
