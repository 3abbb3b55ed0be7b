#pragma once

#include "TermBlock.h"

#include <QString>

class CBlockDescEx;

// The terminal block list as the commands find it: kvmbblks.bsf in the folder given
// with an option (relative to the current folder), else where the database editor
// reads it. Made while the host runs, whose variables name the editor's folder.
class CliBlockList {
public:
    explicit CliBlockList(const QString& givenFolder);

    // Whether any folder was found; NoFolderText says what to give instead.
    bool HasFolder() const { return !m_folder.isEmpty(); }
    static QString NoFolderText();
    // The folder in native separators, and as the user gave it when given.
    const QString& Folder() const { return m_folder; }
    QString Shown() const { return m_given.isEmpty() ? m_folder : m_given; }
    QString FilePath() const;

    // False with the reason when the folder lacks the settings file.
    bool HasFile(QString& error) const;
    // Reads the list; false with the reason when the file is missing or unreadable.
    bool Read(TermBlockList& list, QString& error) const;
    bool Read(CBlockDescEx& blocks, QString& error) const;

private:
    QString m_given;
    QString m_folder;
};
