#include "platform/linux/HalfTickWatch.h"

#include "common/FloorDiv.h"

#include <QDateTime>
#include <QMetaObject>

#include <cerrno>
#include <chrono>
#include <limits>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

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
    m_duePending = false;
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
    bool waitedOut = false;
    while (!m_stop) {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        const qint64 second = FloorDiv(now, 1000);
        const qint64 phase = now - second * 1000;
        // Each second is checked once, at or after its .500; a wake-up before it (the clock
        // was set back, or the wait was cut short) only waits again. A wait that ran out is
        // taken as .500 reached, even a little before it: a clock that runs faster than the
        // wait (one faked and sped up for a test) ends it early, and waiting out the rest
        // in ever shorter waits would spin.
        if ((phase >= 500 || (waitedOut && phase >= 400)) && second != checkedSecond) {
            checkedSecond = second;
            // One report at a time: while the owner's thread is busy, reports do not pile up.
            if (changed(now) && !m_duePending.exchange(true)) {
                QMetaObject::invokeMethod(
                    this,
                    [this, generation] {
                        m_duePending = false;
                        if (generation == m_generation)
                            emit Due();
                    },
                    Qt::QueuedConnection);
            }
        }
        const int wait = int(phase < 500 ? 500 - phase : 1500 - phase);
        pollfd stop{m_stopFd, POLLIN, 0};
        const int woken = poll(&stop, 1, wait);
        waitedOut = woken == 0;
        if (woken < 0 && errno != EINTR) {
            // No wait on the eventfd to be had: sleep as long, in steps that heed Stop().
            for (int slept = 0; slept < wait && !m_stop; slept += 50)
                std::this_thread::sleep_for(std::chrono::milliseconds(qMin(50, wait - slept)));
            waitedOut = true;
        }
    }
}
