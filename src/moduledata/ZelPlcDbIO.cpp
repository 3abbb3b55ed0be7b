#include "ZelPlcDbIO.h"

#include "PgDb.h"
#include "PgSchema.h"
#include "SqliteDb.h"
#include "StoreFailure.h"
#include "StoreLocation.h"
#include "StoreSchema.h"
#include "ZelUtils.h"

#include <QFile>
#include <QFileInfo>

namespace {

ZelPlcDbIO* g_store = nullptr;

static_assert(ZelPlcDbIO::kSchemaVersion == StoreSchema::kCurrentVersion);

// What a connection text asks for.
struct ConnectionTarget {
    QString path;
    bool writable = true;
    bool exclusive = false;
};

// The value that starts at from, up to the next ";" or in double quotes, which may
// hold a ";". end becomes the place of the ";" behind it, or -1.
QString CutValue(const QString& text, qsizetype from, qsizetype& end) {
    while (from < text.size() && text.at(from).isSpace()) {
        ++from;
    }
    if (from < text.size() && text.at(from) == QLatin1Char('"')) {
        const qsizetype close = text.indexOf(QLatin1Char('"'), from + 1);
        const qsizetype stop = close < 0 ? text.size() : close;
        end = text.indexOf(QLatin1Char(';'), stop);
        return text.mid(from + 1, stop - from - 1);
    }
    end = text.indexOf(QLatin1Char(';'), from);
    return text.mid(from, (end < 0 ? text.size() : end) - from).trimmed();
}

// The "key=value" pairs of a connection text, keys in lower case.
QHash<QString, QString> ConnectionPairs(const QString& text) {
    QHash<QString, QString> pairs;
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype equals = text.indexOf(QLatin1Char('='), at);
        if (equals < 0) {
            break;
        }
        // A word without "=" before it is skipped.
        const qsizetype keyStart = qMax(at, text.lastIndexOf(QLatin1Char(';'), equals) + 1);
        const QString key = text.mid(keyStart, equals - keyStart).simplified().toLower();
        qsizetype end = -1;
        pairs.insert(key, CutValue(text, equals + 1, end));
        at = end < 0 ? text.size() : end + 1;
    }
    return pairs;
}

// Words of use "Read", "Write", "ReadWrite" and of sharing "Share Deny None",
// "Share Deny Read", "Share Deny Write", "Share Exclusive", joined by "|". Without a
// word of use the file is opened for reading and writing.
void ApplyMode(const QString& mode, ConnectionTarget& target) {
    bool read = false;
    bool write = false;
    for (const QString& word : mode.split(QLatin1Char('|'))) {
        const QString token = word.simplified().toLower();
        read = read || token == QLatin1String("read") || token == QLatin1String("readwrite");
        write = write || token == QLatin1String("write") || token == QLatin1String("readwrite");
        target.exclusive = target.exclusive || token == QLatin1String("share deny write") ||
                           token == QLatin1String("share exclusive");
    }
    target.writable = write || !read;
}

bool ParseConnection(const QString& text, ConnectionTarget& target) {
    const QHash<QString, QString> pairs = ConnectionPairs(text);
    const QString source = pairs.value(QStringLiteral("data source"));
    target.path = StoreLocation::IsServer(source) ? source : NativePath(source);
    ApplyMode(pairs.value(QStringLiteral("mode")), target);
    return !target.path.isEmpty();
}

bool SameFile(const QString& a, const QString& b) {
    if (StoreLocation::IsServer(a) || StoreLocation::IsServer(b)) {
        return a == b;
    }
    const QString canonical = QFileInfo(a).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(b).canonicalFilePath();
}

StoreSchema::Access AccessOf(const ConnectionTarget& target) {
    if (target.writable) {
        return StoreSchema::Access::Write;
    }
    return target.exclusive ? StoreSchema::Access::ReadExclusive : StoreSchema::Access::Read;
}

}  // namespace

ZelPlcDbIO::ZelPlcDbIO() = default;

ZelPlcDbIO::~ZelPlcDbIO() {
    ReleaseLocks();
}

ZelPlcDbIO* ZelPlcDbIO::Instance() {
    return g_store;
}

void ZelPlcDbIO::SetInstance(ZelPlcDbIO* store) {
    g_store = store;
}

bool ZelPlcDbIO::CreateDatabase(const QString& path, QString* error) {
    if (StoreLocation::IsServer(path)) {
        return PgSchema::CreateIn(path, error);
    }
    return StoreSchema::CreateFile(path, kSchemaVersion, error);
}

bool ZelPlcDbIO::RemoveNewDatabase(const QString& path, QString* error) {
    if (StoreLocation::IsServer(path)) {
        return PgSchema::RemoveEmpty(path, error);
    }
    for (const char* side : {"-wal", "-shm", "-journal"}) {
        QFile::remove(path + QLatin1String(side));
    }
    if (QFile::exists(path) && !QFile::remove(path)) {
        if (error) {
            *error = QStringLiteral("cannot remove %1").arg(path);
        }
        return false;
    }
    return true;
}

bool ZelPlcDbIO::PutConnectionString(const QString& connection) {
    // A connection that the server broke is made anew, so that opening the store again
    // recovers from a restart of the server.
    if (m_db && connection == m_connection && !m_db->isLost()) {
        return true;
    }
    ConnectionTarget target;
    if (!ParseConnection(connection, target)) {
        return Fail(QStringLiteral("the connection names no data source"));
    }
    // The old connection stays unless it is to the same store, whose locks it might hold.
    if (m_db && SameFile(m_location, target.path)) {
        CloseConnection();
    }
    std::unique_ptr<StoreDb> db;
    SqliteDb* file = nullptr;
    int version = 0;
    QString error;
    if (StoreLocation::IsServer(target.path)) {
        auto server = std::make_unique<PgDb>();
        if (!PgSchema::Open(*server, target.path, AccessOf(target), version, error)) {
            return Fail(error, server->failedOnLock());
        }
        db = std::move(server);
    } else {
        auto opened = std::make_unique<SqliteDb>();
        if (!StoreSchema::Open(*opened, target.path, AccessOf(target), version, error)) {
            return Fail(error, StoreFailure::IsLock(*opened));
        }
        file = opened.get();
        db = std::move(opened);
    }
    CloseConnection();
    m_db = std::move(db);
    m_file = file;
    m_location = target.path;
    m_connection = connection;
    m_schemaVersion = version;
    return true;
}

bool ZelPlcDbIO::LastFailureWasLock() const {
    return m_lockFailure;
}

void ZelPlcDbIO::ReleaseFile(const QString& path) {
    if (m_db && SameFile(m_location, path)) {
        const QString connection = m_connection;
        CloseConnection();
        m_connection = connection;
        m_released = true;
    }
}

void ZelPlcDbIO::CloseConnection() {
    ReleaseLocks();
    m_db.reset();
    m_file = nullptr;
    m_location.clear();
    m_connection.clear();
    m_schemaVersion = 0;
    m_released = false;
    m_logChosen = false;
    m_prompts.clear();
    m_promptsLoaded = false;
}

StoreDb* ZelPlcDbIO::Connection() {
    if (!m_db && m_released) {
        const QString connection = m_connection;
        m_connection.clear();
        m_released = false;
        // A failure to open again keeps its own reason.
        if (!PutConnectionString(connection)) {
            return nullptr;
        }
    }
    if (!m_db) {
        Fail(QStringLiteral("no database is open"));
    }
    return m_db.get();
}

StoreDb* ZelPlcDbIO::WritableConnection() {
    StoreDb* db = Connection();
    if (!db) {
        return nullptr;
    }
    if (db->isReadOnly()) {
        Fail(m_schemaVersion > kSchemaVersion ? StoreFailure::Newer()
                                              : StoreFailure::ReadingOnly());
        return nullptr;
    }
    if (m_file && !m_logChosen && db->transactionDepth() == 0) {
        ChooseLog(*m_file);
    }
    return db;
}

// Only the first write moves a file to the write-ahead log, so that a read leaves the
// file as it was. The switch needs the file to itself: while another program has it open,
// the writes of this connection go ahead with the rollback journal instead of waiting, and
// the next connection tries again. A file system without shared memory keeps the journal.
void ZelPlcDbIO::ChooseLog(SqliteDb& db) {
    const int timeout = db.busyTimeout();
    db.setBusyTimeout(0);
    db.enableWal();
    db.setBusyTimeout(timeout);
    m_logChosen = true;
}

bool ZelPlcDbIO::Fail(const QString& message, bool lock) {
    m_strLastError = message;
    m_lockFailure = lock;
    return false;
}

bool ZelPlcDbIO::FailDb() {
    return m_db ? Fail(m_db->failureText(), m_db->failedOnLock())
                : Fail(QStringLiteral("no database is open"));
}

bool ZelPlcDbIO::BeginTransaction() {
    StoreDb* db = WritableConnection();
    return db && (db->beginTransaction() || FailDb());
}

bool ZelPlcDbIO::CommitTransaction() {
    return m_db ? (m_db->commitTransaction() || FailDb())
                : Fail(QStringLiteral("no database is open"));
}

void ZelPlcDbIO::RollbackTransaction() {
    if (m_db) {
        m_db->rollbackTransaction();
    }
}
