#include "CMBApplet.h"
#include "CommandDispatcher.h"
#include "EditorCommand.h"
#include "Export.h"
#include "HostServices.h"
#include "Messages.h"
#include "QtMessageSink.h"
#include "ResourceLibrary.h"
#include "SelectionCommand.h"

#include <QApplication>

#include <memory>

namespace {
std::unique_ptr<CMBApplet> g_applet;
std::unique_ptr<QtMessageSink> g_messageBoxes;
}  // namespace

// The plug-in's one entry point. Attach loads the resource library beside the plug-in
// and refuses the load without it; detach releases it.
extern "C" PLCDB_EXPORT HostApplet* zel_plugin_entry(int reason, HostServices* host,
                                                     QString* error) {
    if (reason != kPluginAttach) {
        Messages::SetSink(nullptr);
        g_messageBoxes.reset();
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
    // A host with a screen gets message boxes; a headless one keeps standard error.
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        g_messageBoxes = std::make_unique<QtMessageSink>();
        Messages::SetSink(g_messageBoxes.get());
    }
    CommandDispatcher::SetSelectionRunner(&RunSelectionDialog);
    CommandDispatcher::SetEditorRunner(&RunEditorDialog);
    g_applet = std::make_unique<CMBApplet>();
    return g_applet.get();
}
