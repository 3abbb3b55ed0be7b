#pragma once

#include "HostValue.h"

#include <QString>

// Lisp text for typed value lists, so the command line and the tests can speak the host's
// language without a host.
class LispText {
public:
    // Prints the cells as Lisp text: each top-level item, separated by single blanks.
    static QString Print(const HostValue& value);
    // Reads exactly one datum (data syntax) into cells; false and a clear message in error on
    // bad input.
    static bool Read(const QString& text, HostValue& value, QString* error = nullptr);
    // Reads a call "(NAME ARG...)"; each ARG is an evaluated form (a constant, a quoted list or
    // (list ARG...)) appended to args as cells. False and a message on bad input.
    static bool ReadCall(const QString& text, QString& name, HostValue& args,
                         QString* error = nullptr);
};
