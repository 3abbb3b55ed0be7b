#include "BenchServer.h"

#include "BenchStore.h"
#include "PgDb.h"

#include <QFile>
#include <QProcess>

#include <cstdio>

namespace {

const QString kScript = QStringLiteral(PLCDB_SOURCE_DIR "/scripts/pg-test-server.sh");

// The throwaway server of the run, stopped when the bench ends.
class ThrowawayServer {
public:
    ThrowawayServer() : m_uriFile(Folder().filePath(QStringLiteral("server.uri"))) {
        QProcess::execute(kScript, {QStringLiteral("start"), m_uriFile});
    }
    ~ThrowawayServer() { QProcess::execute(kScript, {QStringLiteral("stop"), m_uriFile}); }

    QString uri() const {
        QFile file(m_uriFile);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed()
                                              : QString();
    }

private:
    QString m_uriFile;
};

QString ServerUri() {
    const QString given = qEnvironmentVariable("PLCDB_BENCH_SERVER");
    if (!given.isEmpty()) {
        return given;
    }
    static ThrowawayServer server;
    return server.uri();
}

}  // namespace

QString ServerDatabase(const QString& base) {
    // A name of its own at each call: the store may still hold the last one open.
    static int made = 0;
    const QString name = QStringLiteral("%1_%2").arg(base).arg(++made);
    const QString server = ServerUri();
    PgDb db;
    if (server.isEmpty() || !db.open(server) ||
        !db.exec(QStringLiteral("DROP DATABASE IF EXISTS %1").arg(name)) ||
        !db.exec(QStringLiteral("CREATE DATABASE %1").arg(name))) {
        static bool told = false;
        if (!told) {
            std::fprintf(
                stderr, "no PostgreSQL server for the bench: %s\n",
                qPrintable(server.isEmpty() ? QStringLiteral("none started") : db.failureText()));
            told = true;
        }
        return {};
    }
    // The database's name is the path of the server's URI.
    const qsizetype slash =
        server.indexOf(QLatin1Char('/'), server.indexOf(QLatin1String("://")) + 3);
    const qsizetype end = server.indexOf(QLatin1Char('?'), slash);
    QString uri = server;
    uri.replace(slash + 1, (end < 0 ? server.size() : end) - slash - 1, name);
    return ZelPlcDbIO::CreateDatabase(uri) ? uri : QString();
}
