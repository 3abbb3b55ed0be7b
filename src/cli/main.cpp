#include "CallCommand.h"
#include "CliOptions.h"
#include "HostSession.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr int kStartFailed = 1;
constexpr int kUsageError = 2;

int Fail(const QString& text, int status) {
    std::fprintf(stderr, "plcdb: %s\n", qPrintable(text));
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("plcdb"));

    CliOptions options;
    QString error;
    if (!options.parse(app.arguments().mid(1), &error)) {
        return Fail(error, kUsageError);
    }
    if (options.command.isEmpty()) {
        std::fputs(qPrintable(CliOptions::MainHelp()), options.help ? stdout : stderr);
        return options.help ? 0 : kUsageError;
    }
    const QString commandHelp = CliOptions::CommandHelp(options.command);
    if (commandHelp.isNull()) {
        return Fail(QStringLiteral("unknown command %1; see plcdb --help").arg(options.command),
                    kUsageError);
    }
    if (options.help) {
        std::fputs(qPrintable(commandHelp), stdout);
        return 0;
    }

    HostSession session;
    if (!session.start(options, &error)) {
        return Fail(error, kStartFailed);
    }
    return RunCallCommand(session.host(), options.arguments, stdin);
}
