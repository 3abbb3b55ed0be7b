#pragma once

#include <QString>

// Upgrade of older database files.
using MigrationHelpCallback = void (*)();

// Sets bRequired to whether the table of the file at path needs an upgrade first.
void CheckForMigration(const QString& path, bool& bRequired, bool bFirstCheck, QString table);
// Upgrades the file at path; true when an upgrade was carried out.
bool Migrate(QString path, bool bShowUi, bool bSilent, MigrationHelpCallback help, QString s1,
             QString s2, QString s3, QString s4);
