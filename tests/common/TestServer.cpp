#include "TestServer.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>
#include <libpq-fe.h>

namespace TestServer {
namespace {

// The URI of the server's own database, as the start script wrote it; empty without one.
QString ServerUri() {
    QFile file(BuildPath(QStringLiteral("pg-test-server.uri")));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll()).trimmed();
}

}  // namespace

bool Available(QString* why) {
    if (!ServerUri().isEmpty()) {
        return true;
    }
    if (why) {
        *why = QStringLiteral(
            "no PostgreSQL test server: install Debian's postgresql package, or start one with "
            "scripts/pg-test-server.sh start build/pg-test-server.uri");
    }
    return false;
}

QString NewDatabase() {
    static int made = 0;
    const QString server = ServerUri();
    const QString name =
        QStringLiteral("t%1_%2").arg(QCoreApplication::applicationPid()).arg(++made);
    PGconn* conn = PQconnectdb(server.toUtf8().constData());
    QString error;
    if (PQstatus(conn) != CONNECTION_OK) {
        error = QString::fromUtf8(PQerrorMessage(conn));
    } else {
        PGresult* result = PQexec(conn, ("CREATE DATABASE " + name).toUtf8().constData());
        if (PQresultStatus(result) != PGRES_COMMAND_OK) {
            error = QString::fromUtf8(PQresultErrorMessage(result));
        }
        PQclear(result);
    }
    PQfinish(conn);
    if (!error.isEmpty()) {
        ADD_FAILURE() << "can't make a test database: " << error.toStdString();
        return {};
    }
    QString uri = server;
    return uri.replace(QStringLiteral(":///postgres?"), QStringLiteral(":///%1?").arg(name));
}

}  // namespace TestServer
