#include "platform/linux/ClockSetter.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDateTime>
#include <QFile>
#include <QtTest>

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
            QStringLiteral("self.props['org.freedesktop.timedate1']['TwSetTo'] = dbus.Int64(args[0]); "
                           "self.props['org.freedesktop.timedate1']['TwInteractive'] = args[2]"));
        const QDateTime to(QDate(2026, 11, 16), QTime(10, 15, 30, 250), Qt::UTC);
        LinuxClockSetter setter;
        const ClockSetResult result = setter.SetClock(to);
        QVERIFY2(result.Ok, qPrintable(result.Reason));
        QDBusInterface properties(
            QStringLiteral("org.freedesktop.timedate1"), QStringLiteral("/org/freedesktop/timedate1"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QDBusConnection::systemBus());
        const QDBusReply<QVariant> setTo = properties.call(
            QStringLiteral("Get"), QStringLiteral("org.freedesktop.timedate1"), QStringLiteral("TwSetTo"));
        QVERIFY(setTo.isValid());
        QCOMPARE(setTo.value().toLongLong(), to.toMSecsSinceEpoch() * 1000);
        const QDBusReply<QVariant> interactive =
            properties.call(QStringLiteral("Get"), QStringLiteral("org.freedesktop.timedate1"),
                            QStringLiteral("TwInteractive"));
        QVERIFY(interactive.isValid());
        QVERIFY(interactive.value().toBool());
    }

    void refusalOfTheTimeServiceIsToldWithItsReason()
    {
        if (qEnvironmentVariable("TW_TIMEDATED") != u"1")
            QSKIP("this run has no time service");
        ReplaceSetTime(
            QStringLiteral("raise dbus.exceptions.DBusException('Automatic time synchronization is enabled', "
                           "name='org.freedesktop.timedate1.AutomaticTimeSyncEnabled')"));
        LinuxClockSetter setter;
        const ClockSetResult result = setter.SetClock(QDateTime::currentDateTimeUtc());
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
        const ClockSetResult result = setter.SetClock(QDateTime::currentDateTimeUtc());
        QVERIFY(!result.Ok);
        QCOMPARE(result.Reason,
                 QStringLiteral("The computer's clock was not set: Tarrowind may not set it, and the "
                                "system's time service is not there to do it."));
    }
};

QTEST_GUILESS_MAIN(TestClockSetter)
#include "tst_clocksetter.moc"
