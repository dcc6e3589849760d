#include "MockServices.h"
#include "platform/linux/ClockChangeWatch.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/SuspendWatch.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString Delay = QStringLiteral("sleep/Tarrowind/delay/Saving the alarms before the computer sleeps");

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
        QCOMPARE(HeldInhibitors(), QStringList{Delay});
        watch.SetAlarmsSet(2);
        QTRY_COMPARE(HeldInhibitors(),
                     (QStringList{QStringLiteral("sleep/Tarrowind/block/2 alarms are set"), Delay}));
        watch.SetAlarmsSet(1);
        QTRY_COMPARE(HeldInhibitors(),
                     (QStringList{QStringLiteral("sleep/Tarrowind/block/1 alarm is set"), Delay}));
        watch.SetAlarmsSet(0);
        QTRY_COMPARE(HeldInhibitors(), QStringList{Delay});

        QSignalSpy suspending(&watch, &SuspendWatch::Suspending);
        QSignalSpy resumed(&watch, &SuspendWatch::Resumed);
        QVERIFY(EmitPrepareForSleep(true));
        QTRY_COMPARE(suspending.size(), 1);
        watch.SuspendHandled();
        QTRY_COMPARE(HeldInhibitors(), QStringList());
        QVERIFY(EmitPrepareForSleep(false));
        QTRY_COMPARE(resumed.size(), 1);
        QTRY_COMPARE(HeldInhibitors(), QStringList{Delay});
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
        QVERIFY(notifier.Holds(QStringLiteral("7")));
        notifier.Withdraw(QStringLiteral("7"));
        QVERIFY(!notifier.Holds(QStringLiteral("7")));
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
        QVERIFY(notifier.Holds(QStringLiteral("1"))); // on its way
        // The bus says there is no such service: nothing is held, nothing is left behind.
        QTRY_VERIFY(!notifier.Holds(QStringLiteral("1")));
        notifier.Withdraw(QStringLiteral("1"));
        QVERIFY(!notifier.Holds(QStringLiteral("1")));
    }
};

QTEST_GUILESS_MAIN(TestDesktopServices)
#include "tst_desktopservices.moc"
