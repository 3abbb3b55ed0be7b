#include "CallCommand.h"

#include "CliFailure.h"

#include "LispText.h"
#include "StandaloneHost.h"
#include "ZelUtils.h"

#include <QTextStream>

namespace {

constexpr int kBadExpression = 2;

void PrintError(const QString& text) {
    ReportFailure(QStringLiteral("call"), text, 0);
    std::fflush(stderr);
}

// Calls one expression; the answer's text goes to answer, null for nothing.
bool CallOne(StandaloneHost& host, const QString& expression, QString& answer) {
    answer = QString();
    QString name;
    HostValue args;
    QString error;
    if (!LispText::ReadCall(expression, name, args, &error)) {
        PrintError(QStringLiteral("cannot read %1: %2").arg(TextExcerpt(expression), error));
        return false;
    }
    if (!host.isExternal(name)) {
        PrintError(QStringLiteral("%1 is not an external function; known are %2")
                       .arg(TextExcerpt(name), host.externalNames().join(QStringLiteral(", "))));
        return false;
    }
    const StandaloneHost::CallResult result = host.callExternal(name, args);
    switch (result.answer) {
        case StandaloneHost::Answer::List:
            answer = LispText::Print(result.value);
            break;
        case StandaloneHost::Answer::Nil:
            answer = QStringLiteral("nil");
            break;
        case StandaloneHost::Answer::None:
        case StandaloneHost::Answer::Void:
            break;
    }
    return true;
}

void PrintAnswer(const QString& answer, bool lineForNothing) {
    if (answer.isNull() && !lineForNothing) {
        return;
    }
    std::fprintf(stdout, "%s\n", answer.toUtf8().constData());
    std::fflush(stdout);
}

}  // namespace

int RunCallCommand(StandaloneHost& host, const QStringList& expressions, std::FILE* input) {
    int status = 0;
    QString answer;
    if (expressions == QStringList{QStringLiteral("-")}) {
        QTextStream in(input);
        QString line;
        while (in.readLineInto(&line)) {
            if (line.trimmed().isEmpty()) {
                continue;
            }
            if (!CallOne(host, line, answer)) {
                status = kBadExpression;
            }
            PrintAnswer(answer, true);
        }
        return status;
    }
    if (expressions.isEmpty()) {
        PrintError(
            QStringLiteral("give an expression such as '(zel_delay 1)', or - to read "
                           "standard input"));
        return kBadExpression;
    }
    for (const QString& expression : expressions) {
        if (!CallOne(host, expression, answer)) {
            status = kBadExpression;
        }
        PrintAnswer(answer, false);
    }
    return status;
}
