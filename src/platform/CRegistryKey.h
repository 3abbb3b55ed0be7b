#pragma once

#include <QString>

#include <memory>

class QSettings;

// A key of the user's settings branch. Key paths take "\" or "/" between levels.
// The branch is kept by QSettings in the user's configuration folder.
class CRegistryKey {
public:
    CRegistryKey();
    virtual ~CRegistryKey();

    void SetRootToHCUK();
    // Opens an existing key; false when it holds no value and no subkey.
    bool Open(const QString& subKey);
    // Opens a key, creating it when it is missing.
    bool Create(const QString& subKey);
    void Close();
    bool IsOpen() const { return m_open; }

    bool GetValue(const QString& name, QString& value) const;
    bool GetValue(const QString& name, quint32& value) const;
    bool SetValue(const QString& name, const QString& value);
    bool SetValue(const QString& name, quint32 value);

private:
    QString valueKey(const QString& name) const;

    std::unique_ptr<QSettings> m_settings;
    QString m_path;
    bool m_open = false;
};
