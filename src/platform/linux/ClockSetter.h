#pragma once

#include "platform/ClockSetter.h"

// Sets the clock with clock_settime when the program may (CAP_SYS_TIME); otherwise through
// systemd's time service on the system bus (org.freedesktop.timedate1.SetTime), which may
// ask the operator for the right, and which refuses while the system keeps its own time
// in step (NTP on). A refusal comes back with its reason.
class LinuxClockSetter final : public ClockSetter
{
public:
    ClockSetResult SetClock(const QDateTime& to) override;
};
