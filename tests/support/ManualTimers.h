#pragma once

#include "clock/Timers.h"

#include <algorithm>
#include <memory>
#include <vector>

// Timers that run on a time line the test advances itself: Advance(ms) moves the time on and
// fires, in the order they run out, every timer that runs out by then (also those started by
// a Timeout on the way), each at its own moment. Nothing waits and the event loop is not
// needed; a timer started with 0 ms runs out at the next Advance, never within Start.
class ManualTimers final : public Timers
{
public:
    ManualTimers() = default;
    ManualTimers(const ManualTimers&) = delete;
    ManualTimers& operator=(const ManualTimers&) = delete;
    ~ManualTimers() override
    {
        for (Timer* timer : m_timers)
            timer->m_owner = nullptr;
    }

    std::unique_ptr<OneShotTimer> MakeOneShot(bool /*precise*/ = false) override
    {
        auto timer = std::make_unique<Timer>(this);
        m_timers.push_back(timer.get());
        return timer;
    }

    // Milliseconds since the timers were made.
    qint64 Now() const { return m_now; }
    // How many timers are running.
    int Running() const
    {
        return int(
            std::count_if(m_timers.begin(), m_timers.end(), [](const Timer* t) { return t->m_active; }));
    }

    void Advance(qint64 msec)
    {
        const qint64 end = m_now + msec;
        for (;;) {
            Timer* next = nullptr;
            for (Timer* timer : m_timers)
                if (timer->m_active && timer->m_due <= end && (!next || timer->m_due < next->m_due))
                    next = timer;
            if (!next)
                break;
            m_now = std::max(m_now, next->m_due);
            next->m_active = false;
            emit next->Timeout(); // may start, stop or delete any timer
        }
        m_now = end;
    }

private:
    class Timer final : public OneShotTimer
    {
    public:
        explicit Timer(ManualTimers* owner) : m_owner(owner) {}
        ~Timer() override
        {
            if (m_owner)
                std::erase(m_owner->m_timers, this);
        }
        void Start(qint64 msec) override
        {
            m_active = true;
            m_due = (m_owner ? m_owner->m_now : 0) + std::max<qint64>(msec, 0);
        }
        void Stop() override { m_active = false; }
        bool IsActive() const override { return m_active; }
        qint64 RemainingMsec() const override
        {
            return m_active ? std::max<qint64>(0, m_due - (m_owner ? m_owner->m_now : 0)) : -1;
        }

        // The time line's own: ManualTimers reads and clears them.
        ManualTimers* m_owner;
        bool m_active = false;
        qint64 m_due = 0;
    };

    std::vector<Timer*> m_timers;
    qint64 m_now = 0;
};
