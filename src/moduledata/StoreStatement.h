#pragma once

#include <QByteArrayView>
#include <QString>

#include <memory>

// One backend's prepared statement while it is in use. Positions count from 1 for
// binding and from 0 for columns. A failed bind is remembered and reported by the next
// step; a NULL column reads as an empty text or 0.
class StoreQuery {
public:
    virtual ~StoreQuery() = default;

    virtual void bindText(int position, const QString& value) = 0;
    virtual void bindInt64(int position, qint64 value) = 0;
    virtual void bindNull(int position) = 0;
    // Steps once: true when a row is ready, false at the end or on failure.
    virtual bool next() = 0;
    virtual bool failed() const = 0;
    // The bytes of a text column, valid until the next step; a null view for NULL.
    virtual QByteArrayView utf8(int column) const = 0;
    virtual qint64 toInt64(int column) const = 0;
    virtual bool isNull(int column) const = 0;
};

// A statement of a StoreDb, whatever its backend: a value that must not outlive the
// connection that made it. An invalid one (a failed prepare) fails at its first step.
class StoreStatement {
public:
    StoreStatement() = default;
    explicit StoreStatement(std::unique_ptr<StoreQuery> query);

    bool isValid() const { return m_query != nullptr; }

    // A null QString binds as an empty text; use bindNull for SQL NULL.
    StoreStatement& bind(int position, const QString& value);
    StoreStatement& bind(int position, int value);
    StoreStatement& bindInt64(int position, qint64 value);
    StoreStatement& bindNull(int position);

    // Steps once: true when a row is ready. False at the end or on failure; failed()
    // tells the two apart.
    bool next();
    // Runs the statement to its end; true unless it failed.
    bool run();
    bool failed() const;

    QString text(int column) const;
    QByteArrayView utf8(int column) const;
    int toInt(int column) const;
    qint64 toInt64(int column) const;
    bool isNull(int column) const;

private:
    std::unique_ptr<StoreQuery> m_query;
};
