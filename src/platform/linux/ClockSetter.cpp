#include "platform/linux/ClockSetter.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDateTime>

#include <cerrno>
#include <ctime>

ClockSetResult LinuxClockSetter::SetClock(const QDateTime& to)
{
    const qint64 msecs = to.toMSecsSinceEpoch();
    // A program that may set the clock (CAP_SYS_TIME) sets it itself.
    timespec when{};
    when.tv_sec = time_t(msecs / 1000);
    when.tv_nsec = long(msecs % 1000) * 1000000L;
    if (::clock_settime(CLOCK_REALTIME, &when) == 0)
        return {true, {}};

    // Otherwise the system's time service is asked, interactively, so that the desktop may
    // ask the operator for the right to do it.
    QDBusInterface timedated(QStringLiteral("org.freedesktop.timedate1"),
                             QStringLiteral("/org/freedesktop/timedate1"),
                             QStringLiteral("org.freedesktop.timedate1"), QDBusConnection::systemBus());
    if (!timedated.isValid())
        return {false, QStringLiteral("The computer's clock was not set: Tarrowind may not set it, and the "
                                      "system's time service is not there to do it.")};
    const QDBusMessage reply =
        timedated.call(QStringLiteral("SetTime"), QVariant::fromValue(msecs * 1000), false, true);
    if (reply.type() == QDBusMessage::ErrorMessage)
        return {false,
                QStringLiteral("The computer's clock was not set: the system's time service refused (") +
                    reply.errorMessage() + QStringLiteral(").")};
    return {true, {}};
}
