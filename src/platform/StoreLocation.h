#pragma once

#include <QString>

// Where a store lies: a database file by its path, or a database on a PostgreSQL server
// by a connection URI ("postgresql://...", "postgres://...") or a libpq key=value text
// ("host=... dbname=..."). The one test of which a text is, for every place that takes a
// store's location.
namespace StoreLocation {

bool IsServer(const QString& location);

// The location as a message shows it: a server's without its password.
QString Shown(const QString& location);

}  // namespace StoreLocation
