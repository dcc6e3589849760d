#include "platform/linux/ClockSetter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <ctime>

namespace {

// The operator may be asked for a password: the call waits that long before it gives up.
constexpr int InteractiveTimeoutMsec = 60000;
// Without a question the service answers at once.
constexpr int TimeoutMsec = 5000;

const QString TimeService = QStringLiteral("org.freedesktop.timedate1");

} // namespace

LinuxClockSetter::LinuxClockSetter() = default;

LinuxClockSetter::~LinuxClockSetter()
{
    // Calls still under way are dropped with their watchers: no answer after this.
    qDeleteAll(m_calls.children());
}

void LinuxClockSetter::AdjustClock(qint64 byMsec, bool mayAsk, Done done)
{
    // A program that may set the clock (CAP_SYS_TIME) moves it itself, from the present
    // reading of the clock.
    timespec now{};
    if (::clock_gettime(CLOCK_REALTIME, &now) == 0) {
        // Nanoseconds since 1970 fit a 64-bit number until the year 2262.
        const qint64 nsecs = qint64(now.tv_sec) * 1000000000LL + now.tv_nsec + byMsec * 1000000LL;
        timespec to{};
        to.tv_sec = time_t(nsecs / 1000000000LL);
        to.tv_nsec = long(nsecs % 1000000000LL);
        if (::clock_settime(CLOCK_REALTIME, &to) == 0) {
            done({true, {}});
            return;
        }
    }

    // Otherwise the system's time service is asked; when the operator may be asked, the
    // desktop may ask for the right to do it.
    const ClockSetResult noService{false,
                                   QStringLiteral("The computer's clock was not set: Tarrowind may not "
                                                  "set it, and the system's time service is not there "
                                                  "to do it.")};
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        done(noService);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        TimeService, QStringLiteral("/org/freedesktop/timedate1"), TimeService, QStringLiteral("SetTime"));
    call << QVariant::fromValue(qint64(byMsec * 1000)) << true << mayAsk;
    call.setInteractiveAuthorizationAllowed(mayAsk);
    auto* watcher = new QDBusPendingCallWatcher(
        bus.asyncCall(call, mayAsk ? InteractiveTimeoutMsec : TimeoutMsec), &m_calls);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [done = std::move(done), noService](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         const QDBusPendingReply<> reply = *finished;
                         if (!reply.isError()) {
                             done({true, {}});
                             return;
                         }
                         // The service is started on demand; a bus without it says so.
                         const QDBusError::ErrorType type = reply.error().type();
                         if (type == QDBusError::ServiceUnknown || type == QDBusError::NoServer ||
                             type == QDBusError::Disconnected) {
                             done(noService);
                             return;
                         }
                         done({false, QStringLiteral("The computer's clock was not set: the system's time "
                                                     "service refused (") +
                                          reply.error().message() + QStringLiteral(").")});
                     });
}
