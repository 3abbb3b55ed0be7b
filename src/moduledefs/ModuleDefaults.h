#pragma once

#include <QString>
#include <QStringList>

// "KVDEFINF.DAT" as read: which data lines were there, and their values.
struct ModuleInfoDefaults {
    bool bHasAddrBase = false;
    QString strAddrBase;  // data line 1 (no lasting effect)
    bool bHasColText2 = false;
    QString strColText2;  // 2
    bool bHasInfoNumber = false;
    int nInfoNumber = 0;  // 3
    bool bHasTermCount = false;
    unsigned nTermCount = 8;  // 4 (below 1 gives 1)
    bool bHasSpecNote = false;
    QString strSpecNote;  // 17
    bool bHasSpecTail = false;
    QString strSpecTail;  // 18
};

// The three plain text files beside the program that give a new module its defaults:
// field values, prompts and type choices. None is ever written; a missing file gives
// no defaults and no error.
class ModuleDefaults {
public:
    static const QString kInfoFile, kPromptFile, kTypesFile;  // the three names

    // The folder of the three files: the host's program folder (HostProgramDir()).
    static QString Folder();
    static ModuleInfoDefaults ReadInfo(const QString& folder);
    // Lines of KVDEFPMT.DAT, or nine empty strings when it cannot be opened.
    static QStringList ReadPrompts(const QString& folder);
    // Lines of KVDEFTPS.DAT as they stand (trimmed); empty list when missing.
    static QStringList ReadTypes(const QString& folder);

private:
    // The trimmed lines of a file in the folder; false when it cannot be opened.
    static bool ReadLines(const QString& folder, const QString& name, QStringList& lines);
};
