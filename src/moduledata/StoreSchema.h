#pragma once

#include <QString>

class SqliteDb;

// The tables of a module database file and their versions, kept in user_version.
// Version 1 lacks the last two spec fields; version 2 has all of them.
namespace StoreSchema {

constexpr int kFirstVersion = 1;
constexpr int kCurrentVersion = 2;
// Long enough to ride out another program's save, short enough not to hang the host.
constexpr int kBusyTimeoutMs = 3000;

// Spec fields that a file of the version holds, in record order.
int SpecFieldCount(int version);

// Makes a new database file of the version; fails when the file exists.
bool CreateFile(const QString& path, int version, QString* error);
// Makes the tables in an empty database, with the nine style rows, and stamps the version.
bool Create(SqliteDb& db, int version);
// Opens the file at path for reading, exclusively (locking out writers) when asked and
// the file's journal allows it; true when it holds the tables of the store.
bool OpenForReading(SqliteDb& db, const QString& path, bool exclusive);
// True when every table of the store is present.
bool HasTables(SqliteDb& db);
// Adds what later versions brought, up to the current one. The caller holds the transaction.
bool Upgrade(SqliteDb& db, int fromVersion);

}  // namespace StoreSchema
