#pragma once

#include "CKVModuleDB.h"
#include "ZelPlcDbIO.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <initializer_list>

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

// A new database file in a temporary folder, held open all along as the tree of an open
// dialog holds its store, with saved modules of the given catalogs under M / S / T (whose
// table is m_table once there is one).
class StoreFileTest : public testing::Test {
protected:
    void CreateWithModules(std::initializer_list<const char*> catalogs);
    void TearDown() override;

    QTemporaryDir m_dir;
    QString m_path;
    QString m_table;
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};
