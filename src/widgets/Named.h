#pragma once

#include <QString>

// Gives a control its name (its objectName, by which tests and tools find it) and the
// name a screen reader announces.
template <typename W>
W* Named(W* widget, const QString& name, const QString& accessible)
{
    widget->setObjectName(name);
    widget->setAccessibleName(accessible);
    return widget;
}
