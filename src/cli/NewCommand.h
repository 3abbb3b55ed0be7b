#pragma once

struct CliOptions;

// plcdb new: makes one module as the new-module dialog's OK does, with the defaults of
// the default files for what the command line leaves out, and prints it as the export
// document's module object. 0 made, 1 not made (the store is unchanged), 2 wrong call.
int RunNewCommand(const CliOptions& options);
