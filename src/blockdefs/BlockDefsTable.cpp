#include "BlockDefsTable.h"

#include "BlockNames.h"
#include "CKVModule.h"
#include "CKVModuleDB.h"
#include "CPathListFile.h"
#include "CTermBlockSettings.h"
#include "HostBridge.h"
#include "Messages.h"
#include "ZelUtils.h"

namespace {

constexpr int kMsgFileMissing = 10047;
constexpr int kCaptionFileMissing = 10011;
constexpr int kMsgDuplicateDescription = 10048;
constexpr int kCaptionDuplicateDescription = 10049;
constexpr int kMsgNoBlockFile = 10050;
constexpr int kMsgNoCategory = 10051;
constexpr int kMsgNoDescription = 10052;
constexpr int kCaptionIncompleteRow = 10053;

bool IsStyleDigit(const QString& character) {
    return character.size() == 1 && character[0] >= u'1' && character[0] <= u'9';
}

bool IsDigit(const QString& character) {
    return character.size() == 1 && character[0] >= u'0' && character[0] <= u'9';
}

// The letter that stands for an orientation in a block name; none for an unknown one.
QString OrientationLetter(int orientation) {
    if (orientation == BlockDefsTable::kHorizontal) {
        return QStringLiteral("H");
    }
    return orientation == BlockDefsTable::kVertical ? QStringLiteral("V") : QString();
}

// A row's block name as the merge compares it with a terminal: a name with a style slot
// gets "?" for any style and the terminal's orientation letter, so that one row stands
// for its whole family.
QString MaskedForTerminal(const QString& rowName, const QString& terminal) {
    if (!BlockNames::HasStyleSlot(rowName)) {
        return rowName;
    }
    const QString terminalFirst = BlockNames::CharAt(terminal, 0).toUpper();
    QString first = BlockNames::CharAt(rowName, 0);
    if (terminalFirst == QLatin1String("H") || terminalFirst == QLatin1String("V")) {
        first = terminalFirst;
    }
    return first + BlockNames::CharAt(rowName, 1) + u'?' + BlockNames::RestFrom(rowName, 3);
}

// The block file of the row that the merge adds for a terminal found in no row.
QString MergedBlockName(const QString& terminal, const QString& lastCompared,
                        BlockDefsTable::Orientation selected) {
    if (!BlockNames::HasStyleSlot(terminal)) {
        return terminal;
    }
    // The letter is the opposite of the selected orientation, and the digit that of the
    // last row compared: both as the dialog has always made them.
    const QString letter =
        selected == BlockDefsTable::kHorizontal ? QStringLiteral("V") : QStringLiteral("H");
    const QString third = BlockNames::CharAt(lastCompared, 2);
    const QString digit = IsStyleDigit(third) ? third : QStringLiteral("1");
    return letter + BlockNames::CharAt(terminal, 1) + digit + BlockNames::RestFrom(terminal, 3);
}

// A file of a row that is looked up without a report, with the extension it is searched by.
bool FileExists(const QString& cell, const char* extension, bool block) {
    QString name = cell;
    EnsureExtension(name, QString::fromLatin1(extension));
    QString found;
    return block ? FindBlockFile(name, found, false) : FindSupportFile(name, found, false);
}

// Asks whether a row may keep a file that is not found; true on Yes.
bool KeepMissingFile(const QString& cell, const char* extension, int row) {
    QString name = cell;
    EnsureExtension(name, QString::fromLatin1(extension));
    return Messages::Show(kMsgFileMissing, {name, QString::number(row)}, MsgButtons::YesNo,
                          MsgIcon::Warning, kCaptionFileMissing) == kIdYes;
}

}  // namespace

BlockDefsTable::BlockDefsTable() = default;

BlockDefsTable::~BlockDefsTable() = default;

void BlockDefsTable::SetDirectory(const QString& folder) {
    if (!folder.isNull()) {
        m_strDirectory = folder;
    }
}

bool BlockDefsTable::Read() {
    CPathListFile pathList;
    pathList.SetFolder(m_strDirectory);
    pathList.Read(m_lstPaths);
    m_rows.clear();
    CTermBlockSettings settings;
    settings.SetDirectory(m_strDirectory);
    TermBlockList blocks;
    if (!settings.Read(blocks)) {
        return false;
    }
    for (const _termblock& block : blocks) {
        m_rows.append(
            {block.strBlockFile, block.strCategory, block.strDescription, block.strSampleFile});
    }
    return true;
}

bool BlockDefsTable::Write() {
    CTermBlockSettings settings;
    settings.SetDirectory(m_strDirectory);
    if (!settings.Write(StoredBlocks())) {
        return false;
    }
    CPathListFile pathList;
    pathList.SetFolder(m_strDirectory);
    return pathList.Write(m_lstPaths);
}

TermBlockList BlockDefsTable::StoredBlocks() const {
    TermBlockList blocks;
    for (const BlockDefRow& row : m_rows) {
        if (row.blockFile.isEmpty() || row.category.isEmpty() || row.description.isEmpty()) {
            continue;
        }
        _termblock block;
        block.strBlockFile = row.blockFile.trimmed();
        block.strCategory = row.category.trimmed();
        block.strDescription = row.description.trimmed();
        block.strSampleFile = row.sampleFile.trimmed();
        blocks.append(block);
    }
    return blocks;
}

QString BlockDefsTable::Value(int row, int col) const {
    if (row < 1 || row > RowCount()) {
        return QString();
    }
    const BlockDefRow& values = m_rows.at(row - 1);
    switch (col) {
        case ColumnBlockFile:
            return values.blockFile;
        case ColumnCategory:
            return values.category;
        case ColumnDescription:
            return values.description;
        case ColumnSampleFile:
            return values.sampleFile;
        default:
            return QString();
    }
}

bool BlockDefsTable::SetValue(int row, int col, const QString& value) {
    if (row < 1 || row > RowCount()) {
        return false;
    }
    BlockDefRow& values = m_rows[row - 1];
    switch (col) {
        case ColumnBlockFile:
            values.blockFile = value;
            return true;
        case ColumnCategory:
            values.category = value;
            return true;
        case ColumnDescription:
            values.description = value;
            return true;
        case ColumnSampleFile:
            values.sampleFile = value;
            return true;
        default:
            return false;
    }
}

bool BlockDefsTable::InsertRow(int row, const BlockDefRow& values) {
    if (row < 1 || row > RowCount() + 1) {
        return false;
    }
    m_rows.insert(row - 1, values);
    return true;
}

void BlockDefsTable::AppendRow(const BlockDefRow& values) {
    m_rows.append(values);
}

bool BlockDefsTable::RemoveRow(int row) {
    if (row < 1 || row > RowCount()) {
        return false;
    }
    m_rows.removeAt(row - 1);
    return true;
}

int BlockDefsTable::StyleOfName(const QString& name) {
    const QString third = BlockNames::CharAt(name, 2);
    return IsStyleDigit(third) ? third.toInt() : 1;
}

BlockDefsTable::Orientation BlockDefsTable::OrientationOfName(const QString& name) {
    return BlockNames::CharAt(name, 0).toUpper() == QLatin1String("H") ? kHorizontal : kVertical;
}

bool BlockDefsTable::RewriteBlockName(QString& name, int style, int orientation) {
    if (style < 1 || style > 9 || GetCharCount(name) < 3 || !IsDigit(BlockNames::CharAt(name, 2))) {
        return false;
    }
    const QString family = name.left(2).toUpper();
    if (family != QLatin1String("HP") && family != QLatin1String("VP")) {
        return false;
    }
    name = OrientationLetter(orientation) + BlockNames::CharAt(name, 1) + QString::number(style) +
           BlockNames::RestFrom(name, 3);
    return true;
}

QList<int> BlockDefsTable::ApplyStyle(int style, int orientation) {
    QList<int> changed;
    if (style < 1 || style > 9) {
        return changed;
    }
    for (int row = 1; row <= RowCount(); ++row) {
        bool rowChanged = false;
        for (const int col : {int(ColumnBlockFile), int(ColumnSampleFile)}) {
            QString name = Value(row, col);
            if (RewriteBlockName(name, style, orientation) && name != Value(row, col)) {
                SetValue(row, col, name);
                rowChanged = true;
            }
        }
        if (rowChanged) {
            changed.append(row);
        }
    }
    return changed;
}

int BlockDefsTable::MergeModuleTerminals(const CKVModule& module, Orientation selected) {
    int added = 0;
    // Kept across terminals: the digit of a new name comes from the last row compared.
    QString compared;
    for (int term = 1; term <= module.GetTermCount(); ++term) {
        const QString terminal = module.GetTermText(term);
        if (terminal.isEmpty()) {
            continue;
        }
        bool known = false;
        for (int row = 1; row <= RowCount() && !known; ++row) {
            compared = MaskedForTerminal(Value(row, ColumnBlockFile).trimmed(), terminal);
            known = compared.compare(terminal, Qt::CaseInsensitive) == 0;
        }
        if (!known) {
            AppendRow({MergedBlockName(terminal, compared, selected), {}, {}, {}});
            ++added;
        }
    }
    return added;
}

int BlockDefsTable::MergeFromCatalog(const QString& dbPath, const QString& manufacturer,
                                     const QString& series, const QString& type,
                                     const QString& catalog, Orientation selected) {
    CKVModuleDB db;
    if (!db.Open(dbPath)) {
        return -1;
    }
    QString table;
    int added = -1;
    if (db.GetTypeTableName(manufacturer, series, type, table)) {
        const int handle = db.LoadModule(table, catalog, false);
        if (handle != -1) {
            bool found = false;
            const CKVModule& module = db.GetModule(handle, &found);
            if (found) {
                added = MergeModuleTerminals(module, selected);
            }
            db.ReleaseModule(handle);
        }
    }
    db.Close();
    return added;
}

bool BlockDefsTable::Validate(int& failRow, int& failCol) const {
    const auto fail = [&](int row, int col) {
        failRow = row;
        failCol = col;
        return false;
    };
    QStringList descriptions;
    for (int row = 1; row <= RowCount(); ++row) {
        const QString blockFile = Value(row, ColumnBlockFile).trimmed();
        const QString category = Value(row, ColumnCategory).trimmed();
        const QString description = Value(row, ColumnDescription).trimmed();
        const QString sampleFile = Value(row, ColumnSampleFile).trimmed();
        if (!blockFile.isEmpty() && !FileExists(blockFile, "SHT", true) &&
            !KeepMissingFile(blockFile, "SHT", row)) {
            return fail(row, ColumnBlockFile);
        }
        if (!description.isEmpty()) {
            if (descriptions.contains(description, Qt::CaseInsensitive)) {
                Messages::Show(kMsgDuplicateDescription, {description, QString::number(row)},
                               MsgButtons::Ok, MsgIcon::Warning, kCaptionDuplicateDescription);
                return fail(row, ColumnDescription);
            }
            descriptions.append(description);
        }
        if (!sampleFile.isEmpty() && !FileExists(sampleFile, "BMP", false) &&
            !KeepMissingFile(sampleFile, "BMP", row)) {
            return fail(row, ColumnSampleFile);
        }
        int message = 0;
        int col = 0;
        if (blockFile.isEmpty() && (!category.isEmpty() || !description.isEmpty())) {
            message = kMsgNoBlockFile;
            col = ColumnBlockFile;
        } else if (!blockFile.isEmpty() && category.isEmpty()) {
            message = kMsgNoCategory;
            col = ColumnCategory;
        } else if (!blockFile.isEmpty() && description.isEmpty()) {
            message = kMsgNoDescription;
            col = ColumnDescription;
        }
        if (message != 0) {
            Messages::Show(message, {QString::number(row)}, MsgButtons::Ok, MsgIcon::Warning,
                           kCaptionIncompleteRow);
            return fail(row, col);
        }
    }
    return true;
}
