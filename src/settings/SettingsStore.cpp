#include "settings/SettingsStore.h"

#include <QStringList>

SettingsStore::SettingsStore()
    : m_settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             QStringLiteral("Tarrowind 2")))
{}

SettingsStore::SettingsStore(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{}

SettingsStore::~SettingsStore() = default;

QString SettingsStore::FileName() const
{
    return m_settings->fileName();
}

bool SettingsStore::IsReadable() const
{
    return m_settings->status() == QSettings::NoError;
}

QString SettingsStore::FullKey(const QString& section, const QString& key)
{
    if (section == u"General")
        return key;
    return section + u'/' + key;
}

bool SettingsStore::Contains(const QString& section, const QString& key) const
{
    return m_settings->contains(FullKey(section, key));
}

QString SettingsStore::Read(const QString& section, const QString& key, const QString& defaultValue) const
{
    const QVariant value = m_settings->value(FullKey(section, key));
    if (!value.isValid())
        return defaultValue;
    // An unquoted value with commas comes back from an INI file as a list of its parts.
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

void SettingsStore::Write(const QString& section, const QString& key, const QString& value)
{
    m_settings->setValue(FullKey(section, key), value);
}

bool SettingsStore::Sync()
{
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}
