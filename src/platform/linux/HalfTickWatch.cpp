#include "platform/linux/HalfTickWatch.h"

#include <QDateTime>
#include <QMetaObject>

#include <cerrno>
#include <chrono>
#include <limits>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace {

qint64 FloorDiv(qint64 a, qint64 b)
{
    return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
}

} // namespace

LinuxHalfTickWatch::LinuxHalfTickWatch(QObject* parent) : HalfTickWatch(parent) {}

LinuxHalfTickWatch::~LinuxHalfTickWatch()
{
    Stop();
}

bool LinuxHalfTickWatch::Start(ChangedTest changed)
{
    Stop();
    if (!changed)
        return false;
    m_stopFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_stopFd < 0)
        return false;
    m_stop = false;
    const quint64 generation = ++m_generation;
    try {
        m_thread =
            std::thread([this, changed = std::move(changed), generation] { Run(changed, generation); });
    } catch (const std::system_error&) {
        close(m_stopFd);
        m_stopFd = -1;
        return false;
    }
    return true;
}

void LinuxHalfTickWatch::Stop()
{
    ++m_generation; // a Due() still queued from the thread is not emitted
    if (!m_thread.joinable())
        return;
    m_stop = true;
    const quint64 one = 1;
    while (write(m_stopFd, &one, sizeof one) < 0 && errno == EINTR) {
    }
    m_thread.join();
    close(m_stopFd);
    m_stopFd = -1;
}

void LinuxHalfTickWatch::Run(const ChangedTest& changed, quint64 generation)
{
    qint64 checkedSecond = std::numeric_limits<qint64>::min();
    while (!m_stop) {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        const qint64 second = FloorDiv(now, 1000);
        const qint64 phase = now - second * 1000;
        // Each second is checked once, at or after its .500; a wake-up before it (the clock
        // was set back, or the wait was cut short) only waits again.
        if (phase >= 500 && second != checkedSecond) {
            checkedSecond = second;
            if (changed(now)) {
                QMetaObject::invokeMethod(
                    this,
                    [this, generation] {
                        if (generation == m_generation)
                            emit Due();
                    },
                    Qt::QueuedConnection);
            }
        }
        const int wait = int(phase < 500 ? 500 - phase : 1500 - phase);
        pollfd stop{m_stopFd, POLLIN, 0};
        const int woken = poll(&stop, 1, wait);
        if (woken < 0 && errno != EINTR)
            std::this_thread::sleep_for(std::chrono::milliseconds(wait));
    }
}
