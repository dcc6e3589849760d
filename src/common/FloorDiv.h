#pragma once

#include <QtGlobal>

// Division rounded towards minus infinity: the second or minute a moment before the epoch
// (or a negative offset) falls in, where C++'s division would round towards zero.
inline qint64 FloorDiv(qint64 a, qint64 b)
{
    return a / b - ((a % b != 0) && ((a < 0) != (b < 0)) ? 1 : 0);
}
