#pragma once

#include <QString>

class SqliteDb;

// The tables of a module database file and their versions, kept in user_version.
// Version 1 lacks the last two spec fields; version 2 has all of them; version 3 adds the
// search index.
namespace StoreSchema {

constexpr int kFirstVersion = 1;
constexpr int kCurrentVersion = 3;
// Long enough to ride out another program's save, short enough not to hang the host.
constexpr int kBusyTimeoutMs = 3000;

// Spec fields that a file of the version holds, in record order.
int SpecFieldCount(int version);

// How a file is opened by Open.
enum class Access { Write, Read, ReadExclusive };

// Makes a new database file of the version, in WAL mode; fails when the file exists.
bool CreateFile(const QString& path, int version, QString* error);
// Makes the tables in an empty database, with the nine style rows, and stamps the version.
bool Create(SqliteDb& db, int version);
// Opens the module database at path and reads its version. Write refuses a
// write-protected file and one of a newer version; ReadExclusive locks writers out where
// the file's journal allows it. Nothing is written on opening, and no read leaves a file
// beside the database. False with the cause in error otherwise.
bool Open(SqliteDb& db, const QString& path, Access access, int& version, QString& error);
// Adds what later versions brought, up to the current one, and fills a new search index
// from the modules. The caller holds the transaction.
bool Upgrade(SqliteDb& db, int fromVersion);

}  // namespace StoreSchema
