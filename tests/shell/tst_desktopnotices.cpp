#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "sync/SyncScheduler.h"
#include "widgets/MessageBox.h"

#include <QPushButton>
#include <QtTest>

namespace {

QByteArray Ini(const QByteArray& alarms)
{
    return "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\n" + alarms;
}

const QByteArray TwoAlarms =
    Ini("Count=2\n"
        "Message%201=Crew 4 check\nExpire%201=10:30\nAlarmSet%201=True\nSafety%201=1\n"
        "Message%202=Convoy departs\nExpire%202=12:00\nAlarmSet%202=True\n");

FakeSuspendWatch& Suspend(Desk& desk)
{
    return static_cast<FakeSuspendWatch&>(*desk.platform.suspend);
}
FakeDesktopNotifier& Notifier(Desk& desk)
{
    return static_cast<FakeDesktopNotifier&>(*desk.platform.notifier);
}
FakeClockChangeWatch& ClockChange(Desk& desk)
{
    return static_cast<FakeClockChangeWatch&>(*desk.platform.clockChange);
}

} // namespace

// What the main window does with the desktop's notices: sleep and waking, a clock that was
// set, and the notification of an alarm that goes off.
class TestDesktopNotices : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void sleepIsHeldBackWhileAlarmsAreSet()
    {
        Desk desk(TwoAlarms);
        QVERIFY(desk.window->Load());
        QVERIFY(!Suspend(desk).AlarmsSetCounts.isEmpty());
        QCOMPARE(Suspend(desk).AlarmsSetCounts.constLast(), 2);
        desk.Alarms().At(2).AlarmSet = false;
        desk.window->Alarms().RefreshAlarmList();
        QCOMPARE(Suspend(desk).AlarmsSetCounts.constLast(), 1);
    }

    void alarmsAreSavedBeforeTheMachineSleeps()
    {
        Desk desk(TwoAlarms);
        QVERIFY(desk.window->Load());
        desk.store->Write(QStringLiteral("Alarms"), QStringLiteral("Count"), QStringLiteral("99"));
        desk.store->Sync();
        Suspend(desk).EmitSuspending();
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("2"));
        QCOMPARE(Suspend(desk).SuspendHandledCalls, 1);
    }

    void sleepBeforeTheStartIsDoneLeavesTheStoreAlone()
    {
        Desk desk(TwoAlarms);
        Suspend(desk).EmitSuspending();
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("2"));
        QCOMPARE(Suspend(desk).SuspendHandledCalls, 1);
    }

    void wakingStartsNoSyncThoughTheClockLooksChanged()
    {
        Desk desk("[General]\nAutoSync=-1\nAutoSyncHrs=24\nLastSync=2026-11-16 09:30:00\n");
        QVERIFY(desk.window->Load());
        Suspend(desk).EmitSuspending();
        desk.clock.AdvanceSecs(600);
        ClockChange(desk).Emit(); // the kernel's notice of the wake may come first
        Suspend(desk).EmitResumed();
        ClockChange(desk).Emit(); // or after
        QVERIFY(desk.queries.Made.isEmpty());
        QVERIFY(!desk.window->Scheduler().Run());
    }

    void alarmDueWhileAsleepRingsOnWaking()
    {
        Desk desk(TwoAlarms);
        desk.clock.Set(Desk::Monday, QTime(10, 20, 10));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 20, 10, 500));
        // Asleep from 10:20 to 10:42; woken at 10:42:20, not at a whole minute.
        desk.clock.Set(Desk::Monday, QTime(10, 42, 20));
        Suspend(desk).EmitResumed();
        QCOMPARE(desk.Windows().OpenAlarmWindows().size(), 1);
        QVERIFY(desk.TodaysLog().contains(
            Desk::Line("10:42", "EA", 1, "Alarm Expired for ", "Crew 4 check", ", rang 12 minutes late")));
    }

    void clockSetForwardRingsThePassedAlarmAtOnce()
    {
        Desk desk(TwoAlarms);
        QVERIFY(desk.window->Load());
        desk.clock.Set(Desk::Monday, QTime(10, 35, 40));
        ClockChange(desk).Emit();
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:35"));
        QCOMPARE(desk.Windows().OpenAlarmWindows().size(), 1);
        QVERIFY(desk.TodaysLog().contains(
            Desk::Line("10:35", "EA", 1, "Alarm Expired for ", "Crew 4 check", ", rang 5 minutes late")));
    }

    void alarmGoingOffIsToldToTheDesktopAndWithdrawnWhenAnswered()
    {
        Desk desk(TwoAlarms);
        QVERIFY(desk.window->Load());
        desk.window->CheckAlarms(10, 30);
        QCOMPARE(Notifier(desk).Notices.size(), 1);
        const FakeDesktopNotifier::Notice notice = Notifier(desk).Notices.at(0);
        QCOMPARE(notice.Title, QStringLiteral("Expired Safety Check Alarm"));
        QCOMPARE(notice.Body, QStringLiteral("Crew 4 check\nExpired on 10:30"));
        // Keyed by the alarm's own record, whatever slot it moves to.
        QCOMPARE(notice.Key, QString::number(desk.Alarms().IdOf(1)));
        QVERIFY(Notifier(desk).Withdrawn.isEmpty());
        frmAlarm* window = desk.Windows().AlarmWindow(1);
        QVERIFY(window);
        window->cmdStop_Click();
        QCOMPARE(Notifier(desk).Withdrawn, QStringList{notice.Key});
    }
};

QTEST_MAIN(TestDesktopNotices)
#include "tst_desktopnotices.moc"
