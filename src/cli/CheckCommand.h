#pragma once

struct CliOptions;

// "plcdb check": reads the whole database, and the terminal block list where one is
// found, and prints what is amiss, one finding a line or as one JSON document. Answers 0
// when nothing is an error, 1 when something is, 2 when the database or the block list
// cannot be read, or for a wrong call.
int RunCheckCommand(const CliOptions& options);
