#include "CopyCommand.h"

#include "CKVModuleDB.h"
#include "CatalogDocument.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "StoreLocation.h"
#include "ZelPlcDbIO.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr int kRefused = 1;
constexpr int kUsage = 2;
constexpr int kStyleCount = 9;

int Fail(const QString& text, int status = kRefused) {
    return ReportFailure(QStringLiteral("copy"), text, status);
}

// "1 module", "2 modules".
QString Counted(qsizetype count, const char* one, const char* many) {
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

struct CopyOptions {
    QString from;
    QString to;
};

bool ParseCopyOptions(const QStringList& args, CopyOptions& out, QString& error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        QString* value = args[i] == QStringLiteral("--from") ? &out.from
                         : args[i] == QStringLiteral("--to") ? &out.to
                                                             : nullptr;
        if (!value) {
            error = QStringLiteral("unknown argument %1").arg(args[i]);
            return false;
        }
        if (i + 1 >= args.size()) {
            error = QStringLiteral("%1 needs a value").arg(args[i]);
            return false;
        }
        *value = args[++i];
    }
    if (out.from.isEmpty() || out.to.isEmpty()) {
        error = QStringLiteral("give the catalog to copy with --from and where to with --to");
        return false;
    }
    return true;
}

// The process-wide store for the time of one side of the copy: the source is read whole
// and let go before the destination is opened.
class StoreScope {
public:
    StoreScope() { ZelPlcDbIO::SetInstance(&m_store); }
    ~StoreScope() {
        m_db.Close();
        ZelPlcDbIO::SetInstance(nullptr);
    }
    StoreScope(const StoreScope&) = delete;
    StoreScope& operator=(const StoreScope&) = delete;

    ZelPlcDbIO& store() { return m_store; }
    CKVModuleDB& db() { return m_db; }
    // The store's reason for the last failure, behind a colon.
    QString because() const {
        const QString reason = m_db.GetLastFailure();
        return reason.isEmpty() ? QString() : QStringLiteral(": ") + reason;
    }

private:
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};

// A table that holds modules but that no type of the index names: the document carries
// modules by their type, so a copy would lose them.
bool FindUnindexedTable(StoreScope& source, QString& table, QString& error) {
    QList<ModDB::IndexData> index;
    QStringList tables;
    if (!source.db().GetIndexRows(index) || !source.store().GetModuleTableNames(tables)) {
        error = source.because();
        return false;
    }
    for (const QString& held : std::as_const(tables)) {
        const bool named = std::any_of(index.cbegin(), index.cend(), [&](const auto& row) {
            return !row.Type.isEmpty() && row.TableName.compare(held, Qt::CaseInsensitive) == 0;
        });
        if (!named) {
            table = held;
            return true;
        }
    }
    return true;
}

int ReadSource(const QString& location, QJsonObject& document) {
    const QString shown = StoreLocation::Shown(location);
    if (!StoreLocation::IsServer(location) && !QFileInfo::exists(location)) {
        return Fail(QStringLiteral("the source %1 does not exist").arg(shown));
    }
    StoreScope source;
    if (!source.db().Open(CliOptions::FullPath(location), true)) {
        return Fail(QStringLiteral("cannot open the source %1").arg(shown) + source.because());
    }
    QString table;
    QString error;
    if (!FindUnindexedTable(source, table, error)) {
        return Fail(QStringLiteral("cannot read the source %1%2").arg(shown, error));
    }
    if (!table.isEmpty()) {
        return Fail(QStringLiteral("the source %1 holds modules in the table %2, which no type of "
                                   "its index names, and a copy would lose them; plcdb check "
                                   "lists them. Nothing was copied.")
                        .arg(shown, table));
    }
    if (!CatalogDocument::Export(source.db(), document, &error)) {
        return Fail(QStringLiteral("cannot read the source %1: %2").arg(shown, error));
    }
    return 0;
}

// What a destination holds beyond the empty catalog that init makes, as "12 modules,
// 3 index rows"; empty when nothing. False when it cannot be read.
bool DescribeContents(StoreScope& target, QString& contents) {
    QList<ModDB::IndexData> index;
    QList<ModDB::PromptData> prompts;
    QStringList tables;
    if (!target.db().GetIndexRows(index) || !target.db().GetPromptRows(prompts) ||
        !target.store().GetModuleTableNames(tables)) {
        return false;
    }
    qsizetype modules = 0;
    for (const QString& table : std::as_const(tables)) {
        QStringList codes;
        if (!target.store().GetArrayOfModSpecCodes(table, codes)) {
            return false;
        }
        modules += codes.size();
    }
    int styles = 0;
    for (int number = 1; number <= kStyleCount; ++number) {
        ModDB::StyleBoxData style;
        if (!target.db().GetStyleBox(number, style)) {
            return false;
        }
        styles += std::any_of(std::begin(style.Box), std::end(style.Box),
                              [](const QString& box) { return !box.isEmpty(); });
    }
    QStringList parts;
    const struct {
        qsizetype count;
        const char* one;
        const char* many;
    } counts[] = {{modules, "module", "modules"},
                  {index.size(), "index row", "index rows"},
                  {prompts.size(), "prompt", "prompts"},
                  {styles, "style box with values", "style boxes with values"}};
    for (const auto& held : counts) {
        if (held.count > 0) {
            parts << Counted(held.count, held.one, held.many);
        }
    }
    contents = parts.join(QStringLiteral(", "));
    return true;
}

// Fills the opened destination in one transaction; an empty text when done, else why not.
QString Fill(StoreScope& target, const QJsonObject& document, bool checkEmpty) {
    if (!target.db().BeginTransaction()) {
        return QStringLiteral("cannot start a transaction") + target.because();
    }
    QString contents;
    QString error;
    if (checkEmpty && !DescribeContents(target, contents)) {
        error = QStringLiteral("cannot read it") + target.because();
    } else if (!contents.isEmpty()) {
        error = QStringLiteral(
                    "it holds a catalog (%1); plcdb copy fills only a new file, a "
                    "database without a catalog or the empty catalog of plcdb init")
                    .arg(contents);
    } else if (!CatalogDocument::Import(target.db(), document, &error)) {
        // The document's own words name the place that failed.
    } else if (!target.db().CommitTransaction()) {
        error = QStringLiteral("cannot write it") + target.because();
    }
    if (!error.isEmpty()) {
        target.db().RollbackTransaction();
    }
    return error;
}

int WriteDestination(const QString& location, const QJsonObject& document) {
    const QString shown = StoreLocation::Shown(location);
    const QString full = CliOptions::FullPath(location);
    const bool server = StoreLocation::IsServer(location);
    // A new file or a server database without a catalog gets one; a server database that
    // has one already is opened below.
    QString error;
    const bool create = server || !QFileInfo::exists(full);
    const bool created = create && ZelPlcDbIO::CreateDatabase(full, &error);
    // On a server that fails where the database has a catalog, which the open below finds.
    if (create && !created && !server) {
        return Fail(QStringLiteral("cannot create the destination %1: %2").arg(shown, error));
    }
    {
        StoreScope target;
        if (!target.db().Open(full)) {
            error = QStringLiteral("cannot open it") + target.because();
        } else if (target.db().GetLastError() == CKVModuleDB::kErrReadOnly) {
            error = QStringLiteral("it can only be read") + target.because();
        } else {
            error = Fill(target, document, !created);
        }
    }
    if (error.isEmpty()) {
        return 0;
    }
    QString undone;
    if (created && !ZelPlcDbIO::RemoveNewDatabase(full, &undone)) {
        error += QStringLiteral("; and the new catalog could not be removed again: ") + undone;
    }
    return Fail(QStringLiteral("cannot copy into the destination %1: %2; nothing was copied")
                    .arg(shown, error));
}

qsizetype TerminalRows(const QJsonArray& modules) {
    qsizetype rows = 0;
    for (const QJsonValue& module : modules) {
        rows += module[QLatin1String("terminals")].toArray().size();
    }
    return rows;
}

}  // namespace

int RunCopyCommand(const CliOptions& options) {
    CopyOptions copy;
    QString error;
    if (!ParseCopyOptions(options.arguments, copy, error)) {
        return Fail(error, kUsage);
    }
    QJsonObject document;
    if (const int status = ReadSource(copy.from, document); status != 0) {
        return status;
    }
    if (const int status = WriteDestination(copy.to, document); status != 0) {
        return status;
    }
    const QJsonArray modules = document[QLatin1String("modules")].toArray();
    const QString summary =
        QStringLiteral("copied %1 with %2, %3, %4 and the style boxes from %5 to %6\n")
            .arg(Counted(modules.size(), "module", "modules"),
                 Counted(TerminalRows(modules), "terminal row", "terminal rows"),
                 Counted(document[QLatin1String("index")].toArray().size(), "index row",
                         "index rows"),
                 Counted(document[QLatin1String("prompts")].toArray().size(), "prompt", "prompts"),
                 StoreLocation::Shown(copy.from), StoreLocation::Shown(copy.to));
    std::fputs(summary.toUtf8().constData(), stdout);
    return 0;
}
