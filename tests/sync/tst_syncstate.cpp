#include "ManualClock.h"
#include "settings/Preferences.h"
#include "sync/SyncState.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QDateTime Ten(QDate(2026, 11, 16), QTime(10, 0, 20));

} // namespace

// The sync state: Internet now, the next sync, the retry's back-dating and the run flags.
class TestSyncState : public QObject
{
    Q_OBJECT
private slots:
    void retryLandsFifteenMinutesOnWithAnHourlySync()
    {
        ManualClock clock(Ten);
        Preferences prefs;
        prefs.Change([](Settings& v) { v.AutoSyncHrs = 1; });
        SyncState state(prefs, clock);
        state.ScheduleRetry(15);
        QCOMPARE(prefs.Values().LastSync, Ten.addSecs(-45 * 60));
        QCOMPARE(state.NextSync(), Ten.addSecs(15 * 60));
    }

    void retryLandsTwoHoursFifteenOnWithAThreeHourSync()
    {
        // Only one hour is taken off, not the interval: kept as it always was.
        ManualClock clock(Ten);
        Preferences prefs;
        prefs.Change([](Settings& v) { v.AutoSyncHrs = 3; });
        SyncState state(prefs, clock);
        state.ScheduleRetry(15);
        QCOMPARE(state.NextSync(), Ten.addSecs(2 * 3600 + 15 * 60));
    }

    void retryCountsFromInternetNow()
    {
        ManualClock clock(Ten);
        Preferences prefs;
        prefs.Change([](Settings& v) {
            v.AutoSyncHrs = 1;
            v.InetMinOffset = 10;
        });
        SyncState state(prefs, clock);
        QCOMPARE(state.InternetNow(), Ten.addSecs(600));
        state.ScheduleRetry(15);
        QCOMPARE(state.NextSync(), Ten.addSecs(25 * 60));
    }

    void clockBehindReachesTheNextSyncByInternetNow()
    {
        // The server says 10:00:20; this clock 09:50:20, ten minutes behind, and the offset
        // records it. The next sync at 10:00 is due by Internet now.
        ManualClock clock(Ten.addSecs(-600));
        Preferences prefs;
        prefs.Change([](Settings& v) {
            v.AutoSyncHrs = 1;
            v.LastSync = QDateTime(QDate(2026, 11, 16), QTime(9, 0));
        });
        SyncState state(prefs, clock);
        QVERIFY(!state.Due());
        prefs.Change([](Settings& v) { v.InetMinOffset = 10; });
        QVERIFY(state.Due());
        // Exactly at the next sync counts.
        clock.Set(QDateTime(QDate(2026, 11, 16), QTime(9, 50)));
        QVERIFY(state.Due());
        clock.AdvanceMSecs(-1);
        QVERIFY(!state.Due());
    }

    void successRecordsTheServersTimeAndSynchronises()
    {
        ManualClock clock(Ten);
        Preferences prefs;
        SyncState state(prefs, clock);
        const QDateTime server = Ten.addSecs(421);
        state.RecordSuccess(server);
        QVERIFY(state.Synchronised());
        QCOMPARE(prefs.Values().LastSync, server);
        state.RecordOffset(-3);
        QCOMPARE(prefs.Values().InetMinOffset, -3);
    }

    void flagsAnnounceEachChangeOnce()
    {
        ManualClock clock(Ten);
        Preferences prefs;
        SyncState state(prefs, clock);
        QSignalSpy changed(&state, &SyncState::Changed);
        state.SetInProgress(true);
        state.SetInProgress(true);
        state.SetSynchronised(true);
        state.SetDialUpPromptOpen(true);
        state.SetClockBeingSet(true);
        QCOMPARE(changed.size(), 4);
        QVERIFY(state.InProgress() && state.Synchronised() && state.DialUpPromptOpen() &&
                state.ClockBeingSet());
        QSignalSpy refresh(&state, &SyncState::RefreshDue);
        state.Refresh();
        QCOMPARE(refresh.size(), 1);
    }

    void ownClockChangeIsRecentForAFewSeconds()
    {
        ManualClock clock(Ten);
        Preferences prefs;
        SyncState state(prefs, clock);
        QVERIFY(!state.OwnClockChangeRecent());
        state.SetClockBeingSet(true);
        QVERIFY(state.OwnClockChangeRecent());
        state.SetClockBeingSet(false);
        QVERIFY(state.OwnClockChangeRecent());
        // A change noticed once the few seconds are over is someone else's.
        state.SetOwnChangeWindow(50);
        QTRY_VERIFY_WITH_TIMEOUT(!state.OwnClockChangeRecent(), 2000);
    }
};

QTEST_GUILESS_MAIN(TestSyncState)
#include "tst_syncstate.moc"
