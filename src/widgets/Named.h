#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QString>

#include <type_traits>

// Gives a control its name (its objectName, by which tests and tools find it) and the name
// a screen reader announces. A label or a button is announced by the text it shows, so that
// the name follows every change of its caption: for those `accessible` is only what the
// control shows at first, and no fixed name is set.
template <typename W>
W* Named(W* widget, const QString& name, const QString& accessible)
{
    widget->setObjectName(name);
    if constexpr (!std::is_base_of_v<QLabel, W> && !std::is_base_of_v<QAbstractButton, W>)
        widget->setAccessibleName(accessible);
    return widget;
}
