#include "CPathListFile.h"

#include "ZelStdioFileEx.h"
#include "ZelUtils.h"

namespace {

const QChar kFolderMark = u':';
const QChar kPlaceholderMark = u'<';

}  // namespace

CPathListFile::CPathListFile() = default;

CPathListFile::~CPathListFile() = default;

void CPathListFile::SetFolder(const QString& folder) {
    if (!folder.isNull()) {
        m_strFolder = folder;
    }
}

QString CPathListFile::GetFilePath() const {
    QString path = m_strFolder;
    EnsureEndingBackslash(path);
    return path + QStringLiteral("blkplist.txt");
}

bool CPathListFile::Read(QStringList& paths) const {
    paths.clear();
    ZelStdioFileEx file;
    if (!file.Open(GetFilePath(), ZelStdioFileEx::modeRead | ZelStdioFileEx::shareDenyNone |
                                      ZelStdioFileEx::typeText)) {
        return false;
    }
    QString line;
    while (file.ReadString(line)) {
        line = line.trimmed();
        if (line.startsWith(kFolderMark)) {
            // The line is trimmed at the right already.
            QString folder = NativePath(line.mid(1).trimmed());
            EnsureEndingBackslash(folder);
            paths.append(folder);
        } else if (line.startsWith(kPlaceholderMark)) {
            paths.append(line);
        }
    }
    return true;
}

bool CPathListFile::Write(const QStringList& paths) const {
    ZelStdioFileEx file;
    if (!file.Open(GetFilePath(), ZelStdioFileEx::modeWrite | ZelStdioFileEx::modeCreate |
                                      ZelStdioFileEx::shareDenyWrite | ZelStdioFileEx::typeText)) {
        return false;
    }
    for (const QString& path : paths) {
        if (path.startsWith(kPlaceholderMark)) {
            file.WriteString(path + u'\n');
        } else {
            file.WriteString(kFolderMark + path + u'\n');
        }
    }
    // A full disk must not pass for a saved list.
    return file.Flush();
}
