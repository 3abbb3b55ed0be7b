#include "SqliteStatement.h"

#include "SqliteDb.h"

#include <sqlite3.h>

#include <utility>

SqliteStatement::SqliteStatement(SqliteDb* db, const QString& sql, sqlite3_stmt* statement)
    : m_db(db), m_sql(sql), m_statement(statement) {}

SqliteStatement::~SqliteStatement() {
    release();
}

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : m_db(std::exchange(other.m_db, nullptr)),
      m_sql(std::move(other.m_sql)),
      m_statement(std::exchange(other.m_statement, nullptr)),
      m_failed(other.m_failed) {}

SqliteStatement& SqliteStatement::operator=(SqliteStatement&& other) noexcept {
    if (this != &other) {
        release();
        m_db = std::exchange(other.m_db, nullptr);
        m_sql = std::move(other.m_sql);
        m_statement = std::exchange(other.m_statement, nullptr);
        m_failed = other.m_failed;
    }
    return *this;
}

void SqliteStatement::release() {
    if (m_statement) {
        m_db->recycle(m_sql, m_statement);
        m_statement = nullptr;
    }
}

SqliteStatement& SqliteStatement::checkBind(int result) {
    if (result != SQLITE_OK && !m_failed) {
        m_failed = true;
        m_db->noteFailure(QStringLiteral("bind"));
    }
    return *this;
}

SqliteStatement& SqliteStatement::bind(int position, const QString& value) {
    if (!m_statement) {
        return *this;
    }
    // sqlite copies the text, so a temporary QString may go at once.
    static const char16_t kEmpty[] = u"";
    const void* data = value.isEmpty() ? static_cast<const void*>(kEmpty) : value.utf16();
    const int bytes = static_cast<int>(value.size() * sizeof(char16_t));
    return checkBind(sqlite3_bind_text16(m_statement, position, data, bytes, SQLITE_TRANSIENT));
}

SqliteStatement& SqliteStatement::bind(int position, int value) {
    return m_statement ? checkBind(sqlite3_bind_int(m_statement, position, value)) : *this;
}

SqliteStatement& SqliteStatement::bindInt64(int position, qint64 value) {
    return m_statement ? checkBind(sqlite3_bind_int64(m_statement, position, value)) : *this;
}

SqliteStatement& SqliteStatement::bind(int position, double value) {
    return m_statement ? checkBind(sqlite3_bind_double(m_statement, position, value)) : *this;
}

SqliteStatement& SqliteStatement::bindNull(int position) {
    return m_statement ? checkBind(sqlite3_bind_null(m_statement, position)) : *this;
}

bool SqliteStatement::next() {
    if (!m_statement) {
        m_failed = true;
        return false;
    }
    if (m_failed) {
        return false;
    }
    m_db->m_waitedMs = 0;
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        m_failed = true;
        m_db->noteFailure(QStringLiteral("step"));
    }
    return false;
}

bool SqliteStatement::run() {
    while (next()) {
    }
    return !m_failed;
}

QString SqliteStatement::text(int column) const {
    const QByteArrayView bytes = utf8(column);
    return bytes.data() ? QString::fromUtf8(bytes) : QStringLiteral("");
}

QByteArrayView SqliteStatement::utf8(int column) const {
    const unsigned char* data = m_statement ? sqlite3_column_text(m_statement, column) : nullptr;
    if (!data) {
        return {};
    }
    return {data, sqlite3_column_bytes(m_statement, column)};
}

int SqliteStatement::toInt(int column) const {
    return m_statement ? sqlite3_column_int(m_statement, column) : 0;
}

qint64 SqliteStatement::toInt64(int column) const {
    return m_statement ? sqlite3_column_int64(m_statement, column) : 0;
}

double SqliteStatement::toDouble(int column) const {
    return m_statement ? sqlite3_column_double(m_statement, column) : 0.0;
}

bool SqliteStatement::isNull(int column) const {
    return !m_statement || sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}
