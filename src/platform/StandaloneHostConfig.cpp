#include "StandaloneHostConfig.h"

#include "ZelUtils.h"

#include <QFileInfo>
#include <QSettings>

bool StandaloneHostConfig::load(const QString& file, QString* error)
{
    const QFileInfo info(file);
    if (!info.exists()) {
        return true;
    }
    if (!info.isFile() || !info.isReadable()) {
        if (error) {
            *error = QStringLiteral("cannot read the host settings file %1").arg(file);
        }
        return false;
    }
    QSettings settings(file, QSettings::IniFormat);
    if (settings.status() != QSettings::NoError) {
        if (error) {
            *error = QStringLiteral("the host settings file %1 is not a valid settings file")
                         .arg(file);
        }
        return false;
    }
    settings.beginGroup(QStringLiteral("host"));
    // A value with commas comes back as a list; the path list uses ";" anyway.
    const auto text = [&settings](const QString& key, const QString& fallback) {
        const QVariant value = settings.value(key);
        if (!value.isValid()) {
            return fallback;
        }
        return value.typeId() == QMetaType::QStringList ? value.toStringList().join(u',')
                                                        : value.toString();
    };
    if (settings.contains(QStringLiteral("support_path"))) {
        supportPath = SplitPathList(text(QStringLiteral("support_path"), QString()));
    }
    kvLib = text(QStringLiteral("kv_lib"), kvLib);
    docSetBase = text(QStringLiteral("doc_set_base"), docSetBase);
    bool ok = false;
    const int precision = text(QStringLiteral("linear_precision"), QString()).toInt(&ok);
    if (ok && precision >= 0 && precision <= 8) {
        linearPrecision = precision;
    }
    settings.endGroup();
    for (const QString& group : {QStringLiteral("variables"), QStringLiteral("messages")}) {
        settings.beginGroup(group);
        for (const QString& key : settings.childKeys()) {
            const QString value = text(key, QString());
            if (group == QStringLiteral("variables")) {
                variables.insert(key.toUpper(), value);
            } else {
                messages.insert(key, value);
            }
        }
        settings.endGroup();
    }
    return true;
}

void StandaloneHostConfig::applyEnvironment()
{
    if (qEnvironmentVariableIsSet("PLCDB_SUPPORT_PATH")) {
        supportPath = SplitPathList(qEnvironmentVariable("PLCDB_SUPPORT_PATH"));
    }
    if (qEnvironmentVariableIsSet("PLCDB_KV_LIB")) {
        kvLib = qEnvironmentVariable("PLCDB_KV_LIB");
    }
    if (qEnvironmentVariableIsSet("PLCDB_DOC_SET_BASE")) {
        docSetBase = qEnvironmentVariable("PLCDB_DOC_SET_BASE");
    }
    bool ok = false;
    const int precision = qEnvironmentVariableIntValue("PLCDB_PRECISION", &ok);
    if (ok && precision >= 0 && precision <= 8) {
        linearPrecision = precision;
    }
}

QString StandaloneHostConfig::variable(const QString& name) const
{
    const QString key = name.toUpper();
    if (key == QStringLiteral("GBL_KV_LIB")) {
        return kvLib;
    }
    if (key == QStringLiteral("GBL_KV_DOCSETBASE")) {
        return docSetBase;
    }
    return variables.value(key);
}

QStringList StandaloneHostConfig::SplitPathList(const QString& text)
{
    QStringList folders;
    for (const QString& part : text.split(u';')) {
        const QString folder = part.trimmed();
        if (!folder.isEmpty()) {
            folders.append(NativePath(folder));
        }
    }
    return folders;
}
