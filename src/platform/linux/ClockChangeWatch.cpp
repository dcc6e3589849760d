#include "platform/linux/ClockChangeWatch.h"

#include <QSocketNotifier>

#include <cerrno>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

namespace {

// How far ahead the timer is armed: it only has to outlive the program.
constexpr time_t YearsAhead = 5;

} // namespace

LinuxClockChangeWatch::LinuxClockChangeWatch(QObject* parent) : ClockChangeWatch(parent)
{
    m_fd = ::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (m_fd < 0)
        return;
    if (!Arm()) {
        ::close(m_fd);
        m_fd = -1;
        return;
    }
    m_notifier = new QSocketNotifier(qintptr(m_fd), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &LinuxClockChangeWatch::Woken);
}

LinuxClockChangeWatch::~LinuxClockChangeWatch()
{
    delete m_notifier;
    if (m_fd >= 0)
        ::close(m_fd);
}

bool LinuxClockChangeWatch::IsArmed() const
{
    if (m_fd < 0)
        return false;
    itimerspec left{};
    return ::timerfd_gettime(m_fd, &left) == 0 && (left.it_value.tv_sec > 0 || left.it_value.tv_nsec > 0);
}

bool LinuxClockChangeWatch::Arm()
{
    timespec now{};
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0)
        return false;
    itimerspec when{};
    when.it_value.tv_sec = now.tv_sec + YearsAhead * 365 * 24 * 3600;
    return ::timerfd_settime(m_fd, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr) == 0;
}

void LinuxClockChangeWatch::Woken()
{
    // A read that fails with ECANCELED is the notice of a clock that was set; a read that
    // succeeds is the far-off expiry. Either way the timer is armed again.
    quint64 expiries = 0;
    const ssize_t got = ::read(m_fd, &expiries, sizeof expiries);
    const bool clockSet = got < 0 && errno == ECANCELED;
    if (got < 0 && errno == EAGAIN)
        return;
    Arm();
    if (clockSet)
        emit ClockChanged();
}
