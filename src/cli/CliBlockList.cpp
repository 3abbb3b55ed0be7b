#include "CliBlockList.h"

#include "BlockSettingsFolder.h"
#include "CBlockDescEx.h"
#include "CTermBlockSettings.h"
#include "CliOptions.h"
#include "HostBridge.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString FileName() {
    return QLatin1String(CTermBlockSettings::kFileName);
}

}  // namespace

CliBlockList::CliBlockList(const QString& givenFolder) : m_given(givenFolder) {
    // The editor's folder is asked of the host's Lisp functions.
    for (const char* name : {"kv_fio_does_file_exist", "kv_fio_does_file_exist_error",
                             "kv_fio_does_block_exist_disk", "zel_get_var"}) {
        DeclareLispFunction(QString::fromLatin1(name));
    }
    m_folder = givenFolder.isEmpty() ? BlockSettingsFolder::Find(false)
                                     : QDir::toNativeSeparators(CliOptions::FullPath(givenFolder));
}

QString CliBlockList::NoFolderText() {
    return QStringLiteral(
               "no %1 in the folder of GBL_kv_DocSetBase or on the support path; "
               "give its folder with --dir FOLDER")
        .arg(FileName());
}

QString CliBlockList::FilePath() const {
    return QDir(m_folder).filePath(FileName());
}

bool CliBlockList::HasFile(QString& error) const {
    if (!HasFolder()) {
        error = NoFolderText();
        return false;
    }
    if (!QFileInfo(QDir(m_folder), FileName()).isFile()) {
        error = QStringLiteral("the folder %1 has no %2").arg(Shown(), FileName());
        return false;
    }
    return true;
}

bool CliBlockList::Read(TermBlockList& list, QString& error) const {
    if (!HasFile(error)) {
        return false;
    }
    CTermBlockSettings settings;
    settings.SetDirectory(m_folder);
    if (!settings.Read(list)) {
        error = QStringLiteral("cannot read %1 in %2 (it must be readable and writable)")
                    .arg(FileName(), Shown());
        return false;
    }
    return true;
}

bool CliBlockList::Read(CBlockDescEx& blocks, QString& error) const {
    TermBlockList list;
    if (!Read(list, error)) {
        return false;
    }
    blocks.SetBlocks(list);
    return true;
}
