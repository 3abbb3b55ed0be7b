#include "SqliteDb.h"

#include "StoreFailure.h"

#include <QFile>
#include <QUrl>

#include <iterator>

#include <sqlite3.h>

namespace {

QString SavepointName(int depth) {
    return QStringLiteral("plcdb_sp%1").arg(depth);
}

QString ErrorText(sqlite3* handle) {
    if (!handle) {
        return QStringLiteral("out of memory");
    }
    return QString::fromUtf16(static_cast<const char16_t*>(sqlite3_errmsg16(handle)));
}

// A statement of the cache lent out as a statement of the store.
class SqliteQuery : public StoreQuery {
public:
    explicit SqliteQuery(SqliteStatement statement) : m_statement(std::move(statement)) {}

    void bindText(int position, const QString& value) override {
        m_statement.bind(position, value);
    }
    void bindInt64(int position, qint64 value) override { m_statement.bindInt64(position, value); }
    void bindNull(int position) override { m_statement.bindNull(position); }
    bool next() override { return m_statement.next(); }
    bool failed() const override { return m_statement.failed(); }
    QByteArrayView utf8(int column) const override { return m_statement.utf8(column); }
    qint64 toInt64(int column) const override { return m_statement.toInt64(column); }
    bool isNull(int column) const override { return m_statement.isNull(column); }

private:
    SqliteStatement m_statement;
};

}  // namespace

SqliteDb::SqliteDb() = default;

SqliteDb::~SqliteDb() {
    close();
}

bool SqliteDb::open(const QString& path, SqliteOpenMode mode) {
    int flags = SQLITE_OPEN_READWRITE;
    if (mode == SqliteOpenMode::ReadOnly) {
        flags = SQLITE_OPEN_READONLY;
    } else if (mode == SqliteOpenMode::Create) {
        flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    }
    return openWith(path, path.toUtf8(), flags);
}

bool SqliteDb::openImmutable(const QString& path) {
    const QByteArray uri = QUrl::fromLocalFile(path).toEncoded() + "?immutable=1";
    return openWith(path, uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

bool SqliteDb::openWith(const QString& path, const QByteArray& name, int flags) {
    close();
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(name.constData(), &handle, flags, nullptr);
    if (result != SQLITE_OK) {
        m_lastError = QStringLiteral("open %1: %2").arg(path, ErrorText(handle));
        m_lastCode = handle ? sqlite3_extended_errcode(handle) : result;
        sqlite3_close_v2(handle);
        return false;
    }
    sqlite3_extended_result_codes(handle, 1);
    m_handle = handle;
    m_path = path;
    m_lastError.clear();
    m_lastCode = SQLITE_OK;
    return true;
}

void SqliteDb::close() {
    for (sqlite3_stmt* statement : std::as_const(m_cache)) {
        sqlite3_finalize(statement);
    }
    m_cache.clear();
    if (m_handle) {
        // Closing rolls back a transaction left open.
        sqlite3_close_v2(m_handle);
        m_handle = nullptr;
    }
    m_depth = 0;
    m_busyTimeoutMs = 0;
    m_queryOnly = false;
}

bool SqliteDb::isReadOnly() const {
    return m_handle && (m_queryOnly || sqlite3_db_readonly(m_handle, "main") == 1);
}

bool SqliteDb::exec(const QString& sql) {
    if (!m_handle) {
        return fail(QStringLiteral("no database is open"));
    }
    m_waitedMs = 0;
    if (sqlite3_exec(m_handle, sql.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        return noteFailure(QStringLiteral("exec"));
    }
    return true;
}

SqliteStatement SqliteDb::prepare(const QString& sql) {
    if (!m_handle) {
        fail(QStringLiteral("no database is open"));
        return {};
    }
    // A cached statement is taken out while lent, so a nested use of the same text
    // gets a statement of its own.
    sqlite3_stmt* statement = m_cache.take(sql);
    if (!statement) {
        m_waitedMs = 0;
        const int bytes = static_cast<int>(sql.size() * sizeof(char16_t));
        if (sqlite3_prepare16_v3(m_handle, sql.utf16(), bytes, SQLITE_PREPARE_PERSISTENT,
                                 &statement, nullptr) != SQLITE_OK) {
            sqlite3_finalize(statement);
            noteFailure(QStringLiteral("prepare"));
            return {};
        }
    }
    return SqliteStatement(this, sql, statement);
}

StoreStatement SqliteDb::query(const QString& sql) {
    SqliteStatement statement = prepare(sql);
    if (!statement.isValid()) {
        return {};
    }
    return StoreStatement(std::make_unique<SqliteQuery>(std::move(statement)));
}

QString SqliteDb::failureText() const {
    return StoreFailure::Describe(*this);
}

bool SqliteDb::failedOnLock() const {
    return StoreFailure::IsLock(*this);
}

void SqliteDb::recycle(const QString& sql, sqlite3_stmt* statement) {
    const bool ours = m_handle && sqlite3_db_handle(statement) == m_handle;
    if (!ours || m_cache.contains(sql)) {
        sqlite3_finalize(statement);
        return;
    }
    // Reset ends the statement's read, so an idle cached statement holds no lock.
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    m_cache.insert(sql, statement);
}

int SqliteDb::changes() const {
    return m_handle ? sqlite3_changes(m_handle) : 0;
}

qint64 SqliteDb::lastInsertRowId() const {
    return m_handle ? sqlite3_last_insert_rowid(m_handle) : 0;
}

bool SqliteDb::userVersion(int& version) {
    SqliteStatement statement = prepare(QStringLiteral("PRAGMA user_version"));
    if (!statement.next()) {
        return false;
    }
    version = statement.toInt(0);
    return true;
}

bool SqliteDb::setUserVersion(int version) {
    return exec(QStringLiteral("PRAGMA user_version = %1").arg(version));
}

bool SqliteDb::setBusyTimeout(int milliseconds) {
    if (!m_handle) {
        return fail(QStringLiteral("no database is open"));
    }
    const int result = milliseconds > 0 ? sqlite3_busy_handler(m_handle, &waitForLock, this)
                                        : sqlite3_busy_handler(m_handle, nullptr, nullptr);
    if (result != SQLITE_OK) {
        return noteFailure(QStringLiteral("busy timeout"));
    }
    m_busyTimeoutMs = qMax(milliseconds, 0);
    return true;
}

// Sleeps a little longer at each attempt, as SQLite's own timeout does, and keeps count of
// the time, so that a failure can tell how long it waited. The sleep goes through
// SQLite, whose system layer does the waiting.
int SqliteDb::waitForLock(void* self, int attempt) {
    static const int kDelays[] = {1, 2, 5, 10, 15, 20, 25, 25, 25, 50, 50, 100};
    constexpr int kLast = int(std::size(kDelays)) - 1;
    auto* db = static_cast<SqliteDb*>(self);
    const int left = db->m_busyTimeoutMs - db->m_waitedMs;
    if (left <= 0) {
        return 0;
    }
    const int delay = qMin(kDelays[qMin(attempt, kLast)], left);
    sqlite3_sleep(delay);
    db->m_waitedMs += delay;
    return 1;
}

bool SqliteDb::setQueryOnly() {
    m_queryOnly = exec(QStringLiteral("PRAGMA query_only = ON"));
    return m_queryOnly;
}

bool SqliteDb::setExclusiveLocking() {
    return exec(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
}

QString SqliteDb::journalMode() {
    SqliteStatement statement = prepare(QStringLiteral("PRAGMA journal_mode"));
    return statement.next() ? statement.text(0).toLower() : QString();
}

bool SqliteDb::enableWal() {
    SqliteStatement statement = prepare(QStringLiteral("PRAGMA journal_mode = WAL"));
    if (!statement.next()) {
        return false;
    }
    if (statement.text(0).compare(QLatin1String("wal"), Qt::CaseInsensitive) != 0) {
        return fail(QStringLiteral("the file can't use a write-ahead log"));
    }
    // With the log, NORMAL keeps every commit through a crash of the program and the
    // file consistent through a power loss, without a disk flush per commit.
    return exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
}

bool SqliteDb::backupTo(const QString& path) {
    if (!m_handle) {
        return fail(QStringLiteral("no database is open"));
    }
    SqliteDb target;
    if (!target.open(path, SqliteOpenMode::Create)) {
        fail(target.lastError());
        m_lastCode = target.lastCode();
        return false;
    }
    sqlite3_backup* backup = sqlite3_backup_init(target.m_handle, "main", m_handle, "main");
    if (!backup) {
        fail(QStringLiteral("backup to %1: %2").arg(path, ErrorText(target.m_handle)));
        m_lastCode = sqlite3_extended_errcode(target.m_handle);
        return false;
    }
    const int stepped = sqlite3_backup_step(backup, -1);
    const int finished = sqlite3_backup_finish(backup);
    if (stepped != SQLITE_DONE || finished != SQLITE_OK) {
        // The source's lock or the target's full disk: the first failure tells why.
        const int code = stepped != SQLITE_DONE ? stepped : finished;
        const QString reason = QString::fromUtf8(sqlite3_errstr(code));
        target.close();
        QFile::remove(path);
        fail(QStringLiteral("backup to %1: %2").arg(path, reason));
        m_lastCode = code;
        return false;
    }
    return true;
}

bool SqliteDb::beginTransaction() {
    QString sql = SavepointName(m_depth + 1).prepend(QStringLiteral("SAVEPOINT "));
    if (m_depth == 0) {
        // A writer takes its lock at once, so the busy timeout covers the whole wait
        // instead of failing halfway when a reader turns into a writer.
        sql = isReadOnly() ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE");
    }
    if (!exec(sql)) {
        return false;
    }
    ++m_depth;
    return true;
}

bool SqliteDb::commitTransaction() {
    if (m_depth == 0) {
        return fail(QStringLiteral("no transaction to commit"));
    }
    if (m_depth > 1) {
        const bool released = exec(QStringLiteral("RELEASE ") + SavepointName(m_depth));
        --m_depth;
        return released;
    }
    const bool committed = exec(QStringLiteral("COMMIT"));
    if (!committed && m_handle && !sqlite3_get_autocommit(m_handle)) {
        const QString reason = m_lastError;
        const int code = m_lastCode;
        exec(QStringLiteral("ROLLBACK"));
        m_lastError = reason;
        m_lastCode = code;
    }
    m_depth = 0;
    return committed;
}

void SqliteDb::rollbackTransaction() {
    if (m_depth == 0) {
        return;
    }
    const QString reason = m_lastError;
    const int code = m_lastCode;
    if (m_depth > 1) {
        const QString name = SavepointName(m_depth);
        exec(QStringLiteral("ROLLBACK TO %1; RELEASE %1").arg(name));
    } else if (m_handle && !sqlite3_get_autocommit(m_handle)) {
        exec(QStringLiteral("ROLLBACK"));
    }
    // The failure that led here is the one worth reporting.
    m_lastError = reason;
    m_lastCode = code;
    --m_depth;
}

bool SqliteDb::noteFailure(const QString& what) {
    m_lastError = QStringLiteral("%1: %2").arg(what, ErrorText(m_handle));
    m_lastCode = m_handle ? sqlite3_extended_errcode(m_handle) : SQLITE_NOMEM;
    return false;
}

bool SqliteDb::fail(const QString& message) {
    m_lastError = message;
    m_lastCode = SQLITE_ERROR;
    return false;
}
