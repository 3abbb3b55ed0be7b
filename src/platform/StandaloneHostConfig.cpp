#include "StandaloneHostConfig.h"

#include "StoreLocation.h"
#include "ZelUtils.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

// "group/key" -> value of a plain INI text: "[group]" lines, "key=value" lines, and
// comment lines that begin with ";" or "#". Values are taken as written (commas and
// semicolons included); surrounding double quotes are dropped.
QMap<QString, QString> ReadIni(QFile& file) {
    QMap<QString, QString> values;
    QString group;
    QTextStream in(&file);
    QString line;
    while (in.readLineInto(&line)) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#')) {
            continue;
        }
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            group = line.mid(1, line.size() - 2).trimmed().toLower();
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0) {
            continue;
        }
        QString value = line.mid(equals + 1).trimmed();
        if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"')) {
            value = value.mid(1, value.size() - 2);
        }
        values.insert(group + u'/' + line.left(equals).trimmed(), value);
    }
    return values;
}

// A database as written in the settings: a server's connection text is taken as it
// stands, a file path gets the system's separators.
QString DatabaseLocation(const QString& text) {
    return StoreLocation::IsServer(text) ? text : NativePath(text);
}

}  // namespace

bool StandaloneHostConfig::load(const QString& file, QString* error) {
    if (!QFileInfo::exists(file)) {
        return true;
    }
    QFile ini(file);
    if (!QFileInfo(file).isFile() || !ini.open(QIODevice::ReadOnly | QIODevice::Text)) {
        if (error) {
            *error = QStringLiteral("cannot read the host settings file %1").arg(file);
        }
        return false;
    }
    const QMap<QString, QString> values = ReadIni(ini);
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) {
        const QString group = it.key().section(u'/', 0, 0);
        const QString key = it.key().section(u'/', 1);
        if (group == QStringLiteral("variables")) {
            variables.insert(key.toUpper(), it.value());
        } else if (group == QStringLiteral("messages")) {
            messages.insert(key, it.value());
        }
    }
    if (values.contains(QStringLiteral("host/support_path"))) {
        supportPath = SplitPathList(values.value(QStringLiteral("host/support_path")));
    }
    kvLib = values.value(QStringLiteral("host/kv_lib"), kvLib);
    docSetBase = values.value(QStringLiteral("host/doc_set_base"), docSetBase);
    if (values.contains(QStringLiteral("host/program_dir"))) {
        programDir = NativePath(values.value(QStringLiteral("host/program_dir")));
    }
    if (values.contains(QStringLiteral("host/database"))) {
        databaseFile = DatabaseLocation(values.value(QStringLiteral("host/database")));
    }
    bool ok = false;
    const int precision = values.value(QStringLiteral("host/linear_precision")).toInt(&ok);
    if (ok && precision >= 0 && precision <= 8) {
        linearPrecision = precision;
    }
    return true;
}

void StandaloneHostConfig::applyEnvironment() {
    if (qEnvironmentVariableIsSet("PLCDB_SUPPORT_PATH")) {
        supportPath = SplitPathList(qEnvironmentVariable("PLCDB_SUPPORT_PATH"));
    }
    if (qEnvironmentVariableIsSet("PLCDB_KV_LIB")) {
        kvLib = qEnvironmentVariable("PLCDB_KV_LIB");
    }
    if (qEnvironmentVariableIsSet("PLCDB_DOC_SET_BASE")) {
        docSetBase = qEnvironmentVariable("PLCDB_DOC_SET_BASE");
    }
    if (qEnvironmentVariableIsSet("PLCDB_PROGRAM_DIR")) {
        programDir = NativePath(qEnvironmentVariable("PLCDB_PROGRAM_DIR"));
    }
    if (qEnvironmentVariableIsSet("PLCDB_DB")) {
        databaseFile = DatabaseLocation(qEnvironmentVariable("PLCDB_DB"));
    }
    bool ok = false;
    const int precision = qEnvironmentVariableIntValue("PLCDB_PRECISION", &ok);
    if (ok && precision >= 0 && precision <= 8) {
        linearPrecision = precision;
    }
}

QString StandaloneHostConfig::variable(const QString& name) const {
    const QString key = name.toUpper();
    if (key == QStringLiteral("GBL_KV_LIB")) {
        return kvLib;
    }
    if (key == QStringLiteral("GBL_KV_DOCSETBASE")) {
        return docSetBase;
    }
    return variables.value(key);
}

QStringList StandaloneHostConfig::SplitPathList(const QString& text) {
    QStringList folders;
    for (const QString& part : text.split(u';')) {
        const QString folder = part.trimmed();
        if (!folder.isEmpty()) {
            folders.append(NativePath(folder));
        }
    }
    return folders;
}
