#include "Desk.h"
#include "MockServices.h"
#include "alarms/frmAlarm.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/SuspendWatch.h"
#include "widgets/MessageBox.h"

#include <QtTest>

namespace {

const QByteArray TwoAlarms = "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\nCount=2\n"
                             "Message%201=Crew 4 check\nExpire%201=10:30\nAlarmSet%201=True\nSafety%201=1\n"
                             "Message%202=Convoy departs\nExpire%202=12:00\nAlarmSet%202=True\n";

// The main window with this system's sleep watch and notifier, the other services fakes.
struct RealDesk : Desk
{
    explicit RealDesk(const QByteArray& ini)
        : Desk(ini, true, [](PlatformServices& services) {
              services.suspend = std::make_unique<LinuxSuspendWatch>();
              services.notifier = std::make_unique<LinuxDesktopNotifier>();
          })
    {}
};

// The number of calls of `method` the mocked notification service received.
int NotificationCount(const QString& method)
{
    return int(NotificationCalls(method).size());
}

bool WithServices()
{
    return qEnvironmentVariable("TW_SERVICES") == u"1";
}

} // namespace

// The main window with the real sleep watch and notifier, against python3-dbusmock's logind
// and notification daemon on a private bus (desktop.sh starts them), and without them.
class TestDesktopIntegration : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS").isEmpty())
            QSKIP("no private bus (run through desktop.sh)");
    }
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void withoutTheServicesStartUpIsSilent()
    {
        if (WithServices())
            QSKIP("this run has the services");
        RealDesk desk(TwoAlarms);
        QVERIFY(desk.window->Load());
        QCOMPARE(MessageBox::Shown().size(), 0);
        desk.window->CheckAlarms(10, 30);
        QCOMPARE(desk.Windows().OpenAlarmWindows().size(), 1);
    }

    void sleepIsHeldBackSavedForAndCaughtUpAfter()
    {
        if (!WithServices())
            QSKIP("this run has no logind");
        RealDesk desk(TwoAlarms);
        desk.clock.Set(Desk::Monday, QTime(10, 20, 10));
        QVERIFY(desk.window->Load());
        const QString delay =
            QStringLiteral("sleep/Tarrowind/delay/Saving the alarms before the computer sleeps");
        QTRY_COMPARE(HeldInhibitors(),
                     (QStringList{QStringLiteral("sleep/Tarrowind/block/2 alarms are set"), delay}));
        desk.Alarms().At(2).AlarmSet = false;
        desk.window->Alarms().RefreshAlarmList();
        QTRY_COMPARE(HeldInhibitors(),
                     (QStringList{QStringLiteral("sleep/Tarrowind/block/1 alarm is set"), delay}));

        // Going to sleep: the alarms are saved, then the delay is let go.
        desk.store->Write(QStringLiteral("Alarms"), QStringLiteral("Count"), QStringLiteral("99"));
        desk.store->Sync();
        QVERIFY(EmitPrepareForSleep(true));
        QTRY_COMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("2"));
        QTRY_COMPARE(HeldInhibitors(), QStringList{QStringLiteral("sleep/Tarrowind/block/1 alarm is set")});

        // Asleep past 10:30; on waking the alarm rings at once, late, and the delay is back.
        desk.clock.Set(Desk::Monday, QTime(10, 41, 20));
        QVERIFY(EmitPrepareForSleep(false));
        QTRY_COMPARE(desk.Windows().OpenAlarmWindows().size(), 1);
        QVERIFY(desk.TodaysLog().contains(
            Desk::Line("10:41", "EA", 1, "Alarm Expired for ", "Crew 4 check", ", rang 11 minutes late")));
        QTRY_COMPARE(HeldInhibitors(),
                     (QStringList{QStringLiteral("sleep/Tarrowind/block/1 alarm is set"), delay}));
    }

    void alarmIsOneNoticeWithdrawnOnTheAnswer()
    {
        if (!WithServices())
            QSKIP("this run has no notification service");
        RealDesk desk(TwoAlarms);
        QVERIFY(desk.window->Load());
        const int notifiedBefore = NotificationCount(QStringLiteral("Notify"));
        const int closedBefore = NotificationCount(QStringLiteral("CloseNotification"));
        desk.window->CheckAlarms(10, 30);
        QTRY_COMPARE(NotificationCount(QStringLiteral("Notify")), notifiedBefore + 1);
        QTest::qWait(100); // the service's number comes back
        frmAlarm* window = desk.Windows().AlarmWindow(1);
        QVERIFY(window);
        window->cmdStop_Click();
        QTRY_COMPARE(NotificationCount(QStringLiteral("CloseNotification")), closedBefore + 1);
        QCOMPARE(NotificationCount(QStringLiteral("Notify")), notifiedBefore + 1);
    }
};

QTEST_MAIN(TestDesktopIntegration)
#include "tst_desktopintegration.moc"
