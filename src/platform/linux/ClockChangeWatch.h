#pragma once

#include "platform/ClockChangeWatch.h"

class QSocketNotifier;

// Hears the wall clock being set through a timerfd armed on the real-time clock with
// TFD_TIMER_CANCEL_ON_SET: the kernel wakes it when anyone sets the clock. It is armed a few
// years ahead (not at the largest time, which overflows where the clock is faked), and armed
// again after each notice.
class LinuxClockChangeWatch final : public ClockChangeWatch
{
    Q_OBJECT
public:
    explicit LinuxClockChangeWatch(QObject* parent = nullptr);
    ~LinuxClockChangeWatch() override;

    // Whether the watch is armed (false where timerfd is not to be had).
    bool IsArmed() const;

private:
    bool Arm();
    void Woken();

    int m_fd = -1;
    QSocketNotifier* m_notifier = nullptr;
};
