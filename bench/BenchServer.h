#pragma once

#include <QString>

// A new, empty catalog (named after base) in a database of its own on the bench's PostgreSQL
// server, as a connection URI. The server is PLCDB_BENCH_SERVER's (the URI of a database from which
// new ones can be made), or a throwaway one that scripts/pg-test-server.sh starts for the run and
// stops at its end. Empty, with the reason printed once, when there is neither.
QString ServerDatabase(const QString& base);
