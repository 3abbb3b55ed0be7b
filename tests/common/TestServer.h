#pragma once

#include <QString>

// The throwaway PostgreSQL server that ctest starts before the tests and stops after them
// (scripts/pg-test-server.sh), for the tests that run on a server as well as on a file.
namespace TestServer {

// Whether the server runs; when not, why, for the notice of a skipped test. Where the
// server should run (CI) its absence is no reason to skip.
bool Available(QString* why);

// A new, empty database of its own on the server, and its connection URI; empty after a
// test failure when it can't be made.
QString NewDatabase();

}  // namespace TestServer

// Skips the running test with a notice when the server does not run, and fails it in CI.
#define PLCDB_NEED_TEST_SERVER()                                                     \
    do {                                                                             \
        QString why_;                                                                \
        if (!TestServer::Available(&why_)) {                                         \
            if (!qEnvironmentVariableIsEmpty("CI")) {                                \
                FAIL() << "no PostgreSQL test server in CI: " << why_.toStdString(); \
            }                                                                        \
            GTEST_SKIP() << why_.toStdString();                                      \
        }                                                                            \
    } while (false)
