#pragma once

struct CliOptions;

// "plcdb select": the module selection. With --catalog it answers the list of that
// catalog without a dialog; otherwise it opens the selection dialog through the
// plug-in. Prints the list and answers 0, or prints nil and answers 1 on cancel.
int RunSelectCommand(const CliOptions& options, bool hasDisplay);
