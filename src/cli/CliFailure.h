#pragma once

#include <QString>

// The one way a plcdb command reports a failure: "plcdb COMMAND: text" on standard
// error ("plcdb: text" without a command). Answers status, the exit status to end with.
int ReportFailure(const QString& command, const QString& text, int status);
