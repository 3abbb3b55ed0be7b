// The default files of a new module on any bytes: each reads without error, every
// value comes out trimmed, a terminal count is never 0, and the type choices made of the
// types never hold one text twice.

#include "FuzzSupport.h"
#include "ModuleDefaults.h"
#include "ModuleSpecForm.h"

#include <QSet>

namespace {

bool IsTrimmed(const QString& text) {
    return text == text.trimmed();
}

void CheckInfo(const QString& folder) {
    const ModuleInfoDefaults info = ModuleDefaults::ReadInfo(folder);
    FuzzCheck(info.nTermCount >= 1, "a default terminal count is at least 1",
              QString::number(info.nTermCount));
    for (const QString& text :
         {info.strAddrBase, info.strColText2, info.strSpecNote, info.strSpecTail}) {
        FuzzCheck(IsTrimmed(text), "a default value is trimmed", text);
    }
}

void CheckLines(const QStringList& lines, const char* promise) {
    for (const QString& line : lines) {
        FuzzCheck(IsTrimmed(line) && !line.contains(u'\n'), promise, line);
    }
}

void CheckTypes(const QStringList& types) {
    QSet<QString> seen;
    for (const QString& choice : ModuleSpecForm().TypeChoices(QString(), QString(), types)) {
        FuzzCheck(!seen.contains(choice.toCaseFolded()),
                  "a type choice stands once, whatever its case", choice);
        seen.insert(choice.toCaseFolded());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = FuzzBytes(data, size);
    const QString folder = FuzzFolder();
    for (const QString& name :
         {ModuleDefaults::kInfoFile, ModuleDefaults::kPromptFile, ModuleDefaults::kTypesFile}) {
        FuzzWriteFile(FuzzPath(name), bytes);
    }
    CheckInfo(folder);
    CheckLines(ModuleDefaults::ReadPrompts(folder), "a default prompt is one trimmed line");
    const QStringList types = ModuleDefaults::ReadTypes(folder);
    CheckLines(types, "a default type is one trimmed line");
    CheckTypes(types);
    return 0;
}
