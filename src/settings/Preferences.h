#pragma once

#include "settings/Settings.h"

#include <QObject>

#include <functional>

// The program's preferences for the whole run: the one Settings value, read from the store
// at start-up and written back when the program stops. Whatever shows or uses a preference
// reads it here and hears of every change through Changed().
class Preferences : public QObject
{
    Q_OBJECT
public:
    explicit Preferences(QObject* parent = nullptr);

    const Settings& Values() const { return m_values; }

    // Replaces every value (the start-up read) and announces it.
    void Replace(Settings values);
    // Changes some values through `edit` and announces them once.
    void Change(const std::function<void(Settings&)>& edit);

signals:
    void Changed();

private:
    Settings m_values;
};
