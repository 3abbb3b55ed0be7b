#include "BlockSettingsFolder.h"

#include "CTermBlockSettings.h"
#include "HostBridge.h"
#include "ZelUtils.h"

#include <QDir>
#include <QFileInfo>

QString BlockSettingsFolder::Find(bool bReportError) {
    const QString fileName = QLatin1String(CTermBlockSettings::kFileName);
    QString base;
    if (GetLispVar(QStringLiteral("GBL_kv_DocSetBase"), base) && !base.isEmpty()) {
        const QString folder = NativePath(base);
        if (QFileInfo(QDir(folder), fileName).isFile()) {
            return folder;
        }
    }
    QString found;
    if (!FindSupportFile(fileName, found, bReportError)) {
        return QString();
    }
    return NativePath(QFileInfo(NativePath(found)).path());
}
