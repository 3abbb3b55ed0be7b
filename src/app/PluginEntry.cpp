#include "CMBApplet.h"
#include "Export.h"
#include "HostServices.h"
#include "ResourceLibrary.h"

#include <memory>

namespace {
std::unique_ptr<CMBApplet> g_applet;
}

// The plug-in's one entry point. Attach loads the resource library beside the plug-in
// and refuses the load without it; detach releases it.
extern "C" PLCDB_EXPORT HostApplet* zel_plugin_entry(int reason, HostServices* host,
                                                     QString* error) {
    if (reason != kPluginAttach) {
        g_applet.reset();
        UnloadResDll();
        SetCurrentHost(nullptr);
        return nullptr;
    }
    QString why;
    if (!LoadResDll(QStringLiteral("zel_mb"), QStringLiteral("zel_mbres"), &why)) {
        if (error) {
            *error = why;
        }
        return nullptr;
    }
    SetCurrentHost(host);
    g_applet = std::make_unique<CMBApplet>();
    return g_applet.get();
}
