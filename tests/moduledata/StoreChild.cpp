// A program that writes to a module database until it is done or killed, for the
// tests of crashes and of two programs writing one file.
//
//   store_child save DATABASE TABLE CATALOG
//       saves one module over and over, alternating between two row sets; prints
//       "ready" once the first save is done, so that a kill lands on a later save.
//   store_child import DATABASE RUN COUNT
//       prints "ready", then imports one document of COUNT modules with the catalogs
//       "R<RUN>-1" .. "R<RUN>-<COUNT>" under M / S / T, then prints "done".
//   store_child write DATABASE WRITER COUNT
//       COUNT writes in turn: an import of a new module "W<WRITER>-I<n>", a save of
//       the module "W<WRITER>-SAVE" with the one row "w<WRITER>-s<n>", and a rename of
//       "W<WRITER>-NAME-<k>" to "W<WRITER>-NAME-<k+1>". Prints one line a write:
//       "ok KIND KEY" or "fail KIND KEY MILLISECONDS REASON".
//   store_child hold DATABASE
//       holds the database open as the module tree does, all its life, and works through
//       the commands of its input, one a line, answering each with "ok" or "failed ...":
//       "save CODE" (a new module CODE of ACME / S1 / T1), "rename OLD NEW", and "check"
//       (the migration check that the tree runs when a type opens), "lock TABLE CODE" (answers
//       "ok" or "held by HOLDER since TIME") and "unlock TABLE CODE". It ends with its input.
//       Before the first write it prints "ready" and waits for a line on its input, so that two
//       writers start together.

#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

struct RowSet {
    char prefix;
    int count;
};

constexpr RowSet kRowSets[] = {{'A', 2000}, {'B', 1500}};

void Say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

int Refuse(const char* what, CKVModuleDB& db) {
    std::fprintf(stderr, "%s (code %d): %s\n", what, db.GetLastError(),
                 qPrintable(ZelPlcDbIO::Instance()->m_strLastError));
    return 1;
}

void SetRows(CKVModule& module, const QStringList& rows) {
    while (module.GetTermCount() > 0) {
        module.RemoveTerm(module.GetTermCount());
    }
    for (const QString& row : rows) {
        module.SetTermRow(module.GetTermCount() + 1, row);
    }
}

QJsonObject Document(const QStringList& catalogs) {
    QJsonArray modules;
    for (const QString& catalog : catalogs) {
        QJsonArray terminals;
        for (int row = 1; row <= 10; ++row) {
            terminals.append(QJsonObject{{"text", QStringLiteral("HP?SPACE")},
                                         {"special", QStringLiteral("TERM_=%1").arg(row)}});
        }
        modules.append(QJsonObject{{"manufacturer", "M"},
                                   {"series", "S"},
                                   {"type", "T"},
                                   {"spec", QJsonObject{{"Code", catalog}}},
                                   {"terminals", terminals}});
    }
    return QJsonObject{{"format", "plcdb"}, {"version", 1}, {"modules", modules}};
}

int SaveForever(CKVModuleDB& db, const QString& table, const QString& catalog) {
    const int handle = db.LoadModule(table, catalog, true);
    if (handle < 0) {
        return Refuse("cannot load the module", db);
    }
    CKVModule& module = db.GetModule(handle);
    for (unsigned long pass = 0;; ++pass) {
        const RowSet& set = kRowSets[pass % 2];
        QStringList rows;
        for (int row = 1; row <= set.count; ++row) {
            rows << QStringLiteral("%1%2;N=%2").arg(QChar(set.prefix)).arg(row);
        }
        SetRows(module, rows);
        if (!db.SaveModule(handle)) {
            return Refuse("save failed", db);
        }
        if (pass == 0) {
            Say(QStringLiteral("ready"));
        }
    }
}

int ImportOnce(CKVModuleDB& db, const QString& run, int count) {
    QStringList catalogs;
    for (int module = 1; module <= count; ++module) {
        catalogs << QStringLiteral("R%1-%2").arg(run).arg(module);
    }
    const QJsonObject document = Document(catalogs);
    Say(QStringLiteral("ready"));
    QString error;
    if (!CatalogDocument::Import(db, document, &error)) {
        std::fprintf(stderr, "import failed: %s\n", qPrintable(error));
        return 1;
    }
    Say(QStringLiteral("done"));
    return 0;
}

// The write mode: an import, a save and a rename in turn, each reported on a line.
int WriteInTurn(CKVModuleDB& db, const QString& writer, int count) {
    QString table;
    if (!db.GetTypeTableName("M", "S", "T", table)) {
        return Refuse("no table for M / S / T", db);
    }
    const int save = db.LoadModule(table, QStringLiteral("W%1-SAVE").arg(writer), true);
    if (save < 0) {
        return Refuse("cannot load the module to save", db);
    }
    Say(QStringLiteral("ready"));
    char go[8];
    if (!std::fgets(go, sizeof go, stdin)) {
        return 1;
    }
    int renames = 0;
    for (int write = 1; write <= count; ++write) {
        QElapsedTimer clock;
        clock.start();
        QString kind, key, reason;
        bool ok = false;
        if (write % 3 == 0) {
            kind = QStringLiteral("import");
            key = QStringLiteral("W%1-I%2").arg(writer).arg(write);
            ok = CatalogDocument::Import(db, Document({key}), &reason);
        } else if (write % 3 == 1) {
            kind = QStringLiteral("save");
            key = QStringLiteral("w%1-s%2").arg(writer).arg(write);
            SetRows(db.GetModule(save), {key + u';'});
            ok = db.SaveModule(save);
        } else {
            kind = QStringLiteral("rename");
            key = QStringLiteral("W%1-NAME-%2").arg(writer).arg(renames + 1);
            ok =
                db.RenameModule(table, QStringLiteral("W%1-NAME-%2").arg(writer).arg(renames), key);
            renames += ok ? 1 : 0;
        }
        if (!ok && reason.isEmpty()) {
            reason = ZelPlcDbIO::Instance()->m_strLastError;
        }
        Say(ok ? QStringLiteral("ok %1 %2").arg(kind, key)
               : QStringLiteral("fail %1 %2 %3 %4")
                     .arg(kind, key)
                     .arg(clock.elapsed())
                     .arg(reason));
    }
    return 0;
}

bool HoldCommand(CKVModuleDB& db, const QStringList& words) {
    QString table;
    db.GetTypeTableName("ACME", "S1", "T1", table);
    if (words.value(0) == "save" && words.size() == 2) {
        const int handle = db.NewModule("ACME", "S1", "T1", words[1]);
        return handle > 0 && db.SaveModule(handle) && db.ReleaseModule(handle);
    }
    if (words.value(0) == "rename" && words.size() == 3) {
        return db.RenameModule(table, words[1], words[2]);
    }
    if (words.value(0) == "unlock" && words.size() == 3) {
        return db.UnlockModule(words[1], words[2]);
    }
    if (words.value(0) == "check" && words.size() == 1) {
        bool required = true;
        CheckForMigration(db.GetPath(), required, false, table);
        return !required;
    }
    return false;
}

int Hold(CKVModuleDB& db) {
    std::string line;
    while (std::getline(std::cin, line)) {
        const QStringList words = QString::fromStdString(line).split(u' ', Qt::SkipEmptyParts);
        bool granted = false;
        ModDB::ModuleLock holder;
        if (words.value(0) == "lock" && words.size() == 3 &&
            db.LockModule(words[1], words[2], granted, holder) && !granted) {
            Say("held by " + holder.holder + " since " + holder.since.toString(Qt::ISODate));
        } else if (words.value(0) == "lock" ? granted : HoldCommand(db, words)) {
            Say(QStringLiteral("ok"));
        } else {
            Say(QStringLiteral("failed: %1 (code %2)")
                    .arg(ZelPlcDbIO::Instance()->m_strLastError)
                    .arg(db.GetLastError()));
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const bool hold = args.value(1) == QStringLiteral("hold");
    if (args.size() != (hold ? 3 : 5)) {
        std::fprintf(stderr,
                     "usage: store_child save|import|write DATABASE ARG ARG\n"
                     "       store_child hold DATABASE\n");
        return 2;
    }
    ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    CKVModuleDB db;
    if (!db.Open(args[2])) {
        return Refuse("cannot open the database", db);
    }
    const QString& mode = args[1];
    if (hold) {
        return Hold(db);
    }
    if (mode == QStringLiteral("save")) {
        return SaveForever(db, args[3], args[4]);
    }
    if (mode == QStringLiteral("import")) {
        return ImportOnce(db, args[3], args[4].toInt());
    }
    if (mode == QStringLiteral("write")) {
        return WriteInTurn(db, args[3], args[4].toInt());
    }
    std::fprintf(stderr, "unknown mode %s\n", qPrintable(mode));
    return 2;
}
