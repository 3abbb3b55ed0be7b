#include "CliOptions.h"

#include "StoreLocation.h"

#include <QFileInfo>
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
    {"--plugin", &CliOptions::plugin},          {"--db", &CliOptions::database},
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
    "  --plugin PATH        the plug-in to load (default: zel_mb beside plcdb)\n"
    "  --db DB              the database: a file, or a PostgreSQL server as a URI\n"
    "                       (postgresql://USER@HOST/NAME) or as key=value text\n"
    "                       (\"host=HOST dbname=NAME\"); the host answers its lookup of\n"
    "                       ZEL_PLC.MDB with DB (default: database of the host settings,\n"
    "                       PLCDB_DB, else ZEL_PLC.MDB found on the support path)\n";

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

QString CliOptions::FullPath(const QString& typed) {
    if (typed.isEmpty() || StoreLocation::IsServer(typed)) {
        return typed;
    }
    return QFileInfo(typed).absoluteFilePath();
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
               "  init DB        create a new, empty database: a file, or the tables in an\n"
               "                 empty database on a PostgreSQL server\n"
               "  copy           copy a whole catalog from one database to another, such\n"
               "                 as from a file to a server: --from DB --to DB\n"
               "  list           show the manufacturers, series, types and catalogs\n"
               "  export [OUT]   write the whole database as one JSON document\n"
               "  import IN      add a JSON document to the database\n"
               "  search TEXT    find modules by a part of their catalog or texts\n"
               "  new            make a new module with the defaults of the default files\n"
               "  select         pick a module in the selection dialog and print its list,\n"
               "                 or, with --catalog, print the list without a dialog\n"
               "  blocks         show the terminal block list with the attributes of each\n"
               "                 block's drawing, find a block in it, or change it: add,\n"
               "                 remove, set-style, set-orientation, merge\n"
               "  terminals      write a module's terminal rows as CSV, or replace them\n"
               "                 from such a file: export, import\n"
               "  edit           open the database editor\n"
               "  check          report what is amiss in the database, such as rows whose\n"
               "                 block is not in the terminal block list\n"
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
        {QStringLiteral("select"),
         QStringLiteral(
             "Usage: plcdb [--db FILE] select [--style N] [--orient H|V] [--scale X]\n"
             "                              [--lock] [--extra] [--group-b]\n"
             "       plcdb [--db FILE] select --manufacturer M --series S --type T\n"
             "                              --catalog C [the same options]\n"
             "\n"
             "Opens the module selection dialog, as the drawing program does when a PLC\n"
             "symbol is placed, and prints the value list the Lisp side receives: the\n"
             "module list, terminal lists A and B, the break flag and the choices. On\n"
             "Cancel it prints nil and ends with exit status 1.\n"
             "\n"
             "With --catalog no dialog opens: the catalog is looked up as the tree does\n"
             "(names without regard to case) and the very list the dialog would give\n"
             "for these choices is printed. This form needs no display.\n"
             "\n"
             "  --style N       drawing style 1 to 9 (default 1; any other number gives 1)\n"
             "  --orient H|V    orientation (default V)\n"
             "  --scale X       scale (default 1.0), kept to the host's decimals\n"
             "  --lock          style and orientation may not be changed in the dialog\n"
             "  --extra         the extra flag of the choice list\n"
             "  --group-b       the module's box group B instead of group A\n")},
        {QStringLiteral("blocks"),
         QStringLiteral(
             "Usage: plcdb [host options] blocks [--dir FOLDER]\n"
             "       plcdb [host options] blocks [--dir FOLDER] --find TEXT [--mode 1|2]\n"
             "       plcdb [host options] blocks [--dir FOLDER] ACTION ...\n"
             "\n"
             "Reads the terminal block settings file kvmbblks.bsf as the database editor\n"
             "does, with the attribute definitions of each block's drawing (NAME.SHT, found\n"
             "in the block folders of --kv-lib), and prints it as one line of JSON:\n"
             "  {\"format\":\"plcdb-blocks\",\"version\":1,\"directory\":\"DIR\",\n"
             "   \"blocks\":[{\"index\":1,\"file\":\"HP1DI.SHT\",\"category\":\"Digital\",\n"
             "     \"description\":\"Digital input\",\"sample\":\"hpdi.bmp\",\n"
             "     \"attributes\":[{\"tag\":\"TERM\",\"prompt\":\"Terminal\",\"x\":0,\"y\":0,\n"
             "       \"z\":0,\"height\":2.5,\"rotation\":0,\"widthFactor\":1,\"oblique\":0,\n"
             "       \"horizontalMode\":0,\"verticalMode\":0}]}]}\n"
             "Blocks come in the order of the file, attributes sorted by tag.\n"
             "\n"
             "  --dir FOLDER    the folder of kvmbblks.bsf (default: that of the variable\n"
             "                  GBL_kv_DocSetBase when the file is there, else the support\n"
             "                  path's)\n"
             "  --find TEXT     print the index (from 1) of the first block that matches,\n"
             "                  or -1\n"
             "  --mode 1|2      1 (default): TEXT is a block name as a module stores it,\n"
             "                  such as HP?DI; 2: TEXT is a block description\n"
             "\n"
             "Actions change the list as OK of the editor's Block Definitions dialog does\n"
             "and then print it as above:\n"
             "  add FILE --category C --description D [--sample S]\n"
             "                  appends a block; FILE is the drawing's name as the block\n"
             "                  folders have it (.SHT may be left out), S a picture on the\n"
             "                  support path\n"
             "  remove INDEX    removes block INDEX (from 1, as listed)\n"
             "  set-style N     gives every name of the HP and VP families (in block file\n"
             "                  and sample) style N, 1 to 9, and the orientation of block 1\n"
             "  set-orientation H|V\n"
             "                  gives every such name orientation H or V and the style of\n"
             "                  block 1\n"
             "  merge --manufacturer M --series S --type T --catalog C [--category K]\n"
             "                  appends the terminal blocks of that module (in --db FILE)\n"
             "                  that no block names in any style or orientation; the new\n"
             "                  blocks get category K and their file name as description\n"
             "Before writing, the dialog's checks run: every block needs file, category\n"
             "and description, descriptions differ (case ignored), and each drawing and\n"
             "picture must be found. A failed check prints its reason, changes nothing\n"
             "and ends with status 1; so does a merge that adds blocks without\n"
             "--category. Comment lines of kvmbblks.bsf are not kept by a change.\n"
             "\n"
             "Exit status: 0 on success, 1 when the settings file is missing or cannot be\n"
             "read or written or a change is refused, 2 for a wrong call.\n")},
        {QStringLiteral("edit"),
         QStringLiteral(
             "Usage: plcdb [--db FILE] edit\n"
             "\n"
             "Opens the database editor through the plug-in, as the drawing program's\n"
             "commands c:zel_plcedit and c:ZLPLCDB do (plcdb call \"(c:zel_plcedit)\" is the\n"
             "same). The tree on the left renames, deletes, copies and moves at once; the\n"
             "terminal rows of the selected module are written on Save, or when you say\n"
             "so on leaving it. Insert closes the editor and sends _.kv_inplc to the\n"
             "command line, which the host shows as \"Command line: _.kv_inplc\\n\".\n"
             "\n"
             "With --db FILE the editor works on FILE, which must exist, or on the\n"
             "catalog of a server given as --db URI.\n"
             "\n"
             "Exit status: 0 when the editor ran, 1 when the database or the plug-in\n"
             "cannot be found, 2 without a display or with an unknown argument.\n")},
        {QStringLiteral("check"),
         QStringLiteral(
             "Usage: plcdb [--db FILE] check [--blocks FOLDER] [--json]\n"
             "\n"
             "Reads the whole database, without writing it, and the terminal block list\n"
             "(kvmbblks.bsf in FOLDER, else where plcdb blocks finds it; without one the\n"
             "block names are not checked), and prints each finding as a line\n"
             "  SEVERITY CODE MANUFACTURER / SERIES / TYPE / CATALOG / row N: SENTENCE\n"
             "with the parts that apply, then a summary line. Errors: unknown-block,\n"
             "missing-prompt, both-show-flags, both-address-flags, extra-count-not-number,\n"
             "box-not-number, missing-style-rows, needs-migration, module-without-index.\n"
             "Warnings: empty-type, empty-description.\n"
             "\n"
             "  --blocks FOLDER the folder of kvmbblks.bsf\n"
             "  --json          one JSON document instead:\n"
             "  {\"database\":\"PATH\",\"blockList\":\"PATH\" or "
             "null,\"errors\":N,\"warnings\":N,\n"
             "   \"findings\":[{\"severity\":\"error\",\"code\":\"unknown-block\",\n"
             "     \"manufacturer\":\"M\",\"series\":\"S\",\"type\":\"T\",\"catalog\":\"C\",\n"
             "     \"row\":3,\"message\":\"...\"}]}\n"
             "  with null for the parts of the place that do not apply.\n"
             "\n"
             "Exit status: 0 when nothing is an error, 1 when something is, 2 when the\n"
             "database or the block list cannot be read, or for a wrong call.\n")},
        {QStringLiteral("terminals"),
         QStringLiteral(
             "Usage: plcdb [host options] terminals export --manufacturer M --series S\n"
             "                 --type T --catalog C [--dir FOLDER] [OUT]\n"
             "       plcdb [host options] terminals import --manufacturer M --series S\n"
             "                 --type T --catalog C [--dir FOLDER] IN\n"
             "\n"
             "export writes the terminal rows of the module (in --db FILE, found as the\n"
             "module tree finds it) as CSV to OUT, or to standard output when OUT is\n"
             "missing or \"-\": UTF-8, lines ending in CR LF, a field with a comma, quote\n"
             "or line end in quotes. The header names the editor's five columns, Terminal,\n"
             "Show, Re-prompt, Break and Spacing, with the texts the grid shows (the\n"
             "block's description, or the stored name when the block list lacks it; the\n"
             "choice lines; 1 or 0; the spacing, which below 0.1 the grid shows without\n"
             "its zeros in front, .750 for 0.075), then one column per NAME of the rows'\n"
             "NAME=VALUE tokens in order of first use (attribute values, and prompts as\n"
             "%%1PROMPT), and \"Other tokens (;)\" for the tokens that fit no column.\n"
             "\n"
             "import replaces the module's rows with those of IN (\"-\" for standard\n"
             "input), all or nothing: each cell that cannot be read is named by row and\n"
             "column, and the database is then unchanged. A row that IN shows as export\n"
             "would keeps its stored text exactly.\n"
             "\n"
             "  --dir FOLDER    the folder of kvmbblks.bsf, as for plcdb blocks\n"
             "\n"
             "Exit status: 0 on success, 1 when the database, the block list or IN cannot\n"
             "be read or written or IN is refused, 2 for a wrong call or a module that\n"
             "is not in the database.\n")},
        {QStringLiteral("init"),
         QStringLiteral("Usage: plcdb init FILE\n"
                        "       plcdb init URI\n"
                        "\n"
                        "Creates a new, empty module database: no modules, the nine style rows\n"
                        "and an empty prompt table. An existing file is left alone. With the\n"
                        "URI of a database on a PostgreSQL server (postgresql://USER@HOST/NAME,\n"
                        "or key=value text such as \"host=HOST dbname=NAME\"), the catalog's\n"
                        "tables are made in that database, which must exist and hold none of\n"
                        "them yet.\n"
                        "\n"
                        "Exit status: 0 when made, 1 when not (the reason is printed), 2 for a\n"
                        "wrong call.\n")},
        {QStringLiteral("copy"),
         QStringLiteral(
             "Usage: plcdb copy --from SRC --to DST\n"
             "\n"
             "Copies the whole catalog of SRC into DST: the index, every module with its\n"
             "data, box dimensions and terminal rows in their order, the style boxes and\n"
             "the prompts. SRC and DST are database files or PostgreSQL servers, given\n"
             "as for --db (a URI or key=value text), in any of the four pairings. SRC is\n"
             "only read.\n"
             "\n"
             "DST may be a file that does not exist yet, which is made; a server database\n"
             "without a catalog, which gets one; or an empty catalog that plcdb init made.\n"
             "A DST that holds modules, index rows, prompts or style box values is refused\n"
             "and left as it is. The copy is one transaction on DST: when it fails, DST\n"
             "is as it was, and a file or catalog that the copy made is removed again.\n"
             "A server is named in messages without its password. On success one line\n"
             "tells what was copied.\n"
             "\n"
             "Exit status: 0 when copied, 1 when SRC or DST refuses (the message names\n"
             "which and why), 2 for a wrong call.\n")},
        {QStringLiteral("list"),
         QStringLiteral("Usage: plcdb [--db FILE] list\n"
                        "\n"
                        "Shows the database as an indented tree: manufacturers, their series,\n"
                        "the types of each series and the catalog numbers of each type.\n")},
        {QStringLiteral("search"),
         QStringLiteral(
             "Usage: plcdb [--db FILE] search TEXT [--limit N] [--json]\n"
             "\n"
             "Lists the modules whose catalog, description or one of the three column\n"
             "texts holds TEXT, case ignored, as the search field of the selection dialog\n"
             "and the editor finds them: in the order of manufacturer, series, type and\n"
             "catalog, at most N of them (50). Each match is one line of manufacturer,\n"
             "series, type, catalog and description, separated by tabs (a tab or line\n"
             "break in a text becomes a blank); with --json one JSON array of objects with\n"
             "the keys manufacturer, series, type, catalog and description.\n"
             "\n"
             "Exit status: 0 with matches, 1 without, 2 for a wrong call or a database\n"
             "that cannot be read.\n")},
        {QStringLiteral("export"),
         QStringLiteral(
             "Usage: plcdb [--db FILE] export [OUT]\n"
             "\n"
             "Writes the whole database as one JSON document to OUT, or to standard\n"
             "output when OUT is missing or \"-\". The texts are those of the store:\n"
             "  {\"format\":\"plcdb\",\"version\":1,\n"
             "   \"index\":[{\"manufacturer\":\"M\",\"series\":\"S\",\"type\":\"T\"}],\n"
             "   \"modules\":[{\"manufacturer\":\"M\",\"series\":\"S\",\"type\":\"T\",\n"
             "                \"spec\":{\"Code\":\"C1\",\"BoxA1\":\"12.5 mm\"},\n"
             "                \"terminals\":[{\"text\":\"HP?SPACE\",\"special\":\"TERM_=1\"}]}],\n"
             "   \"styles\":[{\"number\":1,\"BoxA1\":\"1 in\"}],\n"
             "   \"prompts\":[{\"prompt\":\"SLOT\",\"localized\":\"SLOT\"}]}\n"
             "Empty texts are left out of \"spec\" and \"styles\".\n")},
        {QStringLiteral("new"),
         QStringLiteral(
             "Usage: plcdb [--db FILE] new --manufacturer M --series S --type T --catalog C\n"
             "                           [--terminals N] [--description D]\n"
             "                           [--col-text1 X] [--col-text2 X] [--col-text3 X]\n"
             "                           [--spec-note X] [--spec-tail X]\n"
             "                           [--address-base octal|decimal|hexadecimal|none]\n"
             "                           [--direction in|out|both|none]\n"
             "                           [--prompt TEXT]... [--box NAME=VALUE[UNIT]]...\n"
             "\n"
             "Makes one module as OK of the database editor's new-module dialog does, and\n"
             "prints it as export shows it in \"modules\". A new manufacturer, series or\n"
             "type gets its index row. What is not given comes from the default files of\n"
             "the program folder (beside plcdb, or program_dir of the host settings):\n"
             "KVDEFINF.DAT (column text 2, the number of terminals, the --spec-note and\n"
             "--spec-tail files), KVDEFPMT.DAT (the prompts, one a line). Row 1 of the\n"
             "terminals holds the manufacturer, the catalog and the description (cut to\n"
             "60 characters).\n"
             "\n"
             "  --manufacturer, --series  at most 24 characters; --type, --catalog 60;\n"
             "                  blanks at both ends are dropped\n"
             "  --terminals N   1 to 10000 (default from KVDEFINF.DAT, else 8)\n"
             "  --address-base  default none\n"
             "  --direction     default in\n"
             "  --prompt TEXT   prompt 1, 2, ... in order, at most 9; given once, it\n"
             "                  replaces all prompts of KVDEFPMT.DAT\n"
             "  --box NAME=VALUE[UNIT]  a box dimension, NAME A1 to A6 or B1 to B6, e.g.\n"
             "                  A1=12.5mm; a group with any text needs one of values 1 to 4,\n"
             "                  and a unit needs its value\n"
             "\n"
             "Exit status: 0 when the module was made, 1 when not (the catalog exists in\n"
             "its type, the type's table needs c:ZLPLCMIGRATE first, the database cannot\n"
             "be opened or written); the database is then unchanged. 2 for a wrong call.\n")},
        {QStringLiteral("import"),
         QStringLiteral("Usage: plcdb [--db FILE] import IN\n"
                        "\n"
                        "Adds the JSON document IN (\"-\" for standard input), in the form that\n"
                        "export writes, to the database. A missing key reads as an empty text,\n"
                        "and a module's index row is made when it is missing. A catalog number\n"
                        "that exists already in its type is an error; then nothing of the\n"
                        "document is written. Style rows are replaced.\n")},
    };
    const auto text = texts.constFind(command);
    if (text == texts.constEnd()) {
        return QString();
    }
    return *text + u'\n' + QString::fromLatin1(kHostOptionsHelp);
}
