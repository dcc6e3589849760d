#include "platform/linux/ClockChangeWatch.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/SuspendWatch.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QtTest>

namespace {

struct Inhibitor
{
    QString What, Who, Why, Mode;
};

// The inhibitors the mocked logind holds.
QList<Inhibitor> Inhibitors()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("ListInhibitors"));
    const QDBusMessage reply = QDBusConnection::systemBus().call(call);
    QList<Inhibitor> list;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return list;
    const QDBusArgument array = reply.arguments().at(0).value<QDBusArgument>();
    array.beginArray();
    while (!array.atEnd()) {
        Inhibitor i;
        uint uid = 0, pid = 0;
        array.beginStructure();
        array >> i.What >> i.Who >> i.Why >> i.Mode >> uid >> pid;
        array.endStructure();
        list << i;
    }
    array.endArray();
    return list;
}

QStringList Held()
{
    QStringList held;
    for (const Inhibitor& i : Inhibitors())
        held << i.What + u'/' + i.Who + u'/' + i.Mode + u'/' + i.Why;
    held.sort();
    return held;
}

const QString Delay = QStringLiteral("sleep/Tarrowind/delay/Saving the alarms before the computer sleeps");

void EmitPrepareForSleep(bool start)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("EmitSignal"));
    call << QStringLiteral("org.freedesktop.login1.Manager") << QStringLiteral("PrepareForSleep")
         << QStringLiteral("b")
         << QVariant::fromValue(QVariantList{QVariant::fromValue(QDBusVariant(start))});
    const QDBusMessage reply = QDBusConnection::systemBus().call(call);
    QVERIFY2(reply.type() == QDBusMessage::ReplyMessage, qPrintable(reply.errorMessage()));
}

// The calls of `method` the mocked notification service received, each its arguments.
QList<QVariantList> NotificationCalls(const QString& method)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("GetMethodCalls"));
    call << method;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
    QList<QVariantList> calls;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return calls;
    const QDBusArgument array = reply.arguments().at(0).value<QDBusArgument>();
    array.beginArray();
    while (!array.atEnd()) {
        quint64 when = 0;
        QVariantList args;
        array.beginStructure();
        array >> when;
        array.beginArray();
        while (!array.atEnd()) {
            QDBusVariant v;
            array >> v;
            args << v.variant();
        }
        array.endArray();
        array.endStructure();
        calls << args;
    }
    array.endArray();
    return calls;
}

bool WithServices()
{
    return qEnvironmentVariable("TW_SERVICES") == u"1";
}

} // namespace

// The Linux desktop services against python3-dbusmock's logind and notification daemon on a
// private bus (desktop.sh starts them), and once without them; and the clock-change watch,
// which is armed and sets nothing.
class TestDesktopServices : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS").isEmpty())
            QSKIP("no private bus (run through desktop.sh)");
    }

    void clockChangeWatchIsArmedAndQuiet()
    {
        LinuxClockChangeWatch watch;
        QVERIFY(watch.IsArmed());
        QSignalSpy changed(&watch, &ClockChangeWatch::ClockChanged);
        QTest::qWait(200);
        QCOMPARE(changed.size(), 0);
    }

    void sleepIsDelayedForTheSaveAndBlockedWhileAlarmsAreSet()
    {
        if (!WithServices())
            QSKIP("this run has no logind");
        LinuxSuspendWatch watch;
        QVERIFY(watch.HoldsDelay());
        QCOMPARE(Held(), QStringList{Delay});
        watch.SetAlarmsSet(2);
        QTRY_COMPARE(Held(), (QStringList{QStringLiteral("sleep/Tarrowind/block/2 alarms are set"), Delay}));
        watch.SetAlarmsSet(1);
        QTRY_COMPARE(Held(), (QStringList{QStringLiteral("sleep/Tarrowind/block/1 alarm is set"), Delay}));
        watch.SetAlarmsSet(0);
        QTRY_COMPARE(Held(), QStringList{Delay});

        QSignalSpy suspending(&watch, &SuspendWatch::Suspending);
        QSignalSpy resumed(&watch, &SuspendWatch::Resumed);
        EmitPrepareForSleep(true);
        QTRY_COMPARE(suspending.size(), 1);
        watch.SuspendHandled();
        QTRY_COMPARE(Held(), QStringList());
        EmitPrepareForSleep(false);
        QTRY_COMPARE(resumed.size(), 1);
        QTRY_COMPARE(Held(), QStringList{Delay});
    }

    void withoutLogindNothingIsHeldAndNothingFails()
    {
        if (WithServices())
            QSKIP("this run has logind");
        LinuxSuspendWatch watch;
        QVERIFY(!watch.HoldsDelay());
        watch.SetAlarmsSet(3);
        QVERIFY(!watch.HoldsBlock());
        watch.SuspendHandled();
    }

    void alarmNoticeIsCriticalAndWithdrawn()
    {
        if (!WithServices())
            QSKIP("this run has no notification service");
        LinuxDesktopNotifier notifier;
        notifier.Notify(QStringLiteral("7"), QStringLiteral("Expired Safety Check Alarm"),
                        QStringLiteral("Crew 7\nExpired on 10:15"));
        QTRY_COMPARE(NotificationCalls(QStringLiteral("Notify")).size(), 1);
        const QVariantList args = NotificationCalls(QStringLiteral("Notify")).at(0);
        QCOMPARE(args.size(), 8);
        QCOMPARE(args.at(0).toString(), QStringLiteral("Tarrowind"));
        QCOMPARE(args.at(2).toString(), QStringLiteral("org.tarrowind.Tarrowind"));
        QCOMPARE(args.at(3).toString(), QStringLiteral("Expired Safety Check Alarm"));
        QCOMPARE(args.at(4).toString(), QStringLiteral("Crew 7\nExpired on 10:15"));
        const QVariantMap hints = qdbus_cast<QVariantMap>(args.at(6));
        QCOMPARE(hints.value(QStringLiteral("urgency")).toInt(), 2);
        QCOMPARE(args.at(7).toInt(), 0); // kept until withdrawn
        // Withdrawn once the service said its number.
        QTest::qWait(100);
        notifier.Withdraw(QStringLiteral("7"));
        QTRY_COMPARE(NotificationCalls(QStringLiteral("CloseNotification")).size(), 1);
        QVERIFY(NotificationCalls(QStringLiteral("CloseNotification")).at(0).at(0).toUInt() > 0);
        // A key with no notice withdraws nothing.
        notifier.Withdraw(QStringLiteral("8"));
        QTest::qWait(100);
        QCOMPARE(NotificationCalls(QStringLiteral("CloseNotification")).size(), 1);
    }

    void withoutANotificationServiceNothingBreaks()
    {
        if (WithServices())
            QSKIP("this run has a notification service");
        LinuxDesktopNotifier notifier;
        notifier.Notify(QStringLiteral("1"), QStringLiteral("Expired Alarm"), QStringLiteral("Convoy"));
        notifier.Withdraw(QStringLiteral("1"));
        QTest::qWait(100);
    }
};

QTEST_GUILESS_MAIN(TestDesktopServices)
#include "tst_desktopservices.moc"
