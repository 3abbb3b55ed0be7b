#pragma once

// "c:ZLPLCMIGRATE": asks for a database file and upgrades it. False only when the
// question could not be asked; a cancelled question is a plain end.
bool RunMigrationCommand();

// Opens the help of the upgrade; handed to the upgrade as its help callback.
void ShowMigrationHelp();
