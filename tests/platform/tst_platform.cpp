#include "FakePlatform.h"
#include "platform/PlatformServices.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSignalSpy>
#include <QtTest>

#include <optional>

class TestPlatform : public QObject
{
    Q_OBJECT
private slots:
    void nullClockSetterNeverSetsAndSaysWhy()
    {
        NullClockSetter setter;
        for (const qint64 by : {qint64(0), qint64(90000), qint64(-5000)}) {
            std::optional<ClockSetResult> result;
            setter.AdjustClock(by, true, [&result](const ClockSetResult& r) { result = r; });
            QVERIFY(result.has_value());
            QVERIFY(!result->Ok);
            QCOMPARE(result->Reason,
                     QStringLiteral("Setting the computer's clock is not available on this system"));
        }
    }

    void nullClockChangeWatchNeverSignals()
    {
        NullClockChangeWatch watch;
        QSignalSpy changed(&watch, &ClockChangeWatch::ClockChanged);
        QCoreApplication::processEvents();
        QTest::qWait(50);
        QCOMPARE(changed.count(), 0);
    }

    void nullSuspendWatchIgnoresCallsAndNeverSignals()
    {
        NullSuspendWatch watch;
        QSignalSpy suspending(&watch, &SuspendWatch::Suspending);
        QSignalSpy resumed(&watch, &SuspendWatch::Resumed);
        watch.SetAlarmsSet(3);
        watch.SuspendHandled();
        watch.SetAlarmsSet(0);
        QCoreApplication::processEvents();
        QTest::qWait(50);
        QCOMPARE(suspending.count(), 0);
        QCOMPARE(resumed.count(), 0);
    }

    void nullStartAtLoginStaysDisabledAndSaysWhyWhenTurnedOn()
    {
        NullStartAtLogin start;
        QVERIFY(!start.IsEnabled());
        const auto onError = start.SetEnabled(true);
        QVERIFY(onError.has_value());
        QCOMPARE(*onError, QStringLiteral("Starting at login is not available on this system"));
        QVERIFY(!start.IsEnabled());
    }

    void nullStartAtLoginTurnsOffWithoutError()
    {
        NullStartAtLogin start;
        QVERIFY(!start.SetEnabled(false).has_value());
        QVERIFY(!start.IsEnabled());
    }

    void nullDialUpStateIsNeverDialUp()
    {
        const NullDialUpState dialUp;
        QVERIFY(!dialUp.DialUpConnection());
    }

    void nullDesktopNotifierAcceptsNoticesAndWithdrawals()
    {
        NullDesktopNotifier notifier;
        notifier.Notify(QStringLiteral("alarm"), QStringLiteral("Tarrowind"), QStringLiteral("Alarm"));
        notifier.Withdraw(QStringLiteral("alarm"));
        notifier.Withdraw(QStringLiteral("never shown"));
    }

    void createPlatformServicesFillsEveryService()
    {
        const auto services = CreatePlatformServices();
        QVERIFY(services.flash);
        QVERIFY(services.clockSetter);
        QVERIFY(services.clockChange);
        QVERIFY(services.suspend);
        QVERIFY(services.startAtLogin);
        QVERIFY(services.dialUp);
        QVERIFY(services.notifier);
        QVERIFY(services.halfTick);
    }

    void nullHalfTickWatchNeverStarts()
    {
        NullHalfTickWatch watch;
        QVERIFY(!watch.Start([](qint64) { return true; }));
        watch.Stop();
    }

    void fakeClockSetterRecordsEachRequestAndAnswersAsSet()
    {
        FakeClockSetter setter;
        qint64 moved = 0;
        setter.Moves = [&moved](qint64 by) { moved += by; };
        QList<ClockSetResult> answers;
        const auto record = [&answers](const ClockSetResult& r) { answers.append(r); };
        setter.AdjustClock(90000, true, record);
        setter.Next = {false, QStringLiteral("No permission")};
        setter.AdjustClock(-2000, false, record);
        QCOMPARE(answers.size(), 2);
        QVERIFY(answers.at(0).Ok);
        QVERIFY(!answers.at(1).Ok);
        QCOMPARE(answers.at(1).Reason, QStringLiteral("No permission"));
        QCOMPARE(setter.Requests, (QList<qint64>{90000, -2000}));
        QCOMPARE(moved, 90000); // a refused request moves nothing
        QCOMPARE(setter.MayAsk, (QList<bool>{true, false}));

        // Held back: no answer until the test gives it.
        setter.Next = {true, {}};
        setter.Hold = true;
        setter.AdjustClock(3000, true, record);
        QCOMPARE(answers.size(), 2);
        QCOMPARE(setter.Waiting(), 1);
        setter.Answer();
        QCOMPARE(answers.size(), 3);
        QVERIFY(answers.at(2).Ok);
        QCOMPARE(moved, 93000);
    }

    void fakeClockChangeWatchSignalsOnEmit()
    {
        FakeClockChangeWatch watch;
        QSignalSpy changed(&watch, &ClockChangeWatch::ClockChanged);
        watch.Emit();
        QCOMPARE(changed.count(), 1);
    }

    void fakeSuspendWatchRecordsCountsAndHandledCallsAndSignalsOnRequest()
    {
        FakeSuspendWatch watch;
        QSignalSpy suspending(&watch, &SuspendWatch::Suspending);
        QSignalSpy resumed(&watch, &SuspendWatch::Resumed);
        watch.SetAlarmsSet(2);
        watch.SetAlarmsSet(0);
        watch.EmitSuspending();
        watch.SuspendHandled();
        watch.EmitResumed();
        QCOMPARE(watch.AlarmsSetCounts, (QList<int>{2, 0}));
        QCOMPARE(watch.SuspendHandledCalls, 1);
        QCOMPARE(suspending.count(), 1);
        QCOMPARE(resumed.count(), 1);
    }

    void fakeStartAtLoginKeepsTheSettingInMemory()
    {
        FakeStartAtLogin start;
        QVERIFY(!start.IsEnabled());
        QVERIFY(!start.SetEnabled(true).has_value());
        QVERIFY(start.IsEnabled());
        QVERIFY(!start.SetEnabled(false).has_value());
        QVERIFY(!start.IsEnabled());
        QCOMPARE(start.Requests, (QList<bool>{true, false}));
    }

    void fakeStartAtLoginWithForcedErrorFailsAndKeepsTheSetting()
    {
        FakeStartAtLogin start;
        start.ForcedError = QStringLiteral("Could not write the autostart entry");
        const auto error = start.SetEnabled(true);
        QVERIFY(error.has_value());
        QCOMPARE(*error, QStringLiteral("Could not write the autostart entry"));
        QVERIFY(!start.IsEnabled());
    }

    void fakeDialUpStateAnswersAsSet()
    {
        FakeDialUpState dialUp;
        QVERIFY(!dialUp.DialUpConnection());
        dialUp.DialUp = true;
        QVERIFY(dialUp.DialUpConnection());
    }

    void fakeDesktopNotifierRecordsNoticesAndWithdrawals()
    {
        FakeDesktopNotifier notifier;
        notifier.Notify(QStringLiteral("alarm-1"), QStringLiteral("Tarrowind"), QStringLiteral("Wake up"));
        notifier.Withdraw(QStringLiteral("alarm-1"));
        QCOMPARE(notifier.Notices.size(), 1);
        QCOMPARE(notifier.Notices[0].Key, QStringLiteral("alarm-1"));
        QCOMPARE(notifier.Notices[0].Title, QStringLiteral("Tarrowind"));
        QCOMPARE(notifier.Notices[0].Body, QStringLiteral("Wake up"));
        QCOMPARE(notifier.Withdrawn, QStringList{QStringLiteral("alarm-1")});
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"
