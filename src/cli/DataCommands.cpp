#include "DataCommands.h"

#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "DatabaseSession.h"
#include "ZelPlcDbIO.h"

#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <cstdio>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

int Fail(const QString& command, const QString& text, int status = kFailed) {
    return ReportFailure(command, text, status);
}

void Print(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
}

QString Indented(int depth, const QString& text) {
    return QString(qsizetype(depth) * 2, u' ') + text + u'\n';
}

}  // namespace

bool ReadInput(const QString& name, QByteArray& data, QString* error) {
    QFile file;
    const bool opened = name == QStringLiteral("-")
                            ? file.open(stdin, QIODevice::ReadOnly)
                            : (file.setFileName(name), file.open(QIODevice::ReadOnly));
    if (!opened) {
        *error = QStringLiteral("cannot read %1").arg(name);
        return false;
    }
    data = file.readAll();
    return true;
}

bool WriteOutput(const QString& name, const QByteArray& data, QString* error) {
    if (name.isEmpty() || name == QStringLiteral("-")) {
        std::fwrite(data.constData(), 1, size_t(data.size()), stdout);
        return true;
    }
    // The old file stays whole until the new one is complete.
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        *error = QStringLiteral("cannot write %1: %2").arg(name, file.errorString());
        return false;
    }
    return true;
}

int RunInitCommand(const CliOptions& options) {
    if (options.arguments.size() != 1) {
        return Fail(QStringLiteral("init"), QStringLiteral("give the file to create"), kUsage);
    }
    QString error;
    if (!ZelPlcDbIO::CreateDatabase(options.arguments[0], &error)) {
        return Fail(QStringLiteral("init"), error);
    }
    return 0;
}

int RunListCommand(const CliOptions& options) {
    DatabaseSession session;
    QString error;
    if (!session.open(options, &error)) {
        return Fail(QStringLiteral("list"), error);
    }
    QList<_manfams> hierarchy;
    if (!session.db().GetHierarchy(hierarchy)) {
        return Fail(QStringLiteral("list"), session.readFailure());
    }
    QString text;
    for (const _manfams& manufacturer : hierarchy) {
        text += Indented(0, manufacturer.strManufacturer);
        for (const _familytypes& series : manufacturer.families) {
            text += Indented(1, series.strSeries);
            for (const _typetname& type : series.types) {
                text += Indented(2, type.strType);
                QList<_idandcatalognum> catalogs;
                // A failing store reads as a type without modules, but leaves its reason.
                session.db().GetCatalogs(type.strTableName, catalogs);
                if (!session.db().GetLastFailure().isEmpty()) {
                    return Fail(QStringLiteral("list"), session.readFailure());
                }
                for (const _idandcatalognum& catalog : catalogs) {
                    text += Indented(3, catalog.strCatalog);
                }
            }
        }
    }
    Print(text);
    return 0;
}

int RunExportCommand(const CliOptions& options) {
    if (options.arguments.size() > 1) {
        return Fail(QStringLiteral("export"), QStringLiteral("give at most one output file"),
                    kUsage);
    }
    DatabaseSession session;
    QString error;
    QJsonObject document;
    if (!session.open(options, &error) ||
        !CatalogDocument::Export(session.db(), document, &error)) {
        return Fail(QStringLiteral("export"), error);
    }
    const QByteArray data = QJsonDocument(document).toJson(QJsonDocument::Indented);
    if (!WriteOutput(options.arguments.value(0), data, &error)) {
        return Fail(QStringLiteral("export"), error);
    }
    return 0;
}

int RunImportCommand(const CliOptions& options) {
    if (options.arguments.size() != 1) {
        return Fail(QStringLiteral("import"), QStringLiteral("give the document to import"),
                    kUsage);
    }
    QByteArray data;
    QString error;
    if (!ReadInput(options.arguments[0], data, &error)) {
        return Fail(QStringLiteral("import"), error);
    }
    const QString name = options.arguments[0] == QStringLiteral("-")
                             ? QStringLiteral("standard input")
                             : options.arguments[0];
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(data, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return Fail(QStringLiteral("import"),
                    QStringLiteral("%1 is no JSON document: %2 at offset %3")
                        .arg(name, parseError.errorString(), QString::number(parseError.offset)));
    }
    if (!json.isObject()) {
        return Fail(QStringLiteral("import"),
                    QStringLiteral("%1: the document is a JSON list, not the object of a catalog")
                        .arg(name));
    }
    DatabaseSession session;
    if (!session.open(options, &error)) {
        return Fail(QStringLiteral("import"), error);
    }
    if (session.readOnly()) {
        return Fail(QStringLiteral("import"), session.writeFailure());
    }
    if (!CatalogDocument::Import(session.db(), json.object(), &error)) {
        return Fail(QStringLiteral("import"),
                    QStringLiteral("%1: %2; nothing was imported").arg(name, error));
    }
    return 0;
}
