#pragma once

#include "SqliteStatement.h"
#include "StoreDb.h"

#include <QHash>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

// How a database file is opened. Neither ReadWrite nor ReadOnly ever makes the database
// file. ReadOnly is the system's read-only open: SQLite then makes the log files of a file
// in WAL mode beside it and leaves them behind when it closes.
enum class SqliteOpenMode { ReadWrite, ReadOnly, Create };

// One connection to an SQLite file. Prepared statements are cached by their SQL text
// for the life of the connection. Besides the store's operations it has those that only
// a file has: its schema version, journal, locking and backup.
class SqliteDb : public StoreDb {
public:
    SqliteDb();
    ~SqliteDb() override;
    SqliteDb(const SqliteDb&) = delete;
    SqliteDb& operator=(const SqliteDb&) = delete;

    bool open(const QString& path, SqliteOpenMode mode);
    // Opens a file that nobody changes while it is open, without locks or journal:
    // the way to read a file of another journal mode from a folder we can't write.
    bool openImmutable(const QString& path);
    void close();
    bool isOpen() const { return m_handle != nullptr; }
    // True on a read-only open and after setQueryOnly.
    bool isReadOnly() const override;
    const QString& path() const { return m_path; }
    const QString& lastError() const override { return m_lastError; }
    // SQLite's extended result code of the last failure; SQLITE_ERROR for one of our own.
    int lastCode() const { return m_lastCode; }
    int busyTimeout() const { return m_busyTimeoutMs; }
    // How long the last statement waited for another connection's lock.
    int lastWait() const { return m_waitedMs; }

    // Runs one or more statements without parameters.
    bool exec(const QString& sql) override;
    SqliteStatement prepare(const QString& sql);
    StoreStatement query(const QString& sql) override;
    int changes() const override;
    qint64 lastInsertRowId() const;

    bool userVersion(int& version);
    bool setUserVersion(int version);
    // Waits up to that long for another connection's lock; 0 fails at once.
    bool setBusyTimeout(int milliseconds);
    // Refuses every change from now on, on a connection that the system lets write.
    bool setQueryOnly();
    // Keeps the file locked from the first access until the connection closes.
    bool setExclusiveLocking();
    // "wal", "delete", ... as SQLite reports it; empty when it can't be read.
    QString journalMode();
    // Write-ahead log, so that readers and a writer in other programs don't block each other.
    bool enableWal();
    // Writes a consistent copy of the whole database to a new file at path.
    bool backupTo(const QString& path);

    bool beginTransaction() override;
    bool commitTransaction() override;
    void rollbackTransaction() override;
    int transactionDepth() const override { return m_depth; }
    QString failureText() const override;
    bool failedOnLock() const override;

private:
    friend class SqliteStatement;
    void recycle(const QString& sql, sqlite3_stmt* statement);
    bool noteFailure(const QString& what);
    bool fail(const QString& message);
    bool openWith(const QString& path, const QByteArray& name, int flags);
    static int waitForLock(void* self, int attempt);

    sqlite3* m_handle = nullptr;
    QString m_path;
    QString m_lastError;
    QHash<QString, sqlite3_stmt*> m_cache;
    int m_depth = 0;
    int m_lastCode = 0;
    int m_busyTimeoutMs = 0;
    int m_waitedMs = 0;
    bool m_queryOnly = false;
};
