#pragma once

// "c:ZLPLCMIGRATE": asks for a database file and upgrades it. False only when the
// question could not be asked; a cancelled question is a plain end.
bool RunMigrationCommand();
