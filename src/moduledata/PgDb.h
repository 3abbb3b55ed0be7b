#pragma once

#include "StoreDb.h"

#include <QHash>
#include <QString>

struct pg_conn;
struct pg_result;

// One connection to a database on a PostgreSQL server through libpq. Statements are
// prepared on the server once per connection and SQL text, and their parameters go as
// values, never as SQL; the ?1, ?2 of the store's SQL become $1, $2. A result is read
// whole, so a statement costs one round trip however many rows it gives.
class PgDb : public StoreDb {
public:
    PgDb();
    ~PgDb() override;
    PgDb(const PgDb&) = delete;
    PgDb& operator=(const PgDb&) = delete;

    // connection is a URI ("postgresql://...") or a libpq key=value text.
    bool open(const QString& connection);
    void close();
    bool isOpen() const { return m_conn != nullptr; }
    // Refuses every change from now on.
    bool setReadOnly();
    // The connection's location as a message may show it, without a password.
    const QString& location() const { return m_location; }

    StoreStatement query(const QString& sql) override;
    bool exec(const QString& sql) override;
    int changes() const override { return m_changes; }
    bool isReadOnly() const override { return m_readOnly; }
    bool isLost() const override;
    bool beginTransaction() override;
    bool commitTransaction() override;
    void rollbackTransaction() override;
    int transactionDepth() const override { return m_depth; }
    const QString& lastError() const override { return m_lastError; }
    QString failureText() const override;
    bool failedOnLock() const override;

    // The SQLSTATE of the last failure ("40P01", ...); empty for one of our own.
    const QString& lastState() const { return m_lastState; }

private:
    friend class PgQuery;

    // Takes the outcome of a command: the count of changed rows, or the failure.
    bool takeResult(pg_result* result);
    bool fail(const QString& message, const QString& state = QString());

    pg_conn* m_conn = nullptr;
    QString m_location;
    QString m_lastError;
    QString m_lastState;
    // The failure that made the server refuse the rest of the open transaction.
    QString m_abortCause;
    QString m_abortState;
    // Server-side statement names by SQL text.
    QHash<QString, QByteArray> m_prepared;
    int m_depth = 0;
    int m_changes = 0;
    bool m_readOnly = false;
};
