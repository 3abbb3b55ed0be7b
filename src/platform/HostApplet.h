#pragma once

#include <QString>

class HostServices;

// A plug-in application as the host sees it: the host's message handlers.
class HostApplet {
public:
    virtual ~HostApplet() = default;

    // Answers 0 on success, else the host's error code (3 ends the application).
    virtual int initApplication() { return 0; }
    virtual int unloadApplication() { return 0; }
    virtual int loadDocument() { return 0; }
    virtual int unloadDocument() { return 0; }
    // Called for a function code that no registered function answers; 1 when handled.
    virtual int invokeExternalFunction(int code);
};

enum PluginReason : int { kPluginDetach = 0, kPluginAttach = 1 };

// The one C entry point of a plug-in. At attach it takes the host and answers its
// applet, or null and a reason in error; at detach it releases what attach took.
using PluginEntry = HostApplet* (*)(int reason, HostServices* host, QString* error);
inline constexpr const char* kPluginEntryName = "zel_plugin_entry";
