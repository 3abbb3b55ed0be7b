#include "StoreStatement.h"

StoreStatement::StoreStatement(std::unique_ptr<StoreQuery> query) : m_query(std::move(query)) {}

StoreStatement& StoreStatement::bind(int position, const QString& value) {
    if (m_query) {
        m_query->bindText(position, value);
    }
    return *this;
}

StoreStatement& StoreStatement::bind(int position, int value) {
    return bindInt64(position, value);
}

StoreStatement& StoreStatement::bindInt64(int position, qint64 value) {
    if (m_query) {
        m_query->bindInt64(position, value);
    }
    return *this;
}

StoreStatement& StoreStatement::bindNull(int position) {
    if (m_query) {
        m_query->bindNull(position);
    }
    return *this;
}

bool StoreStatement::next() {
    return m_query && m_query->next();
}

bool StoreStatement::run() {
    while (next()) {
    }
    return !failed();
}

bool StoreStatement::failed() const {
    return !m_query || m_query->failed();
}

QString StoreStatement::text(int column) const {
    const QByteArrayView bytes = utf8(column);
    return bytes.data() ? QString::fromUtf8(bytes) : QStringLiteral("");
}

QByteArrayView StoreStatement::utf8(int column) const {
    return m_query ? m_query->utf8(column) : QByteArrayView();
}

int StoreStatement::toInt(int column) const {
    return int(toInt64(column));
}

qint64 StoreStatement::toInt64(int column) const {
    return m_query ? m_query->toInt64(column) : 0;
}

bool StoreStatement::isNull(int column) const {
    return !m_query || m_query->isNull(column);
}
