#include "BlocksCommand.h"

#include "BlockDefsTable.h"
#include "CBlockDescEx.h"
#include "CliBlockList.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "DatabaseSession.h"
#include "HostBridge.h"
#include "HostSession.h"
#include "ResourceLibrary.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <utility>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

// What plcdb blocks is asked to do: print the list (no action), find a block, or change
// the list as OK of the definitions dialog would and print it then.
struct BlocksOptions {
    QString folder;
    QString find;
    bool finding = false;
    int mode = 1;
    bool modeGiven = false;
    QString action;                 // empty for the list
    QStringList operands;           // the action's own words: FILE, INDEX, N, H|V
    QMap<QString, QString> values;  // --category, --description, ... as given
    bool changes() const { return !action.isEmpty(); }
    QString value(const char* name) const { return values.value(QLatin1String(name)); }
    bool has(const char* name) const { return values.contains(QLatin1String(name)); }
};

// An action: the options it takes beside --dir, those it needs, and what its one operand
// is (none for merge).
struct ActionSpec {
    QStringList allowed;
    QStringList needed;
    QString operand;
};

const QMap<QString, ActionSpec>& Actions() {
    static const QMap<QString, ActionSpec> actions = {
        {QStringLiteral("add"),
         {{"--category", "--description", "--sample"},
          {"--category", "--description"},
          QStringLiteral("block file")}},
        {QStringLiteral("remove"), {{}, {}, QStringLiteral("index")}},
        {QStringLiteral("set-style"), {{}, {}, QStringLiteral("style")}},
        {QStringLiteral("set-orientation"), {{}, {}, QStringLiteral("orientation")}},
        {QStringLiteral("merge"),
         {{"--manufacturer", "--series", "--type", "--catalog", "--category"},
          {"--manufacturer", "--series", "--type", "--catalog"},
          QString()}},
    };
    return actions;
}

int Fail(const QString& text, int status) {
    return ReportFailure(QStringLiteral("blocks"), text, status);
}

// A whole number of the command line; false for anything else.
bool ParseNumber(const QString& text, int& number) {
    bool ok = false;
    number = text.toInt(&ok);
    return ok && !text.startsWith(u'+');
}

// The operand's value: an index from 1, a style from 1 to 9, H or V.
bool CheckOperand(const QString& action, const QString& operand, QString& error) {
    int number = 0;
    if (action == QStringLiteral("remove") && (!ParseNumber(operand, number) || number < 1)) {
        error = QStringLiteral("remove takes the index of a block, 1 or more");
        return false;
    }
    if (action == QStringLiteral("set-style") &&
        (!ParseNumber(operand, number) || number < 1 || number > 9)) {
        error = QStringLiteral("set-style takes a style from 1 to 9");
        return false;
    }
    if (action == QStringLiteral("set-orientation") &&
        operand.compare(QStringLiteral("H"), Qt::CaseInsensitive) != 0 &&
        operand.compare(QStringLiteral("V"), Qt::CaseInsensitive) != 0) {
        error = QStringLiteral("set-orientation takes H or V");
        return false;
    }
    return true;
}

bool CheckAction(const BlocksOptions& out, QString& error) {
    const ActionSpec spec = Actions().value(out.action);
    for (auto it = out.values.cbegin(); it != out.values.cend(); ++it) {
        if (!spec.allowed.contains(it.key())) {
            error = QStringLiteral("%1 does not go with %2").arg(it.key(), out.action);
            return false;
        }
    }
    if (out.finding || out.modeGiven) {
        const QString option = out.finding ? QStringLiteral("--find") : QStringLiteral("--mode");
        error = QStringLiteral("%1 does not go with %2").arg(option, out.action);
        return false;
    }
    if (spec.operand.isEmpty() && !out.operands.isEmpty()) {
        error = QStringLiteral("unknown argument %1").arg(out.operands.first());
        return false;
    }
    if (!spec.operand.isEmpty() && out.operands.size() != 1) {
        error = QStringLiteral("%1 takes one %2").arg(out.action, spec.operand);
        return false;
    }
    for (const QString& name : spec.needed) {
        if (!out.values.contains(name)) {
            error = QStringLiteral("%1 needs %2").arg(out.action, name);
            return false;
        }
    }
    return CheckOperand(out.action, out.operands.value(0), error);
}

bool ParseBlocksOptions(const QStringList& args, BlocksOptions& out, QString& error) {
    static const QStringList valueOptions = {
        "--dir",    "--find",         "--mode",   "--category", "--description",
        "--sample", "--manufacturer", "--series", "--type",     "--catalog"};
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (!valueOptions.contains(arg)) {
            if (arg.startsWith(QStringLiteral("--")) ||
                (out.action.isEmpty() && !Actions().contains(arg))) {
                error = QStringLiteral("unknown argument %1").arg(arg);
                return false;
            }
            if (out.action.isEmpty()) {
                out.action = arg;
            } else {
                out.operands << arg;
            }
            continue;
        }
        if (i + 1 >= args.size()) {
            error = QStringLiteral("%1 needs a value").arg(arg);
            return false;
        }
        const QString& value = args[++i];
        if (arg == QStringLiteral("--dir")) {
            out.folder = value;
        } else if (arg == QStringLiteral("--find")) {
            out.find = value;
            out.finding = true;
        } else if (arg == QStringLiteral("--mode")) {
            if (value != QStringLiteral("1") && value != QStringLiteral("2")) {
                error = QStringLiteral("--mode takes 1 (block name) or 2 (description)");
                return false;
            }
            out.mode = value.toInt();
            out.modeGiven = true;
        } else {
            out.values.insert(arg, value);
        }
    }
    if (out.changes()) {
        return CheckAction(out, error);
    }
    if (!out.values.isEmpty()) {
        error = QStringLiteral("%1 goes with an action such as add").arg(out.values.firstKey());
        return false;
    }
    if (out.modeGiven && !out.finding) {
        error = QStringLiteral("--mode goes with --find");
        return false;
    }
    return true;
}

// One JSON value as compact text: the string escapes and the shortest number form of
// the JSON writer, so that the output's key order can be ours.
QString Json(const QJsonValue& value) {
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

// "{"key":value,...}" with the keys in the order given; values are JSON texts already.
QString Object(std::initializer_list<std::pair<const char*, QString>> members) {
    QString text(u'{');
    for (const auto& [key, value] : members) {
        if (text.size() > 1) {
            text += u',';
        }
        text += u'"' + QLatin1String(key) + QStringLiteral("\":") + value;
    }
    return text + u'}';
}

QString AttributeJson(const _attrinfo& info) {
    return Object({{"tag", Json(info.strTag)},
                   {"prompt", Json(info.strPrompt)},
                   {"x", Json(info.dX)},
                   {"y", Json(info.dY)},
                   {"z", Json(info.dZ)},
                   {"height", Json(info.dHeight)},
                   {"rotation", Json(info.dRotation)},
                   {"widthFactor", Json(info.dWidthFactor)},
                   {"oblique", Json(info.dOblique)},
                   {"horizontalMode", Json(info.nHorzMode)},
                   {"verticalMode", Json(info.nVertMode)}});
}

QString BlockJson(int index, const _termblock& block) {
    QStringList attributes;
    for (const _attrinfo& info : block.lstAttribs) {
        attributes << AttributeJson(info);
    }
    return Object({{"index", Json(index)},
                   {"file", Json(block.strBlockFile)},
                   {"category", Json(block.strCategory)},
                   {"description", Json(block.strDescription)},
                   {"sample", Json(block.strSampleFile)},
                   {"attributes", u'[' + attributes.join(u',') + u']'}});
}

QString ListJson(const QString& folder, const TermBlockList& list) {
    QStringList blocks;
    for (qsizetype i = 0; i < list.size(); ++i) {
        blocks << BlockJson(int(i + 1), list[i]);
    }
    return Object({{"format", Json(QStringLiteral("plcdb-blocks"))},
                   {"version", Json(1)},
                   {"directory", Json(folder)},
                   {"blocks", u'[' + blocks.join(u',') + u']'}});
}

// The database session that a merge reads from; it also starts the host.
bool OpenDatabase(const CliOptions& options, std::unique_ptr<DatabaseSession>& database,
                  QString& error) {
    database = std::make_unique<DatabaseSession>();
    return database->open(options, &error, true);
}

// The module that merge names, as the module tree finds it (names without regard to
// case); answers 0 or the exit status of a failure already reported.
int FindMergedModule(DatabaseSession& database, const BlocksOptions& blocks, CatalogPath& path) {
    QString error;
    if (database.findCatalog(blocks.value("--manufacturer"), blocks.value("--series"),
                             blocks.value("--type"), blocks.value("--catalog"), path,
                             error) == DatabaseSession::Found::Yes) {
        return 0;
    }
    return Fail(error, kFailed);
}

// Merge: the rows the module adds get --category and their block file as description,
// so that they pass OK's checks; without --category they are refused as the dialog
// refuses rows the user has not filled in.
int Merge(BlockDefsTable& table, DatabaseSession& database, const BlocksOptions& blocks) {
    CatalogPath path;
    if (const int status = FindMergedModule(database, blocks, path); status != 0) {
        return status;
    }
    const int first = table.RowCount() + 1;
    const int added = table.MergeFromCatalog(
        database.db().GetPath(), path.manufacturer, path.series, path.type, path.catalog,
        BlockDefsTable::OrientationOfName(table.Value(1, BlockDefsTable::ColumnBlockFile)));
    if (added < 0) {
        return Fail(database.readFailure(), kFailed);
    }
    for (int row = first; row < first + added && blocks.has("--category"); ++row) {
        table.SetValue(row, BlockDefsTable::ColumnCategory, blocks.value("--category"));
        table.SetValue(row, BlockDefsTable::ColumnDescription,
                       table.Value(row, BlockDefsTable::ColumnBlockFile));
    }
    return 0;
}

// The change of the action on the rows read; 0, or the exit status of a failure reported.
int ApplyAction(BlockDefsTable& table, const BlocksOptions& blocks, DatabaseSession* database) {
    const QString firstName = table.Value(1, BlockDefsTable::ColumnBlockFile);
    const QString& operand = blocks.operands.value(0);
    if (blocks.action == QStringLiteral("add")) {
        table.AppendRow({operand, blocks.value("--category"), blocks.value("--description"),
                         blocks.value("--sample")});
    } else if (blocks.action == QStringLiteral("remove")) {
        if (!table.RemoveRow(operand.toInt())) {
            return Fail(QStringLiteral("there is no block %1: the list has %2")
                            .arg(operand)
                            .arg(table.RowCount()),
                        kFailed);
        }
    } else if (blocks.action == QStringLiteral("set-style")) {
        // The orientation stays that which the dialog starts with, as its radios show.
        table.ApplyStyle(operand.toInt(), BlockDefsTable::OrientationOfName(firstName));
    } else if (blocks.action == QStringLiteral("set-orientation")) {
        const bool horizontal = operand.compare(QStringLiteral("H"), Qt::CaseInsensitive) == 0;
        table.ApplyStyle(BlockDefsTable::StyleOfName(firstName),
                         horizontal ? BlockDefsTable::kHorizontal : BlockDefsTable::kVertical);
    } else if (blocks.action == QStringLiteral("merge")) {
        return Merge(table, *database, blocks);
    }
    return 0;
}

// Read, change, OK's checks, write: the dialog's steps. Its questions are answered No,
// so a block or sample that is not found refuses the change, as any failed check does,
// and the file is then not touched.
int ChangeBlocks(const QString& folder, const QString& shown, const BlocksOptions& blocks,
                 DatabaseSession* database) {
    BlockDefsTable table;
    table.SetDirectory(folder);
    if (!table.Read()) {
        return Fail(QStringLiteral("cannot read %1 in %2")
                        .arg(QLatin1String(CTermBlockSettings::kFileName), shown),
                    kFailed);
    }
    if (const int status = ApplyAction(table, blocks, database); status != 0) {
        return status;
    }
    int failRow = 0;
    int failCol = 0;
    if (!table.Validate(failRow, failCol)) {
        static const char* const columns[] = {"block file", "category", "description", "sample"};
        const char* column = failCol >= 1 && failCol <= 4 ? columns[failCol - 1] : "row";
        return Fail(QStringLiteral("%1 refused at the %2 of row %3; %4 in %5 is left as it was")
                        .arg(blocks.action, QLatin1String(column))
                        .arg(failRow)
                        .arg(QLatin1String(CTermBlockSettings::kFileName), shown),
                    kFailed);
    }
    if (!table.Write()) {
        return Fail(QStringLiteral("cannot write %1 in %2")
                        .arg(QLatin1String(CTermBlockSettings::kFileName), shown),
                    kFailed);
    }
    return 0;
}

int RunBlocks(const CliOptions& options, const BlocksOptions& blocks) {
    // The host answers the Lisp functions that find the settings folder and the drawings;
    // for a merge the database session starts it.
    HostSession session;
    std::unique_ptr<DatabaseSession> database;
    QString error;
    const bool started = blocks.action == QStringLiteral("merge")
                             ? OpenDatabase(options, database, error)
                             : session.startHost(options, &error);
    if (!started) {
        return Fail(error, kFailed);
    }
    const CliBlockList found(blocks.folder);
    if (!found.HasFile(error)) {
        return Fail(error, kFailed);
    }
    if (blocks.changes()) {
        const int status = ChangeBlocks(found.Folder(), found.Shown(), blocks, database.get());
        if (status != 0) {
            return status;
        }
    }
    // Read again after a change, so that the attributes of new drawings are in the list.
    TermBlockList list;
    if (!found.Read(list, error)) {
        return Fail(error, kFailed);
    }
    CBlockDescEx desc;
    desc.SetBlocks(list);
    const QString answer = blocks.finding
                               ? QString::number(desc.FindBlock(blocks.find, blocks.mode))
                               : ListJson(found.Folder(), list);
    std::fputs(answer.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
    return 0;
}

}  // namespace

int RunBlocksCommand(const CliOptions& options) {
    BlocksOptions blocks;
    QString error;
    if (!ParseBlocksOptions(options.arguments, blocks, error)) {
        return Fail(error, kUsage);
    }
    // The texts of the checks' messages, which a refused change prints.
    if (blocks.changes() &&
        LoadResDll(QStringLiteral("zel_mb"), QStringLiteral("zel_mbres"), &error) == nullptr) {
        return Fail(error, kFailed);
    }
    const int status = RunBlocks(options, blocks);
    if (blocks.changes()) {
        UnloadResDll();
    }
    return status;
}
