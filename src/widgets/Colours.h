#pragma once

#include "clock/ZoneClock.h"

#include <QColor>

// A stored colour value (red in the low byte, then green, then blue) as a Qt colour.
inline QColor ToQColor(ColourValue value)
{
    const auto v = quint32(value);
    return QColor(int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF));
}
