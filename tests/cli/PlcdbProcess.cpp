#include "PlcdbProcess.h"

#include "TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

namespace {

PlcdbRun Run(const QString& program, const QString& folder, const QStringList& args,
             const QByteArray& input) {
    QTemporaryDir home;
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    env.insert(QStringLiteral("PLCDB_SUPPORT_PATH"), home.path());
    // Headless, as on a server: no dialog may open and wait for a user.
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        env.remove(QString::fromLatin1(name));
    }
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(folder);
    process.start(program, args);
    process.write(input);
    process.closeWriteChannel();
    PlcdbRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

}  // namespace

PlcdbRun RunPlcdb(const QString& program, const QStringList& args, const QByteArray& input) {
    return Run(program, QString(), args, input);
}

PlcdbRun RunPlcdb(const QStringList& args, const QByteArray& input) {
    return RunPlcdb(BuildPath(QStringLiteral("plcdb")), args, input);
}

PlcdbRun RunPlcdbIn(const QString& folder, const QStringList& args, const QByteArray& input) {
    return Run(BuildPath(QStringLiteral("plcdb")), folder, args, input);
}

QJsonObject ExportedModule(const QString& database, const QString& catalog) {
    const PlcdbRun run = RunPlcdb({QStringLiteral("--db"), database, QStringLiteral("export")});
    const QJsonArray modules = QJsonDocument::fromJson(run.out.toUtf8())
                                   .object()
                                   .value(QStringLiteral("modules"))
                                   .toArray();
    for (const QJsonValue& module : modules) {
        const QJsonObject spec = module.toObject().value(QStringLiteral("spec")).toObject();
        if (spec.value(QStringLiteral("Code")).toString() == catalog) {
            return module.toObject();
        }
    }
    return {};
}
