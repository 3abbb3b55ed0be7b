#include "CStringSettingsFile.h"

#include "ZelStdioFileEx.h"

CStringSettingsFile::CStringSettingsFile(const QString& file) {
    SetFile(file);
}

CStringSettingsFile::~CStringSettingsFile() = default;

void CStringSettingsFile::SetFile(const QString& file) {
    if (!file.isNull()) {
        m_strFile = file;
    }
}

bool CStringSettingsFile::ReadArray(QStringList& lines) const {
    ZelStdioFileEx file;
    if (!file.Open(m_strFile, ZelStdioFileEx::modeRead | ZelStdioFileEx::shareDenyNone |
                                  ZelStdioFileEx::typeText)) {
        return false;
    }
    lines.clear();
    QString line;
    while (file.ReadString(line)) {
        lines.append(line.trimmed());
    }
    return true;
}

bool CStringSettingsFile::ReadList(QStringList& lines) const {
    return ReadArray(lines);
}

bool CStringSettingsFile::WriteArray(const QStringList& lines) const {
    ZelStdioFileEx file;
    if (!file.Open(m_strFile, ZelStdioFileEx::modeWrite | ZelStdioFileEx::modeCreate |
                                  ZelStdioFileEx::shareDenyWrite | ZelStdioFileEx::typeText)) {
        return false;
    }
    for (const QString& line : lines) {
        file.WriteString(line.trimmed() + u'\n');
    }
    // A full disk must not pass for a saved file.
    return file.Flush();
}

bool CStringSettingsFile::WriteList(const QStringList& lines) const {
    return WriteArray(lines);
}
