#include "clock/Timers.h"

#include <QTimer>

#include <algorithm>
#include <limits>

namespace {

class QtOneShotTimer final : public OneShotTimer
{
public:
    explicit QtOneShotTimer(bool precise)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(precise ? Qt::PreciseTimer : Qt::CoarseTimer);
        connect(&m_timer, &QTimer::timeout, this, &OneShotTimer::Timeout);
    }

    void Start(qint64 msec) override
    {
        m_timer.start(int(std::clamp<qint64>(msec, 0, std::numeric_limits<int>::max())));
    }
    void Stop() override { m_timer.stop(); }
    bool IsActive() const override { return m_timer.isActive(); }
    qint64 RemainingMsec() const override { return m_timer.isActive() ? m_timer.remainingTime() : -1; }

private:
    QTimer m_timer;
};

} // namespace

std::unique_ptr<OneShotTimer> QtTimers::MakeOneShot(bool precise)
{
    return std::make_unique<QtOneShotTimer>(precise);
}
