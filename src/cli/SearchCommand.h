#pragma once

struct CliOptions;

// plcdb search TEXT [--limit N] [--json]: the modules whose catalog, description or column
// texts hold TEXT, as the search field of the dialogs finds them. Answers the exit status:
// 0 with matches, 1 without, 2 for a wrong call or a database that cannot be read.
int RunSearchCommand(const CliOptions& options);
