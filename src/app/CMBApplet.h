#pragma once

#include "ZelApplet.h"

class ZelPlcDbIO;

// The plug-in application: makes the one store object and registers the external
// names with the host at each document load.
class CMBApplet : public ZelApplet {
public:
    struct ExternalName {
        const char* name;
        int code;
    };
    static const ExternalName kExternalNames[5];
    // The Lisp functions the program calls back, declared at each document load.
    static const char* const kLispFunctions[6];
    static constexpr int kStartFailed = 3;

    int initApplication() override;
    int unloadApplication() override;
    int loadDocument() override;

    // How the store object is made; replaceable so that a failure can be shown.
    using StoreFactory = ZelPlcDbIO* (*)();
    static void SetStoreFactory(StoreFactory factory);
};
