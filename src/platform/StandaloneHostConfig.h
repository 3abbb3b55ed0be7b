#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

// What the standalone host answers for the family's Lisp side: its search path, the
// family's variables, its number precision and its message translations. Read from a
// plain INI file (groups host, variables, messages); environment variables and
// command-line options override it.
struct StandaloneHostConfig {
    QStringList supportPath;           // folders searched for support files, in order
    QString kvLib;                     // "GBL_kv_lib": block folders separated by ";"
    QString docSetBase;                // "GBL_kv_DocSetBase"
    int linearPrecision = 4;           // decimals of numbers formatted with precision -1
    QMap<QString, QString> variables;  // further variables, by upper-case name
    QMap<QString, QString> messages;   // translations of "c:kv_msg", by key
    QString fileAnswer;                // the answer to every file question, when set
    QString databaseFile;              // the answer to the lookup of "ZEL_PLC.MDB", when set:
                                       // a file, or a server's connection text
    QString programDir;                // the folder of the program's own files, when set

    // Reads the file; a missing file leaves the defaults. False and a reason in error
    // when the file exists but cannot be read.
    bool load(const QString& file, QString* error = nullptr);
    // PLCDB_SUPPORT_PATH, PLCDB_KV_LIB, PLCDB_DOC_SET_BASE, PLCDB_PRECISION,
    // PLCDB_PROGRAM_DIR, PLCDB_DB.
    void applyEnvironment();

    // The value of a variable for "zel_get_var"; null when there is none.
    QString variable(const QString& name) const;
    // A path list as written in settings and variables: ";" between folders.
    static QStringList SplitPathList(const QString& text);
};
