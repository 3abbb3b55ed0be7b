#pragma once

#include <QString>

// The folder of the terminal block settings file as the editor finds it: the folder of
// the Lisp variable "GBL_kv_DocSetBase" when the file is there, else the folder where
// the host's support path has it. Native separators; empty when not found. With
// bReportError the host reports a miss on the support path.
class BlockSettingsFolder {
public:
    static QString Find(bool bReportError);
};
