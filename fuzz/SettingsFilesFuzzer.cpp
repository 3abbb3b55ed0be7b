// Settings and path-list files on any bytes: reading, writing what was read and reading
// again changes nothing, and writing the same lines twice gives the same bytes.

#include "CPathListFile.h"
#include "CStringSettingsFile.h"
#include "FuzzSupport.h"

#include <QFile>

namespace {

QByteArray ReadBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void CheckSettings(const QByteArray& bytes) {
    const QString path = FuzzPath(QStringLiteral("KVDEFPMT.DAT"));
    FuzzWriteFile(path, bytes);
    const CStringSettingsFile settings(path);
    QStringList lines;
    FuzzCheck(settings.ReadArray(lines), "a settings file reads");
    FuzzCheck(settings.WriteArray(lines), "a settings file is written");
    const QByteArray written = ReadBytes(path);
    QStringList again;
    FuzzCheck(settings.ReadArray(again), "a written settings file reads");
    FuzzCheck(again == lines, "a settings file reads back as it was read",
              lines.join(u'|') + u'\n' + again.join(u'|'));
    FuzzCheck(settings.WriteArray(again), "a settings file is written again");
    FuzzCheck(ReadBytes(path) == written, "the same lines are written as the same bytes");
}

void CheckPathList(const QByteArray& bytes) {
    CPathListFile list;
    list.SetFolder(FuzzFolder());
    FuzzWriteFile(list.GetFilePath(), bytes);
    QStringList paths;
    FuzzCheck(list.Read(paths), "a path list reads");
    FuzzCheck(list.Write(paths), "a path list is written");
    QStringList again;
    FuzzCheck(list.Read(again), "a written path list reads");
    FuzzCheck(again == paths, "a path list reads back as it was read",
              paths.join(u'|') + u'\n' + again.join(u'|'));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = FuzzBytes(data, size);
    CheckSettings(bytes);
    CheckPathList(bytes);
    return 0;
}
