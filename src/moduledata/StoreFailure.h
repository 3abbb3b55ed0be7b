#pragma once

#include <QString>

class SqliteDb;

// The user's words for why the store could not do its work: one place for each cause,
// so that every message names it alike.
namespace StoreFailure {

// A file that is no module database at all.
QString NotOurs();
// A module database that lacks one of its tables.
QString MissingTable(const QString& table);
// A file of a schema version above the one this program writes.
QString Newer();
QString Folder();
QString Missing();
QString WriteProtected();
// A connection opened for reading only, for no other reason known.
QString ReadingOnly();
// The words for the last failure of db: another program's lock, a full disk, a damaged
// file, no database; SQLite's own text for the rest.
QString Describe(const SqliteDb& db);
// Whether the last failure of db was another program's lock that outlasted the wait.
bool IsLock(const SqliteDb& db);

}  // namespace StoreFailure
