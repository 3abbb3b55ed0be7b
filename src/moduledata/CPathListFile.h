#pragma once

#include <QString>
#include <QStringList>

// The list of places where block files are searched, "blkplist.txt" in a folder.
// Each line, trimmed, is a folder when it begins with ":", a placeholder such as
// "<GBL_kv_lib>" when it begins with "<", and a comment otherwise. The order of the
// entries is the order of the search.
class CPathListFile {
public:
    CPathListFile();
    virtual ~CPathListFile();

    // A null name is ignored.
    void SetFolder(const QString& folder);
    const QString& GetFolder() const { return m_strFolder; }
    // The folder with a trailing separator ensured, plus the fixed file name.
    QString GetFilePath() const;

    // Empties paths first, so that they stay empty when the file is missing.
    // Folders come back in native form with a trailing separator.
    bool Read(QStringList& paths) const;
    // Creates or empties the file; placeholders are written as they are, every other
    // entry as a folder line.
    bool Write(const QStringList& paths) const;

protected:
    QString m_strFolder;  // the folder that holds the list
};
