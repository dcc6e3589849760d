#pragma once

#include "platform/ClockSetter.h"

#include <QObject>

// Moves the clock with clock_settime when the program may (CAP_SYS_TIME); otherwise through
// systemd's time service on the system bus (org.freedesktop.timedate1.SetTime, relative),
// which may ask the operator for the right, and which refuses while the system keeps its
// own time in step (NTP on). The bus call does not block the window; a refusal comes back
// with its reason.
class LinuxClockSetter final : public ClockSetter
{
public:
    LinuxClockSetter();
    ~LinuxClockSetter() override;
    void AdjustClock(qint64 byMsec, bool mayAsk, Done done) override;

private:
    // Parent of the bus calls under way: they end with the setter.
    QObject m_calls;
};
