#pragma once

#include <QByteArray>
#include <QString>

struct CliOptions;

// A command's input file, "-" for standard input; false and a reason when it can't be read.
bool ReadInput(const QString& name, QByteArray& data, QString* error);
// A command's output: the file, written whole or not at all, or standard output for an
// empty name or "-".
bool WriteOutput(const QString& name, const QByteArray& data, QString* error);

// The data commands of plcdb: they work on a database file without the plug-in.
// Each answers the exit status: 0, 1 when the work failed, 2 for a wrong call.
int RunInitCommand(const CliOptions& options);
int RunListCommand(const CliOptions& options);
int RunExportCommand(const CliOptions& options);
int RunImportCommand(const CliOptions& options);
