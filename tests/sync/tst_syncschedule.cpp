#include "Desk.h"
#include "shell/frmMessage.h"
#include "sync/SyncScheduler.h"
#include "sync/SyncState.h"
#include "widgets/MessageBox.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

namespace {

constexpr qint64 Minute = 60000;
const QString DialUpQuestion = QStringLiteral("Internet Dial-Up connection not active.\rProceed to connect?");

// Settings of a desk with automatic sync on, every `hours` hours, the last at `lastSync`.
QByteArray AutoSyncIni(const char* lastSync, int hours = 1, int connection = 0)
{
    return QByteArray("[General]\nAutoSync=-1\nSyncSite=time.example\nAutoSyncHrs=") +
           QByteArray::number(hours) + "\nConnection=" + QByteArray::number(connection) +
           "\nLastSync=" + lastSync + "\n";
}

} // namespace

// When a sync run starts and how the main window shows its outcome: the schedule with its
// retries, the sync button, the dial-up question, the start-up and clock-change triggers,
// and the main tick while the clock is being set.
class TestSyncSchedule : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void dueSyncStartsAnAutomaticRunAtStartUp()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00"));
        QVERIFY(desk.window->Load());
        frmAutoSync* run = desk.window->Scheduler().Run();
        QVERIFY(run);
        QVERIFY(run->AutoUpdate());
        QCOMPARE(desk.queries.Last()->Sites, QStringList{QStringLiteral("time.example")});
        // The server is 2 seconds ahead: only the seconds move, the offset stays 0.
        desk.queries.Last()->Finish(ServerAnswer(desk.clock, 2000));
        QVERIFY(desk.window->Sync().Synchronised());
        QCOMPARE(desk.window->Prefs().Values().InetMinOffset, 0);
        QCOMPARE(desk.Setter().Requests, QList<qint64>{2000});
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        QCOMPARE(sync->palette().color(QPalette::Button), QColor(192, 192, 192));
        QCOMPARE(sync->toolTip(), QStringLiteral("Next Sync: 11:00"));
    }

    void syncNotDueStartsNothing()
    {
        Desk desk(AutoSyncIni("2026-11-16 09:30:00"));
        QVERIFY(desk.window->Load());
        QVERIFY(!desk.window->Scheduler().Run());
        QVERIFY(desk.queries.Made.isEmpty());
        // Nor at a minute before 10:30 ...
        desk.Tick(QTime(10, 29, 0));
        QVERIFY(!desk.window->Scheduler().Run());
        // ... and at 10:30 it does.
        desk.Tick(QTime(10, 30, 0));
        QVERIFY(desk.window->Scheduler().Run());
    }

    void withoutAutoSyncTheScheduleStartsNothing()
    {
        Desk desk("[General]\nAutoSync=0\nAutoSyncHrs=1\nLastSync=2026-11-15 08:00:00\n");
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 1, 0));
        QVERIFY(!desk.window->Scheduler().Run());
        QVERIFY(desk.queries.Made.isEmpty());
    }

    void clockTenMinutesBehindReachesTheNextSyncByInternetNow()
    {
        // Next sync at 10:05; this clock says 09:55, but it is 10 minutes behind the server.
        Desk desk(AutoSyncIni("2026-11-16 09:05:00") + "InetMinOffset=10\n");
        desk.clock.Set(DeskFiles::Monday, QTime(9, 54, 30));
        QVERIFY(desk.window->Load());
        QVERIFY(!desk.window->Scheduler().Run());
        desk.Tick(QTime(9, 55, 0));
        QVERIFY(desk.window->Scheduler().Run());
    }

    void failedAutomaticRunRetriesFifteenMinutesLaterWithAnHourlySync()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00", 1));
        QVERIFY(desk.window->Load());
        frmAutoSync* run = desk.window->Scheduler().Run();
        QVERIFY(run);
        run->Timer1_Timer();
        // Timed out at 10:00:17: retried at 10:15.
        QVERIFY(desk.window->SyncMessage());
        QCOMPARE(desk.window->SyncMessage()->Message(),
                 QStringLiteral("Unable to connect to site.\rCheck site address or Intenet connection\r"
                                "Will try again at: 10:15"));
        QVERIFY(desk.window->SyncMessage()->isVisible());
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        QCOMPARE(sync->toolTip(), QStringLiteral("Next Sync: 10:15"));
        QCOMPARE(sync->palette().color(QPalette::Button), QColor(255, 0, 0));
        QVERIFY(!desk.window->Scheduler().Run());
        // Due at 10:15:17, fifteen minutes after the failure: the check of 10:16 starts it.
        QCOMPARE(desk.window->Sync().NextSync(), QDateTime(Desk::Monday, QTime(10, 15, 17, 250)));
        desk.Tick(QTime(10, 15, 0));
        QVERIFY(!desk.window->Scheduler().Run());
        desk.Tick(QTime(10, 16, 0));
        QVERIFY(desk.window->Scheduler().Run());
    }

    void failedAutomaticRunRetriesTwoHoursFifteenLaterWithAThreeHourSync()
    {
        Desk desk(AutoSyncIni("2026-11-16 06:00:00", 3));
        QVERIFY(desk.window->Load());
        QVERIFY(desk.window->Scheduler().Run());
        desk.window->Scheduler().Run()->Timer1_Timer();
        QCOMPARE(desk.window->SyncMessage()->Message(),
                 QStringLiteral("Unable to connect to site.\rCheck site address or Intenet connection\r"
                                "Will try again at: 12:15"));
        QCOMPARE(desk.window->Sync().NextSync(), QDateTime(Desk::Monday, QTime(12, 15, 17, 250)));
        desk.Tick(QTime(12, 15, 0));
        QVERIFY(!desk.window->Scheduler().Run());
        desk.Tick(QTime(12, 16, 0));
        QVERIFY(desk.window->Scheduler().Run());
    }

    void syncButtonStartsARunAndDoesNothingWhileOneIsUnderWay()
    {
        Desk desk(AutoSyncIni("2026-11-16 09:30:00"));
        QVERIFY(desk.window->Load());
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        sync->click();
        frmAutoSync* run = desk.window->Scheduler().Run();
        QVERIFY(run);
        QVERIFY(!run->AutoUpdate());
        QCOMPARE(desk.queries.Made.size(), 1);
        sync->click();
        QCOMPARE(desk.window->Scheduler().Run(), run);
        QCOMPARE(desk.queries.Made.size(), 1);
        QVERIFY(!sync->isDefault());
    }

    void otherModesDoNothing()
    {
        Desk desk(AutoSyncIni("2026-11-16 09:30:00"));
        QVERIFY(desk.window->Load());
        desk.window->Sync().ScheduleRetry(0); // due now: mode 1 would start a run
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        desk.window->Sync().SetSynchronised(false); // mode 0 would turn the button red
        const QColor colour = sync->palette().color(QPalette::Button);
        for (const int mode : {3, -1, 7}) {
            desk.window->SyncCheck(mode);
            QVERIFY(!desk.window->Scheduler().Run());
            QVERIFY(desk.queries.Made.isEmpty());
            QCOMPARE(sync->palette().color(QPalette::Button), colour);
        }
        desk.window->SyncCheck(1);
        QVERIFY(desk.window->Scheduler().Run());
    }

    void syncNowMovesTheFocusOnFromTheButton()
    {
        Desk desk(AutoSyncIni("2026-11-16 09:30:00"));
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(desk.window.get()));
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        sync->setDefault(true);
        sync->setFocus();
        QVERIFY(sync->hasFocus());
        desk.window->SyncCheck(2);
        QVERIFY(desk.window->Scheduler().Run());
        QVERIFY(!sync->isDefault());
        QVERIFY(!sync->hasFocus());
    }

    void syncButtonOfAManualRunShowsItsOutcome()
    {
        Desk desk(AutoSyncIni("2026-11-16 09:30:00"));
        QVERIFY(desk.window->Load());
        desk.window->SyncCheck(2);
        desk.queries.Last()->Finish(QueryError(
            SntpResult::HostNotFound, QStringLiteral("The time server's name could not be found: x")));
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        QCOMPARE(sync->palette().color(QPalette::Button), QColor(255, 0, 0));
        // Not synchronised with the UTC rule: the UTC face is unreadable ...
        const QColor face1Back =
            desk.Find<QLabel>(QStringLiteral("lblClock1_1"))->palette().color(QPalette::Window);
        QCOMPARE(desk.FaceFore(5), face1Back);
        // ... until a run succeeds, when it is readable at once.
        desk.window->SyncCheck(2);
        desk.queries.Last()->Finish(ServerAnswer(desk.clock, 0));
        QCOMPARE(sync->palette().color(QPalette::Button), QColor(192, 192, 192));
        QVERIFY(desk.FaceFore(5) != face1Back);
        QCOMPARE(desk.FaceFore(5), desk.FaceFore(1));
    }

    void dialUpDownAsksBeforeEveryAutomaticRun()
    {
        // No dial-up link is up (as on a machine without one): the schedule asks first.
        Desk desk(AutoSyncIni("2026-11-16 08:00:00", 1, 1));
        desk.DialUp().DialUp = false;
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->Load());
        QCOMPARE(MessageBox::Shown().size(), 1);
        const MessageBox::Request asked = MessageBox::Shown().at(0);
        QCOMPARE(asked.Text, DialUpQuestion);
        QCOMPARE(int(asked.ButtonSet), int(MessageBox::Buttons::YesNo));
        QCOMPARE(int(asked.IconKind), int(MessageBox::Icon::Information));
        QVERIFY(desk.window->Scheduler().Run());
        QVERIFY(!desk.window->Sync().DialUpPromptOpen());
        // The run fails; the retry asks again.
        desk.window->Scheduler().Run()->close();
        MessageBox::ClearShown();
        desk.window->Sync().ScheduleRetry(0);
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        desk.Tick(QTime(10, 1, 0));
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown().at(0).Text, DialUpQuestion);
    }

    void dialUpUpAsksNothing()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00", 1, 1));
        desk.DialUp().DialUp = true;
        QVERIFY(desk.window->Load());
        QCOMPARE(MessageBox::Shown().size(), 0);
        QVERIFY(desk.window->Scheduler().Run());
    }

    void noToTheDialUpQuestionWithAutoSyncRetries()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00", 1, 1));
        MessageBox::SetNextAnswer(MessageBox::Answer::No);
        QVERIFY(desk.window->Load());
        QVERIFY(!desk.window->Scheduler().Run());
        QVERIFY(desk.queries.Made.isEmpty());
        QVERIFY(!desk.window->Sync().Synchronised());
        QVERIFY(!desk.window->Sync().DialUpPromptOpen());
        QCOMPARE(desk.window->SyncMessage()->Message(), QStringLiteral("Will try again at: 10:15"));
        QCOMPARE(desk.Find<QPushButton>(QStringLiteral("cmdSync"))->toolTip(),
                 QStringLiteral("Next Sync: 10:15"));
    }

    void noToTheDialUpQuestionWithoutAutoSyncIsNotAskedAgain()
    {
        Desk desk("[General]\nAutoSync=0\nConnection=1\n");
        QVERIFY(desk.window->Load());
        MessageBox::SetNextAnswer(MessageBox::Answer::No);
        desk.window->SyncCheck(2);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QVERIFY(desk.window->Sync().DialUpPromptOpen());
        QVERIFY(!desk.window->Scheduler().Run());
        QVERIFY(!desk.window->SyncMessage());
        // Until the program starts again, no run and no question (nor a look at the network).
        QCOMPARE(desk.DialUp().Asked, 1);
        desk.window->SyncCheck(2);
        QCOMPARE(desk.DialUp().Asked, 1);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QVERIFY(!desk.window->Scheduler().Run());
        QVERIFY(desk.queries.Made.isEmpty());
    }

    void clockChangedBySomeoneElseStartsARun()
    {
        Desk desk(AutoSyncIni("2026-11-16 09:30:00"));
        QVERIFY(desk.window->Load());
        QVERIFY(!desk.window->Scheduler().Run());
        desk.clock.AdvanceSecs(3600);
        desk.window->SysInfo1_TimeChanged();
        QVERIFY(desk.window->Scheduler().Run());
        QVERIFY(desk.window->Scheduler().Run()->AutoUpdate());
    }

    void clockChangedWithoutAutoSyncStartsNothing()
    {
        Desk desk("[General]\nAutoSync=0\n");
        QVERIFY(desk.window->Load());
        desk.window->SysInfo1_TimeChanged();
        QVERIFY(!desk.window->Scheduler().Run());
    }

    void clockChangedByTheProgramItselfStartsNothing()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00"));
        desk.Setter().Hold = true;
        QVERIFY(desk.window->Load());
        desk.queries.Last()->Finish(ServerAnswer(desk.clock, 3 * Minute + 20000));
        QVERIFY(desk.window->Sync().ClockBeingSet());
        desk.window->SysInfo1_TimeChanged();
        desk.Setter().Answer();
        QVERIFY(!desk.window->Scheduler().Run());
        QCOMPARE(desk.queries.Made.size(), 1);
        // The notice of the change may come just after the run has ended.
        desk.window->SysInfo1_TimeChanged();
        QCOMPARE(desk.queries.Made.size(), 1);
    }

    void mainTickLeavesTheClockAloneWhileItIsBeingSetThenCatchesUp()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00") +
                  "[Alarms]\nCount=1\nMessage%201=Crew 4 check\nExpire%201=10:01\nAlarmSet%201=True\n");
        desk.Setter().Hold = true;
        QVERIFY(desk.window->Load());
        desk.queries.Last()->Finish(ServerAnswer(desk.clock, 30000));
        QVERIFY(desk.window->Sync().ClockBeingSet());
        desk.Tick(QTime(10, 1, 0));
        QVERIFY(desk.Windows().OpenAlarmWindows().isEmpty());
        desk.Setter().Answer();
        QVERIFY(!desk.window->Sync().ClockBeingSet());
        // The second shown is the current one, but its minute's work is still to do: the
        // half-tick watch hands the .500 tick to the window rather than let it pass.
        QVERIFY(
            desk.HalfTick().Changed(QDateTime(desk.clock.Today(), QTime(10, 1, 0, 500)).toMSecsSinceEpoch()));
        desk.clock.Set(desk.clock.Today(), QTime(10, 1, 0, 500));
        desk.HalfTick().Emit();
        QCOMPARE(desk.Windows().OpenAlarmWindows().size(), 1);
    }

    void stoppingTheProgramClosesTheRunWithoutAWord()
    {
        Desk desk(AutoSyncIni("2026-11-16 08:00:00"));
        QVERIFY(desk.window->Load());
        QPointer<frmAutoSync> run = desk.window->Scheduler().Run();
        QVERIFY(run);
        desk.window->close();
        QTRY_VERIFY(!run);
        QVERIFY(!desk.window->SyncMessage());
        QVERIFY(!desk.window->Sync().InProgress());
    }
};

QTEST_MAIN(TestSyncSchedule)
#include "tst_syncschedule.moc"
