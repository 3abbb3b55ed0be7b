#pragma once

#include <QString>

// A real Lisp reader (sbcl, else clisp) for checking that printed Lisp text reads.
struct RealLispRun {
    bool found = false;  // false when neither sbcl nor clisp is on PATH
    bool finished = false;
    QString output;  // standard output, blanks simplified
};

// Runs form, which reads its datum from standard input with (read), on input. Reals
// read as doubles, as the host's Lisp reads them.
RealLispRun RunRealLisp(const QString& form, const QString& input);
