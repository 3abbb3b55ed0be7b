#include "MigrationCommand.h"

#include "HostBridge.h"
#include "HostServices.h"
#include "MigrationQuestion.h"
#include "ResourceLibrary.h"
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
    Migrate(path, true, false, &ShowMigrationHelp, QString(), QString(), QString(), QString());
    return true;
}
