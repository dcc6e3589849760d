#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "widgets/MessageBox.h"
#include "widgets/SecondsBox.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

namespace {

QByteArray Ini(const QByteArray& alarms)
{
    return "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\n" + alarms;
}

QList<int> OpenWindowAlarms(Desk& desk)
{
    QList<int> numbers;
    for (frmAlarm* w : desk.Windows().OpenAlarmWindows())
        numbers << w->ExpirePtr();
    return numbers;
}

QByteArray LogAfterStart(const Desk& desk)
{
    const QByteArray log = desk.TodaysLog();
    return log.mid(log.indexOf("\r\n") + 2);
}

QMessageBox* OpenMessageBox()
{
    for (QWidget* top : QApplication::topLevelWidgets())
        if (auto* box = qobject_cast<QMessageBox*>(top); box && box->isVisible())
            return box;
    return nullptr;
}

} // namespace

// Every minute of the corrected clock is handled once: at its first tick, late after a
// stall or a sleep, again after the clock is set back, and never held back by a dialog.
class TestMinutes : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup()
    {
        MessageBox::DismissOpen();
        MessageBox::SetTestMode(false);
    }

    void alarmDueInTheMinuteOfTheStartRings()
    {
        Desk desk(Ini("Count=1\nMessage%201=At start\nExpire%201=10:15\nAlarmSet%201=True\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 15, 20));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 15, 20, 500));
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{1});
        QCOMPARE(LogAfterStart(desk), Desk::Line("10:15", "EA", 0, "Alarm Expired for ", "At start", ""));
    }

    void aChangedCorrectionRingsWhatItPassesAtTheNextTick()
    {
        Desk desk(Ini("Count=1\nMessage%201=Corrected\nExpire%201=10:02\nAlarmSet%201=True\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 0, 10));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 0, 10, 500));
        QVERIFY(OpenWindowAlarms(desk).isEmpty());
        // The clock is found three minutes slow: the corrected time passes 10:02 within the
        // same minute of the computer's clock, and the next tick rings it.
        Settings values = desk.window->Prefs().Values();
        values.InetMinOffset = 3;
        desk.window->Prefs().Replace(values);
        desk.Tick(QTime(10, 0, 11));
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{1});
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:03"));
    }

    void stepOfTwoSecondsAcrossSecondZeroLosesNothing()
    {
        Desk desk(Ini("Count=1\nMessage%201=Stepped\nExpire%201=10:15\nAlarmSet%201=True\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 14, 59, 500));
        desk.Tick(QTime(10, 15, 1, 500)); // the ticks of second 0 never came
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{1});
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:15"));
    }

    void minutesMissedWhileAsleepRingLateInAlarmOrderWithTheirLateness()
    {
        Desk desk(Ini("Count=3\n"
                      "Message%201=Second due\nExpire%201=10:40\nAlarmSet%201=True\n"
                      "Message%202=First due\nExpire%202=10:20\nAlarmSet%202=True\nSafety%202=1\n"
                      "Message%203=Not yet\nExpire%203=11:30\nAlarmSet%203=True\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 0, 10));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 0, 10, 500));
        desk.store->Write(QStringLiteral("Alarms"), QStringLiteral("Count"), QStringLiteral("99"));
        desk.store->Sync();
        desk.Tick(QTime(11, 10, 0, 0)); // the machine slept for seventy minutes
        QCOMPARE(OpenWindowAlarms(desk), (QList<int>{1, 2}));
        QCOMPARE(
            LogAfterStart(desk),
            Desk::Line("11:10", "EA", 0, "Alarm Expired for ", "Second due", ", rang 30 minutes late") +
                Desk::Line("11:10", "EA", 1, "Alarm Expired for ", "First due", ", rang 50 minutes late"));
        QCOMPARE(desk.Windows().AlarmWindow(2)->findChild<QLabel*>(QStringLiteral("lblExpired"))->text(),
                 QStringLiteral("Expired on\n10:20\n(50 minutes late)"));
        // The quarter hours passed while asleep: the table was saved.
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("3"));
        // Exactly once: the next minutes ring nothing more.
        desk.Tick(QTime(11, 11, 0, 0));
        QCOMPARE(OpenWindowAlarms(desk), (QList<int>{1, 2}));
        QCOMPARE(LogAfterStart(desk).count("\"EA\""), 2);
    }

    void aGapOfMoreThanADayRingsEachAlarmOnce()
    {
        Desk desk(Ini("Count=1\nMessage%201=Daily\nExpire%201=09:00\nAlarmSet%201=True\n"));
        desk.clock.Set(Desk::Monday, QTime(8, 0, 10));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(8, 0, 10, 500));
        desk.clock.Set(Desk::Monday.addDays(3), QTime(8, 30, 0));
        desk.window->tmrMain_Timer();
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{1});
        QCOMPARE(desk.TodaysLog().count("\"EA\""), 1);
        QVERIFY(desk.TodaysLog().endsWith(Desk::Line("08:30", "EA", 0, "Alarm Expired for ", "Daily",
                                                     ", rang 1410 minutes late", "11/19/2026")));
    }

    void clockSetBackStillRingsTheEarlierHourButNothingTwice()
    {
        Desk desk(Ini("Count=2\n"
                      "Message%201=Earlier\nExpire%201=09:15\nAlarmSet%201=True\n"
                      "Message%202=Retained\nExpire%202=10:15\nAlarmSet%202=True\nRepeat%202=1\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 15, 0, 0));
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{2});
        desk.Windows().AlarmWindow(2)->cmdReset_Click(); // set again for 10:15
        QTRY_VERIFY(OpenWindowAlarms(desk).isEmpty());
        // The clock is set back an hour.
        desk.Tick(QTime(9, 14, 59, 500));
        desk.Tick(QTime(9, 15, 0, 0));
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{1});
        desk.Windows().AlarmWindow(1)->cmdStop_Click();
        QTRY_VERIFY(OpenWindowAlarms(desk).isEmpty());
        // 10:15 comes round again the same day: that expiry has rung already.
        desk.Tick(QTime(10, 15, 0, 0));
        QVERIFY(OpenWindowAlarms(desk).isEmpty());
        QCOMPARE(desk.TodaysLog().count("\"EA\""), 2);
    }

    void tickRunsWhileAnErrorBoxIsOpen()
    {
        Desk desk(Ini("Count=2\n"
                      "Message%201=Ten fifteen\nExpire%201=10:15\nAlarmSet%201=True\n"
                      "Message%202=Ten sixteen\nExpire%202=10:16\nAlarmSet%202=True\n"));
        desk.clock.Set(Desk::Monday, QTime(10, 14, 59, 500));
        QVERIFY(desk.window->Load());
        desk.window->show();
        // The view document cannot be written: every redraw of the logbook fails.
        QDir work(desk.env.WorkFolder());
        work.remove(QStringLiteral("LogBook.rtf"));
        QVERIFY(work.mkdir(QStringLiteral("LogBook.rtf")));
        MessageBox::SetTestMode(false);
        // Whatever happens, no box stays open for ever.
        QTimer::singleShot(8000, desk.window.get(), [] { MessageBox::DismissOpen(); });

        desk.clock.Set(Desk::Monday, QTime(10, 15, 0, 0));
        QTRY_VERIFY_WITH_TIMEOUT(OpenMessageBox() != nullptr, 3000);
        QVERIFY(OpenMessageBox()->text().startsWith(QStringLiteral("Error refreshing logbook\n\n")));
        QCOMPARE(OpenWindowAlarms(desk), QList<int>{1});
        // The box stays unanswered; the clock goes on and the next alarm rings.
        desk.clock.Set(Desk::Monday, QTime(10, 16, 0, 0));
        QTRY_VERIFY_WITH_TIMEOUT(OpenWindowAlarms(desk).contains(2), 3000);
        QVERIFY(OpenMessageBox() != nullptr);
        QCOMPARE(desk.Find<SecondsBox>(QStringLiteral("txtSeconds"))->text(), QStringLiteral("00"));
    }
};

QTEST_MAIN(TestMinutes)
#include "tst_minutes.moc"
