#include "CliOptions.h"

#include <QMap>

namespace {

struct ValueOption {
    const char* name;
    QString CliOptions::*field;
};

const ValueOption kValueOptions[] = {
    {"--host-config", &CliOptions::hostConfig}, {"--support-path", &CliOptions::supportPath},
    {"--kv-lib", &CliOptions::kvLib},           {"--doc-set-base", &CliOptions::docSetBase},
    {"--precision", &CliOptions::precision},    {"--file", &CliOptions::fileAnswer},
    {"--plugin", &CliOptions::plugin},
};

const char* const kHostOptionsHelp =
    "Host options (any command):\n"
    "  --host-config FILE   host settings file (default: plcdb/host.ini in the user's\n"
    "                       configuration folder; PLCDB_HOST_CONFIG)\n"
    "  --support-path DIRS  folders searched for support files such as ZEL_PLC.MDB,\n"
    "                       separated by \";\" (PLCDB_SUPPORT_PATH)\n"
    "  --kv-lib DIRS        the block folders, the Lisp variable GBL_kv_lib (PLCDB_KV_LIB)\n"
    "  --doc-set-base DIR   the Lisp variable GBL_kv_DocSetBase (PLCDB_DOC_SET_BASE)\n"
    "  --precision N        decimals of numbers the host formats (PLCDB_PRECISION, 4)\n"
    "  --file PATH          the answer to the host's file questions\n"
    "  --plugin PATH        the plug-in to load (default: zel_mb beside plcdb)\n";

}  // namespace

bool CliOptions::parse(const QStringList& args, QString* error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (arg == QStringLiteral("--help") || arg == QStringLiteral("-h")) {
            help = true;
            continue;
        }
        bool matched = false;
        for (const ValueOption& option : kValueOptions) {
            const QString name = QString::fromLatin1(option.name);
            if (arg == name) {
                if (i + 1 >= args.size()) {
                    if (error) {
                        *error = QStringLiteral("%1 needs a value").arg(name);
                    }
                    return false;
                }
                this->*option.field = args[++i];
                matched = true;
            } else if (arg.startsWith(name + u'=')) {
                this->*option.field = arg.mid(name.size() + 1);
                matched = true;
            }
            if (matched) {
                break;
            }
        }
        if (matched) {
            continue;
        }
        if (command.isEmpty()) {
            command = arg;
        } else {
            arguments.append(arg);
        }
    }
    return true;
}

QString CliOptions::MainHelp() {
    return QStringLiteral(
               "plcdb - the PLC I/O module database and its standalone host\n"
               "\n"
               "Usage: plcdb [host options] COMMAND [arguments]\n"
               "\n"
               "Commands:\n"
               "  call EXPR...   call an external function as the Lisp side does and print\n"
               "                 its answer, e.g. plcdb call '(zel_delay 1)'\n"
               "  call -         read one expression a line from standard input\n"
               "\n"
               "Run 'plcdb COMMAND --help' for the details of a command.\n"
               "\n") +
           QString::fromLatin1(kHostOptionsHelp);
}

QString CliOptions::CommandHelp(const QString& command) {
    static const QMap<QString, QString> texts = {
        {QStringLiteral("call"),
         QStringLiteral(
             "Usage: plcdb [host options] call EXPR...\n"
             "       plcdb [host options] call -\n"
             "\n"
             "Loads the plug-in and calls its external functions as the drawing program's\n"
             "Lisp does. EXPR is (NAME ARG...) with NAME one of zel_mbsel, c:zel_plcedit,\n"
             "c:ZLPLCDB, c:ZLPLCMIGRATE and zel_delay. Arguments are Lisp values:\n"
             "  12  -3          integers (-32768 to 32767)\n"
             "  1.0 2.5e3       reals (with a \".\" or an exponent)\n"
             "  \"text\"          strings, with \\\" and \\\\ escapes\n"
             "  nil T           nil and true\n"
             "  '(1 \"a\" nil)   lists, also written (list 1 \"a\" nil)\n"
             "\n"
             "Each answer is printed as Lisp text on its own line; a function that returns\n"
             "nothing prints nothing (an empty line when reading standard input). With \"-\"\n"
             "one expression is read from each line of standard input.\n"
             "\n"
             "Examples:\n"
             "  plcdb call '(zel_delay 1)'\n"
             "  plcdb call \"(zel_mbsel '(0 \\\"\\\" nil \\\"3\\\" \\\"V\\\" 1.0 nil \\\"\\\" "
             "nil))\"\n"
             "\n"
             "Exit status: 0 on success, 1 when the plug-in cannot start, 2 when an\n"
             "expression cannot be read or names an unknown function.\n")},
    };
    const auto text = texts.constFind(command);
    if (text == texts.constEnd()) {
        return QString();
    }
    return *text + u'\n' + QString::fromLatin1(kHostOptionsHelp);
}
