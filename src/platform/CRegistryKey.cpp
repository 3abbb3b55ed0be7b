#include "CRegistryKey.h"

#include <QSettings>

namespace {

QString settingsPath(const QString& subKey) {
    QString path = subKey;
    path.replace(u'\\', u'/');
    while (path.startsWith(u'/')) {
        path.remove(0, 1);
    }
    while (path.endsWith(u'/')) {
        path.chop(1);
    }
    return path;
}

}  // namespace

CRegistryKey::CRegistryKey()
    : m_settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             QStringLiteral("plcdb"), QStringLiteral("plcdb"))) {}

CRegistryKey::~CRegistryKey() = default;

void CRegistryKey::SetRootToHCUK() {
    // The user's branch is the only root there is.
    Close();
}

bool CRegistryKey::Open(const QString& subKey) {
    const QString path = settingsPath(subKey);
    m_settings->beginGroup(path);
    const bool exists = !m_settings->allKeys().isEmpty();
    m_settings->endGroup();
    m_path = path;
    m_open = exists;
    return exists;
}

bool CRegistryKey::Create(const QString& subKey) {
    m_path = settingsPath(subKey);
    m_open = true;
    return true;
}

void CRegistryKey::Close() {
    if (m_open) {
        m_settings->sync();
    }
    m_open = false;
    m_path.clear();
}

QString CRegistryKey::valueKey(const QString& name) const {
    return m_path.isEmpty() ? name : m_path + u'/' + name;
}

bool CRegistryKey::GetValue(const QString& name, QString& value) const {
    if (!m_open) {
        return false;
    }
    const QVariant stored = m_settings->value(valueKey(name));
    if (!stored.isValid()) {
        return false;
    }
    value = stored.toString();
    return true;
}

bool CRegistryKey::GetValue(const QString& name, quint32& value) const {
    QString text;
    if (!GetValue(name, text)) {
        return false;
    }
    bool ok = false;
    const quint32 number = text.toUInt(&ok);
    if (ok) {
        value = number;
    }
    return ok;
}

bool CRegistryKey::SetValue(const QString& name, const QString& value) {
    if (!m_open) {
        return false;
    }
    m_settings->setValue(valueKey(name), value);
    return m_settings->status() == QSettings::NoError;
}

bool CRegistryKey::SetValue(const QString& name, quint32 value) {
    return SetValue(name, QString::number(value));
}
