#include "Desk.h"
#include "alarms/AlarmPanel.h"
#include "alarms/frmAlarm.h"
#include "widgets/MessageBox.h"
#include "widgets/TimeBox.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QtGui/qpa/qwindowsysteminterface.h>

namespace {

QByteArray Ini(const QByteArray& alarms)
{
    return "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\n" + alarms;
}

void CloseFromFrame(QWidget* window)
{
    QVERIFY(window && window->windowHandle());
    QWindowSystemInterface::handleCloseEvent<QWindowSystemInterface::SynchronousDelivery>(
        window->windowHandle());
    QCoreApplication::processEvents();
}

int Rang(const Desk& desk)
{
    return int(desk.TodaysLog().count("\"EA\""));
}

const QByteArray Safety15 = Ini("Count=1\nMessage%201=Crew 7\nTypeTimer%201=True\nInterval%201=00:15\n"
                                "Expire%201=10:15\nAlarmSet%201=True\nRepeat%201=1\nSafety%201=1\n");

} // namespace

// The ways an alarm could still be lost, silenced or misfiled around its windows, the editor
// and the exit.
class TestAlarmSafety : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup()
    {
        MessageBox::DismissOpen();
        MessageBox::SetTestMode(false);
    }

    void checkInCalledOffAfterItsExpiryPassedRingsAtOnce()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 10, 0));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.Tick(QTime(10, 10, 0, 500));
        desk.Windows().StartCheckIn(1);
        QPointer<frmAlarm> w = desk.Windows().AlarmWindow(1);
        for (int m = 11; m <= 17; ++m)
            desk.Tick(QTime(10, m, 0, 500));
        QCOMPARE(Rang(desk), 0); // withdrawn while the crew reports
        CloseFromFrame(w);
        QTRY_VERIFY(!w);
        QCOMPARE(Rang(desk), 1);
        QVERIFY(desk.TodaysLog().endsWith(
            Desk::Line("10:17", "EA", 1, "Alarm Expired for ", "Crew 7", ", rang 2 minutes late")));
        QVERIFY(desk.Windows().AlarmWindow(1));
    }

    void checkInOpenedInItsAlarmsMinuteBeforeItsTickRingsWhenCalledOff()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.Tick(QTime(10, 14, 59, 600));
        desk.clock.Set(Desk::Monday, QTime(10, 15, 0, 100)); // before the tick of 10:15
        desk.Windows().StartCheckIn(1);
        QPointer<frmAlarm> w = desk.Windows().AlarmWindow(1);
        desk.Tick(QTime(10, 15, 0, 500));
        desk.Tick(QTime(10, 16, 0, 0));
        CloseFromFrame(w);
        QTRY_VERIFY(!w);
        QCOMPARE(Rang(desk), 1);
    }

    void alarmSetAgainAfterTheClockWentBackRingsAtItsTime()
    {
        Desk desk(Ini("Count=1\nMessage%201=Retained\nExpire%201=10:15\nAlarmSet%201=True\nRepeat%201=1\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.Tick(QTime(10, 15, 0, 0));
        QCOMPARE(Rang(desk), 1);
        desk.Windows().AlarmWindow(1)->cmdStop_Click(); // retained: unset
        QTRY_VERIFY(desk.Windows().OpenAlarmWindows().isEmpty());
        desk.Tick(QTime(10, 5, 0, 0)); // the clock is corrected back ten minutes
        desk.ClickPanel(QStringLiteral("Alarm"));
        desk.Find<TimeBox>(QStringLiteral("edtExpire"))->SetText(QStringLiteral("10:15"));
        desk.Find<QPushButton>(QStringLiteral("cmdSet"))->click();
        QVERIFY(desk.Alarms().At(1).AlarmSet);
        for (int m = 6; m <= 20; ++m)
            desk.Tick(QTime(10, m, 0, 500));
        QCOMPARE(Rang(desk), 2);
    }

    void timerResetAfterTheClockWentBackRingsAtItsNewTime()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.Tick(QTime(10, 15, 0, 0));
        desk.Tick(QTime(10, 0, 0, 0)); // the clock goes back while the window is open
        desk.Windows().AlarmWindow(1)->cmdReset_Click();
        QCOMPARE(desk.Alarms().At(1).Expire, QStringLiteral("10:15"));
        for (int m = 1; m <= 30; ++m)
            desk.Tick(QTime(10, m, 0, 500));
        QCOMPARE(Rang(desk), 2);
    }

    void editorCannotChangeAnAlarmWhoseWindowIsOpen()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 10, 0));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Alarm"));
        desk.Find<QPushButton>(QStringLiteral("cmdCheckIn"))->click();
        QCOMPARE(desk.Windows().OpenAlarmWindows().size(), 1);
        for (const char* control : {"txtMessage", "optClock", "optTimer", "edtExpire", "chkRepeat",
                                    "chkSafety", "cmdSet", "cmdDelete", "cmdCheckIn"})
            QVERIFY2(!desk.Find<QWidget>(QString::fromLatin1(control))->isEnabled(), control);
        // Even clicked by code, the safety box cannot open a second check-in.
        desk.Find<QCheckBox>(QStringLiteral("chkSafety"))->click();
        desk.Find<QCheckBox>(QStringLiteral("chkSafety"))->click();
        QVERIFY(!desk.Find<QPushButton>(QStringLiteral("cmdCheckIn"))->isEnabled());
        desk.window->EndSession();
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/AlarmSet 1")), QStringLiteral("True"));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Expire 1")), QStringLiteral("10:15"));
    }

    void typingCannotUnsetARingingAlarm()
    {
        Desk desk(Ini("Count=1\nMessage%201=Retained\nExpire%201=10:15\nAlarmSet%201=True\nRepeat%201=1\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Alarm"));
        desk.Tick(QTime(10, 15, 0, 0));
        QVERIFY(desk.Alarms().At(1).Ringing);
        auto* box = desk.Find<TimeBox>(QStringLiteral("edtExpire"));
        box->setFocus();
        box->setCursorPosition(0);
        QTest::keyClicks(box, QStringLiteral("1"));
        QVERIFY(desk.Alarms().At(1).AlarmSet);
        desk.window->EndSession();
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/AlarmSet 1")), QStringLiteral("True"));
    }

    void anotherAlarmRingingLeavesTheTimeBeingTyped()
    {
        Desk desk(Ini("Count=2\nMessage%201=Rings\nExpire%201=10:15\nAlarmSet%201=True\n"
                      "Message%202=Being edited\nExpire%202=09:00\nAlarmSet%202=False\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Alarm"));
        desk.Alarms().SelectedAlarm = 2;
        desk.window->Alarms().SetSelectedAlarm();
        auto* box = desk.Find<TimeBox>(QStringLiteral("edtExpire"));
        box->setFocus();
        box->setCursorPosition(0);
        QTest::keyClicks(box, QStringLiteral("14"));
        desk.Tick(QTime(10, 15, 0, 0));
        QVERIFY(desk.Alarms().At(1).Ringing);
        QTest::keyClicks(box, QStringLiteral("30"));
        QCOMPARE(box->Text(), QStringLiteral("14:30"));
    }

    void editorIsEmptyWhenStopDeletesTheLastAlarm()
    {
        Desk desk(Ini("Count=1\nMessage%201=Only one\nExpire%201=10:15\nAlarmSet%201=True\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Alarm"));
        desk.Tick(QTime(10, 15, 0, 0));
        desk.Windows().AlarmWindow(1)->cmdStop_Click();
        QTRY_VERIFY(desk.Windows().OpenAlarmWindows().isEmpty());
        QCOMPARE(desk.Alarms().AlarmCount, 0);
        QCOMPARE(desk.Find<QLineEdit>(QStringLiteral("txtMessage"))->text(), QString());
        QCOMPARE(desk.Find<QPushButton>(QStringLiteral("cmdSet"))->text(), QStringLiteral(" Set Alarm"));
        QVERIFY(!desk.Find<QPushButton>(QStringLiteral("cmdCheckIn"))->isEnabled());
    }

    void exitDuringACheckInAsksAndLogsTheExit()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 10, 0));
        QVERIFY(desk.window->Load());
        desk.Windows().StartCheckIn(1);
        MessageBox::ClearShown();
        MessageBox::SetNextAnswer(MessageBox::Answer::No);
        QVERIFY(!desk.window->close()); // the crew's alarm is still armed: asked, and kept
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown()[0].Title, QStringLiteral("Exit Tarrowind"));
        desk.window->EndSession();
        QVERIFY(desk.TodaysLog().endsWith(Desk::Line("10:10", "EX", 0, "Exit program", "", "")));
    }

    void focusLeavingTheTimeBoxAtExitStoresNoFalseLocation()
    {
        Desk desk(
            Ini("Count=1\nMessage%201=Crew 7\nTypeTimer%201=True\nInterval%201=00:15\nExpire%201=10:15\n"
                "AlarmSet%201=True\nRepeat%201=1\nSafety%201=1\nLastPosition%201=09:58 Pass road km 3\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Alarm"));
        desk.Tick(QTime(10, 15, 0, 0));
        frmAlarm* w = desk.Windows().AlarmWindow(1);
        QVERIFY(w);
        w->findChild<QLineEdit*>(QStringLiteral("txtLocation"))->setText(QStringLiteral("half typed"));
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->close());
        // The time box's focus-out saves the table, as it would when the window goes.
        QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QApplication::sendEvent(desk.Find<TimeBox>(QStringLiteral("edtExpire")), &out);
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/LastPosition 1")),
                 QStringLiteral("09:58 Pass road km 3"));
    }

    void saveFailureAtExitIsShownOnceTheWindowsAreClosed()
    {
        Desk desk(Ini("Count=1\nMessage%201=Unset\nExpire%201=10:15\nAlarmSet%201=False\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 10, 0));
        QVERIFY(desk.window->Load());
        desk.window->show();
        QFile::remove(desk.env.SettingsFile());
        QVERIFY(QDir().mkdir(desk.env.SettingsFile())); // the settings file cannot be written now
        MessageBox::SetTestMode(false);
        QString seen;
        QTimer::singleShot(200, desk.window.get(), [&] {
            for (QWidget* top : QApplication::topLevelWidgets())
                if (auto* box = qobject_cast<QMessageBox*>(top); box && box->isVisible())
                    seen = box->text();
            MessageBox::DismissOpen();
        });
        QTimer::singleShot(5000, desk.window.get(), [] { MessageBox::DismissOpen(); });
        QVERIFY(desk.window->close());
        QVERIFY2(seen.startsWith(QStringLiteral("Error saving the alarms to ")), qPrintable(seen));
    }

    void signalExitWithASaveFailureAsksNothing()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 10, 0));
        QVERIFY(desk.window->Load());
        QFile::remove(desk.env.SettingsFile());
        QVERIFY(QDir().mkdir(desk.env.SettingsFile()));
        MessageBox::ClearShown();
        desk.window->EndSession();
        QVERIFY(MessageBox::Shown().isEmpty());
        // Told where someone may look: the log of the day.
        QVERIFY(desk.TodaysLog().contains("\"NT\",1,\"Error at exit: \",\"Error saving the alarms to "));
        QVERIFY(desk.window->IsStopped());
    }

    void quarterHourSaveDuringACheckInStoresTheAlarmPending()
    {
        Desk desk(Safety15);
        desk.clock.Set(Desk::Monday, QTime(10, 13, 0));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 13, 0, 500));
        desk.Windows().StartCheckIn(1);
        desk.Tick(QTime(10, 14, 0, 500));
        desk.Tick(QTime(10, 15, 0, 500)); // a quarter hour: the table is saved
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/AlarmSet 1")), QStringLiteral("True"));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Expire 1")), QStringLiteral("10:15"));
    }

    void startUpMessagesHoldBackNoAlarm()
    {
        // No sound file and "Logs" taken by a file: two messages at start-up.
        Desk desk(Safety15, false);
        TestEnvironment::WriteFile(desk.env.LogFolder(), "a file where the folder should be");
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        MessageBox::SetTestMode(false);
        bool hadToBeDismissed = false;
        QTimer::singleShot(3000, desk.window.get(), [&] {
            hadToBeDismissed = true;
            MessageBox::DismissOpen();
        });
        QVERIFY(desk.window->Load());
        QVERIFY2(!hadToBeDismissed, "the start-up waited for a message to be answered");
        int open = 0;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(top); box && box->isVisible())
                ++open;
        QCOMPARE(open, 2); // shown, and not waited for
        desk.Tick(QTime(10, 15, 0, 0));
        QVERIFY(desk.Windows().AlarmWindow(1));
    }
};

QTEST_MAIN(TestAlarmSafety)
#include "tst_alarmsafety.moc"
