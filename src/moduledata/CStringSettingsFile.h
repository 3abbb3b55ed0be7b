#pragma once

#include <QString>
#include <QStringList>

// A settings file of plain lines, such as the default files beside the program.
// Every line is trimmed at both ends; blank lines stay as empty entries, since their
// position carries meaning for the readers of these files.
class CStringSettingsFile {
public:
    // A null name leaves the file name empty.
    explicit CStringSettingsFile(const QString& file = QString());
    virtual ~CStringSettingsFile();

    // A null name is ignored.
    void SetFile(const QString& file);
    const QString& GetFile() const { return m_strFile; }

    // On failure to open, false and lines untouched; otherwise lines replaced.
    bool ReadArray(QStringList& lines) const;
    bool ReadList(QStringList& lines) const;
    // Creates or empties the file and writes each entry, trimmed, as one line.
    bool WriteArray(const QStringList& lines) const;
    bool WriteList(const QStringList& lines) const;

protected:
    QString m_strFile;  // the full file name
};
