#pragma once

#include <QString>
#include <QStringList>

// The command line of plcdb: host options anywhere before or after the command,
// then the command's own arguments.
struct CliOptions {
    QString command;        // empty when none was given
    QStringList arguments;  // the command's arguments, options it does not know included
    bool help = false;
    QString hostConfig;   // --host-config FILE
    QString supportPath;  // --support-path "DIR;DIR"
    QString kvLib;        // --kv-lib "DIR;DIR"
    QString docSetBase;   // --doc-set-base DIR
    QString precision;    // --precision N
    QString fileAnswer;   // --file PATH
    QString plugin;       // --plugin PATH
    QString database;     // --db FILE

    // False and a message in error when an option lacks its value.
    bool parse(const QStringList& args, QString* error);

    // A path of the command line as the program uses it: relative to the current folder,
    // made absolute. Messages name the path as the user typed it.
    static QString FullPath(const QString& typed);

    static QString MainHelp();
    // The help of a command, or a null text for a command that does not exist.
    static QString CommandHelp(const QString& command);
};
