#include "FakePlatform.h"
#include "FakeTimeQuery.h"
#include "ManualClock.h"
#include "settings/Preferences.h"
#include "sync/SyncState.h"
#include "sync/frmAutoSync.h"
#include "widgets/MessageBox.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

namespace {

const QDateTime Start(QDate(2026, 11, 16), QTime(10, 0, 20));
constexpr qint64 Minute = 60000;

const QString FiveMinuteQuestion = QStringLiteral("Time difference is greater than 5 minutes.\r"
                                                  "Press OK to accept. If you are connected to\r"
                                                  "network press Cancel to avoid potential connection\r"
                                                  "problems.");
const QString Unable = QStringLiteral("Unable to connect to site.\rCheck site address or Intenet connection");

// One sync run over a hand-set clock, a fake setter that moves it, and a fake time query;
// the notices it shows are kept in `messages`.
struct Run
{
    explicit Run(bool autoSync = false, bool automatic = false, int connection = 0)
    {
        prefs.Change([&](Settings& v) {
            v.SyncSite = QStringLiteral("time.example");
            v.AutoSync = autoSync ? -1 : 0;
            v.AutoSyncHrs = 1;
            v.Connection = qint16(connection);
            v.LastSync = Start.addDays(-1);
        });
        setter.Moves = [this](qint64 by) { clock.AdvanceMSecs(by); };
        auto query = std::make_unique<FakeTimeQuery>();
        query->StartAnswer = startAnswer;
        time1 = query.get();
        window = new frmAutoSync({state, prefs, clock, setter, [this](const QString& m) { messages << m; }},
                                 std::move(query), automatic);
        QObject::connect(&state, &SyncState::RefreshDue, [this] { ++refreshes; });
    }
    ~Run() { delete window.data(); }
    void Begin(const SntpResult& start = {})
    {
        time1->StartAnswer = start;
        window->show();
        window->Form_Activate();
    }
    QString Status() const { return window->findChild<QLabel*>(QStringLiteral("lblStatus"))->text(); }
    bool Closed() const { return !window || !window->isVisible(); }

    ManualClock clock{Start};
    Preferences prefs;
    SyncState state{prefs, clock};
    FakeClockSetter setter;
    SntpResult startAnswer;
    FakeTimeQuery* time1 = nullptr;
    QPointer<frmAutoSync> window;
    QStringList messages;
    int refreshes = 0;
};

} // namespace

// The sync run window: its start, the server's answer with the two ways of setting the
// clock, the five-minute question, the time-out, Cancel and the frame.
class TestFrmAutoSync : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void startShowsTheSiteAndRaisesTheRunFlags()
    {
        Run run;
        run.state.SetSynchronised(true);
        run.Begin();
        QCOMPARE(run.window->findChild<QLabel*>(QStringLiteral("Label1"))->text(),
                 QStringLiteral("Tarrowind - now synchronizing clock with: time.example"));
        QCOMPARE(run.Status(), QStringLiteral("Connecting ..."));
        QVERIFY(run.state.InProgress());
        QVERIFY(!run.state.Synchronised());
        QCOMPARE(run.time1->Sites, QStringList{QStringLiteral("time.example")});
        QVERIFY(run.window->Timer1().isActive());
        QCOMPARE(run.window->Timer1().interval(), 60000);
        QCOMPARE(run.window->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->text(),
                 QStringLiteral("Cancel"));
    }

    void differenceOfFiveMinutesOrLessSetsWithoutAsking_data()
    {
        QTest::addColumn<qint64>("offset");
        QTest::newRow("5 minutes ahead") << 5 * Minute;
        QTest::newRow("5 minutes behind") << -5 * Minute;
        QTest::newRow("2.5 seconds ahead") << qint64(2500);
        QTest::newRow("5 minutes 20 behind") << -(5 * Minute + 20000);
    }

    void differenceOfFiveMinutesOrLessSetsWithoutAsking()
    {
        QFETCH(qint64, offset);
        Run run;
        run.Begin();
        const SntpResult answer = ServerAnswer(run.clock, offset);
        run.time1->Finish(answer);
        QCOMPARE(MessageBox::Shown().size(), 0);
        // The whole difference, to the millisecond, date and all.
        QCOMPARE(run.setter.Requests, QList<qint64>{offset});
        // The operator may be asked for the right to set the clock.
        QCOMPARE(run.setter.MayAsk, QList<bool>{true});
        QCOMPARE(run.clock.Now(), Start.addMSecs(offset));
        QCOMPARE(run.Status(), QStringLiteral("Time set"));
        QVERIFY(run.state.Synchronised());
        QVERIFY(!run.state.InProgress());
        QCOMPARE(run.prefs.Values().LastSync, answer.ServerTime);
        QCOMPARE(run.refreshes, 1);
        QVERIFY(run.messages.isEmpty());
        QVERIFY(run.Closed());
    }

    void differenceOfSixMinutesAsksFirst_data()
    {
        QTest::addColumn<qint64>("offset");
        QTest::newRow("6 minutes ahead") << 6 * Minute;
        QTest::newRow("6 minutes behind") << -6 * Minute;
        QTest::newRow("a day behind") << -24 * 60 * Minute;
    }

    void differenceOfSixMinutesAsksFirst()
    {
        QFETCH(qint64, offset);
        Run run;
        run.Begin();
        MessageBox::SetNextAnswer(MessageBox::Answer::Ok);
        run.time1->Finish(ServerAnswer(run.clock, offset));
        QCOMPARE(MessageBox::Shown().size(), 1);
        const MessageBox::Request asked = MessageBox::Shown().at(0);
        QCOMPARE(asked.Text, FiveMinuteQuestion);
        QCOMPARE(asked.Title, QString());
        QCOMPARE(int(asked.ButtonSet), int(MessageBox::Buttons::OkCancel));
        QCOMPARE(int(asked.IconKind), int(MessageBox::Icon::Exclamation));
        QCOMPARE(run.setter.Requests, QList<qint64>{offset});
        QCOMPARE(run.Status(), QStringLiteral("Time set"));
        QVERIFY(run.state.Synchronised());
    }

    void cancelToTheQuestionLeavesTheClockAndTheNextTickReports()
    {
        Run run;
        run.Begin();
        MessageBox::SetNextAnswer(MessageBox::Answer::Cancel);
        const QDateTime before = run.clock.Now();
        run.time1->Finish(ServerAnswer(run.clock, 10 * Minute));
        QVERIFY(run.setter.Requests.isEmpty());
        QCOMPARE(run.clock.Now(), before);
        // The window, its flags and its timer stay.
        QVERIFY(!run.Closed());
        QVERIFY(run.state.InProgress());
        QVERIFY(run.window->Timer1().isActive());
        QVERIFY(run.messages.isEmpty());
        run.window->Timer1_Timer();
        QCOMPARE(run.messages, QStringList{Unable});
        QVERIFY(!run.state.InProgress());
        QVERIFY(!run.state.Synchronised());
        QVERIFY(run.Closed());
        QCOMPARE(run.clock.Now(), before);
    }

    void tickWhileTheQuestionIsOpenWaitsForTheAnswer()
    {
        // The question is still on the screen when the minute is up: its answer comes first.
        Run run;
        run.Begin();
        // Answered later: the box is shown for real, modal to the run's window only.
        MessageBox::SetTestMode(false);
        run.time1->Finish(ServerAnswer(run.clock, 10 * Minute));
        auto* box = run.window->findChild<QWidget*>(QStringLiteral("MessageBox"));
        QVERIFY(box);
        QVERIFY(box->isVisible());
        run.window->Timer1_Timer();
        QVERIFY(!run.Closed());
        QVERIFY(run.messages.isEmpty());
        QVERIFY(run.setter.Requests.isEmpty());
        // OK now sets the clock by the whole difference.
        const auto buttons = box->findChildren<QPushButton*>();
        QPushButton* ok = nullptr;
        for (QPushButton* b : buttons)
            if (b->text().contains(QStringLiteral("OK")))
                ok = b;
        QVERIFY(ok);
        ok->click();
        QCOMPARE(run.setter.Requests, QList<qint64>{10 * Minute});
        QCOMPARE(run.Status(), QStringLiteral("Time set"));
        QVERIFY(run.Closed());
    }

    void autoSyncSetsOnlyTheSecondsAndRecordsTheMinutes()
    {
        // The server is 7 minutes 38.5 seconds ahead: 10:00:20 here, 10:07:58.5 there.
        Run run(true);
        run.Begin();
        const SntpResult answer = ServerAnswer(run.clock, 7 * Minute + 38500);
        run.time1->Finish(answer);
        QCOMPARE(MessageBox::Shown().size(), 0);
        // Hours and minutes kept, seconds taken from the server: 10:00:58.5.
        QCOMPARE(run.setter.Requests, QList<qint64>{38500});
        QCOMPARE(run.clock.Now(), QDateTime(Start.date(), QTime(10, 0, 58, 500)));
        QCOMPARE(run.prefs.Values().InetMinOffset, 7);
        QVERIFY(!run.state.ClockBeingSet());
        QCOMPARE(run.Status(), QStringLiteral("Time set"));
        QVERIFY(run.state.Synchronised());
        QCOMPARE(run.prefs.Values().LastSync, answer.ServerTime);
        QVERIFY(run.Closed());
    }

    void autoSyncSevenMinutesAheadRecordsSeven()
    {
        Run run(true);
        run.Begin();
        run.time1->Finish(ServerAnswer(run.clock, 7 * Minute));
        QCOMPARE(MessageBox::Shown().size(), 0);
        QCOMPARE(run.setter.Requests, QList<qint64>{0});
        QCOMPARE(run.prefs.Values().InetMinOffset, 7);
        QCOMPARE(run.clock.Now(), Start);
    }

    void secondsNearTheEndOfAMinuteMayMoveTheClockBackAMinute()
    {
        // 10:00:58 here, 10:01:01 there: hours and minutes are kept, the seconds become 01,
        // and the minute is in the offset. The corrected time is the server's.
        Run run(true);
        run.clock.Set(QDateTime(Start.date(), QTime(10, 0, 58)));
        run.Begin();
        run.time1->Finish(ServerAnswer(run.clock, 3000));
        QCOMPARE(run.setter.Requests, QList<qint64>{-57000});
        QCOMPARE(run.setter.MayAsk, QList<bool>{false});
        QCOMPARE(run.clock.Now(), QDateTime(Start.date(), QTime(10, 0, 1)));
        QCOMPARE(run.prefs.Values().InetMinOffset, 1);
        QCOMPARE(run.state.InternetNow(), QDateTime(Start.date(), QTime(10, 1, 1)));
    }

    void serverBehindMovesTheSecondsAndGivesANegativeOffset()
    {
        // 10:00:20 here, 09:57:15 there.
        Run run(true);
        run.Begin();
        run.time1->Finish(ServerAnswer(run.clock, -(3 * Minute + 5000)));
        QCOMPARE(run.setter.Requests, QList<qint64>{-5000});
        QCOMPARE(run.prefs.Values().InetMinOffset, -3);
        QCOMPARE(run.state.InternetNow(), QDateTime(Start.date(), QTime(9, 57, 15)));
    }

    void clockBeingSetIsRaisedUntilTheSetterAnswers()
    {
        Run run(true);
        run.setter.Hold = true;
        run.Begin();
        run.time1->Finish(ServerAnswer(run.clock, -3 * Minute - 5000));
        QVERIFY(run.state.ClockBeingSet());
        // Neither Cancel, the frame nor the minute's tick end the run meanwhile.
        run.window->cmdCancel_Click();
        run.window->close();
        run.window->Timer1_Timer();
        QVERIFY(!run.Closed());
        QVERIFY(run.state.InProgress());
        run.setter.Answer();
        QVERIFY(!run.state.ClockBeingSet());
        // 10:00:20 - 3:05 is 09:57:15: the seconds become 15, 5 seconds back.
        QCOMPARE(run.setter.Requests, QList<qint64>{-5000});
        QCOMPARE(run.prefs.Values().InetMinOffset, -3);
        QVERIFY(run.Closed());
        QVERIFY(run.state.OwnClockChangeRecent());
    }

    void secondsThatCannotBeSetAreIgnoredButTheOffsetIsKept()
    {
        Run run(true);
        run.setter.Next = {false, QStringLiteral("No right to set the clock")};
        run.Begin();
        run.time1->Finish(ServerAnswer(run.clock, 7 * Minute + 38500));
        QCOMPARE(run.clock.Now(), Start);
        // To the nearest minute of the whole difference.
        QCOMPARE(run.prefs.Values().InetMinOffset, 8);
        QVERIFY(run.messages.isEmpty());
        QCOMPARE(run.Status(), QStringLiteral("Time set"));
        QVERIFY(run.state.Synchronised());
    }

    void refusedSettingIsToldAndNotSynchronised()
    {
        Run run(false, false);
        const QDateTime lastSync = run.prefs.Values().LastSync;
        run.setter.Next = {false,
                           QStringLiteral("The computer's clock was not set: the system's time service "
                                          "refused (Automatic time synchronization is enabled).")};
        run.Begin();
        run.time1->Finish(ServerAnswer(run.clock, 2 * Minute));
        QCOMPARE(run.messages, QStringList{run.setter.Next.Reason});
        QVERIFY(run.Status() != QStringLiteral("Time set"));
        QVERIFY(!run.state.Synchronised());
        QVERIFY(!run.state.InProgress());
        QCOMPARE(run.prefs.Values().LastSync, lastSync);
        QCOMPARE(run.clock.Now(), Start);
        QVERIFY(run.Closed());
    }

    void startErrorIsToldAndAnAutomaticRunRetries()
    {
        Run run(true, true);
        run.Begin(QueryError(SntpResult::HostNotFound, QStringLiteral("No time server is given.")));
        QCOMPARE(run.messages,
                 QStringList{QStringLiteral("Syncronization not completed because of the following "
                                            "error: \r\rNo time server is given.\r\rPlease check "
                                            "your Internet connection or clock site")});
        QVERIFY(!run.state.InProgress());
        // Retried in 15 minutes: "LastSync" is 45 minutes back from now.
        QCOMPARE(run.prefs.Values().LastSync, Start.addSecs(-45 * 60));
        QVERIFY(run.setter.Requests.isEmpty());
        QVERIFY(run.Closed());
    }

    void startErrorOfAManualRunDoesNotReschedule()
    {
        Run run(true, false);
        const QDateTime lastSync = run.prefs.Values().LastSync;
        run.Begin(QueryError(SntpResult::NetworkError, QStringLiteral("The request could not be sent: x")));
        QCOMPARE(run.messages.size(), 1);
        QCOMPARE(run.prefs.Values().LastSync, lastSync);
    }

    void wouldBlockAtTheStartIsNoFailure()
    {
        Run run;
        run.Begin(QueryError(SntpResult::UnderWay, QStringLiteral("Operation would block")));
        QVERIFY(run.messages.isEmpty());
        QVERIFY(!run.Closed());
        QVERIFY(run.state.InProgress());
        run.time1->Finish(ServerAnswer(run.clock, 1000));
        QCOMPARE(run.Status(), QStringLiteral("Time set"));
        QVERIFY(run.Closed());
    }

    void refusedReplyIsToldWithItsReason()
    {
        Run run;
        run.Begin();
        run.time1->Finish(
            QueryError(SntpResult::KissOfDeath,
                       QStringLiteral("The time server refused to give the time (kiss code RATE).")));
        QCOMPARE(run.messages,
                 QStringList{QStringLiteral("Syncronization not completed because of the following "
                                            "error: \r\rThe time server refused to give the time "
                                            "(kiss code RATE).\r\rPlease check your Internet "
                                            "connection or clock site")});
        QVERIFY(run.setter.Requests.isEmpty());
        QVERIFY(!run.state.Synchronised());
        QVERIFY(run.Closed());
    }

    void answerWithoutATimeSetsNothing()
    {
        Run run;
        const QDateTime lastSync = run.prefs.Values().LastSync;
        run.Begin();
        run.time1->Finish(SntpResult{});
        QVERIFY(run.setter.Requests.isEmpty());
        QVERIFY(run.messages.isEmpty());
        QCOMPARE(run.prefs.Values().LastSync, lastSync);
        QCOMPARE(run.refreshes, 1);
        QVERIFY(run.Closed());
    }

    void directConnectionTimesOutAtTheFirstTick()
    {
        Run run(false, false, 0);
        run.Begin();
        run.window->Timer1_Timer();
        QCOMPARE(run.messages, QStringList{Unable});
        QCOMPARE(run.time1->Cancels, 1);
        QVERIFY(!run.state.InProgress());
        QVERIFY(!run.state.Synchronised());
        QCOMPARE(run.refreshes, 1);
        QVERIFY(run.Closed());
    }

    void dialUpConnectionWaitsFourTicks()
    {
        Run run(false, false, 1);
        run.Begin();
        for (int i = 0; i < 3; ++i) {
            run.window->Timer1_Timer();
            QVERIFY(!run.Closed());
            QVERIFY(run.messages.isEmpty());
        }
        run.window->Timer1_Timer();
        QCOMPARE(run.messages, QStringList{Unable});
        QVERIFY(run.Closed());
    }

    void automaticRunThatTimesOutSaysWhenItTriesAgain()
    {
        // "AutoSyncHrs" 1: the retry is 15 minutes after the time-out, at 10:15.
        Run run(true, true, 0);
        run.Begin();
        run.window->Timer1_Timer();
        QCOMPARE(run.messages, QStringList{Unable + QStringLiteral("\rWill try again at: 10:15")});
        QCOMPARE(run.state.NextSync(), Start.addSecs(15 * 60));
    }

    void answerAfterTheTimeOutIsNotTaken()
    {
        Run run;
        run.Begin();
        FakeTimeQuery* query = run.time1;
        run.window->Timer1_Timer();
        QVERIFY(run.Closed());
        if (run.window) // still there until the event loop deletes it
            query->Finish(ServerAnswer(run.clock, 1000));
        QVERIFY(run.setter.Requests.isEmpty());
        QCOMPARE(run.messages.size(), 1);
    }

    void cancelEndsTheRunAndRetriesInFifteenMinutes()
    {
        Run run;
        run.Begin();
        run.window->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
        QVERIFY(!run.state.InProgress());
        QCOMPARE(run.prefs.Values().LastSync, Start.addSecs(-45 * 60));
        QCOMPARE(run.time1->Cancels, 1);
        QVERIFY(run.messages.isEmpty());
        QVERIFY(run.Closed());
    }

    void closingByTheFrameEndsTheRunQuietly()
    {
        Run run;
        const QDateTime lastSync = run.prefs.Values().LastSync;
        run.Begin();
        run.window->close();
        QVERIFY(run.Closed());
        QVERIFY(!run.state.InProgress());
        QCOMPARE(run.prefs.Values().LastSync, lastSync);
        QVERIFY(run.messages.isEmpty());
        QVERIFY(run.setter.Requests.isEmpty());
        // The button shows that this run did not synchronise.
        QCOMPARE(run.refreshes, 1);
        QVERIFY(!run.state.Synchronised());
    }

    void escapeIsTheFrame()
    {
        Run run;
        run.Begin();
        QTest::keyClick(run.window, Qt::Key_Escape);
        QVERIFY(run.Closed());
        QVERIFY(!run.state.InProgress());
        QVERIFY(run.messages.isEmpty());
    }
};

QTEST_MAIN(TestFrmAutoSync)
#include "tst_frmautosync.moc"
