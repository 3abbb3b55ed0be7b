#include "CheckCommand.h"

#include "CBlockDescEx.h"
#include "CatalogCheck.h"
#include "CliBlockList.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "DatabaseSession.h"
#include "HostSession.h"
#include "StoreLocation.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

constexpr int kErrors = 1;
constexpr int kCannotCheck = 2;

struct CheckOptions {
    QString blocksFolder;
    bool json = false;
};

int Fail(const QString& text) {
    return ReportFailure(QStringLiteral("check"), text, kCannotCheck);
}

bool ParseCheckOptions(const QStringList& args, CheckOptions& out, QString& error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == QStringLiteral("--json")) {
            out.json = true;
        } else if (args[i] == QStringLiteral("--blocks") && i + 1 < args.size()) {
            out.blocksFolder = args[++i];
        } else {
            error = args[i] == QStringLiteral("--blocks")
                        ? QStringLiteral("--blocks needs a value")
                        : QStringLiteral("unknown argument %1").arg(args[i]);
            return false;
        }
    }
    return true;
}

// The block list where one is found; without a folder there is none to read, and the
// path of its settings file stays null.
bool ReadBlockList(const CheckOptions& check, CBlockDescEx& blocks, QString& file, QString& error) {
    const CliBlockList list(check.blocksFolder);
    if (!list.HasFolder()) {
        return true;
    }
    if (!list.Read(blocks, error)) {
        return false;
    }
    file = list.FilePath();
    return true;
}

const char* SeverityName(CheckFinding::Severity severity) {
    return severity == CheckFinding::Severity::Error ? "error" : "warning";
}

QJsonValue TextOrNull(const QString& text) {
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QByteArray JsonReport(const QString& database, const QString& blockList,
                      const CatalogCheck& check) {
    QJsonArray findings;
    for (const CheckFinding& finding : check.Findings()) {
        findings.append(QJsonObject{
            {QStringLiteral("severity"), QLatin1String(SeverityName(finding.severity))},
            {QStringLiteral("code"), finding.code},
            {QStringLiteral("manufacturer"), TextOrNull(finding.manufacturer)},
            {QStringLiteral("series"), TextOrNull(finding.series)},
            {QStringLiteral("type"), TextOrNull(finding.type)},
            {QStringLiteral("catalog"), TextOrNull(finding.catalog)},
            {QStringLiteral("row"),
             finding.row > 0 ? QJsonValue(finding.row) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("message"), finding.message},
        });
    }
    const QJsonObject report{
        {QStringLiteral("database"), database},
        {QStringLiteral("blockList"), TextOrNull(blockList)},
        {QStringLiteral("errors"), check.Count(CheckFinding::Severity::Error)},
        {QStringLiteral("warnings"), check.Count(CheckFinding::Severity::Warning)},
        {QStringLiteral("findings"), findings},
    };
    return QJsonDocument(report).toJson(QJsonDocument::Indented);
}

// "Manufacturer / Series / Type / Catalog / row N", the parts that apply; "database" for
// a finding of the whole file.
QString Where(const CheckFinding& finding) {
    QStringList parts;
    for (const QString* part :
         {&finding.manufacturer, &finding.series, &finding.type, &finding.catalog}) {
        if (!part->isNull()) {
            parts.append(*part);
        }
    }
    if (finding.row > 0) {
        parts.append(QStringLiteral("row %1").arg(finding.row));
    }
    return parts.isEmpty() ? QStringLiteral("database") : parts.join(QStringLiteral(" / "));
}

QString Counted(int count, const char* noun) {
    const QString name = QLatin1String(noun);
    return QStringLiteral("%1 %2").arg(count).arg(count == 1 ? name : name + u's');
}

QByteArray TextReport(const QString& database, const QString& blockList,
                      const CatalogCheck& check) {
    QString text;
    for (const CheckFinding& finding : check.Findings()) {
        text += QStringLiteral("%1 %2 %3: %4\n")
                    .arg(QLatin1String(SeverityName(finding.severity)), finding.code,
                         Where(finding), finding.message);
    }
    text += QStringLiteral("%1: %2, %3; %4\n")
                .arg(database, Counted(check.Count(CheckFinding::Severity::Error), "error"),
                     Counted(check.Count(CheckFinding::Severity::Warning), "warning"),
                     blockList.isNull()
                         ? QStringLiteral("no terminal block list found, block names unchecked")
                         : QStringLiteral("block names checked against %1").arg(blockList));
    return text.toUtf8();
}

}  // namespace

int RunCheckCommand(const CliOptions& options) {
    CheckOptions check;
    QString error;
    if (!ParseCheckOptions(options.arguments, check, error)) {
        return Fail(error);
    }
    // The host finds the database and the block list as it does for the editor.
    HostSession host;
    QString location;
    if (!host.startHost(options, &error) || !DatabaseSession::FindFile(options, location, &error)) {
        return Fail(error);
    }
    // Reports name a server without its password.
    const QString database = StoreLocation::Shown(location);
    CBlockDescEx blocks;
    QString blockList;
    if (!ReadBlockList(check, blocks, blockList, error)) {
        return Fail(error);
    }
    CatalogCheck catalog;
    if (!catalog.Run(CliOptions::FullPath(location), blockList.isNull() ? nullptr : &blocks)) {
        return Fail(
            QStringLiteral("cannot read the database %1: %2").arg(database, catalog.Failure()));
    }
    const QByteArray report = check.json ? JsonReport(database, blockList, catalog)
                                         : TextReport(database, blockList, catalog);
    std::fwrite(report.constData(), 1, size_t(report.size()), stdout);
    return catalog.Count(CheckFinding::Severity::Error) > 0 ? kErrors : 0;
}
