#pragma once

#include <QString>

// Upgrade of older database files. The schema version lives in the file; version 1
// lacks the module fields SpecTail and DirFlags. A catalog on a server is made at the
// current version: it never needs an upgrade and none is carried out.
using MigrationHelpCallback = void (*)();

// Sets bRequired to whether the file at path is older than this program. A file that
// can't be read leaves bRequired as it was, so that a caller's preset true blocks.
// The schema is shared by all types, so table doesn't change the answer.
void CheckForMigration(const QString& path, bool& bRequired, bool bFirstCheck, QString table);

// Whether the file at path must be upgraded before table is used: CheckForMigration with
// a preset true, so that a file that can't be read blocks too, and the process-wide
// first-check flag, which every check clears.
bool TableNeedsMigration(const QString& path, const QString& table);

// Upgrades the file at path to the current version after copying it to a fresh backup
// beside it ("NAME.v1.bak", "NAME.v1.2.bak", ...). True when an upgrade was carried out;
// false for a current, missing, unreadable or write-protected file. The process-wide
// store lets go of the file meanwhile and opens it again at its next use.
bool Migrate(QString path, bool bShowUi, bool bSilent, MigrationHelpCallback help, QString s1,
             QString s2, QString s3, QString s4);

// Makes a new database file of version 1, as the previous program wrote it.
bool CreateVersion1Database(const QString& path, QString* error = nullptr);
