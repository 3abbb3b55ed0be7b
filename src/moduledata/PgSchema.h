#pragma once

#include "StoreSchema.h"

#include <QString>

class PgDb;

// The store's tables in a PostgreSQL database: those of a store file, with the same names,
// columns and keys, and the schema version in a table of its own. Text columns sort as
// code points, as in a file. The server has no search index table: finding modules scans.
namespace PgSchema {

// Makes the store's tables, with the nine style rows and the current version, in the
// database of the connection; fails when it holds them already.
bool CreateIn(const QString& connection, QString* error);
// Drops the store's tables from the database of the connection again, when they hold no
// index row, module or prompt: undoes CreateIn after a failed first fill.
bool RemoveEmpty(const QString& connection, QString* error);
// Connects and reads the version. Write refuses a store of a newer version; Read and
// ReadExclusive make the connection read-only. False with the cause in error otherwise.
bool Open(PgDb& db, const QString& connection, StoreSchema::Access access, int& version,
          QString& error);

}  // namespace PgSchema
