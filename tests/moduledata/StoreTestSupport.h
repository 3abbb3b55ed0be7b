#pragma once

#include "CKVModuleDB.h"
#include "ZelPlcDbIO.h"

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

// A new database file in a temporary folder, held open all along as the tree of an open
// dialog holds its store, with saved modules of the given catalogs under M / S / T.
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
