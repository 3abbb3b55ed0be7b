#include "BlocksCommand.h"
#include "CallCommand.h"
#include "CheckCommand.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "CopyCommand.h"
#include "DataCommands.h"
#include "EditCommand.h"
#include "GuiHostUi.h"
#include "HostSession.h"
#include "Messages.h"
#include "NewCommand.h"
#include "QtMessageSink.h"
#include "SearchCommand.h"
#include "SelectCommand.h"
#include "TerminalsCommand.h"

#include <QApplication>
#include <QCoreApplication>

#include <cstdio>
#include <memory>

namespace {

constexpr int kStartFailed = 1;
constexpr int kUsageError = 2;

int Fail(const QString& text, int status) {
    return ReportFailure(QString(), text, status);
}

bool MayShowDialogs(const QString& command) {
    return command == QStringLiteral("call") || command == QStringLiteral("select") ||
           command == QStringLiteral("edit");
}

// A QApplication for the commands that may show dialogs. Where no display can be
// reached Qt falls back on the offscreen platform, which counts as no display unless
// the user asked for it.
std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv, bool wantGui,
                                                  bool& hasDisplay) {
    hasDisplay = false;
    if (!wantGui) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    const bool platformGiven = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    const bool wayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!platformGiven && !wayland && !qEnvironmentVariableIsSet("DISPLAY")) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    if (!platformGiven) {
        qputenv("QT_QPA_PLATFORM", wayland ? "wayland;xcb;offscreen" : "xcb;offscreen");
    }
    auto app = std::make_unique<QApplication>(argc, argv);
    hasDisplay = platformGiven || QGuiApplication::platformName() != QStringLiteral("offscreen");
    if (!hasDisplay) {
        // Nothing may open a window that no one can see.
        app.reset();
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    return app;
}

}  // namespace

int main(int argc, char** argv) {
    QStringList args;
    for (int i = 1; i < argc; ++i) {
        args << QString::fromLocal8Bit(argv[i]);
    }
    CliOptions options;
    QString error;
    if (!options.parse(args, &error)) {
        return Fail(error, kUsageError);
    }
    bool hasDisplay = false;
    const std::unique_ptr<QCoreApplication> app =
        MakeApplication(argc, argv, MayShowDialogs(options.command) && !options.help, hasDisplay);
    QCoreApplication::setApplicationName(QStringLiteral("plcdb"));

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
    if (options.command == QStringLiteral("init")) {
        return RunInitCommand(options);
    }
    if (options.command == QStringLiteral("list")) {
        return RunListCommand(options);
    }
    if (options.command == QStringLiteral("export")) {
        return RunExportCommand(options);
    }
    if (options.command == QStringLiteral("import")) {
        return RunImportCommand(options);
    }
    if (options.command == QStringLiteral("copy")) {
        return RunCopyCommand(options);
    }
    if (options.command == QStringLiteral("search")) {
        return RunSearchCommand(options);
    }
    if (options.command == QStringLiteral("new")) {
        return RunNewCommand(options);
    }
    if (options.command == QStringLiteral("blocks")) {
        return RunBlocksCommand(options);
    }
    if (options.command == QStringLiteral("check")) {
        return RunCheckCommand(options);
    }
    if (options.command == QStringLiteral("terminals")) {
        return RunTerminalsCommand(options);
    }

    QtMessageSink messageBoxes;
    GuiHostUi screen;
    if (hasDisplay) {
        Messages::SetSink(&messageBoxes);
    }
    int status = 0;
    if (options.command == QStringLiteral("select")) {
        status = RunSelectCommand(options, hasDisplay ? &screen : nullptr);
    } else if (options.command == QStringLiteral("edit")) {
        status = RunEditCommand(options, hasDisplay ? &screen : nullptr);
    } else {
        HostSession session;
        if (!session.start(options, &error)) {
            return Fail(error, kStartFailed);
        }
        if (hasDisplay) {
            session.host().setUi(&screen);
        }
        status = RunCallCommand(session.host(), options.arguments, stdin);
    }
    Messages::SetSink(nullptr);
    return status;
}
