#include "MigrationQuestion.h"

#include "HostBridge.h"
#include "HostServices.h"
#include "MessageSink.h"
#include "ZelDbMigrate.h"

void ShowMigrationHelp() {
    HostHelp(QString(), QStringLiteral("plc_database_migration_utility_dialog"), 0);
}

bool AskToMigrate(const QString& path) {
    const int answer =
        HostTaskDialog(QStringLiteral("/ZelTaskDialogsRes;component/TaskDialogs.xaml"),
                       QStringLiteral("ZelPLCDatabase.AdditionalFieldRequired"));
    if (answer != kIdYes) {
        return false;
    }
    return Migrate(path, true, false, &ShowMigrationHelp, QString(), QString(), QString(),
                   QString());
}
