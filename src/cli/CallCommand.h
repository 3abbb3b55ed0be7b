#pragma once

#include <QStringList>

#include <cstdio>

class StandaloneHost;

// "plcdb call": each expression is a call of an external function; its answer is
// printed as Lisp text. Answers the exit status: 0, or 2 when an expression could
// not be read or named no external function.
int RunCallCommand(StandaloneHost& host, const QStringList& expressions, std::FILE* input);
