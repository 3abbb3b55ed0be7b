#pragma once

#include "StoreStatement.h"

#include <QString>

// One connection to a store, a file or a server, with what the store's rules need of it,
// meant alike on every backend. Statements number their parameters ?1, ?2, ...; the
// SQL is the part that both backends read alike. Failures answer false (or an invalid
// statement) and leave a text in lastError(); nothing throws.
//
// Transactions nest: the outermost begin starts a real transaction, inner ones are
// savepoints, so an inner rollback undoes only its own part and nothing is written
// before the outermost commit.
class StoreDb {
public:
    virtual ~StoreDb() = default;

    virtual StoreStatement query(const QString& sql) = 0;
    // Runs one or more statements without parameters.
    virtual bool exec(const QString& sql) = 0;
    // Rows changed by the last insert, update or delete.
    virtual int changes() const = 0;
    virtual bool isReadOnly() const = 0;
    // Whether the connection broke (a server that stopped); a file's never does.
    virtual bool isLost() const { return false; }

    virtual bool beginTransaction() = 0;
    virtual bool commitTransaction() = 0;
    virtual void rollbackTransaction() = 0;
    virtual int transactionDepth() const = 0;

    virtual const QString& lastError() const = 0;
    // The user's words for the last failure ("locked by another program", "the disk is
    // full", ...), and whether it was another program's lock that outlasted the wait.
    virtual QString failureText() const = 0;
    virtual bool failedOnLock() const = 0;
};
