// Finding modules by a fragment of their texts.
#include "ZelPlcDbIO.h"

#include "SqliteDb.h"
#include "SqliteStatement.h"

namespace {

// Every module with a type row, in the order the matches are listed.
const char* const kAllModules =
    "SELECT i.manufacturer, i.series, i.type, i.table_name, s.\"Code\", s.\"Description\","
    " s.\"ColText1\", s.\"ColText2\", s.\"ColText3\""
    " FROM plc_spec s JOIN plc_index i ON i.level = 3 AND i.table_name = s.table_name"
    " ORDER BY i.manufacturer_key, i.series_key, i.type_key, s.code_key";

// Columns 4 to 8 of the statement are the texts a fragment is sought in.
bool AnyTextHolds(const SqliteStatement& statement, const QString& folded) {
    for (int column = 4; column <= 8; ++column) {
        if (statement.text(column).toCaseFolded().contains(folded)) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool ZelPlcDbIO::FindModules(const QString& fragment, int limit,
                             QList<ModDB::ModuleMatch>& matches) {
    matches.clear();
    SqliteDb* db = Connection();
    if (!db) {
        return false;
    }
    if (fragment.isEmpty() || limit <= 0) {
        return true;
    }
    return ScanModules(*db, fragment, limit, matches);
}

// Reads every module: the way for any fragment, however short.
bool ZelPlcDbIO::ScanModules(SqliteDb& db, const QString& fragment, int limit,
                             QList<ModDB::ModuleMatch>& matches) {
    const QString folded = fragment.toCaseFolded();
    SqliteStatement statement = db.prepare(QLatin1String(kAllModules));
    while (matches.size() < limit && statement.next()) {
        if (AnyTextHolds(statement, folded)) {
            matches.append({statement.text(0), statement.text(1), statement.text(2),
                            statement.text(3), statement.text(4), statement.text(5)});
        }
    }
    if (statement.failed()) {
        matches.clear();
        return FailDb();
    }
    return true;
}
