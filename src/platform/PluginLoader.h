#pragma once

#include "HostApplet.h"

#include <QLibrary>
#include <QString>

class HostServices;

// Loads a plug-in into a host and takes it through its life: attach, init-application
// and load-document on load; unload-document, unload-application and detach at the end.
class PluginLoader {
public:
    explicit PluginLoader(HostServices& host) : m_host(host) {}
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    // path without the platform's suffix is fine. False and a reason when the plug-in
    // cannot be loaded, refuses to attach or fails to start.
    bool load(const QString& path, QString* error);
    void unload();
    HostApplet* applet() const { return m_applet; }

private:
    HostServices& m_host;
    QLibrary m_library;
    PluginEntry m_entry = nullptr;
    HostApplet* m_applet = nullptr;
};
