#pragma once

#include "TermBlock.h"
#include "ZelStdioFileEx.h"

#include <QString>
#include <QStringList>

// Reader and writer of the terminal block settings file "kvmbblks.bsf".
//
// A block line is ":" and up to four fields separated by ";": block file, category,
// description, sample picture. Every other line (empty, a "*" comment, anything else)
// is skipped on reading and lost on writing. A line counts only when its first three
// fields are filled; fields past the fourth are dropped. Fields are trimmed on writing
// only. Reading also loads the attribute definitions of each block's drawing.
class CTermBlockSettings {
public:
    static constexpr const char* kFileName = "kvmbblks.bsf";

    CTermBlockSettings();
    virtual ~CTermBlockSettings();
    CTermBlockSettings(const CTermBlockSettings&) = delete;
    CTermBlockSettings& operator=(const CTermBlockSettings&) = delete;

    // Opens the file in the folder (a non-empty folder replaces the one set) for reading
    // (1) or writing (2); writing creates or empties it. False when no folder is set or
    // the file can't be opened with read and write access.
    bool Open(int nMode, const QString& directory = QString());
    bool Close();
    // Replaces list with the file's blocks; false, with list unchanged, when the file
    // can't be opened.
    bool Read(TermBlockList& list);
    // Writes the blocks that have block file, category and description; false when the
    // file can't be opened or not all was written.
    bool Write(const TermBlockList& list);
    // A null folder changes nothing.
    void SetDirectory(const QString& directory);
    const QString& GetDirectory() const { return m_strDirectory; }
    // The folder with a trailing separator ensured, plus the file name; empty without one.
    QString GetFilePath() const;
    int GetOpenMode() const { return m_nOpenMode; }

    // Fills attribs with the attribute definitions of the block's drawing file (model
    // space, then paper space, then sorted), found on the block folders with extension
    // "SHT" ensured. False, with attribs unchanged, when the drawing is not found or
    // can't be read.
    bool LoadBlockAttribs(QString strFile, QList<_attrinfo>& attribs) const;
    // Stable sort by tag, ignoring case, in the collation of the current locale.
    static void SortAttribs(QList<_attrinfo>& attribs);
    // Each category once, in the order of first appearance; case counts.
    static void GetCategories(const TermBlockList& list, QStringList& categories);

private:
    int m_nOpenMode = 0;  // 0 closed, 1 reading, 2 writing
    ZelStdioFileEx m_file;
    QString m_strDirectory;
};
