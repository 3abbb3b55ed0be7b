#pragma once

#include "HostValue.h"

#include <QString>

// Function codes of the external names.
enum ExternalCode : int {
    kCodeSelectModule = 5000,  // "zel_mbsel"
    kCodeEditor = 5001,        // "c:zel_plcedit"
    kCodeEditorDb = 5002,      // "c:ZLPLCDB"
    kCodeMigrate = 5003,       // "c:ZLPLCMIGRATE"
    kCodeDelay = 5004,         // "zel_delay"
};

// What the Lisp side hands "zel_mbsel", checked and converted.
struct SelectionArgs {
    QString strPath;          // with every "/" turned into "\"
    bool bSetupFlag = false;  // place 3
    int nStyle = 0;           // place 4, read as a number
    int nOrientation = 1;     // 2 for "V", else 1
    double dScale = 0.0;      // place 6
    bool bExtraFlag = false;  // place 7
    bool bGroupB = false;     // place 9
};

// The one place that knows the function codes: every external call lands here.
class CommandDispatcher {
public:
    // Registered with the host for every code; 1 when the code was handled.
    static int Dispatch();

    // Ten typed cells: false on a missing cell or a wrong type at any checked place.
    static bool ParseSelectionArgs(const HostValue& args, SelectionArgs& out);
    // Milliseconds "zel_delay" sleeps: a positive short argument, else 101 to 200.
    static int DelayMilliseconds(const HostValue& args);

    // The dialogs are reached through these, set by the layer that has them.
    using SelectionRunner = bool (*)(const SelectionArgs& args, HostValue& result);
    using EditorRunner = bool (*)();  // true when it ended with OK and asks for an insert
    static void SetSelectionRunner(SelectionRunner runner);
    static void SetEditorRunner(EditorRunner runner);

private:
    static bool RunSelection(const HostValue& args);
    static void RunEditor();
    static void RunDelay(const HostValue& args);
};
