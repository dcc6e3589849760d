#include "settings/Preferences.h"

Preferences::Preferences(QObject* parent) : QObject(parent) {}

void Preferences::Replace(Settings values)
{
    m_values = std::move(values);
    emit Changed();
}

void Preferences::Change(const std::function<void(Settings&)>& edit)
{
    edit(m_values);
    emit Changed();
}
