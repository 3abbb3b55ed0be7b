#pragma once

struct CliOptions;
class HostUi;

// "plcdb edit": opens the database editor through the plug-in, as "c:zel_plcedit" does,
// on screen (null: there is none, and it says so). --db names the database the editor
// finds. Answers the exit status.
int RunEditCommand(const CliOptions& options, HostUi* screen);
