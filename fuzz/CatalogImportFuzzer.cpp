// The catalog document import on any bytes, each input into a fresh database: a refused
// document writes nothing, and an imported one exports as a document that imports into
// another fresh database to the same export.

#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "FuzzSupport.h"
#include "ZelPlcDbIO.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// A database made once; each input works on a copy, as making the schema costs more than
// copying it.
QString EmptyDatabase() {
    static const QString path = [] {
        const QString made = FuzzPath(QStringLiteral("empty.mdb"));
        QString error;
        if (!ZelPlcDbIO::CreateDatabase(made, &error)) {
            FuzzBroken("an empty database can be made", error);
        }
        return made;
    }();
    return path;
}

void RemoveDatabase(const QString& path) {
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        QFile::remove(path + QLatin1String(suffix));
    }
}

// A fresh database open for the time of one call of work.
template <typename Work>
void WithFreshDatabase(const QString& name, Work work) {
    const QString path = FuzzPath(name);
    RemoveDatabase(path);
    FuzzCheck(QFile::copy(EmptyDatabase(), path), "the empty database can be copied");
    {
        ZelPlcDbIO store;
        ZelPlcDbIO::SetInstance(&store);
        CKVModuleDB db;
        FuzzCheck(db.Open(path), "a fresh database opens");
        work(db);
        db.Close();
        ZelPlcDbIO::SetInstance(nullptr);
    }
    RemoveDatabase(path);
}

QJsonObject Export(CKVModuleDB& db) {
    QJsonObject document;
    QString error;
    FuzzCheck(CatalogDocument::Export(db, document, &error), "a database exports", error);
    return document;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(FuzzBytes(data, size), &parseError);
    if (!json.isObject()) {
        return 0;
    }
    QJsonObject exported;
    bool imported = false;
    WithFreshDatabase(QStringLiteral("first.mdb"), [&](CKVModuleDB& db) {
        const QJsonObject empty = Export(db);
        QString error;
        imported = CatalogDocument::Import(db, json.object(), &error);
        exported = Export(db);
        if (!imported) {
            FuzzCheck(!error.isEmpty(), "a refused document has a reason");
            FuzzCheck(exported == empty, "a refused document writes nothing", error);
        }
    });
    if (!imported) {
        return 0;
    }
    WithFreshDatabase(QStringLiteral("second.mdb"), [&](CKVModuleDB& db) {
        QString error;
        FuzzCheck(CatalogDocument::Import(db, exported, &error), "an export imports", error);
        FuzzCheck(Export(db) == exported, "an export imports to the same export",
                  QString::fromUtf8(QJsonDocument(exported).toJson(QJsonDocument::Compact)));
    });
    return 0;
}
