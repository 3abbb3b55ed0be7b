#include "CliFailure.h"

#include <cstdio>

int ReportFailure(const QString& command, const QString& text, int status) {
    const QString prefix =
        command.isEmpty() ? QStringLiteral("plcdb") : QStringLiteral("plcdb ") + command;
    std::fprintf(stderr, "%s: %s\n", qPrintable(prefix), qPrintable(text));
    return status;
}
