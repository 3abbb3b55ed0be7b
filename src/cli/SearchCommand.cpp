#include "SearchCommand.h"

#include "CliFailure.h"
#include "CliOptions.h"
#include "DatabaseSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

constexpr int kNoMatch = 1;
constexpr int kUsage = 2;
constexpr int kDefaultLimit = 50;

struct SearchArguments {
    QString text;
    int limit = kDefaultLimit;
    bool json = false;
};

int Fail(const QString& text) {
    return ReportFailure(QStringLiteral("search"), text, kUsage);
}

bool ParseSearchArguments(const QStringList& args, SearchArguments& out, QString& error) {
    bool textGiven = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (arg == QStringLiteral("--json")) {
            out.json = true;
        } else if (arg == QStringLiteral("--limit")) {
            bool number = false;
            out.limit = i + 1 < args.size() ? args[++i].toInt(&number) : 0;
            if (!number || out.limit < 1) {
                error = QStringLiteral("--limit needs a whole number from 1 up");
                return false;
            }
        } else if (arg.startsWith(QStringLiteral("--"))) {
            error = QStringLiteral("unknown option %1").arg(arg);
            return false;
        } else if (textGiven) {
            error = QStringLiteral("give one text to search for; quote one with blanks");
            return false;
        } else {
            out.text = arg;
            textGiven = true;
        }
    }
    if (out.text.isEmpty()) {
        error = QStringLiteral("give the text to search for");
        return false;
    }
    return true;
}

// A text on one line of the tab-separated form.
QString Field(QString text) {
    for (QChar& c : text) {
        if (c == u'\t' || c == u'\n' || c == u'\r') {
            c = u' ';
        }
    }
    return text;
}

QByteArray Lines(const QList<ModDB::ModuleMatch>& matches) {
    QString text;
    for (const ModDB::ModuleMatch& match : matches) {
        text += QStringList{Field(match.Manufacturer), Field(match.Series), Field(match.Type),
                            Field(match.Catalog), Field(match.Description)}
                    .join(u'\t') +
                u'\n';
    }
    return text.toUtf8();
}

QByteArray Json(const QList<ModDB::ModuleMatch>& matches) {
    QJsonArray array;
    for (const ModDB::ModuleMatch& match : matches) {
        array.append(QJsonObject{{QStringLiteral("manufacturer"), match.Manufacturer},
                                 {QStringLiteral("series"), match.Series},
                                 {QStringLiteral("type"), match.Type},
                                 {QStringLiteral("catalog"), match.Catalog},
                                 {QStringLiteral("description"), match.Description}});
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace

int RunSearchCommand(const CliOptions& options) {
    SearchArguments args;
    QString error;
    if (!ParseSearchArguments(options.arguments, args, error)) {
        return Fail(error);
    }
    DatabaseSession session;
    if (!session.open(options, &error)) {
        return Fail(error);
    }
    QList<ModDB::ModuleMatch> matches;
    if (!session.db().FindModules(args.text, args.limit, matches)) {
        return Fail(session.readFailure());
    }
    const QByteArray output = args.json ? Json(matches) : Lines(matches);
    std::fwrite(output.constData(), 1, size_t(output.size()), stdout);
    return matches.isEmpty() ? kNoMatch : 0;
}
