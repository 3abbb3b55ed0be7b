#include "MigrationCommand.h"

#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "MigrationQuestion.h"
#include "ResourceLibrary.h"
#include "StoreLocation.h"
#include "ZelDbMigrate.h"

namespace {
constexpr int kFileQuestionFlags = 128;
}

bool RunMigrationCommand() {
    QString path;
    FindDatabaseFile(path);
    const QString title = LoadResString(10124);
    const QString extension = LoadResString(10125);
    HostValue answer;
    if (HostGetFileD(title, path, extension, kFileQuestionFlags, answer) != kHostOk) {
        return true;
    }
    const HostCell* chosen = answer.at(0);
    if (chosen && chosen->type == kHostString) {
        path = chosen->text;
    }
    if (StoreLocation::IsServer(path)) {
        Messages::ShowText(QStringLiteral("The catalog on the server %1 is of the current "
                                          "version; it needs no upgrade.")
                               .arg(StoreLocation::Shown(path)));
        return true;
    }
    Migrate(path, true, false, &ShowMigrationHelp, QString(), QString(), QString(), QString());
    return true;
}
