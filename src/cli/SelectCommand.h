#pragma once

struct CliOptions;
class HostUi;

// "plcdb select": the module selection. With --catalog it answers the list of that
// catalog without a dialog; otherwise it opens the selection dialog through the
// plug-in on screen (null: there is none). Prints the list and answers 0, or prints
// nil and answers 1 on cancel.
int RunSelectCommand(const CliOptions& options, HostUi* screen);
