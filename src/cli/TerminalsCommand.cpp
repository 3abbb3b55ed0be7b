#include "TerminalsCommand.h"

#include "BlockLookup.h"
#include "CBlockDescEx.h"
#include "CliBlockList.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "DataCommands.h"
#include "DatabaseSession.h"
#include "HostBridge.h"
#include "ResourceLibrary.h"
#include "TermColumns.h"
#include "TerminalCsv.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>

#include <algorithm>
#include <iterator>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

const char* const kModuleOptions[] = {"--manufacturer", "--series", "--type", "--catalog"};

struct TerminalsOptions {
    QString action;  // export or import
    QStringList files;
    QString folder;                 // --dir
    QMap<QString, QString> module;  // the four names of the module
    QString value(const char* name) const { return module.value(QLatin1String(name)); }
};

int Fail(const QString& text, int status) {
    return ReportFailure(QStringLiteral("terminals"), text, status);
}

bool ParseTerminalsOptions(const QStringList& args, TerminalsOptions& out, QString& error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        const bool moduleOption =
            std::any_of(std::begin(kModuleOptions), std::end(kModuleOptions),
                        [&arg](const char* name) { return arg == QLatin1String(name); });
        if (moduleOption || arg == QStringLiteral("--dir")) {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(arg);
                return false;
            }
            (moduleOption ? out.module[arg] : out.folder) = args[++i];
        } else if (arg.startsWith(QStringLiteral("--"))) {
            error = QStringLiteral("unknown argument %1").arg(arg);
            return false;
        } else if (out.action.isEmpty()) {
            out.action = arg;
        } else {
            out.files.append(arg);
        }
    }
    if (out.action != QStringLiteral("export") && out.action != QStringLiteral("import")) {
        error = out.action.isEmpty()
                    ? QStringLiteral("give export or import")
                    : QStringLiteral("unknown action %1: export or import").arg(out.action);
        return false;
    }
    for (const char* name : kModuleOptions) {
        if (!out.module.contains(QLatin1String(name))) {
            error = QStringLiteral("%1 needs %2").arg(out.action, QLatin1String(name));
            return false;
        }
    }
    if (out.action == QStringLiteral("import") && out.files.size() != 1) {
        error = QStringLiteral("import takes one CSV file");
        return false;
    }
    if (out.files.size() > 1) {
        error = QStringLiteral("export takes at most one output file");
        return false;
    }
    return true;
}

// The block list as "plcdb blocks" reads it; 0, or the exit status of a failure reported.
int ReadBlocks(const TerminalsOptions& terminals, CBlockDescEx& blocks) {
    QString error;
    if (!CliBlockList(terminals.folder).Read(blocks, error)) {
        return Fail(error, kFailed);
    }
    return 0;
}

// The module's rows as stored, and as the module holds them when loaded.
int ReadModule(DatabaseSession& database, const TerminalsOptions& terminals, CatalogPath& path,
               QList<ModDB::ModTermData>& stored, CKVModule& module) {
    QString error;
    const DatabaseSession::Found found =
        database.findCatalog(terminals.value("--manufacturer"), terminals.value("--series"),
                             terminals.value("--type"), terminals.value("--catalog"), path, error);
    if (found != DatabaseSession::Found::Yes) {
        return Fail(error, found == DatabaseSession::Found::Missing ? kUsage : kFailed);
    }
    ModDB::ModSpecData spec;
    if (!database.db().ReadRawModule(path.table, path.catalog, spec, stored)) {
        return Fail(database.readFailure(), kFailed);
    }
    for (const ModDB::ModTermData& row : stored) {
        module.SetTermRow(module.GetTermCount() + 1, row.Text + u';' + row.Special);
    }
    return 0;
}

int Import(DatabaseSession& database, const TerminalsOptions& terminals, const CatalogPath& path,
           const QList<ModDB::ModTermData>& stored, const CKVModule& module,
           const TerminalCsv& csv) {
    const QString& name = terminals.files.first();
    QByteArray data;
    QString error;
    if (!ReadInput(name, data, &error)) {
        return Fail(error, kFailed);
    }
    QList<TermCsvRow> rows;
    QStringList errors;
    if (!csv.Read(data, module, rows, errors)) {
        for (const QString& refusal : errors) {
            ReportFailure(QStringLiteral("terminals"), name + QStringLiteral(": ") + refusal,
                          kFailed);
        }
        return Fail(QStringLiteral("%1 refused; the rows of %2 are left as they were")
                        .arg(name, path.catalog),
                    kFailed);
    }
    if (database.readOnly()) {
        return Fail(database.writeFailure(), kFailed);
    }
    // A row that the CSV shows unchanged keeps its stored texts to the last blank.
    QList<ModDB::ModTermData> written;
    for (const TermCsvRow& row : rows) {
        const bool kept = row.keptRow >= 1 && row.keptRow <= stored.size();
        written.append({path.catalog, 0, kept ? stored[row.keptRow - 1].Text : row.values.strText,
                        kept ? stored[row.keptRow - 1].Special : row.values.strSpecial});
    }
    if (!database.db().ReplaceRawRows(path.table, path.catalog, written)) {
        return Fail(database.writeFailure(), kFailed);
    }
    return 0;
}

int RunTerminals(const CliOptions& options, const TerminalsOptions& terminals) {
    DatabaseSession database;
    QString error;
    if (!database.open(options, &error, true)) {
        return Fail(error, kFailed);
    }
    CBlockDescEx blocks;
    if (const int status = ReadBlocks(terminals, blocks); status != 0) {
        return status;
    }
    CatalogPath path;
    QList<ModDB::ModTermData> stored;
    CKVModule module;
    if (const int status = ReadModule(database, terminals, path, stored, module); status != 0) {
        return status;
    }
    BlockLookup lookup;
    lookup.Rebuild(&blocks);
    TermColumns columns;
    columns.SetBlocks(&lookup);
    columns.LoadTexts();
    const TerminalCsv csv(columns);
    if (terminals.action == QStringLiteral("import")) {
        return Import(database, terminals, path, stored, module, csv);
    }
    if (!WriteOutput(terminals.files.value(0), csv.Write(module), &error)) {
        return Fail(error, kFailed);
    }
    return 0;
}

}  // namespace

int RunTerminalsCommand(const CliOptions& options) {
    TerminalsOptions terminals;
    QString error;
    if (!ParseTerminalsOptions(options.arguments, terminals, error)) {
        return Fail(error, kUsage);
    }
    // The grid's header and choice texts.
    if (LoadResDll(QStringLiteral("zel_mb"), QStringLiteral("zel_mbres"), &error) == nullptr) {
        return Fail(error, kFailed);
    }
    const int status = RunTerminals(options, terminals);
    UnloadResDll();
    return status;
}
