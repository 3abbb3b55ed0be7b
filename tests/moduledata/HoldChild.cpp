// Holds the database open as the module tree does, all its life, and works through the
// commands of its standard input, one a line, answering each with "ok" or "failed ...":
//   save CODE          a new module CODE of ACME / S1 / T1
//   rename OLD NEW     the module OLD gets the code NEW
//   check              the migration check that the tree runs when a type opens
// Argument: the database path. It ends at the end of its input.

#include "CKVModuleDB.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include <QCoreApplication>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

bool Save(CKVModuleDB& db, const QString& code) {
    const int handle = db.NewModule("ACME", "S1", "T1", code);
    return handle > 0 && db.SaveModule(handle) && db.ReleaseModule(handle);
}

bool Run(CKVModuleDB& db, const QStringList& words) {
    QString table;
    db.GetTypeTableName("ACME", "S1", "T1", table);
    if (words.value(0) == "save" && words.size() == 2) {
        return Save(db, words[1]);
    }
    if (words.value(0) == "rename" && words.size() == 3) {
        return db.RenameModule(table, words[1], words[2]);
    }
    if (words.value(0) == "check" && words.size() == 1) {
        bool required = true;
        CheckForMigration(db.GetPath(), required, false, table);
        return !required;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (app.arguments().size() != 2) {
        std::fprintf(stderr, "usage: hold_child DATABASE\n");
        return 2;
    }
    ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    CKVModuleDB db;
    if (!db.Open(app.arguments()[1])) {
        std::fprintf(stderr, "cannot open the database (code %d)\n", db.GetLastError());
        return 1;
    }
    std::string line;
    while (std::getline(std::cin, line)) {
        const QStringList words = QString::fromStdString(line).split(u' ', Qt::SkipEmptyParts);
        if (Run(db, words)) {
            std::printf("ok\n");
        } else {
            std::printf("failed: %s (code %d)\n", qPrintable(store.m_strLastError),
                        db.GetLastError());
        }
        std::fflush(stdout);
    }
    return 0;
}
