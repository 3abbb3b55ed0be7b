#include "StoreFailure.h"

#include "SqliteDb.h"

#include <QRegularExpression>

#include <sqlite3.h>

namespace StoreFailure {
namespace {

// The path as a shell takes it, quoted only when it has to be.
QString ShellWord(const QString& path) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_./:+-]+$"));
    if (plain.match(path).hasMatch()) {
        return path;
    }
    QString quoted = path;
    quoted.replace(u'\'', QLatin1String("'\\''"));
    return u'\'' + quoted + u'\'';
}

QString Damaged(const QString& path) {
    return QStringLiteral("the file is damaged: run `sqlite3 %1 'pragma integrity_check'`")
        .arg(ShellWord(path));
}

// A lock can fail at once, where waiting could only end in a deadlock.
QString Locked(int waitedMs) {
    if (waitedMs <= 0) {
        return QStringLiteral("locked by another program");
    }
    return QStringLiteral("locked by another program, waited %1 s")
        .arg(qRound(waitedMs / 100.0) / 10.0);
}

}  // namespace

QString NotOurs() {
    return QStringLiteral("not a plcdb database");
}

QString MissingTable(const QString& table) {
    return QStringLiteral("the file is damaged: its table %1 is missing").arg(table);
}

QString Newer() {
    return QStringLiteral("made by a newer plcdb");
}

QString Folder() {
    return QStringLiteral("a folder, not a database file");
}

QString Missing() {
    return QStringLiteral("the file does not exist");
}

QString WriteProtected() {
    return QStringLiteral("the file is write-protected");
}

QString ReadingOnly() {
    return QStringLiteral("the database is open for reading only");
}

QString Describe(const SqliteDb& db) {
    switch (db.lastCode() & 0xff) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return Locked(db.lastWait());
        case SQLITE_FULL:
            return QStringLiteral("the disk is full");
        case SQLITE_CORRUPT:
            return Damaged(db.path());
        case SQLITE_NOTADB:
            return NotOurs();
        case SQLITE_READONLY:
            return db.lastCode() == SQLITE_READONLY_DIRECTORY
                       ? QStringLiteral("the folder of the file is write-protected")
                       : WriteProtected();
        case SQLITE_IOERR:
            return QStringLiteral("the disk failed to read or write the file (%1)")
                .arg(db.lastError());
        default:
            return db.lastError();
    }
}

bool IsLock(const SqliteDb& db) {
    const int code = db.lastCode() & 0xff;
    return code == SQLITE_BUSY || code == SQLITE_LOCKED;
}

}  // namespace StoreFailure
