#pragma once

#include <QString>

#include <functional>

// What came of a request to set the computer's clock: on failure, a sentence the operator
// can read in a message box (no permission, no time service, not available here).
struct ClockSetResult
{
    bool Ok = false;
    QString Reason;
};

// Sets the computer's clock, for the time synchronisation.
//
// The clock is moved by an amount, not set to a time: a request that waits (for the
// operator to give the right to set the clock, say) still lands on the right time when it
// is carried out. With `mayAsk` the system may ask the operator for the right to do it (and
// the answer may take a minute); without, a request that would need to ask is refused at
// once. `done` is called once with the outcome, either before AdjustClock returns or later
// from the event loop; it is never called after the setter is destroyed.
class ClockSetter
{
public:
    using Done = std::function<void(const ClockSetResult&)>;
    virtual ~ClockSetter() = default;
    virtual void AdjustClock(qint64 byMsec, bool mayAsk, Done done) = 0;
};

// For systems where the program cannot set the clock: every request is refused with the reason.
class NullClockSetter final : public ClockSetter
{
public:
    void AdjustClock(qint64, bool, Done done) override
    {
        done({false, QStringLiteral("Setting the computer's clock is not available on this system")});
    }
};
