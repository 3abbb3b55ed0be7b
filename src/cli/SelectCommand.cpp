#include "SelectCommand.h"

#include "CKVModuleDB.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "CrtNumbers.h"
#include "DatabaseSession.h"
#include "HostSession.h"
#include "LispText.h"
#include "SelectionChoices.h"
#include "SelectionList.h"

#include <cstdio>

namespace {

constexpr int kCancelled = 1;
constexpr int kUsage = 2;

struct SelectOptions {
    int style = 1;
    bool horizontal = false;
    double scale = 1.0;
    bool lock = false;
    bool extra = false;
    bool groupB = false;
    QString manufacturer, series, type, catalog;
    bool headless() const { return !catalog.isEmpty(); }
};

int Fail(const QString& text, int status) {
    return ReportFailure(QStringLiteral("select"), text, status);
}

bool ParseSelectOptions(const QStringList& args, SelectOptions& out, QString& error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        const auto value = [&](QString& target) {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(arg);
                return false;
            }
            target = args[++i];
            return true;
        };
        QString text;
        if (arg == QStringLiteral("--lock")) {
            out.lock = true;
        } else if (arg == QStringLiteral("--extra")) {
            out.extra = true;
        } else if (arg == QStringLiteral("--group-b")) {
            out.groupB = true;
        } else if (arg == QStringLiteral("--style")) {
            if (!value(text)) {
                return false;
            }
            out.style = crt::wtoi(text);
        } else if (arg == QStringLiteral("--orient")) {
            if (!value(text)) {
                return false;
            }
            if (text.compare(QStringLiteral("H"), Qt::CaseInsensitive) != 0 &&
                text.compare(QStringLiteral("V"), Qt::CaseInsensitive) != 0) {
                error = QStringLiteral("--orient takes H or V");
                return false;
            }
            out.horizontal = text.compare(QStringLiteral("H"), Qt::CaseInsensitive) == 0;
        } else if (arg == QStringLiteral("--scale")) {
            if (!value(text)) {
                return false;
            }
            out.scale = crt::wtof(text);
        } else if (arg == QStringLiteral("--manufacturer")) {
            if (!value(out.manufacturer)) {
                return false;
            }
        } else if (arg == QStringLiteral("--series")) {
            if (!value(out.series)) {
                return false;
            }
        } else if (arg == QStringLiteral("--type")) {
            if (!value(out.type)) {
                return false;
            }
        } else if (arg == QStringLiteral("--catalog")) {
            if (!value(out.catalog)) {
                return false;
            }
        } else {
            error = QStringLiteral("unknown argument %1").arg(arg);
            return false;
        }
    }
    return true;
}

void PrintAnswer(const HostValue& chain) {
    // The host hands the Lisp side the chain as one list.
    const HostValue list = HostValue().begin().append(chain).end();
    std::printf("%s\n", LispText::Print(list).toUtf8().constData());
}

int SelectWithoutDialog(const CliOptions& options, const SelectOptions& select) {
    DatabaseSession session;
    QString error;
    // The host formats the numbers of the list, as it does for the dialog.
    if (!session.open(options, &error, true)) {
        return Fail(error, kCancelled);
    }
    CatalogPath path;
    if (session.findCatalog(select.manufacturer, select.series, select.type, select.catalog, path,
                            error) != DatabaseSession::Found::Yes) {
        return Fail(error, kCancelled);
    }
    const int handle = session.db().LoadModule(path.table, path.catalog, false);
    if (handle == -1) {
        const QString reason = session.db().GetLastFailure();
        return Fail(QStringLiteral("cannot read the module %1%2")
                        .arg(path.catalog, reason.isEmpty() ? QString() : ": " + reason),
                    kCancelled);
    }
    CKVModule module = session.db().GetModule(handle);
    session.db().ReleaseModule(handle);
    module.SetManufacturer(path.manufacturer);
    module.SetTableName(path.table);
    // The dialog's rules for the choices, as if they had come from the Lisp side.
    SelectionChoices choices;
    choices.SetStyle(select.style);
    choices.SetScale(select.scale);
    choices.SetHorizontal(select.horizontal);
    choices.SetExtra(select.extra);
    HostValue answer;
    if (!BuildSelectionAnswer(module, &session.db(), choices, select.groupB, answer)) {
        std::printf("nil\n");
        return kCancelled;
    }
    PrintAnswer(answer);
    return 0;
}

int SelectWithDialog(const CliOptions& options, const SelectOptions& select, HostUi& screen) {
    HostSession session;
    QString error;
    if (!session.start(options, &error)) {
        return Fail(error, kCancelled);
    }
    session.host().setUi(&screen);
    HostValue args;
    args.begin().shortInt(0);
    options.database.isEmpty() ? args.nil() : args.string(CliOptions::FullPath(options.database));
    select.lock ? args.shortInt(1) : args.nil();
    args.string(QString::number(select.style));
    args.string(select.horizontal ? QStringLiteral("H") : QStringLiteral("V"));
    args.real(select.scale);
    select.extra ? args.shortInt(1) : args.nil();
    args.string(QString());
    select.groupB ? args.shortInt(1) : args.nil();
    args.end();
    const StandaloneHost::CallResult result =
        session.host().callExternal(QStringLiteral("zel_mbsel"), args);
    if (result.answer != StandaloneHost::Answer::List) {
        std::printf("nil\n");
        return kCancelled;
    }
    std::printf("%s\n", LispText::Print(result.value).toUtf8().constData());
    return 0;
}

}  // namespace

int RunSelectCommand(const CliOptions& options, HostUi* screen) {
    SelectOptions select;
    QString error;
    if (!ParseSelectOptions(options.arguments, select, error)) {
        return Fail(error, kUsage);
    }
    if (select.headless()) {
        return SelectWithoutDialog(options, select);
    }
    if (!screen) {
        return Fail(QStringLiteral("there is no display for the selection dialog; choose the "
                                   "module on the command line instead: plcdb select "
                                   "--manufacturer M --series S --type T --catalog C"),
                    kUsage);
    }
    return SelectWithDialog(options, select, *screen);
}
