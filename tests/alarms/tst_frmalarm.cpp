#include "Owners.h"
#include "alarms/AlarmListView.h"
#include "alarms/AlarmPanel.h"
#include "alarms/frmAlarm.h"
#include "widgets/MessageBox.h"
#include "widgets/TopMost.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QtGui/qpa/qwindowsysteminterface.h>

namespace {

QByteArray Ini(const QByteArray& alarms)
{
    return "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\n" + alarms;
}

const QByteArray RetainedTimer =
    Ini("Count=1\nMessage%201=Pump check\nTypeTimer%201=True\nInterval%201=00:30\n"
        "Expire%201=10:07\nAlarmSet%201=True\nRepeat%201=1\n");
const QByteArray RetainedClock = Ini("Count=1\nMessage%201=Wake crew\nExpire%201=07:00\nAlarmSet%201=True\n"
                                     "Repeat%201=1\n");
const QByteArray SafetyTimer = Ini("Count=1\nMessage%201=Crew 7\nTypeTimer%201=True\nInterval%201=00:15\n"
                                   "Expire%201=10:07\nAlarmSet%201=True\nRepeat%201=1\nSafety%201=1\n");
const QByteArray ThreePlain = Ini("Count=3\nMessage%201=First\nExpire%201=10:07\nAlarmSet%201=True\n"
                                  "Message%202=Second\nExpire%202=10:07\nAlarmSet%202=True\n"
                                  "Message%203=Third\nExpire%203=11:00\nAlarmSet%203=True\n");

// The alarms of `ini` after start-up, with the alarm panel shown, scanned at `at`.
// Closes a window as the window manager does when its frame's close button is pressed.
void CloseFromFrame(QWidget* window)
{
    QVERIFY(window && window->windowHandle());
    QWindowSystemInterface::handleCloseEvent<QWindowSystemInterface::SynchronousDelivery>(
        window->windowHandle());
    QCoreApplication::processEvents();
}

struct Ringing
{
    explicit Ringing(const QByteArray& ini, QTime at = QTime(10, 7, 0)) : desk(ini)
    {
        desk.clock.Set(Owners::Monday, at);
        desk.Place(new AlarmPanel(desk.alarms, desk.windows, desk.prefs));
        QVERIFY(desk.Start());
        desk.host.show();
        desk.alarms.ScanExpiries(at.hour(), at.minute());
    }
    frmAlarm* Window(int n) const { return desk.Windows().AlarmWindow(n); }
    template <typename T>
    T* In(int n, const char* name) const
    {
        return Window(n)->findChild<T*>(QString::fromLatin1(name));
    }
    QString Text(int n, const char* label) const { return In<QLabel>(n, label)->text(); }
    // Answers window 1, with `location` typed, at `at` on Monday, on a clock that moves on a
    // second at every reading until the window is gone.
    void AnswerAsTheClockTurns(QTime at, const char* location, void (frmAlarm::*answer)())
    {
        In<QLineEdit>(1, "txtLocation")->setText(QString::fromUtf8(location));
        desk.clock.Set(Owners::Monday, at);
        desk.clock.StepEachRead(1000);
        (Window(1)->*answer)();
        QTRY_VERIFY(!Window(1));
        desk.clock.StepEachRead(0);
    }
    // Monday's log, whatever day the clock has gone on to.
    QByteArray MondaysLog() const { return TestEnvironment::ReadFile(desk.LogPath(Owners::Monday)); }
    Owners desk;
};

} // namespace

class TestFrmAlarm : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void expiredWindowShowsTheAlarmOnTop()
    {
        Ringing r(ThreePlain);
        frmAlarm* w = r.Window(1);
        QVERIFY(w);
        QVERIFY(w->isVisible());
        QVERIFY(IsTopMost(w));
        QCOMPARE(w->ExpirePtr(), 1);
        QCOMPARE(w->CheckIn(), false);
        QCOMPARE(r.Text(1, "lblCaption"), QStringLiteral("Expired Alarm"));
        QCOMPARE(r.Text(1, "lblMessage"), QStringLiteral("First"));
        QCOMPARE(r.Text(1, "lblExpired"), QStringLiteral("Expired on\n10:07"));
        QVERIFY(r.In<QLineEdit>(1, "txtLocation")->isHidden());
        QVERIFY(r.In<QPushButton>(1, "cmdReset")->isHidden());
        QCOMPARE(r.In<QPushButton>(1, "cmdStop")->text(), QStringLiteral("Stop"));
        QVERIFY(r.In<QPushButton>(1, "cmdStop")->isDefault());
        QVERIFY(w->FlashTimer().isActive());
        QCOMPARE(w->FlashTimer().interval(), 2000);
        QCOMPARE(w->BlinkTimer().interval(), 500);
    }

    void retainedAlarmsOfferResetAndTerminate()
    {
        Ringing clock(RetainedClock, QTime(7, 0));
        QCOMPARE(clock.In<QPushButton>(1, "cmdReset")->text(), QStringLiteral("Reset to expire at 07:00"));
        QVERIFY(clock.In<QPushButton>(1, "cmdReset")->isDefault());
        QCOMPARE(clock.In<QPushButton>(1, "cmdStop")->text(), QStringLiteral("Terminate"));
        Ringing timer(RetainedTimer);
        QCOMPARE(timer.In<QPushButton>(1, "cmdReset")->text(),
                 QStringLiteral("Reset to expire in 00:30 from now"));
    }

    void safetyAlarmAsksForALocationAndFlashesItsHeadingRed()
    {
        Ringing r(SafetyTimer);
        QCOMPARE(r.Text(1, "lblCaption"), QStringLiteral("Expired Safety Check Alarm"));
        QVERIFY(!r.In<QLineEdit>(1, "txtLocation")->isHidden());
        QCOMPARE(r.Text(1, "lblLocation"), QStringLiteral("Safety Check Location / Notes"));
        auto* caption = r.In<QLabel>(1, "lblCaption");
        r.Window(1)->Timer1_Timer();
        QCOMPARE(caption->palette().color(QPalette::Window), QColor(255, 0, 0));
        QCOMPARE(caption->palette().color(QPalette::WindowText), QColor(Qt::white));
        r.Window(1)->Timer1_Timer();
        QCOMPARE(caption->palette().color(QPalette::WindowText), QColor(Qt::black));
        QVERIFY(caption->palette().color(QPalette::Window) != QColor(255, 0, 0));
    }

    void picturesBlinkEveryHalfSecond()
    {
        Ringing r(ThreePlain);
        auto* picture0 = r.In<QLabel>(1, "Image1_0");
        auto* picture1 = r.In<QLabel>(1, "Image1_1");
        const bool before = picture0->isVisible();
        r.Window(1)->Timer1_Timer();
        QCOMPARE(picture0->isVisible(), !before);
        QCOMPARE(picture1->isVisible(), before);
        // An ordinary alarm's heading does not flash.
        QVERIFY(r.In<QLabel>(1, "lblCaption")->palette().color(QPalette::Window) != QColor(255, 0, 0));
    }

    void everyTwoSecondsTheSoundPlaysAndTheMainWindowFlashes()
    {
        Ringing r(ThreePlain);
        r.desk.plays.clear();
        r.desk.flash.Flashes = 0;
        r.Window(1)->tmrFlash_Timer();
        QCOMPARE(r.desk.plays.size(), 1);
        QVERIFY(r.desk.plays[0].endsWith(QStringLiteral("/DefaultAlarm.Wav")));
        QCOMPARE(r.desk.flash.Flashes, 1);
    }

    void aSoundStillPlayingIsNotStartedAgain()
    {
        Ringing r(ThreePlain);
        r.desk.plays.clear();
        r.Window(1)->tmrFlash_Timer();
        r.Window(1)->tmrFlash_Timer(); // the fake sound is still playing
        QCOMPARE(r.desk.plays.size(), 1);
        QCOMPARE(r.desk.flash.Flashes, 2);
    }

    void namedSoundIsPlayedInsteadOfTheDefault()
    {
        Ringing r(Ini(
            "Count=1\nMessage%201=Bell\nExpire%201=10:07\nAlarmSet%201=True\nAudioPath%201=/s/bell.wav\n"));
        r.Window(1)->tmrFlash_Timer();
        QCOMPARE(r.desk.plays.last(), QStringLiteral("/s/bell.wav"));
    }

    void withTheSoundSwitchOffNothingPlaysButTheCaptionStillFlashes()
    {
        Ringing r("[General]\nAudible=0\n[Alarms]\nCount=1\nMessage%201=Quiet\nExpire%201=10:07\nAlarmSet%"
                  "201=True\n");
        r.Window(1)->tmrFlash_Timer();
        r.Window(1)->tmrFlash_Timer();
        QCOMPARE(r.desk.plays.size(), 0);
        QCOMPARE(r.desk.flash.Flashes, 2);
    }

    void timerResetAtTenSevenExpiresAtTenThirtySeven()
    {
        Ringing r(RetainedTimer);
        QVERIFY(r.desk.Alarms().At(1).Ringing);
        r.Window(1)->cmdReset_Click();
        const AlarmRecord& a = r.desk.Alarms().At(1);
        QCOMPARE(a.Expire, QStringLiteral("10:37"));
        QVERIFY(a.AlarmSet);
        QVERIFY(!a.Ringing);
        QVERIFY(r.desk.TodaysLog().endsWith(Owners::Line("10:07", "SA", 0, "Alarm acknowleged, reset for ",
                                                         "Pump check", ", expires at 10:37")));
        QTRY_VERIFY(!r.Window(1));
        QVERIFY(r.desk.stops > 0); // the sound is stopped when the window closes
    }

    void safetyCheckResetLogsTheLocation()
    {
        Ringing r(SafetyTimer);
        r.In<QLineEdit>(1, "txtLocation")->setText(QStringLiteral("Ridge road km 12"));
        r.Window(1)->cmdReset_Click();
        QVERIFY(r.desk.TodaysLog().endsWith(Owners::Line("10:07", "SA", 1, "Alarm acknowleged, reset for ",
                                                         "Crew 7", ", expires at 10:22, Ridge road km 12")));
        QCOMPARE(r.desk.Alarms().At(1).LastPosition, QStringLiteral("10:07 Ridge road km 12"));
        QCOMPARE(r.desk.host.findChild<AlarmListView*>()->RowByTag(QStringLiteral(" 1")).LastCheck,
                 QStringLiteral("10:07 Ridge road km 12"));
    }

    void anAnswerAtTheLastInstantOfAMinuteNamesThatMinuteThroughout()
    {
        // The operator answers at 10:21:59 and the clock moves on a second at every reading
        // after that: the entry, the new expiry, the moment the timer falls due and the
        // position all count from the one reading of the answer.
        Ringing r(SafetyTimer);
        r.AnswerAsTheClockTurns(QTime(10, 21, 59), "Ridge road km 12", &frmAlarm::cmdReset_Click);
        const AlarmRecord& a = r.desk.Alarms().At(1);
        QVERIFY2(r.MondaysLog().endsWith(Owners::Line("10:21", "SA", 1, "Alarm acknowleged, reset for ",
                                                      "Crew 7", ", expires at 10:36, Ridge road km 12")),
                 r.MondaysLog().right(120).constData());
        QCOMPARE(a.Expire, QStringLiteral("10:36"));
        QCOMPARE(a.DueAt, QDateTime(Owners::Monday, QTime(10, 36, 59)).toUTC());
        QCOMPARE(a.LastPosition, QStringLiteral("10:21 Ridge road km 12"));
    }

    void anAnswerAtTheLastInstantOfTheDayIsDatedThatDay()
    {
        Ringing r(SafetyTimer);
        r.AnswerAsTheClockTurns(QTime(23, 59, 59), "Base", &frmAlarm::cmdReset_Click);
        // The file of the entry's day, Monday's, although the clock has gone on into Tuesday.
        const QByteArray log = r.MondaysLog();
        QVERIFY2(log.endsWith(Owners::Line("23:59", "SA", 1, "Alarm acknowleged, reset for ", "Crew 7",
                                           ", expires at 00:14, Base", "11/16/2026")),
                 log.right(120).constData());
    }

    void anAnswerJustAfterMidnightGoesIntoTheNewDaysLog()
    {
        // The crew answers at midnight, before the day has been turned and while Monday's
        // log is still open: the entry is Tuesday's and goes into Tuesday's file.
        Ringing r(SafetyTimer);
        const QDate tuesday = Owners::Monday.addDays(1);
        r.In<QLineEdit>(1, "txtLocation")->setText(QStringLiteral("Base"));
        r.desk.clock.Set(tuesday, QTime(0, 0, 0));
        r.Window(1)->cmdReset_Click();
        QTRY_VERIFY(!r.Window(1));
        const QByteArray log = TestEnvironment::ReadFile(r.desk.LogPath(tuesday));
        QVERIFY2(log.endsWith(Owners::Line("00:00", "SA", 1, "Alarm acknowleged, reset for ", "Crew 7",
                                           ", expires at 00:15, Base", "11/17/2026")),
                 log.constData());
        QVERIFY(!r.MondaysLog().contains("11/17/2026"));
    }

    void anAnswerOnACorrectedClockGoesByTheCorrectedMinuteInThePcsDay()
    {
        // The PC runs seven minutes slow. An answer at 23:58:30 on the PC is at 00:05 of the
        // corrected clock: the new expiry, the moment the timer falls due, the entry's time
        // and the position go by the corrected clock; the entry goes into the PC's day.
        Ringing r(QByteArray(SafetyTimer).replace("[Alarms]", "InetMinOffset=7\n[Alarms]"));
        r.AnswerAsTheClockTurns(QTime(23, 58, 30), "Base", &frmAlarm::cmdReset_Click);
        const AlarmRecord& a = r.desk.Alarms().At(1);
        QCOMPARE(a.Expire, QStringLiteral("00:20"));
        QCOMPARE(a.DueAt, QDateTime(Owners::Monday.addDays(1), QTime(0, 20, 30)).toUTC());
        QCOMPARE(a.LastPosition, QStringLiteral("00:05 Base"));
        const QByteArray log = r.MondaysLog();
        QVERIFY2(log.endsWith(Owners::Line("00:05", "SA", 1, "Alarm acknowleged, reset for ", "Crew 7",
                                           ", expires at 00:20, Base", "11/16/2026")),
                 log.right(120).constData());
    }

    void aStopAtTheLastInstantOfAMinuteRecordsThePositionAtThatMinute()
    {
        Ringing r(SafetyTimer);
        r.AnswerAsTheClockTurns(QTime(10, 21, 59), "Base", &frmAlarm::cmdStop_Click);
        QVERIFY2(r.MondaysLog().endsWith(Owners::Line(
                     "10:21", "SA", 1, "Alarm acknowledged, terminated for  ", "Crew 7", ", Base")),
                 r.MondaysLog().right(120).constData());
        QCOMPARE(r.desk.Alarms().At(1).LastPosition, QStringLiteral("10:21 Base"));
    }

    void retainedClockAlarmResetRingsAgainNextDay()
    {
        Ringing r(RetainedClock, QTime(7, 0));
        r.Window(1)->cmdReset_Click();
        QTRY_VERIFY(!r.Window(1));
        QCOMPARE(r.desk.Alarms().At(1).Expire, QStringLiteral("07:00"));
        r.desk.alarms.ScanExpiries(7, 1);
        r.desk.clock.Set(Owners::Monday.addDays(1), QTime(7, 0));
        r.desk.alarms.ScanExpiries(7, 0);
        QVERIFY(r.Window(1));
        QVERIFY(r.desk.Alarms().At(1).Ringing);
    }

    void stoppedAlarmIsDeletedAndTheLogNamesItAndNotTheOneThatTookItsPlace()
    {
        Ringing r(ThreePlain);
        r.Window(1)->cmdStop_Click();
        QCOMPARE(r.desk.Alarms().AlarmCount, 2);
        QCOMPARE(r.desk.Alarms().At(1).Message, QStringLiteral("Second"));
        QCOMPARE(r.desk.host.findChild<AlarmListView*>()->RowCount(), 2);
        QVERIFY(r.desk.TodaysLog().endsWith(
            Owners::Line("10:07", "SA", 0, "Alarm acknowledged, terminated for  ", "First", "")));
    }

    void stoppingTheLastAlarmLogsItsOwnRecord()
    {
        Ringing r(Ini("Count=1\nMessage%201=Only\nExpire%201=10:07\nAlarmSet%201=True\n"));
        r.Window(1)->cmdStop_Click();
        QCOMPARE(r.desk.Alarms().AlarmCount, 0);
        QVERIFY(r.desk.TodaysLog().endsWith(
            Owners::Line("10:07", "SA", 0, "Alarm acknowledged, terminated for  ", "Only", "")));
    }

    void terminatedRetainedAlarmStaysUnset()
    {
        Ringing r(RetainedTimer);
        r.Window(1)->cmdStop_Click();
        const AlarmRecord& a = r.desk.Alarms().At(1);
        QCOMPARE(r.desk.Alarms().AlarmCount, 1);
        QVERIFY(!a.AlarmSet);
        QVERIFY(!a.Ringing);
        QVERIFY(r.desk.TodaysLog().endsWith(
            Owners::Line("10:07", "SA", 0, "Alarm acknowledged, terminated for  ", "Pump check", "")));
    }

    void terminatedSafetyAlarmLogsTheLocation()
    {
        Ringing r(SafetyTimer);
        r.In<QLineEdit>(1, "txtLocation")->setText(QStringLiteral("Base"));
        r.Window(1)->cmdStop_Click();
        QVERIFY(r.desk.TodaysLog().endsWith(
            Owners::Line("10:07", "SA", 1, "Alarm acknowledged, terminated for  ", "Crew 7", ", Base")));
    }

    void closingAnExpiredWindowFromItsFrameKeepsItOpenAndRinging()
    {
        Ringing r(SafetyTimer);
        QPointer<frmAlarm> w = r.Window(1);
        const int stopsBefore = r.desk.stops;
        CloseFromFrame(w);
        QVERIFY(w);
        QVERIFY(w->isVisible());
        const AlarmRecord& a = r.desk.Alarms().At(1);
        QVERIFY(a.AlarmSet);
        QVERIFY(a.Ringing);
        QCOMPARE(r.desk.stops, stopsBefore);
        QVERIFY(w->FlashTimer().isActive());
    }

    void windowClosedByTheProgramLeavesTheAlarmSetAndRecordsTheLocation()
    {
        Ringing r(SafetyTimer);
        r.In<QLineEdit>(1, "txtLocation")->setText(QStringLiteral("Somewhere"));
        const int stopsBefore = r.desk.stops;
        r.Window(1)->close(); // as the program closes every window when it ends
        const AlarmRecord& a = r.desk.Alarms().At(1);
        QVERIFY(a.AlarmSet);
        QCOMPARE(a.LastPosition, QStringLiteral("10:07 Somewhere"));
        QVERIFY(r.desk.stops > stopsBefore);
    }

    void checkInWindowClosedFromItsFrameLeavesTheAlarmSetAndLogsNothing()
    {
        Owners desk(SafetyTimer);
        desk.Place(new AlarmPanel(desk.alarms, desk.windows, desk.prefs));
        QVERIFY(desk.Start());
        desk.host.show();
        const QByteArray logBefore = desk.TodaysLog();
        desk.Windows().StartCheckIn(1);
        QPointer<frmAlarm> w = desk.Windows().AlarmWindow(1);
        QVERIFY(w);
        QVERIFY(!desk.Alarms().At(1).AlarmSet); // withdrawn while the crew reports
        w->findChild<QLineEdit*>(QStringLiteral("txtLocation"))->setText(QStringLiteral("never sent"));
        CloseFromFrame(w);
        QTRY_VERIFY(!w);
        QVERIFY(desk.Alarms().At(1).AlarmSet);
        QCOMPARE(desk.Alarms().At(1).Expire, QStringLiteral("10:07"));
        QCOMPARE(desk.Alarms().At(1).LastPosition, QString());
        QCOMPARE(desk.TodaysLog(), logBefore);
        // The editor shows it set again, and its check-in can be started anew.
        QCOMPARE(desk.Find<QPushButton>(QStringLiteral("cmdSet"))->text(), QStringLiteral(" Cancel Alarm"));
        QVERIFY(desk.Find<QPushButton>(QStringLiteral("cmdCheckIn"))->isEnabled());
    }

    void stoppingAnAlarmNeverWritesIntoTheRecordThatMovedIntoItsSlot()
    {
        Ringing r(Ini("Count=2\nMessage%201=Plain\nExpire%201=10:07\nAlarmSet%201=True\n"
                      "Message%202=Crew 9\nTypeTimer%202=True\nInterval%202=00:30\nExpire%202=10:30\n"
                      "AlarmSet%202=True\nRepeat%202=1\nSafety%202=1\nLastPosition%202=09:00 Base\n"));
        r.Window(1)->cmdStop_Click();
        QCOMPARE(r.desk.Alarms().AlarmCount, 1);
        const AlarmRecord& crew = r.desk.Alarms().At(1);
        QCOMPARE(crew.Message, QStringLiteral("Crew 9"));
        QCOMPARE(crew.LastPosition, QStringLiteral("09:00 Base"));
        QVERIFY(crew.AlarmSet);
        QVERIFY(r.desk.TodaysLog().endsWith(
            Owners::Line("10:07", "SA", 0, "Alarm acknowledged, terminated for  ", "Plain", "")));
    }

    void resetRefusesAnIntervalThatCouldNeverRing_data()
    {
        QTest::addColumn<QString>("interval");
        QTest::newRow("half typed") << QStringLiteral("1_:__");
        QTest::newRow("no time at all") << QStringLiteral("00:00");
    }

    void resetRefusesAnIntervalThatCouldNeverRing()
    {
        QFETCH(QString, interval);
        Ringing r(RetainedTimer);
        const QByteArray logBefore = r.desk.TodaysLog();
        // The operator typed into the interval while the alarm rang.
        r.desk.Alarms().At(1).Interval = interval;
        QPointer<frmAlarm> w = r.Window(1);
        w->cmdReset_Click();
        QVERIFY(w);
        QVERIFY(w->isVisible());
        QVERIFY(r.desk.Alarms().At(1).Ringing);
        QCOMPARE(r.desk.TodaysLog(), logBefore);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QVERIFY2(MessageBox::Shown()[0].Text.startsWith(
                     QStringLiteral("The alarm was not reset: its interval \"") + interval + u'"'),
                 qPrintable(MessageBox::Shown()[0].Text));
    }

    void afterResetTheEditorShowsTheAlarmSetAndUnlocked()
    {
        Ringing r(RetainedTimer);
        QVERIFY(!r.desk.Find<QPushButton>(QStringLiteral("cmdSet"))->isEnabled());
        r.Window(1)->cmdReset_Click();
        auto* set = r.desk.Find<QPushButton>(QStringLiteral("cmdSet"));
        QVERIFY(set->isEnabled());
        QCOMPARE(set->text(), QStringLiteral(" Cancel Alarm"));
        QVERIFY(r.desk.Find<QPushButton>(QStringLiteral("cmdDelete"))->isEnabled());
        QCOMPARE(set->toolTip(), QStringLiteral("Set/Cancel alarm"));
    }

    void afterTerminateTheEditorShowsTheAlarmUnsetAndUnlocked()
    {
        Ringing r(RetainedTimer);
        r.Window(1)->cmdStop_Click();
        auto* set = r.desk.Find<QPushButton>(QStringLiteral("cmdSet"));
        QVERIFY(set->isEnabled());
        QCOMPARE(set->text(), QStringLiteral(" Set Alarm"));
        QVERIFY(r.desk.Find<QPushButton>(QStringLiteral("cmdDelete"))->isEnabled());
    }

    void afterACheckInResetTheEditorOffersCancelNotSet()
    {
        Owners desk(SafetyTimer);
        desk.Place(new AlarmPanel(desk.alarms, desk.windows, desk.prefs));
        QVERIFY(desk.Start());
        desk.host.show();
        desk.Windows().StartCheckIn(1);
        desk.Windows().AlarmWindow(1)->cmdReset_Click();
        QVERIFY(desk.Alarms().At(1).AlarmSet);
        auto* set = desk.Find<QPushButton>(QStringLiteral("cmdSet"));
        QCOMPARE(set->text(), QStringLiteral(" Cancel Alarm"));
        QVERIFY(set->isEnabled());
        QVERIFY(desk.Find<QPushButton>(QStringLiteral("cmdCheckIn"))->isEnabled());
    }

    void checkInWindowIsSilentAndStill()
    {
        Owners desk(SafetyTimer);
        QVERIFY(desk.Start());
        desk.host.show();
        desk.Windows().StartCheckIn(1);
        frmAlarm* w = desk.Windows().AlarmWindow(1);
        QVERIFY(w && w->CheckIn());
        QCOMPARE(w->findChild<QLabel*>(QStringLiteral("lblCaption"))->text(),
                 QStringLiteral("Safety Check In"));
        QVERIFY(w->findChild<QLabel*>(QStringLiteral("Image1_0"))->isHidden());
        QVERIFY(w->findChild<QLabel*>(QStringLiteral("Image1_1"))->isHidden());
        QVERIFY(!w->BlinkTimer().isActive());
        QVERIFY(!desk.Alarms().At(1).AlarmSet);
        w->tmrFlash_Timer();
        QCOMPARE(desk.plays.size(), 0);
        QCOMPARE(desk.flash.Flashes, 0);
        // Reset re-arms it for a fresh interval from now.
        desk.clock.Set(Owners::Monday, QTime(9, 50));
        w->findChild<QLineEdit*>(QStringLiteral("txtLocation"))->setText(QStringLiteral("Camp 2"));
        w->cmdReset_Click();
        QCOMPARE(desk.Alarms().At(1).Expire, QStringLiteral("10:05"));
        QVERIFY(desk.Alarms().At(1).AlarmSet);
        QVERIFY(desk.TodaysLog().endsWith(Owners::Line("09:50", "SA", 1, "Alarm acknowleged, reset for ",
                                                       "Crew 7", ", expires at 10:05, Camp 2")));
        QCOMPARE(desk.Alarms().At(1).LastPosition, QStringLiteral("09:50 Camp 2"));
    }

    void openWindowsAreLaidOutInAGrid()
    {
        Ringing r(ThreePlain);
        frmAlarm* first = r.Window(1);
        frmAlarm* second = r.Window(2);
        QVERIFY(first && second);
        QCOMPARE(first->pos(), QPoint(0, 0));
        QCOMPARE(second->pos(), QPoint(first->frameGeometry().width(), 0));
    }
};

QTEST_MAIN(TestFrmAlarm)
#include "tst_frmalarm.moc"
