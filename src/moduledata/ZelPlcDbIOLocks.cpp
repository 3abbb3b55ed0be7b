// Edit locks on modules. On a server a session-level advisory lock is the lock itself and
// goes with the connection, also when the program dies; a row names its holder. In a file
// the row is the lock: a row of a process that no longer runs on this machine is stale.
#include "ZelPlcDbIO.h"

#include "StoreDb.h"
#include "StoreTransaction.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <QUuid>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#endif

namespace {

// A row from another machine is taken over once it is this old: there is no telling
// whether its process still runs, and an editing session does not last this long.
constexpr qint64 kForeignRowLifeSecs = qint64(12) * 60 * 60;

QString Key(const QString& code) {
    return code.toCaseFolded();
}

// The name of a held lock, and the text the server hashes into the advisory lock's key.
// The unit separator cannot stand in a table name.
QString LockName(const QString& table, const QString& key) {
    return table + QChar(0x1f) + key;
}

QString UserName() {
    for (const char* variable : {"USER", "USERNAME", "LOGNAME"}) {
        const QString name = qEnvironmentVariable(variable);
        if (!name.isEmpty()) {
            return name;
        }
    }
    return QStringLiteral("an unknown user");
}

QString Machine() {
    return QSysInfo::machineHostName();
}

bool ProcessRuns(qint64 process) {
#ifdef Q_OS_UNIX
    return process > 0 && (::kill(pid_t(process), 0) == 0 || errno == EPERM);
#else
    return true;
#endif
}

// Whether a lock row of another connection in a file still holds its module.
bool RowHolds(const ModDB::ModuleLock& row, const QString& machine, qint64 process) {
    if (machine != Machine()) {
        return !row.since.isValid() ||
               row.since.secsTo(QDateTime::currentDateTimeUtc()) < kForeignRowLifeSecs;
    }
    return ProcessRuns(process);
}

}  // namespace

bool ZelPlcDbIO::LockModule(const QString& table, const QString& code, bool& granted,
                            ModDB::ModuleLock& holder) {
    granted = false;
    holder = {};
    const QString key = Key(code);
    if (m_db && m_locks.contains(LockName(table, key))) {
        granted = true;
        return true;
    }
    if (m_file && m_schemaVersion < kSchemaVersion) {
        return Fail(
            QStringLiteral("the file is of an older version; it must be upgraded "
                           "before its modules are edited"));
    }
    StoreDb* db = WritableConnection();
    if (!db) {
        return false;
    }
    if (m_lockOwner.isEmpty()) {
        m_lockOwner = QUuid::createUuid().toString(QUuid::WithoutBraces);
    }
    const bool locked = m_file ? LockInFile(*db, table, key, granted, holder)
                               : LockOnServer(*db, table, key, granted, holder);
    if (locked && granted) {
        m_locks.insert(LockName(table, key));
    }
    return locked;
}

bool ZelPlcDbIO::UnlockModule(const QString& table, const QString& code) {
    const QString key = Key(code);
    if (!m_db || !m_locks.remove(LockName(table, key))) {
        return true;
    }
    StoreStatement statement = m_db->query(QStringLiteral(
        "DELETE FROM plc_lock WHERE table_name = ?1 AND code_key = ?2 AND owner = ?3"));
    bool unlocked = statement.bind(1, table).bind(2, key).bind(3, m_lockOwner).run();
    if (!m_file) {
        StoreStatement advisory =
            m_db->query(QStringLiteral("SELECT pg_advisory_unlock(hashtextextended(?1, 0))"));
        unlocked = advisory.bind(1, LockName(table, key)).next() && unlocked;
    }
    return unlocked || FailDb();
}

void ZelPlcDbIO::ReleaseLocks() {
    if (m_db && !m_locks.isEmpty()) {
        // The server frees the advisory locks with the connection; its rows only name holders.
        StoreStatement statement =
            m_db->query(QStringLiteral("DELETE FROM plc_lock WHERE owner = ?1"));
        statement.bind(1, m_lockOwner).run();
    }
    m_locks.clear();
}

bool ZelPlcDbIO::MakeLockTable(StoreDb& db) {
    // Made when first needed, so that older files and catalogs need no upgrade. Two
    // servers' sessions that make it at once may collide: the second try finds it made.
    const QString sql = QStringLiteral(
        "CREATE TABLE IF NOT EXISTS plc_lock (table_name TEXT NOT NULL, code_key TEXT NOT "
        "NULL, holder TEXT NOT NULL, since TEXT NOT NULL, machine TEXT NOT NULL, process BIGINT "
        "NOT NULL, owner TEXT NOT NULL, PRIMARY KEY (table_name, code_key))");
    return db.exec(sql) || db.exec(sql);
}

bool ZelPlcDbIO::WriteLockRow(StoreDb& db, const QString& table, const QString& key) {
    StoreStatement statement = db.query(QStringLiteral(
        "INSERT INTO plc_lock (table_name, code_key, holder, since, machine, process, owner) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7) ON CONFLICT (table_name, code_key) DO UPDATE SET "
        "holder = excluded.holder, since = excluded.since, machine = excluded.machine, "
        "process = excluded.process, owner = excluded.owner"));
    statement.bind(1, table).bind(2, key);
    statement.bind(3, QStringLiteral("%1 on %2").arg(UserName(), Machine()));
    statement.bind(4, QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    statement.bind(5, Machine()).bindInt64(6, QCoreApplication::applicationPid());
    return statement.bind(7, m_lockOwner).run();
}

bool ZelPlcDbIO::ReadLockRow(StoreDb& db, const QString& table, const QString& key, bool& found,
                             ModDB::ModuleLock& holder, QString& machine, qint64& process,
                             QString& owner) {
    StoreStatement statement =
        db.query(QStringLiteral("SELECT holder, since, machine, process, owner FROM plc_lock "
                                "WHERE table_name = ?1 AND code_key = ?2"));
    found = statement.bind(1, table).bind(2, key).next();
    if (found) {
        holder.holder = statement.text(0);
        holder.since = QDateTime::fromString(statement.text(1), Qt::ISODate);
        machine = statement.text(2);
        process = statement.toInt64(3);
        owner = statement.text(4);
    }
    return !statement.failed();
}

bool ZelPlcDbIO::LockInFile(StoreDb& db, const QString& table, const QString& key, bool& granted,
                            ModDB::ModuleLock& holder) {
    // The row is read and written in one write transaction, so that of two programs that
    // come at once one writes and the other then reads its row.
    StoreTransaction transaction(db);
    bool found = false;
    QString machine, owner;
    qint64 process = 0;
    if (!transaction.isActive() || !MakeLockTable(db) ||
        !ReadLockRow(db, table, key, found, holder, machine, process, owner)) {
        return FailDb();
    }
    if (found && owner != m_lockOwner && RowHolds(holder, machine, process)) {
        return true;
    }
    holder = {};
    if (!WriteLockRow(db, table, key) || !transaction.commit()) {
        return FailDb();
    }
    granted = true;
    return true;
}

bool ZelPlcDbIO::LockOnServer(StoreDb& db, const QString& table, const QString& key, bool& granted,
                              ModDB::ModuleLock& holder) {
    StoreStatement advisory =
        db.query(QStringLiteral("SELECT pg_try_advisory_lock(hashtextextended(?1, 0))"));
    if (!advisory.bind(1, LockName(table, key)).next()) {
        return FailDb();
    }
    bool found = false;
    QString machine, owner;
    qint64 process = 0;
    if (advisory.toInt(0) == 0) {
        // A holder that has its lock but not yet its row is named as nobody in particular.
        if (!MakeLockTable(db) ||
            !ReadLockRow(db, table, key, found, holder, machine, process, owner)) {
            return FailDb();
        }
        if (!found) {
            holder.holder = QStringLiteral("another user");
        }
        return true;
    }
    if (!MakeLockTable(db) || !WriteLockRow(db, table, key)) {
        const QString reason = db.failureText();
        const bool lock = db.failedOnLock();
        StoreStatement undo =
            db.query(QStringLiteral("SELECT pg_advisory_unlock(hashtextextended(?1, 0))"));
        undo.bind(1, LockName(table, key)).next();
        return Fail(reason, lock);
    }
    granted = true;
    return true;
}
