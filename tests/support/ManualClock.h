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
        return m_now;
    }
    qint64 MSecsSinceEpoch() const override { return m_now.toMSecsSinceEpoch(); }
    // How often the local date and time were asked for.
    int NowReads() const { return m_nowReads; }
    void Set(const QDateTime& now) { m_now = now; }
    void Set(QDate date, QTime time) { m_now = QDateTime(date, time); }
    void AdvanceSecs(qint64 seconds) { m_now = m_now.addSecs(seconds); }
    void AdvanceMSecs(qint64 msecs) { m_now = m_now.addMSecs(msecs); }

private:
    QDateTime m_now;
    mutable int m_nowReads = 0;
};
