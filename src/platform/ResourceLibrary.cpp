#include "ResourceLibrary.h"

#include "ZelUtils.h"

#include <QDir>
#include <QFile>

namespace {
ResourceLibrary* g_current = nullptr;
std::unique_ptr<ResourceLibrary> g_loaded;
}  // namespace

std::unique_ptr<ResourceLibrary> ResourceLibrary::Load(const QString& folder,
                                                       const QString& baseName, QString* error) {
    std::unique_ptr<ResourceLibrary> resources(new ResourceLibrary);
    resources->m_library.setFileName(QDir(folder).filePath(baseName));
    if (!resources->m_library.load()) {
        if (error) {
            *error = QStringLiteral("cannot load the resource library %1 from %2: %3")
                         .arg(baseName, QDir::toNativeSeparators(folder),
                              resources->m_library.errorString());
        }
        return nullptr;
    }
    resources->m_string =
        reinterpret_cast<StringFunction>(resources->m_library.resolve(kStringEntry));
    if (!resources->m_string) {
        if (error) {
            *error = QStringLiteral("%1 is no resource library: it lacks %2")
                         .arg(resources->m_library.fileName(), QString::fromLatin1(kStringEntry));
        }
        resources->m_library.unload();
        return nullptr;
    }
    return resources;
}

ResourceLibrary::~ResourceLibrary() {
    if (g_current == this) {
        g_current = nullptr;
    }
    m_library.unload();
}

QString ResourceLibrary::string(int id) const {
    const char16_t* text = m_string ? m_string(id) : nullptr;
    return text ? QString::fromUtf16(text) : QString();
}

QString ResourceLibrary::bitmapPath(int id) const {
    const QString path = QStringLiteral(":/zel_mbres/bitmaps/%1.bmp").arg(id);
    return QFile::exists(path) ? path : QString();
}

ResourceLibrary* CurrentResources() {
    return g_current;
}
void SetCurrentResources(ResourceLibrary* resources) {
    g_current = resources;
}

ResourceLibrary* LoadResDll(const QString& moduleName, const QString& resourceName,
                            QString* error) {
    Q_UNUSED(moduleName);  // the resources lie beside the module that holds this code
    g_loaded = ResourceLibrary::Load(GenerateProgramDir(), resourceName, error);
    g_current = g_loaded.get();
    return g_current;
}

void UnloadResDll() {
    g_current = nullptr;
    g_loaded.reset();
}

ResourceLibrary* LoadedResources() {
    return g_loaded.get();
}

QString LoadResString(int id) {
    const QString text = g_current ? g_current->string(id) : QString();
    return text.isEmpty() ? QStringLiteral("Message %1").arg(id) : text;
}

ResourceScope::ResourceScope(ResourceLibrary* resources) : m_previous(g_current) {
    g_current = resources;
}

ResourceScope::~ResourceScope() {
    g_current = m_previous;
}
