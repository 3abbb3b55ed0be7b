#include "ZelDbMigrate.h"

#include "SqliteDb.h"
#include "StoreLocation.h"
#include "StoreSchema.h"
#include "StoreTransaction.h"
#include "ZelPlcDbIO.h"
#include "ZelUtils.h"

#include <QFile>
#include <QFileInfo>

namespace {

// The schema version of the store file at path; false when it is none or can't be read.
// A catalog on a server is made at the current version and never needs an upgrade.
bool ReadVersion(const QString& path, int& version) {
    if (StoreLocation::IsServer(path)) {
        version = StoreSchema::kCurrentVersion;
        return true;
    }
    SqliteDb db;
    QString error;
    return StoreSchema::Open(db, path, StoreSchema::Access::Read, version, error);
}

QString BackupPath(const QString& path, int version) {
    const QString base = QStringLiteral("%1.v%2").arg(path).arg(version);
    QString candidate = base + QStringLiteral(".bak");
    for (int copy = 2; QFileInfo::exists(candidate); ++copy) {
        candidate = QStringLiteral("%1.%2.bak").arg(base).arg(copy);
    }
    return candidate;
}

// Changes of other connections since this one last looked.
bool DataVersion(SqliteDb& db, int& version) {
    SqliteStatement statement = db.prepare(QStringLiteral("PRAGMA data_version"));
    if (!statement.next()) {
        return false;
    }
    version = statement.toInt(0);
    return true;
}

// The copy can't be taken inside the write transaction, so the upgrade goes ahead only
// when nobody wrote between the copy and the lock: the backup is what was upgraded.
bool Upgrade(SqliteDb& db, const QString& path, int version) {
    const QString backup = BackupPath(path, version);
    int before = 0;
    if (!DataVersion(db, before) || !db.backupTo(backup)) {
        return false;
    }
    StoreTransaction transaction(db);
    int after = 0;
    int current = 0;
    if (!transaction.isActive() || !DataVersion(db, after) || after != before ||
        !db.userVersion(current) || current != version) {
        QFile::remove(backup);
        return false;
    }
    return StoreSchema::Upgrade(db, version) && transaction.commit();
}

}  // namespace

namespace {
// Shared by every caller of the check in this process; nothing sets it.
bool g_firstMigrationCheck = false;
}  // namespace

bool TableNeedsMigration(const QString& path, const QString& table) {
    bool bRequired = true;
    CheckForMigration(path, bRequired, g_firstMigrationCheck, table);
    g_firstMigrationCheck = false;
    return bRequired;
}

void CheckForMigration(const QString& path, bool& bRequired, bool bFirstCheck, QString table) {
    Q_UNUSED(bFirstCheck);
    Q_UNUSED(table);
    int version = 0;
    if (ReadVersion(NativePath(path), version)) {
        bRequired = version < StoreSchema::kCurrentVersion;
    }
}

bool Migrate(QString path, bool bShowUi, bool bSilent, MigrationHelpCallback help, QString s1,
             QString s2, QString s3, QString s4) {
    Q_UNUSED(bShowUi);
    Q_UNUSED(bSilent);
    Q_UNUSED(help);
    Q_UNUSED(s1);
    Q_UNUSED(s2);
    Q_UNUSED(s3);
    Q_UNUSED(s4);
    path = NativePath(path);
    int version = 0;
    if (!ReadVersion(path, version) || version >= StoreSchema::kCurrentVersion) {
        return false;
    }
    if (ZelPlcDbIO* store = ZelPlcDbIO::Instance()) {
        store->ReleaseFile(path);
    }
    SqliteDb db;
    QString error;
    return StoreSchema::Open(db, path, StoreSchema::Access::Write, version, error) &&
           Upgrade(db, path, version);
}

bool CreateVersion1Database(const QString& path, QString* error) {
    return StoreSchema::CreateFile(path, StoreSchema::kFirstVersion, error);
}
