#pragma once

#include <QString>

class QDateTime;

// What came of a request to set the computer's clock: on failure, a sentence the operator
// can read in a message box (no permission, no time service, not available here).
struct ClockSetResult
{
    bool Ok = false;
    QString Reason;
};

// Sets the computer's clock, for the time synchronisation and the "set the clock" commands.
class ClockSetter
{
public:
    virtual ~ClockSetter() = default;
    virtual ClockSetResult SetClock(const QDateTime& to) = 0;
};

// For systems where the program cannot set the clock: every request is refused with the reason.
class NullClockSetter final : public ClockSetter
{
public:
    ClockSetResult SetClock(const QDateTime&) override
    {
        return {false, QStringLiteral("Setting the computer's clock is not available on this system")};
    }
};
