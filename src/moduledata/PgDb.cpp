#include "PgDb.h"

#include "StoreFailure.h"
#include "StoreLocation.h"
#include "StoreSchema.h"

#include <libpq-fe.h>

#include <vector>

namespace {

QString SavepointName(int depth) {
    return QStringLiteral("plcdb_sp%1").arg(depth);
}

// The store's ?1, ?2 as the server's $1, $2; a "?" in a quoted text or name stays.
// used[n - 1] tells whether ?n is in the text.
QString ServerPlaceholders(const QString& sql, std::vector<bool>& used) {
    QString result;
    result.reserve(sql.size());
    QChar quote;
    for (qsizetype at = 0; at < sql.size(); ++at) {
        const QChar c = sql.at(at);
        if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (c == u'\'' || c == u'"') {
            quote = c;
        } else if (c == u'?') {
            qsizetype end = at + 1;
            while (end < sql.size() && sql.at(end).isDigit()) {
                ++end;
            }
            const size_t number = sql.mid(at + 1, end - at - 1).toUInt();
            if (number > used.size()) {
                used.resize(number, false);
            }
            if (number > 0) {
                used[number - 1] = true;
            }
            result += u'$';
            continue;
        }
        result += c;
    }
    return result;
}

// The types of the parameters as the statement is prepared: left to the server, but a
// parameter that the text does not use is a text, since the server can't tell its type
// and would refuse the statement where a file binds it and lets it be.
std::vector<Oid> ParameterTypes(const std::vector<bool>& used) {
    constexpr Oid kText = 25;
    std::vector<Oid> types(used.size(), 0);
    for (size_t place = 0; place < used.size(); ++place) {
        types[place] = used[place] ? 0 : kText;
    }
    return types;
}

// Notices ("relation exists, skipping", ...) are no failures and are not printed.
void IgnoreNotice(void*, const char*) {}

// The server's reason in one line: its primary message, or libpq's own text.
QString ResultMessage(const PGresult* result, pg_conn* conn) {
    const char* primary = result ? PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) : nullptr;
    const QString text = QString::fromUtf8(primary ? primary : PQerrorMessage(conn));
    return text.trimmed();
}

QString ResultState(const PGresult* result) {
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    return state ? QString::fromLatin1(state) : QString();
}

}  // namespace

// A prepared statement of the server with its parameter values. It runs at the first
// step and keeps the whole result; the rows are stepped through on the client.
class PgQuery : public StoreQuery {
public:
    PgQuery(PgDb* db, QByteArray name) : m_db(db), m_name(std::move(name)) {}
    ~PgQuery() override { PQclear(m_result); }
    PgQuery(const PgQuery&) = delete;
    PgQuery& operator=(const PgQuery&) = delete;

    void bindText(int position, const QString& value) override {
        // Values go as C strings, which would end at a NUL; the server can't store one.
        if (value.contains(QChar(0))) {
            m_bindError =
                QStringLiteral("a text holds a NUL character, which a server can't store");
        }
        slot(position) = value.toUtf8();
        m_null[position - 1] = false;
    }
    void bindInt64(int position, qint64 value) override {
        slot(position) = QByteArray::number(value);
        m_null[position - 1] = false;
    }
    void bindNull(int position) override {
        slot(position).clear();
        m_null[position - 1] = true;
    }

    bool next() override {
        if (m_failed) {
            return false;
        }
        if (!m_bindError.isEmpty()) {
            m_failed = true;
            return m_db->fail(m_bindError);
        }
        if (!m_result && !execute()) {
            m_failed = true;
            return false;
        }
        ++m_row;
        return m_row < PQntuples(m_result);
    }
    bool failed() const override { return m_failed; }

    QByteArrayView utf8(int column) const override {
        if (!hasRow(column) || PQgetisnull(m_result, m_row, column)) {
            return {};
        }
        return {PQgetvalue(m_result, m_row, column), PQgetlength(m_result, m_row, column)};
    }
    qint64 toInt64(int column) const override {
        const QByteArrayView value = utf8(column);
        // A boolean, as EXISTS gives it, reads as 1 or 0.
        if (value == "t") {
            return 1;
        }
        return value == "f" ? 0 : value.toLongLong();
    }
    bool isNull(int column) const override {
        return !hasRow(column) || PQgetisnull(m_result, m_row, column);
    }

private:
    QByteArray& slot(int position) {
        if (position > int(m_values.size())) {
            m_values.resize(position);
            m_null.resize(position, true);
        }
        return m_values[position - 1];
    }
    bool hasRow(int column) const {
        return m_result && m_row >= 0 && m_row < PQntuples(m_result) && column >= 0 &&
               column < PQnfields(m_result);
    }
    bool execute() {
        std::vector<const char*> values(m_values.size());
        for (size_t place = 0; place < m_values.size(); ++place) {
            values[place] = m_null[place] ? nullptr : m_values[place].constData();
        }
        m_result = PQexecPrepared(m_db->m_conn, m_name.constData(), int(values.size()),
                                  values.data(), nullptr, nullptr, 0);
        return m_db->takeResult(m_result);
    }

    PgDb* m_db;
    QByteArray m_name;
    std::vector<QByteArray> m_values;
    std::vector<bool> m_null;
    QString m_bindError;
    PGresult* m_result = nullptr;
    int m_row = -1;
    bool m_failed = false;
};

PgDb::PgDb() = default;

PgDb::~PgDb() {
    close();
}

bool PgDb::open(const QString& connection) {
    close();
    m_location = StoreLocation::Shown(connection);
    m_conn = PQconnectdb(connection.toUtf8().constData());
    if (!m_conn || PQstatus(m_conn) != CONNECTION_OK) {
        fail(QStringLiteral("can't connect to %1: %2")
                 .arg(m_location, ResultMessage(nullptr, m_conn)),
             QStringLiteral("08001"));
        PQfinish(m_conn);
        m_conn = nullptr;
        return false;
    }
    PQsetNoticeProcessor(m_conn, IgnoreNotice, nullptr);
    // A writer that meets another's row lock waits as long as on a file, then fails.
    return PQsetClientEncoding(m_conn, "UTF8") == 0 &&
           exec(QStringLiteral("SET lock_timeout = %1").arg(StoreSchema::kBusyTimeoutMs));
}

void PgDb::close() {
    if (m_conn) {
        // Ending the connection ends an open transaction and frees its locks.
        PQfinish(m_conn);
        m_conn = nullptr;
    }
    m_prepared.clear();
    m_abortCause.clear();
    m_depth = 0;
    m_readOnly = false;
}

bool PgDb::setReadOnly() {
    m_readOnly = exec(QStringLiteral("SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY"));
    return m_readOnly;
}

StoreStatement PgDb::query(const QString& sql) {
    if (!m_conn) {
        fail(QStringLiteral("no database is open"));
        return {};
    }
    QByteArray name = m_prepared.value(sql);
    if (name.isEmpty()) {
        name = "plcdb_" + QByteArray::number(m_prepared.size() + 1);
        std::vector<bool> used;
        const QByteArray text = ServerPlaceholders(sql, used).toUtf8();
        const std::vector<Oid> types = ParameterTypes(used);
        PGresult* result =
            PQprepare(m_conn, name.constData(), text.constData(), int(types.size()), types.data());
        const bool prepared = takeResult(result);
        PQclear(result);
        if (!prepared) {
            return {};
        }
        m_prepared.insert(sql, name);
    }
    return StoreStatement(std::make_unique<PgQuery>(this, name));
}

bool PgDb::exec(const QString& sql) {
    if (!m_conn) {
        return fail(QStringLiteral("no database is open"));
    }
    PGresult* result = PQexec(m_conn, sql.toUtf8().constData());
    const bool done = takeResult(result);
    PQclear(result);
    return done;
}

bool PgDb::takeResult(PGresult* result) {
    const ExecStatusType status = result ? PQresultStatus(result) : PGRES_FATAL_ERROR;
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
        const QString state = ResultState(result);
        // After a failure the server refuses the rest of the transaction until it is
        // rolled back; the failure that caused that is the one to report.
        if (state == QLatin1String("25P02") && !m_abortCause.isEmpty()) {
            return fail(m_abortCause, m_abortState);
        }
        fail(ResultMessage(result, m_conn), state);
        if (PQtransactionStatus(m_conn) == PQTRANS_INERROR) {
            m_abortCause = m_lastError;
            m_abortState = m_lastState;
        }
        return false;
    }
    m_changes = QByteArrayView(PQcmdTuples(result)).toInt();
    return true;
}

bool PgDb::beginTransaction() {
    const QString sql = m_depth == 0
                            ? QStringLiteral("BEGIN")
                            : SavepointName(m_depth + 1).prepend(QStringLiteral("SAVEPOINT "));
    if (!exec(sql)) {
        return false;
    }
    ++m_depth;
    return true;
}

bool PgDb::commitTransaction() {
    if (m_depth == 0) {
        return fail(QStringLiteral("no transaction to commit"));
    }
    if (m_depth > 1) {
        const bool released = exec(QStringLiteral("RELEASE SAVEPOINT ") + SavepointName(m_depth));
        --m_depth;
        return released;
    }
    m_depth = 0;
    if (!m_conn) {
        return fail(QStringLiteral("no database is open"));
    }
    // The server answers a commit of a failed transaction with a rollback, not an error.
    PGresult* result = PQexec(m_conn, "COMMIT");
    bool committed = takeResult(result);
    if (committed && QByteArrayView(PQcmdStatus(result)) != "COMMIT") {
        committed = m_abortCause.isEmpty()
                        ? fail(QStringLiteral("the transaction failed and was rolled back"))
                        : fail(m_abortCause, m_abortState);
    }
    PQclear(result);
    m_abortCause.clear();
    return committed;
}

void PgDb::rollbackTransaction() {
    if (m_depth == 0) {
        return;
    }
    const QString reason = m_lastError;
    const QString state = m_lastState;
    if (m_depth > 1) {
        const QString name = SavepointName(m_depth);
        exec(QStringLiteral("ROLLBACK TO SAVEPOINT %1; RELEASE SAVEPOINT %1").arg(name));
    } else {
        exec(QStringLiteral("ROLLBACK"));
    }
    // The failure that led here is the one worth reporting.
    m_lastError = reason;
    m_lastState = state;
    m_abortCause.clear();
    --m_depth;
}

bool PgDb::isLost() const {
    return m_conn && PQstatus(m_conn) == CONNECTION_BAD;
}

QString PgDb::failureText() const {
    if (isLost()) {
        return QStringLiteral("the connection to the server was lost: %1").arg(m_lastError);
    }
    if (failedOnLock()) {
        return QStringLiteral("locked by another program");
    }
    if (m_lastState == QLatin1String("53100")) {
        return QStringLiteral("the server's disk is full");
    }
    if (m_lastState == QLatin1String("25006")) {
        return StoreFailure::ReadingOnly();
    }
    if (m_lastState == QLatin1String("42501")) {
        return QStringLiteral("the server refuses it: %1").arg(m_lastError);
    }
    return m_lastError;
}

bool PgDb::failedOnLock() const {
    // Lock timeout, deadlock, and a write that another transaction's write outran.
    return m_lastState == QLatin1String("55P03") || m_lastState == QLatin1String("40P01") ||
           m_lastState == QLatin1String("40001");
}

bool PgDb::fail(const QString& message, const QString& state) {
    m_lastError = message;
    m_lastState = state;
    return false;
}
