#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "widgets/MessageBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

QByteArray Ini(const QByteArray& alarms)
{
    return "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\n" + alarms;
}

struct Loaded
{
    explicit Loaded(const QByteArray& ini, QTime at = QTime(10, 14, 30)) : desk(ini)
    {
        desk.clock.Set(Desk::Monday, at);
        QVERIFY(desk.window->Load());
    }
    QList<int> OpenWindowAlarms() const
    {
        QList<int> numbers;
        for (frmAlarm* w : desk.Windows().OpenAlarmWindows())
            numbers << w->ExpirePtr();
        return numbers;
    }
    QByteArray LogAfterStart() const { return desk.TodaysLog().mid(desk.TodaysLog().indexOf("\r\n") + 2); }
    Desk desk;
};

} // namespace

class TestCheckAlarms : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void twoTicksInSecondZeroRunTheExpiryTestOnce()
    {
        Loaded l(Ini("Count=1\nMessage%201=Convoy\nExpire%201=10:15\nAlarmSet%201=True\n"));
        l.desk.Tick(QTime(10, 15, 0, 0));
        l.desk.Tick(QTime(10, 15, 0, 500));
        QCOMPARE(l.OpenWindowAlarms(), QList<int>{1});
        QCOMPARE(l.LogAfterStart(), Desk::Line("10:15", "EA", 0, "Alarm Expired for ", "Convoy", ""));
    }

    void alarmsTwoAndFiveDueTogetherOpenTwoWindowsInOrder()
    {
        Loaded l(Ini("Count=5\n"
                     "Message%201=A1\nExpire%201=09:00\nAlarmSet%201=True\n"
                     "Message%202=A2\nExpire%202=10:15\nAlarmSet%202=True\nSafety%202=1\n"
                     "Message%203=A3\nExpire%203=10:16\nAlarmSet%203=True\n"
                     "Message%204=A4\nExpire%204=10:15\nAlarmSet%204=False\n"
                     "Message%205=A5\nExpire%205=10:15\nAlarmSet%205=True\n"));
        l.desk.window->CheckAlarms(10, 15);
        QCOMPARE(l.OpenWindowAlarms(), (QList<int>{2, 5}));
        QCOMPARE(l.LogAfterStart(), Desk::Line("10:14", "EA", 1, "Alarm Expired for ", "A2", "") +
                                        Desk::Line("10:14", "EA", 0, "Alarm Expired for ", "A5", ""));
        QVERIFY(l.desk.Alarms().At(2).Ringing);
        QVERIFY(l.desk.Alarms().At(5).Ringing);
        QVERIFY(l.desk.Alarms().At(2).AlarmSet); // set until answered
        QVERIFY(!l.desk.Alarms().At(4).Ringing);
    }

    void unsetAlarmAtItsTimeDoesNotRing()
    {
        Loaded l(Ini("Count=1\nMessage%201=Off\nExpire%201=10:15\nAlarmSet%201=False\n"));
        // An unset alarm's expiry is blanked by the list; give it its time back.
        l.desk.Alarms().At(1).Expire = QStringLiteral("10:15");
        l.desk.window->CheckAlarms(10, 15);
        QVERIFY(l.OpenWindowAlarms().isEmpty());
        QCOMPARE(l.LogAfterStart(), QByteArray());
    }

    void alarmAtMidnightRingsAtMidnightInTheNewDaysLog()
    {
        Loaded l(Ini("Count=1\nMessage%201=Midnight\nExpire%201=00:00\nAlarmSet%201=True\n"),
                 QTime(23, 59, 30));
        l.desk.clock.Set(Desk::Monday.addDays(1), QTime(0, 0, 0));
        l.desk.window->tmrMain_Timer();
        QCOMPARE(l.OpenWindowAlarms(), QList<int>{1});
        QCOMPARE(TestEnvironment::ReadFile(l.desk.LogPath(Desk::Monday.addDays(1))),
                 Desk::Line("00:00", "EA", 0, "Alarm Expired for ", "Midnight", "", "11/17/2026"));
    }

    void missedMinuteRingsLateAtOnceAndNotAgain()
    {
        Loaded l(Ini("Count=1\nMessage%201=Late\nExpire%201=10:15\nAlarmSet%201=True\n"));
        l.desk.window->CheckAlarms(10, 16);
        QCOMPARE(l.OpenWindowAlarms(), QList<int>{1});
        QCOMPARE(l.LogAfterStart(),
                 Desk::Line("10:14", "EA", 0, "Alarm Expired for ", "Late", ", rang 1 minute late"));
        QCOMPARE(l.desk.Windows().AlarmWindow(1)->findChild<QLabel*>(QStringLiteral("lblExpired"))->text(),
                 QStringLiteral("Expired on\n10:15\n(1 minute late)"));
        l.desk.window->CheckAlarms(10, 17);
        QCOMPARE(l.OpenWindowAlarms(), QList<int>{1});
    }

    void unansweredAlarmRingsAgainADayLater()
    {
        Loaded l(Ini("Count=1\nMessage%201=Again\nExpire%201=10:15\nAlarmSet%201=True\n"));
        l.desk.window->CheckAlarms(10, 15);
        l.desk.Windows().AlarmWindow(1)->close(); // closed without an answer: still set
        l.desk.window->CheckAlarms(10, 16);
        l.desk.clock.Set(Desk::Monday.addDays(1), QTime(10, 15));
        l.desk.window->CheckAlarms(10, 15);
        QTRY_COMPARE(l.OpenWindowAlarms(), QList<int>{1});
    }

    void expiryUsesTheCorrectedClock()
    {
        Loaded l("[General]\nInetMinOffset=-2\n[Alarms]\nCount=1\nMessage%201=Corr\nExpire%201=10:15\n"
                 "AlarmSet%201=True\n");
        l.desk.Tick(QTime(10, 17, 0)); // PC 10:17 is 10:15 by the corrected clock
        QCOMPARE(l.OpenWindowAlarms(), QList<int>{1});
    }

    void expiryLeavesTheEditorOnItsAlarmAndLocksTheRingingOne()
    {
        Loaded l(Ini("Count=2\nMessage%201=Other\nExpire%201=11:00\nAlarmSet%201=True\n"
                     "Message%202=Convoy\nExpire%202=10:15\nAlarmSet%202=True\n"));
        QCOMPARE(l.desk.Alarms().SelectedAlarm, 1);
        l.desk.window->CheckAlarms(10, 15);
        // The operator goes on editing alarm 1: the expiry of alarm 2 does not take the editor.
        QCOMPARE(l.desk.Alarms().SelectedAlarm, 1);
        QCOMPARE(l.desk.Find<QLineEdit>(QStringLiteral("txtMessage"))->text(), QStringLiteral("Other"));
        QVERIFY(l.desk.Find<QPushButton>(QStringLiteral("cmdSet"))->isEnabled());
        l.desk.Alarms().SelectedAlarm = 2;
        l.desk.window->Alarms().SetSelectedAlarm();
        QVERIFY(!l.desk.Find<QPushButton>(QStringLiteral("cmdSet"))->isEnabled());
        QVERIFY(!l.desk.Find<QPushButton>(QStringLiteral("cmdDelete"))->isEnabled());
    }

    void restoredClockAlarmRingsAtItsTimeAfterARestart()
    {
        Loaded l(Ini("Count=1\nMessage%201=Wake crew\nExpire%201=07:30\nAlarmSet%201=True\n"),
                 QTime(7, 29, 50));
        l.desk.Tick(QTime(7, 30, 0));
        QCOMPARE(l.OpenWindowAlarms(), QList<int>{1});
    }

    void answeringTheSecondOfTwoWindowsActsOnItsOwnAlarm()
    {
        Loaded l(Ini("Count=3\nMessage%201=First\nExpire%201=10:15\nAlarmSet%201=True\n"
                     "Message%202=Second\nExpire%202=10:15\nAlarmSet%202=True\n"
                     "Message%203=Third\nExpire%203=11:00\nAlarmSet%203=True\n"));
        l.desk.window->CheckAlarms(10, 15);
        frmAlarm* second = l.desk.Windows().AlarmWindow(2);
        QVERIFY(second);
        l.desk.Windows().AlarmWindow(1)->cmdStop_Click(); // deletes "First"; the others move up
        QCOMPARE(second->ExpirePtr(), 1);
        QVERIFY(l.desk.Alarms().At(1).Ringing);
        QVERIFY(!l.desk.Alarms().At(2).Ringing);
        second->cmdStop_Click();
        QCOMPARE(l.desk.Alarms().AlarmCount, 1);
        QCOMPARE(l.desk.Alarms().At(1).Message, QStringLiteral("Third"));
        QVERIFY(l.desk.Alarms().At(1).AlarmSet);
        // Each stop logs the alarm it stopped, not the one that moved into its slot.
        const QByteArray expected =
            Desk::Line("10:14", "SA", 0, "Alarm acknowledged, terminated for  ", "First", "") +
            Desk::Line("10:14", "SA", 0, "Alarm acknowledged, terminated for  ", "Second", "");
        QVERIFY(l.LogAfterStart().endsWith(expected));
    }
};

QTEST_MAIN(TestCheckAlarms)
#include "tst_checkalarms.moc"
