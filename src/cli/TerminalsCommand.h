#pragma once

struct CliOptions;

// "plcdb terminals export|import": one module's terminal rows as CSV, with the texts of
// the editor's terminal grid, looked up in the block list as "plcdb blocks" finds it.
// Answers 0, 1 when the work failed or the CSV was refused (the store is then
// unchanged), 2 for a wrong call or a module that is not in the database.
int RunTerminalsCommand(const CliOptions& options);
