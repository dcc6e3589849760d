#include "platform/linux/ClockSetter.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QFile>
#include <QtTest>

#include <optional>

namespace {

// Whether this process could set the clock itself (CAP_SYS_TIME, bit 25, in effect).
bool MaySetTheClock()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return true; // unknown: assume the worst
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("CapEff:"))
            return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> 25) & 1;
    return true;
}

QDBusInterface Mock()
{
    return QDBusInterface(QStringLiteral("org.freedesktop.timedate1"),
                          QStringLiteral("/org/freedesktop/timedate1"),
                          QStringLiteral("org.freedesktop.DBus.Mock"), QDBusConnection::systemBus());
}

// Gives the mocked service's SetTime new code (Python, run by the mock).
void ReplaceSetTime(const QString& code)
{
    QDBusInterface mock = Mock();
    const QDBusMessage reply =
        mock.call(QStringLiteral("AddMethod"), QStringLiteral("org.freedesktop.timedate1"),
                  QStringLiteral("SetTime"), QStringLiteral("xbb"), QString(), code);
    QVERIFY2(reply.type() != QDBusMessage::ErrorMessage, qPrintable(reply.errorMessage()));
}

// Asks the setter to move the clock and waits for its answer.
ClockSetResult Adjust(LinuxClockSetter& setter, qint64 byMsec, bool mayAsk = true)
{
    std::optional<ClockSetResult> result;
    setter.AdjustClock(byMsec, mayAsk, [&result](const ClockSetResult& r) { result = r; });
    QDeadlineTimer deadline(10000);
    while (!result && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    return result.value_or(ClockSetResult{false, QStringLiteral("no answer")});
}

} // namespace

// The Linux clock setter against a mocked time service on a private bus (timedated.sh starts
// both). It never sets the real clock: it refuses to run with the right to.
class TestClockSetter : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (MaySetTheClock())
            QFAIL("this test must run without CAP_SYS_TIME (timedated.sh runs it under setpriv)");
        if (qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS").isEmpty())
            QSKIP("no private system bus (run through timedated.sh)");
    }

    void timeServiceSetsTheClockWhenTheProgramMayNot()
    {
        if (qEnvironmentVariable("TW_TIMEDATED") != u"1")
            QSKIP("this run has no time service");
        ReplaceSetTime(
            QStringLiteral("self.props['org.freedesktop.timedate1']['TwSetBy'] = dbus.Int64(args[0]); "
                           "self.props['org.freedesktop.timedate1']['TwRelative'] = args[1]; "
                           "self.props['org.freedesktop.timedate1']['TwInteractive'] = args[2]"));
        LinuxClockSetter setter;
        const ClockSetResult result = Adjust(setter, -56250);
        QVERIFY2(result.Ok, qPrintable(result.Reason));
        QDBusInterface properties(
            QStringLiteral("org.freedesktop.timedate1"), QStringLiteral("/org/freedesktop/timedate1"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QDBusConnection::systemBus());
        // Moved by the amount asked, in microseconds, relative to the clock when it is done.
        const QDBusReply<QVariant> setBy = properties.call(
            QStringLiteral("Get"), QStringLiteral("org.freedesktop.timedate1"), QStringLiteral("TwSetBy"));
        QVERIFY(setBy.isValid());
        QCOMPARE(setBy.value().toLongLong(), -56250000LL);
        const QDBusReply<QVariant> relative = properties.call(
            QStringLiteral("Get"), QStringLiteral("org.freedesktop.timedate1"), QStringLiteral("TwRelative"));
        QVERIFY(relative.isValid());
        QVERIFY(relative.value().toBool());
        const QDBusReply<QVariant> interactive =
            properties.call(QStringLiteral("Get"), QStringLiteral("org.freedesktop.timedate1"),
                            QStringLiteral("TwInteractive"));
        QVERIFY(interactive.isValid());
        QVERIFY(interactive.value().toBool());

        // Without the operator to ask, the service is told so.
        const ClockSetResult quiet = Adjust(setter, 2000, false);
        QVERIFY2(quiet.Ok, qPrintable(quiet.Reason));
        const QDBusReply<QVariant> notInteractive =
            properties.call(QStringLiteral("Get"), QStringLiteral("org.freedesktop.timedate1"),
                            QStringLiteral("TwInteractive"));
        QVERIFY(notInteractive.isValid());
        QVERIFY(!notInteractive.value().toBool());
    }

    void refusalOfTheTimeServiceIsToldWithItsReason()
    {
        if (qEnvironmentVariable("TW_TIMEDATED") != u"1")
            QSKIP("this run has no time service");
        ReplaceSetTime(
            QStringLiteral("raise dbus.exceptions.DBusException('Automatic time synchronization is enabled', "
                           "name='org.freedesktop.timedate1.AutomaticTimeSyncEnabled')"));
        LinuxClockSetter setter;
        const ClockSetResult result = Adjust(setter, 1000);
        QVERIFY(!result.Ok);
        QCOMPARE(result.Reason,
                 QStringLiteral("The computer's clock was not set: the system's time service refused "
                                "(Automatic time synchronization is enabled)."));
    }

    void noTimeServiceIsToldWithItsReason()
    {
        if (qEnvironmentVariable("TW_TIMEDATED") != u"0")
            QSKIP("this run has a time service");
        LinuxClockSetter setter;
        const ClockSetResult result = Adjust(setter, 1000);
        QVERIFY(!result.Ok);
        QCOMPARE(result.Reason,
                 QStringLiteral("The computer's clock was not set: Tarrowind may not set it, and the "
                                "system's time service is not there to do it."));
    }
};

QTEST_GUILESS_MAIN(TestClockSetter)
#include "tst_clocksetter.moc"
