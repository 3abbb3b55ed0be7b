// Settings, path-list and block settings files on any bytes: reading, writing what was
// read and reading again changes nothing, and writing the same lines twice gives the same
// bytes.

#include "CPathListFile.h"
#include "CStringSettingsFile.h"
#include "CTermBlockSettings.h"
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

// The fields of the blocks as a writer keeps them: trimmed, and only blocks whose first
// three fields are filled.
QStringList WrittenFields(const TermBlockList& blocks) {
    QStringList fields;
    for (const _termblock& block : blocks) {
        const QStringList four = {block.strBlockFile.trimmed(), block.strCategory.trimmed(),
                                  block.strDescription.trimmed(), block.strSampleFile.trimmed()};
        if (!four[0].isEmpty() && !four[1].isEmpty() && !four[2].isEmpty()) {
            fields << four;
        }
    }
    return fields;
}

// No host answers the drawing lookup here: the drawings' reader has a target of its own.
void CheckBlockSettings(const QByteArray& bytes) {
    CTermBlockSettings settings;
    settings.SetDirectory(FuzzFolder());
    FuzzWriteFile(settings.GetFilePath(), bytes);
    TermBlockList blocks;
    FuzzCheck(settings.Read(blocks), "a block settings file reads");
    for (const _termblock& block : blocks) {
        FuzzCheck(!block.strBlockFile.isEmpty() && !block.strCategory.isEmpty() &&
                      !block.strDescription.isEmpty(),
                  "a block read has its file, category and description");
    }
    FuzzCheck(settings.Write(blocks), "a block settings file is written");
    const QByteArray written = ReadBytes(settings.GetFilePath());
    TermBlockList again;
    FuzzCheck(settings.Read(again), "a written block settings file reads");
    FuzzCheck(WrittenFields(again) == WrittenFields(blocks),
              "a block settings file reads back as it was written",
              WrittenFields(blocks).join(u'|') + u'\n' + WrittenFields(again).join(u'|'));
    FuzzCheck(settings.Write(again), "a block settings file is written again");
    FuzzCheck(ReadBytes(settings.GetFilePath()) == written,
              "the same blocks are written as the same bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = FuzzBytes(data, size);
    CheckSettings(bytes);
    CheckPathList(bytes);
    CheckBlockSettings(bytes);
    return 0;
}
