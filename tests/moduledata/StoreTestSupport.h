#pragma once

#include "CKVModuleDB.h"
#include "ZelPlcDbIO.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>

class StoreDb;

// SQLite's own verdict on the whole file ("ok" when sound), through a connection of its
// own that is closed after.
QString IntegrityCheck(const QString& path);

// The text parts of a module's terminal rows, in order; empty when it can't be loaded.
QStringList LoadRowTexts(CKVModuleDB& db, const QString& table, const QString& catalog);

// The program store_child, started with the given arguments, that is talked to a line at a
// time; its input is closed and its end awaited when the object goes.
class StoreChild {
public:
    explicit StoreChild(const QStringList& args);
    ~StoreChild();
    StoreChild(const StoreChild&) = delete;
    StoreChild& operator=(const StoreChild&) = delete;

    // The next line it prints, trimmed; empty when it ends first.
    QString readLine();
    // Sends a line and answers the line it prints back.
    QString command(const QString& line);
    // Closes its input and answers its exit code, -1 when it does not end in time.
    int finish(int timeoutMs = 30000);

    QProcess process;
};

// Where a test's store lies: a file, or a database of its own on the test server.
enum class Backend { File, Server };

// "File" or "Server", for the names of the tests that run on each and their messages.
std::string BackendName(const testing::TestParamInfo<Backend>& info);
void PrintTo(Backend backend, std::ostream* out);

// A new store (a database file in a temporary folder, or a new database on the test server
// for a fixture that runs on each backend), held open all along as the tree of an open
// dialog holds its store, with saved modules of the given catalogs under M / S / T (whose
// table is m_table once there is one). m_path is the file's path or the server's URI.
class StoreFileTest : public testing::Test {
protected:
    virtual Backend backend() const { return Backend::File; }
    bool OnServer() const { return backend() == Backend::Server; }
    // A new empty store at m_path; on a server, skips the test when there is none.
    void CreateStore();
    void CreateWithModules(std::initializer_list<const char*> catalogs);
    // A connection of the test's own to the store, beside the store's rules, for damage
    // that no operation of the store can make.
    std::unique_ptr<StoreDb> OpenRaw() const;
    void TearDown() override;

    QTemporaryDir m_dir;
    QString m_path;
    QString m_table;
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};

// The fixture on the backend of the test's parameter; instantiate its tests with
// PLCDB_ON_EACH_BACKEND.
template <class Fixture>
class OnEachBackend : public Fixture, public testing::WithParamInterface<Backend> {
protected:
    Backend backend() const override { return this->GetParam(); }
};

#define PLCDB_ON_EACH_BACKEND(suite) \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::Values(Backend::File, Backend::Server), BackendName)
