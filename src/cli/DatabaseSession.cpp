#include "DatabaseSession.h"

#include "StoreLocation.h"

#include "CliOptions.h"
#include "HostBridge.h"

#include <QFile>

DatabaseSession::DatabaseSession() {
    ZelPlcDbIO::SetInstance(&m_store);
}

DatabaseSession::~DatabaseSession() {
    m_db.Close();
    ZelPlcDbIO::SetInstance(nullptr);
}

bool DatabaseSession::open(const CliOptions& options, QString* error, bool bWithHost) {
    QString path;
    if ((options.database.isEmpty() || bWithHost) && !m_host.startHost(options, error)) {
        return false;
    }
    if (!FindFile(options, path, error)) {
        return false;
    }
    m_name = StoreLocation::Shown(path);
    if (!m_db.Open(CliOptions::FullPath(path))) {
        const QString reason = m_db.GetLastFailure();
        *error = QStringLiteral("cannot open the database %1%2 (code %3)")
                     .arg(m_name, reason.isEmpty() ? QString() : QStringLiteral(": ") + reason)
                     .arg(m_db.GetLastError());
        return false;
    }
    return true;
}

bool DatabaseSession::FindFile(const CliOptions& options, QString& path, QString* error) {
    path = options.database;
    if (path.isEmpty()) {
        DeclareLispFunction(QStringLiteral("kv_fio_does_file_exist"));
        DeclareLispFunction(QStringLiteral("kv_fio_does_file_exist_error"));
        if (!FindDatabaseFile(path)) {
            *error = QStringLiteral("no database: give one with --db FILE");
            return false;
        }
    }
    if (!StoreLocation::IsServer(path) && !QFile::exists(path)) {
        *error = QStringLiteral("the database %1 does not exist").arg(path);
        return false;
    }
    return true;
}

QString DatabaseSession::readFailure() const {
    return QStringLiteral("cannot read the database %1: %2").arg(m_name, m_db.GetLastFailure());
}

QString DatabaseSession::writeFailure() const {
    return QStringLiteral("cannot write to the database %1: %2").arg(m_name, m_db.GetLastFailure());
}

DatabaseSession::Found DatabaseSession::findCatalog(const QString& manufacturer,
                                                    const QString& series, const QString& type,
                                                    const QString& catalog, CatalogPath& path,
                                                    QString& error) {
    if (FindCatalog(m_db, manufacturer, series, type, catalog, path)) {
        return Found::Yes;
    }
    // A store that failed while looking is not an absent catalog.
    if (!m_db.GetLastFailure().isEmpty()) {
        error = readFailure();
        return Found::StoreFailed;
    }
    error =
        QStringLiteral("no catalog %1 under %2 / %3 / %4").arg(catalog, manufacturer, series, type);
    return Found::Missing;
}
