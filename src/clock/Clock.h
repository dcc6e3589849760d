#pragma once

#include <QDateTime>

// The one source of "now" for the whole program. The program uses SystemClock;
// tests hand in a clock they set and advance themselves.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime Now() const = 0;
    // Milliseconds since the epoch, without looking at the local time zone: cheap enough
    // for every half-second tick.
    virtual qint64 MSecsSinceEpoch() const { return Now().toMSecsSinceEpoch(); }
    QDate Today() const { return Now().date(); }
};

class SystemClock final : public Clock
{
public:
    QDateTime Now() const override { return QDateTime::currentDateTime(); }
    qint64 MSecsSinceEpoch() const override { return QDateTime::currentMSecsSinceEpoch(); }
};
