#pragma once

#include "clock/Clock.h"

// A clock that tests set and advance by hand.
class ManualClock final : public Clock
{
public:
    explicit ManualClock(QDateTime now = QDateTime(QDate(2026, 11, 16), QTime(10, 0))) : m_now(std::move(now))
    {}
    QDateTime Now() const override
    {
        ++m_nowReads;
        const QDateTime now = m_now;
        m_now = m_now.addMSecs(m_stepEachRead);
        return now;
    }
    qint64 MSecsSinceEpoch() const override { return m_now.toMSecsSinceEpoch(); }
    // How often the local date and time were asked for.
    int NowReads() const { return m_nowReads; }
    void Set(const QDateTime& now) { m_now = now; }
    void Set(QDate date, QTime time) { m_now = QDateTime(date, time); }
    void AdvanceSecs(qint64 seconds) { m_now = m_now.addSecs(seconds); }
    void AdvanceMSecs(qint64 msecs) { m_now = m_now.addMSecs(msecs); }
    // From now on each reading of the date and time moves the clock on by `msecs`: a clock
    // that turns while the code under test is at work, for code that must read it once.
    void StepEachRead(qint64 msecs) { m_stepEachRead = msecs; }

private:
    mutable QDateTime m_now;
    qint64 m_stepEachRead = 0;
    mutable int m_nowReads = 0;
};
