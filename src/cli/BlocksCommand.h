#pragma once

#include <QString>

struct CliOptions;

// "plcdb blocks": the terminal block list as the database editor reads it, printed as
// one line of JSON, or with --find the one-based index of a block found by name
// (mode 1) or description (mode 2), -1 when none. Answers 0, 1 when the settings file
// is missing or unreadable, 2 for a wrong call.
int RunBlocksCommand(const CliOptions& options);
