#pragma once

#include <QString>

// Opens the help of the upgrade; handed to the upgrade as its help callback.
void ShowMigrationHelp();

// For a table whose file needs an upgrade: asks the user with the family's task dialog
// and, on yes, upgrades the file at path as the migration command does. True when the
// upgrade was carried out.
bool AskToMigrate(const QString& path);
