// Finding modules by a fragment of their texts.
#include "ZelPlcDbIO.h"

#include "SearchIndex.h"
#include "SqliteDb.h"

namespace {

// The columns that every way of finding reads, and the order of the matches.
const char* const kColumns =
    "SELECT i.manufacturer, i.series, i.type, i.table_name, s.\"Code\", s.\"Description\","
    " s.\"ColText1\", s.\"ColText2\", s.\"ColText3\"";
const char* const kOrder = " ORDER BY i.manufacturer_key, i.series_key, i.type_key, s.code_key";

// Every module with a type row.
const char* const kAllModules =
    " FROM plc_spec s JOIN plc_index i ON i.level = 3 AND i.table_name = s.table_name";

// The modules that the index names for the phrase ?1, and those it can't judge.
const char* const kHits =
    "SELECT rowid AS id FROM plc_search WHERE plc_search MATCH ?1"
    " UNION ALL SELECT id FROM plc_search_key WHERE apart";

// Few hits: read them all and sort them. The joins are kept in this order, hits first,
// since the planner would rather walk all modules.
const char* const kSortHits =
    " FROM (SELECT DISTINCT id FROM (%1)) h CROSS JOIN plc_search_key k ON k.id = h.id"
    " CROSS JOIN plc_spec s ON s.table_name = k.table_name AND s.code_key = k.code_key"
    " CROSS JOIN plc_index i ON i.level = 3 AND i.table_name = s.table_name";

// Many hits: walk the modules in their order and keep those among the hits, so that the
// first matches come without the others being read. The "+" keeps the hits a list to
// look up in rather than keys to seek for each module.
const char* const kWalkHits =
    " FROM plc_index i JOIN plc_search_key k ON k.table_name = i.table_name"
    " JOIN plc_spec s ON s.table_name = k.table_name AND s.code_key = k.code_key"
    " WHERE i.level = 3 AND +k.id IN (%1)";

QString MatchQuery(const QString& from) {
    return QLatin1String(kColumns) + from + QLatin1String(kOrder);
}

QString AmongHits(const char* from) {
    return QString(QLatin1String(from)).arg(QLatin1String(kHits));
}

// How many modules the index names for ?1, counted up to ?2.
const char* const kCountHits =
    "SELECT count(*) FROM (SELECT 1 FROM plc_search WHERE plc_search MATCH ?1 LIMIT ?2)";

// Up to this many hits sorting them all takes a few milliseconds (about 5 for 2,000 hits
// in 100,000 modules) wherever they stand; above it walking reaches the first matches
// sooner, since sorting grows with the hits and walking only with the modules before them.
constexpr int kWalkAbove = 2000;

// Columns 4 to 8 of the statement are the texts a fragment is sought in.
bool AnyTextHolds(const StoreStatement& statement, const QString& folded) {
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
    StoreDb* db = Connection();
    if (!db) {
        return false;
    }
    if (fragment.isEmpty() || limit <= 0) {
        return true;
    }
    // A server has no search index: its modules are scanned.
    if (m_file && SearchIndex::IsIn(m_schemaVersion) && SearchIndex::Takes(fragment)) {
        return SeekModules(*m_file, fragment, limit, matches);
    }
    StoreStatement statement = db->query(MatchQuery(QLatin1String(kAllModules)));
    return CollectMatches(statement, fragment, limit, matches);
}

// Through the index, for a fragment that it finds all modules of.
bool ZelPlcDbIO::SeekModules(SqliteDb& db, const QString& fragment, int limit,
                             QList<ModDB::ModuleMatch>& matches) {
    const QString phrase = SearchIndex::Phrase(fragment);
    bool many = false;
    {
        StoreStatement count = db.query(QLatin1String(kCountHits));
        if (!count.bind(1, phrase).bind(2, kWalkAbove + 1).next()) {
            return FailDb();
        }
        many = count.toInt(0) > kWalkAbove;
    }
    StoreStatement statement = db.query(MatchQuery(AmongHits(many ? kWalkHits : kSortHits)));
    statement.bind(1, phrase);
    return CollectMatches(statement, fragment, limit, matches);
}

// The rows of statement, in its order, whose texts hold the fragment as the scan finds
// it: the index hands over more rows than that, never fewer.
bool ZelPlcDbIO::CollectMatches(StoreStatement& statement, const QString& fragment, int limit,
                                QList<ModDB::ModuleMatch>& matches) {
    const QString folded = fragment.toCaseFolded();
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
