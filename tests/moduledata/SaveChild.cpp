// Saves one module over and over, alternating between two row sets, until it is
// killed. Arguments: database path, table, catalog. Prints "ready" once the first
// save is done, so that a kill can only land on a later save.

#include "CKVModuleDB.h"
#include "ZelPlcDbIO.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

struct RowSet {
    char prefix;
    int count;
};

constexpr RowSet kRowSets[] = {{'A', 2000}, {'B', 1500}};

void FillRows(CKVModule& module, const RowSet& set) {
    while (module.GetTermCount() > 0) {
        module.RemoveTerm(module.GetTermCount());
    }
    for (int row = 1; row <= set.count; ++row) {
        module.SetTermRow(row, QStringLiteral("%1%2;N=%2").arg(QChar(set.prefix)).arg(row));
    }
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 4) {
        std::fprintf(stderr, "usage: save_child DATABASE TABLE CATALOG\n");
        return 2;
    }
    ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    CKVModuleDB db;
    const int handle = db.Open(args[1]) ? db.LoadModule(args[2], args[3], true) : -1;
    if (handle < 0) {
        std::fprintf(stderr, "cannot load the module (code %d)\n", db.GetLastError());
        return 1;
    }
    CKVModule& module = db.GetModule(handle);
    for (unsigned long pass = 0;; ++pass) {
        FillRows(module, kRowSets[pass % 2]);
        if (!db.SaveModule(handle)) {
            std::fprintf(stderr, "save failed (code %d)\n", db.GetLastError());
            return 1;
        }
        if (pass == 0) {
            std::printf("ready\n");
            std::fflush(stdout);
        }
    }
}
