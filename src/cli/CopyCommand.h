#pragma once

struct CliOptions;

// plcdb copy --from SRC --to DST: the whole catalog of one store (a file or a server
// database) into another, all or nothing. Answers the exit status: 0 when copied, 1 when
// a store refuses, 2 for a wrong call.
int RunCopyCommand(const CliOptions& options);
