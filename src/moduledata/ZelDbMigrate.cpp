#include "ZelDbMigrate.h"

// Until the store keeps a schema version there is nothing to upgrade: no file needs
// migration and none is changed.
void CheckForMigration(const QString& path, bool& bRequired, bool bFirstCheck, QString table) {
    Q_UNUSED(path);
    Q_UNUSED(bFirstCheck);
    Q_UNUSED(table);
    bRequired = false;
}

bool Migrate(QString path, bool bShowUi, bool bSilent, MigrationHelpCallback help, QString s1,
             QString s2, QString s3, QString s4) {
    Q_UNUSED(path);
    Q_UNUSED(bShowUi);
    Q_UNUSED(bSilent);
    Q_UNUSED(help);
    Q_UNUSED(s1);
    Q_UNUSED(s2);
    Q_UNUSED(s3);
    Q_UNUSED(s4);
    return false;
}
