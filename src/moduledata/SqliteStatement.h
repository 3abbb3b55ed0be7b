#pragma once

#include <QByteArrayView>
#include <QString>

struct sqlite3_stmt;
class SqliteDb;

// One prepared statement lent out by SqliteDb's cache. It goes back to the cache, reset
// and with its bindings cleared, when this object ends, so it must not outlive the
// SqliteDb that made it. Positions count from 1 for binding and from 0 for columns.
// A failed bind is remembered and reported by the next step.
class SqliteStatement {
public:
    SqliteStatement() = default;
    SqliteStatement(SqliteDb* db, const QString& sql, sqlite3_stmt* statement);
    ~SqliteStatement();
    SqliteStatement(SqliteStatement&& other) noexcept;
    SqliteStatement& operator=(SqliteStatement&& other) noexcept;
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    bool isValid() const { return m_statement != nullptr; }

    // A null QString binds as an empty text; use bindNull for SQL NULL.
    SqliteStatement& bind(int position, const QString& value);
    SqliteStatement& bind(int position, int value);
    SqliteStatement& bindInt64(int position, qint64 value);
    SqliteStatement& bind(int position, double value);
    SqliteStatement& bindNull(int position);

    // Steps once: true when a row is ready. False at the end or on failure; failed()
    // tells the two apart.
    bool next();
    // Runs the statement to its end; true unless it failed.
    bool run();
    bool failed() const { return m_failed; }

    // Columns of the current row. A NULL reads as an empty text or 0.
    QString text(int column) const;
    // The stored bytes of a text column, valid until the next step.
    QByteArrayView utf8(int column) const;
    int toInt(int column) const;
    qint64 toInt64(int column) const;
    double toDouble(int column) const;
    bool isNull(int column) const;

private:
    void release();
    SqliteStatement& checkBind(int result);

    SqliteDb* m_db = nullptr;
    QString m_sql;
    sqlite3_stmt* m_statement = nullptr;
    bool m_failed = false;
};
