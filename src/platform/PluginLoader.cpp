#include "PluginLoader.h"

#include "HostServices.h"

PluginLoader::~PluginLoader() {
    unload();
}

bool PluginLoader::load(const QString& path, QString* error) {
    unload();
    const auto fail = [&](const QString& reason) {
        if (error) {
            *error = reason;
        }
        unload();
        return false;
    };
    m_library.setFileName(path);
    if (!m_library.load()) {
        return fail(
            QStringLiteral("cannot load the plug-in %1: %2").arg(path, m_library.errorString()));
    }
    m_entry = reinterpret_cast<PluginEntry>(m_library.resolve(kPluginEntryName));
    if (!m_entry) {
        return fail(QStringLiteral("%1 is no plug-in: it lacks %2")
                        .arg(m_library.fileName(), QString::fromLatin1(kPluginEntryName)));
    }
    SetCurrentHost(&m_host);
    QString reason;
    m_applet = m_entry(kPluginAttach, &m_host, &reason);
    if (!m_applet) {
        return fail(
            QStringLiteral("the plug-in %1 refused to load: %2").arg(m_library.fileName(), reason));
    }
    const int started = m_applet->initApplication();
    if (started != 0) {
        return fail(QStringLiteral("the plug-in %1 failed to start (code %2)")
                        .arg(m_library.fileName())
                        .arg(started));
    }
    m_applet->loadDocument();
    return true;
}

void PluginLoader::unload() {
    if (m_applet) {
        m_applet->unloadDocument();
        m_applet->unloadApplication();
        m_applet = nullptr;
    }
    if (m_entry) {
        m_entry(kPluginDetach, &m_host, nullptr);
        m_entry = nullptr;
    }
    if (m_library.isLoaded()) {
        m_library.unload();
    }
}
