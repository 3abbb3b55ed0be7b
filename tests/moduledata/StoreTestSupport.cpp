#include "StoreTestSupport.h"

#include "CKVModuleDB.h"
#include "SqliteDb.h"
#include "SqliteStatement.h"

QString IntegrityCheck(const QString& path) {
    SqliteDb db;
    if (!db.open(path, SqliteOpenMode::ReadWrite)) {
        return db.lastError();
    }
    SqliteStatement statement = db.prepare(QStringLiteral("PRAGMA integrity_check"));
    return statement.next() ? statement.text(0) : db.lastError();
}

QStringList LoadRowTexts(CKVModuleDB& db, const QString& table, const QString& catalog) {
    const int handle = db.LoadModule(table, catalog, false);
    QStringList texts;
    const CKVModule& module = db.GetModule(handle);
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        texts << module.GetTermText(row);
    }
    db.ReleaseModule(handle);
    return texts;
}
