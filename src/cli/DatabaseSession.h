#pragma once

#include "CKVModuleDB.h"
#include "CatalogLookup.h"
#include "HostSession.h"
#include "ZelPlcDbIO.h"

struct CliOptions;

// The store of this process and a database opened on it: the file of --db, else
// "ZEL_PLC.MDB" as the host finds it on its search path.
class DatabaseSession {
public:
    DatabaseSession();
    ~DatabaseSession();
    DatabaseSession(const DatabaseSession&) = delete;
    DatabaseSession& operator=(const DatabaseSession&) = delete;

    // False and a reason when there is no database or it cannot be opened. With bWithHost
    // the host runs also for a given file, for callers whose numbers it formats.
    bool open(const CliOptions& options, QString* error, bool bWithHost = false);
    CKVModuleDB& db() { return m_db; }
    // The database of --db, else "ZEL_PLC.MDB" as the running host finds it (its
    // configured database or its search path), named as the user gave it or as the host
    // found it. False and a reason when there is none or it is a file that does not exist.
    static bool FindFile(const CliOptions& options, QString& path, QString* error);
    bool readOnly() const { return m_db.GetLastError() == CKVModuleDB::kErrReadOnly; }
    // The store's reason for the last failure, naming the file as the user gave it.
    QString readFailure() const;
    QString writeFailure() const;

    // The catalog as the module tree finds it. Otherwise error tells why: the store's
    // failure while looking (StoreFailed), or that there is no such catalog (Missing).
    enum class Found { Yes, Missing, StoreFailed };
    Found findCatalog(const QString& manufacturer, const QString& series, const QString& type,
                      const QString& catalog, CatalogPath& path, QString& error);

private:
    ZelPlcDbIO m_store;
    HostSession m_host;
    CKVModuleDB m_db;
    QString m_name;  // the file as given or as the host found it; a server without password
};
