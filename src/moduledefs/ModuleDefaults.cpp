#include "ModuleDefaults.h"

#include "CKVModule.h"
#include "CrtNumbers.h"
#include "HostServices.h"
#include "ZelStdioFileEx.h"
#include "ZelUtils.h"

const QString ModuleDefaults::kInfoFile = QStringLiteral("KVDEFINF.DAT");
const QString ModuleDefaults::kPromptFile = QStringLiteral("KVDEFPMT.DAT");
const QString ModuleDefaults::kTypesFile = QStringLiteral("KVDEFTPS.DAT");

namespace {

// The places of the data lines of the info file that mean something.
enum InfoLine {
    kAddrBaseLine = 1,
    kColText2Line = 2,
    kInfoNumberLine = 3,
    kTermCountLine = 4,
    kSpecNoteLine = 17,
    kSpecTailLine = 18,
};

void ApplyInfoLine(int place, const QString& text, ModuleInfoDefaults& info) {
    switch (place) {
        case kAddrBaseLine:
            info.bHasAddrBase = true;
            info.strAddrBase = text;
            break;
        case kColText2Line:
            info.bHasColText2 = true;
            info.strColText2 = text;
            break;
        case kInfoNumberLine:
            info.bHasInfoNumber = true;
            info.nInfoNumber = crt::wtoi(text);
            break;
        case kTermCountLine:
            info.bHasTermCount = true;
            info.nTermCount = unsigned(qMax(1, crt::wtoi(text)));
            break;
        case kSpecNoteLine:
            info.bHasSpecNote = true;
            info.strSpecNote = text;
            break;
        case kSpecTailLine:
            info.bHasSpecTail = true;
            info.strSpecTail = text;
            break;
        default:
            // Reserved places and those past the last are read past.
            break;
    }
}

}  // namespace

QString ModuleDefaults::Folder() {
    return HostProgramDir();
}

bool ModuleDefaults::ReadLines(const QString& folder, const QString& name, QStringList& lines) {
    QString path = folder;
    EnsureEndingBackslash(path);
    ZelStdioFileEx file;
    if (!file.Open(path + name, ZelStdioFileEx::modeRead | ZelStdioFileEx::shareDenyNone |
                                    ZelStdioFileEx::typeText)) {
        return false;
    }
    QString line;
    while (file.ReadString(line)) {
        lines.append(line.trimmed());
    }
    file.Close();
    return true;
}

ModuleInfoDefaults ModuleDefaults::ReadInfo(const QString& folder) {
    ModuleInfoDefaults info;
    QStringList lines;
    ReadLines(folder, kInfoFile, lines);
    int place = 0;
    for (const QString& line : lines) {
        // Only lines that begin with ";" carry data; every other line is a comment.
        if (!line.startsWith(u';')) {
            continue;
        }
        ApplyInfoLine(++place, line.mid(1).trimmed(), info);
    }
    return info;
}

QStringList ModuleDefaults::ReadPrompts(const QString& folder) {
    QStringList prompts;
    if (!ReadLines(folder, kPromptFile, prompts)) {
        prompts = QStringList(CKVModule::kPromptCount, QString());
    }
    return prompts;
}

QStringList ModuleDefaults::ReadTypes(const QString& folder) {
    QStringList types;
    ReadLines(folder, kTypesFile, types);
    return types;
}
