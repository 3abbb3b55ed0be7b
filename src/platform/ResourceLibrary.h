#pragma once

#include <QLibrary>
#include <QString>

#include <memory>

// The resource library beside the plug-in: its string table by message number and its
// bitmaps by number.
class ResourceLibrary {
public:
    // Name of the C function every resource library offers: const char16_t* (int).
    static constexpr const char* kStringEntry = "zel_mbres_string";

    // Loads the library baseName (no platform prefix or suffix) from folder. Answers
    // null and a reason in error when it cannot be loaded or is no resource library.
    static std::unique_ptr<ResourceLibrary> Load(const QString& folder, const QString& baseName,
                                                 QString* error);
    ~ResourceLibrary();

    // The text of a message number; empty when the table has none.
    QString string(int id) const;
    // A path Qt can open for bitmap number id, or empty when there is none.
    QString bitmapPath(int id) const;
    QString fileName() const { return m_library.fileName(); }

private:
    using StringFunction = const char16_t* (*)(int);
    ResourceLibrary() = default;

    QLibrary m_library;
    StringFunction m_string = nullptr;
};

// The resources that message and bitmap lookups use at this moment.
ResourceLibrary* CurrentResources();
void SetCurrentResources(ResourceLibrary* resources);

// Loads the resource library beside the module moduleName and makes it current;
// null (and a reason) when it is missing.
ResourceLibrary* LoadResDll(const QString& moduleName, const QString& resourceName, QString* error);
void UnloadResDll();
// The library LoadResDll loaded, current or not.
ResourceLibrary* LoadedResources();

// The text of a message number from the current resources, never empty.
QString LoadResString(int id);

// Makes the given resources current and restores the previous ones when it ends.
class ResourceScope {
public:
    explicit ResourceScope(ResourceLibrary* resources);
    ~ResourceScope();
    ResourceScope(const ResourceScope&) = delete;
    ResourceScope& operator=(const ResourceScope&) = delete;

private:
    ResourceLibrary* m_previous;
};
