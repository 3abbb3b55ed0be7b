// The terminal row grammar on rows as the catalog stores them ("text;special", one a
// line): every reader and writer of a row's special part, the extra catalog items, and
// the value list built from the rows, which must print as one datum that reads.

#include "CKVModule.h"
#include "FuzzSupport.h"
#include "HostValue.h"
#include "LispText.h"
#include "MultiBOMGenerator.h"
#include "SelectionChoices.h"
#include "SelectionList.h"

namespace {

constexpr int kMaxRows = 8;

void ReadEveryRow(const CKVModule& module) {
    // One row past the end and row 0 must answer as missing rows do.
    for (int row = 0; row <= module.GetTermCount() + 1; ++row) {
        module.GetBreak(row);
        module.GetIncludeExclude(row);
        module.GetAddrFlags(row);
        module.GetSpacingFactor(row);
        QString value;
        module.GetAttrValue(QStringLiteral("TAG"), value, row);
        module.GetAttrValue(module.GetTermText(row), value, row);
    }
}

void ReadPairsAndItems(const CKVModule& module) {
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        QString rest = module.GetTermSpecial(row);
        QString name;
        QString value;
        qsizetype before = rest.size() + 1;
        while (CKVModule::NextAttrPair(rest, name, value)) {
            FuzzCheck(rest.size() < before, "each attribute pair consumes text", rest);
            before = rest.size();
        }
        MultiBOMGenerator items;
        items.Parse(module.GetTermSpecial(row));
        QString itemText;
        QString numbers;
        items.ToText(itemText, numbers);
        HostValue list;
        items.AppendTo(list);
    }
}

void ChangeEveryRow(CKVModule& module, const QString& text) {
    const QStringList words = text.split(u' ');
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        module.SetBreak(row, module.GetBreak(row) == 0);
        module.SetIncludeExclude(row, (row + module.GetIncludeExclude(row)) & 3);
        module.SetAddrFlags(row, module.GetAddrFlags(row) ^ row);
        module.SetSpacingFactor(row, row % 3 == 0 ? -1.0 : row * 0.5);
        QStringList pairs = words.mid(row % qMax<qsizetype>(words.size(), 1), 3);
        module.MergeAttrValues(pairs, row);
        FuzzCheck(pairs.isEmpty(), "merging consumes the pairs");
    }
    module.InsertTermCopy(1, true);
    module.RemoveTerm(module.GetTermCount());
}

void CheckValueList(CKVModule module) {
    for (int place = 1; place <= 6; ++place) {
        module.SetBox(false, place, place * 1.5);
        module.SetUnit(false, place, QStringLiteral("mm"));
    }
    SelectionChoices choices;
    choices.SetHorizontal(true);
    HostValue answer;
    if (!BuildSelectionAnswer(module, nullptr, choices, false, answer)) {
        return;
    }
    const QString printed = LispText::Print(HostValue().begin().append(answer).end());
    HostValue back;
    QString error;
    FuzzCheck(LispText::Read(printed, back, &error), "the value list reads as Lisp",
              printed + u'\n' + error);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = FuzzText(data, size);
    CKVModule module;
    const QStringList rows = text.split(u'\n');
    for (qsizetype i = 0; i < rows.size() && i < kMaxRows; ++i) {
        module.SetTermRow(module.GetTermCount() + 1, rows[i]);
    }
    ReadEveryRow(module);
    ReadPairsAndItems(module);
    module.ParsePromptsToArray();
    CheckValueList(module);
    ChangeEveryRow(module, text);
    ReadEveryRow(module);
    module.ApplyPrompts();
    CheckValueList(module);
    return 0;
}
