// The CSV of terminal rows on any bytes: a refusal leaves no rows and says why; rows that
// are read write a file that reads back keeping every row, and that file, read over rows
// that hold nothing but their names, makes rows that write the same bytes again.

#include "BlockLookup.h"
#include "CBlockDescEx.h"
#include "FuzzSupport.h"
#include "TermColumns.h"
#include "TerminalCsv.h"

namespace {

_termblock Block(const char* file, const char* description) {
    _termblock block;
    block.strBlockFile = QString::fromLatin1(file);
    block.strDescription = QString::fromLatin1(description);
    return block;
}

// The rows the file replaces: known blocks, a name the list lacks, and tokens of each kind.
CKVModule StoredRows() {
    CKVModule module;
    module.SetTermRow(1, QStringLiteral("HP?TERM;%%1PROMPT=SLOT;TAG=1;\\SPECIAL=BREAK"));
    module.SetTermRow(2, QStringLiteral("HP?FUSE;\\SPECIAL=ADDR_IN;NOTE;TAG=2;tag=3"));
    module.SetTermRow(3, QStringLiteral("HP?GONE;\\SPECIAL=SPACINGFACTOR=1.500000"));
    return module;
}

// The rows as the store gives them back to a module.
CKVModule FromRows(const QList<TermCsvRow>& rows, const CKVModule& stored) {
    CKVModule module;
    for (const TermCsvRow& row : rows) {
        const bool kept = row.keptRow > 0;
        module.SetTermRow(module.GetTermCount() + 1,
                          (kept ? stored.GetTermText(row.keptRow) : row.values.strText) + u';' +
                              (kept ? stored.GetTermSpecial(row.keptRow) : row.values.strSpecial));
    }
    return module;
}

CKVModule NamesOnly(const CKVModule& module) {
    CKVModule names;
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        names.SetTermText(row, module.GetTermText(row));
    }
    return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CBlockDescEx blocks;
    blocks.SetBlocks({Block("HP1TERM", "Terminal"), Block("VP2FUSE", "Fuse, \"fast\"")});
    BlockLookup lookup;
    lookup.Rebuild(&blocks);
    TermColumns columns;
    columns.SetBlocks(&lookup);
    columns.SetTexts({"Terminal", "Show", "Re-prompt", "Break", "Spacing"},
                     {"Always", "Exclude", "Include", "Both"}, {"None", "In", "Out", "In and out"});
    const TerminalCsv csv(columns);
    const CKVModule stored = StoredRows();

    QList<TermCsvRow> rows;
    QStringList errors;
    if (!csv.Read(FuzzBytes(data, size), stored, rows, errors)) {
        FuzzCheck(rows.isEmpty() && !errors.isEmpty(), "a refusal leaves no rows and says why");
        return 0;
    }
    const CKVModule read = FromRows(rows, stored);
    const QByteArray written = csv.Write(read);
    QList<TermCsvRow> again;
    FuzzCheck(csv.Read(written, read, again, errors), "a written file reads",
              errors.join(u'\n') + u'\n' + QString::fromUtf8(written));
    for (qsizetype i = 0; i < again.size(); ++i) {
        FuzzCheck(again[i].keptRow == i + 1, "a file read over its own rows keeps them all",
                  QString::fromUtf8(written));
    }
    const CKVModule names = NamesOnly(read);
    FuzzCheck(csv.Read(written, names, again, errors), "a written file makes rows",
              errors.join(u'\n') + u'\n' + QString::fromUtf8(written));
    const QByteArray made = csv.Write(FromRows(again, names));
    FuzzCheck(made == written, "rows made from a written file write it again",
              QString::fromUtf8(written) + u'\n' + QString::fromUtf8(made));
    return 0;
}
