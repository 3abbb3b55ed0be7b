#include "EditCommand.h"

#include "CliFailure.h"
#include "CliOptions.h"
#include "HostSession.h"
#include "StoreLocation.h"

#include <QFileInfo>

#include <cstdio>

namespace {

constexpr int kStartFailed = 1;
constexpr int kUsage = 2;

int Fail(const QString& text, int status) {
    return ReportFailure(QStringLiteral("edit"), text, status);
}

}  // namespace

int RunEditCommand(const CliOptions& options, HostUi* screen) {
    if (!options.arguments.isEmpty()) {
        return Fail(QStringLiteral("unknown argument %1").arg(options.arguments.first()), kUsage);
    }
    if (!screen) {
        return Fail(QStringLiteral("there is no display for the database editor; without one, "
                                   "plcdb export and plcdb import change the database as text"),
                    kUsage);
    }
    if (!options.database.isEmpty() && !StoreLocation::IsServer(options.database) &&
        !QFileInfo(CliOptions::FullPath(options.database)).isFile()) {
        return Fail(QStringLiteral("the database %1 does not exist").arg(options.database),
                    kStartFailed);
    }
    HostSession session;
    QString error;
    if (!session.start(options, &error)) {
        return Fail(error, kStartFailed);
    }
    session.host().setUi(screen);
    session.host().callExternal(QStringLiteral("c:zel_plcedit"), HostValue());
    return 0;
}
