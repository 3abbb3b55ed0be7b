#pragma once

struct CliOptions;

// The data commands of plcdb: they work on a database file without the plug-in.
// Each answers the exit status: 0, 1 when the work failed, 2 for a wrong call.
int RunInitCommand(const CliOptions& options);
int RunListCommand(const CliOptions& options);
int RunExportCommand(const CliOptions& options);
int RunImportCommand(const CliOptions& options);
