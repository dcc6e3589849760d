#include "AlarmRecords.h"
#include "ManualClock.h"
#include "TestEnvironment.h"
#include "alarms/AlarmDesk.h"
#include "logbook/LogBook.h"
#include "settings/Preferences.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

namespace {

const QLocale EnUs(QLocale::English, QLocale::UnitedStates);
const QDate Monday(2026, 11, 16);

// The alarm desk over a fresh folder, with its log open for every event.
struct Fixture
{
    explicit Fixture(const QString& settingsFile = {})
        : store(settingsFile.isEmpty() ? env.SettingsFile() : settingsFile),
          log(env.LogFolder(), clock, EnUs), desk(store, log, clock, preferences)
    {
        log.SetSwitches({true, false});
        log.SetTimeSource([this] { return desk.StampNow(); });
        log.OpenTodaysLog();
    }
    QByteArray TodaysLog() const
    {
        return TestEnvironment::ReadFile(QDir(env.LogFolder()).filePath(LogFileName(clock.Today())));
    }

    TestEnvironment env;
    ManualClock clock{QDateTime(Monday, QTime(10, 15, 0))};
    SettingsStore store;
    Preferences preferences;
    LogBook log;
    AlarmDesk desk;
};

} // namespace

class TestAlarmDesk : public QObject
{
    Q_OBJECT
private slots:
    void anEntryAtTheLastInstantOfTheDayIsDatedThatDay()
    {
        // The clock moves on a second at every reading: the date and the time of the entry
        // come from one reading, not from either side of midnight.
        Fixture f;
        f.clock.Set(Monday, QTime(23, 59, 59));
        f.clock.StepEachRead(1000);
        f.log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("Last note"), QString(), QString());
        f.clock.StepEachRead(0);
        const QByteArray log =
            TestEnvironment::ReadFile(QDir(f.env.LogFolder()).filePath(LogFileName(Monday)));
        QVERIFY2(log.endsWith("\"11/16/2026\",\"23:59\",\"NT\",0,\"Last note\",\"\",\"\"\r\n"),
                 log.constData());
    }

    // The minute's scan of thirty running timers reads the local time only for the one that
    // is due.
    void timersNotDueYetCostTheScanNoReadingOfTheLocalTime()
    {
        Fixture f;
        AlarmTable& table = f.desk.Table();
        table.AlarmCount = MaxAlarms;
        for (int n = 1; n <= MaxAlarms; ++n) {
            table.At(n) = SetAlarm(QStringLiteral("T%1").arg(n), QString());
            table.At(n).TypeTimer = true;
            f.desk.CalcExpire(n == 7 ? QStringLiteral("00:01") : QStringLiteral("00:30"), n);
        }
        const QDateTime wall(Monday, QTime(10, 15), Qt::UTC);
        const int readsBefore = f.clock.NowReads();
        QVERIFY(!f.desk.ScanSpan(wall.addSecs(-60), wall));
        QCOMPARE(f.clock.NowReads(), readsBefore);
        f.clock.AdvanceSecs(60);
        QVERIFY(f.desk.ScanSpan(wall, wall.addSecs(60)));
        QVERIFY(table.At(7).Ringing);
        QCOMPARE(table.At(7).LateMinutes, 0);
        QVERIFY(!table.At(8).Ringing);
        // Two readings for the timer that rang: its moment on the wall, and its log entry.
        QCOMPARE(f.clock.NowReads() - readsBefore, 2);
    }

    // A timer runs on the corrected clock: two minutes behind the PC's, it rings two minutes
    // later by the PC's.
    void timerRingsByTheCorrectedClock()
    {
        Fixture f;
        Settings values = f.preferences.Values();
        values.InetMinOffset = -2;
        f.preferences.Replace(values);
        AlarmTable& table = f.desk.Table();
        table.AlarmCount = 1;
        table.At(1) = SetAlarm(QStringLiteral("Corrected"), QString());
        table.At(1).TypeTimer = true;
        f.desk.CalcExpire(QStringLiteral("00:20"), 1); // PC 10:15 is 10:13: due at 10:33
        QCOMPARE(table.At(1).Expire, QStringLiteral("10:33"));
        f.clock.Set(Monday, QTime(10, 34));
        QVERIFY(!f.desk.ScanExpiries(10, 32));
        f.clock.Set(Monday, QTime(10, 35));
        QVERIFY(f.desk.ScanExpiries(10, 33));
        QCOMPARE(table.At(1).LateMinutes, 0);
    }

    void alarmsDueInTheSameMinuteComeLowestFirst()
    {
        Fixture f;
        AlarmTable& table = f.desk.Table();
        table.AlarmCount = 6;
        for (int n = 1; n <= 6; ++n)
            table.At(n) = SetAlarm(QStringLiteral("A%1").arg(n), QStringLiteral("09:00"));
        table.At(2).Expire = QStringLiteral("10:15");
        table.At(5).Expire = QStringLiteral("10:15");
        table.At(6).Expire = QStringLiteral("10:15");
        table.At(6).AlarmSet = false;
        QSignalSpy due(&f.desk, &AlarmDesk::AlarmDue);
        QSignalSpy rang(&f.desk, &AlarmDesk::AlarmsRang);
        QVERIFY(f.desk.ScanExpiries(10, 15));
        QCOMPARE(due.size(), 2);
        QCOMPARE(due.at(0).at(0).toInt(), 2);
        QCOMPARE(due.at(1).at(0).toInt(), 5);
        QCOMPARE(rang.size(), 1);
        QVERIFY(table.At(2).Ringing);
        QVERIFY(table.At(5).Ringing);
        QVERIFY(!table.At(6).Ringing);
        QCOMPARE(f.TodaysLog(),
                 QByteArray("\"11/16/2026\",\"10:15\",\"EA\",0,\"Alarm Expired for \",\"A2\",\"\"\r\n"
                            "\"11/16/2026\",\"10:15\",\"EA\",0,\"Alarm Expired for \",\"A5\",\"\"\r\n"));
        // The next minute has nothing due: nothing is announced.
        QVERIFY(!f.desk.ScanExpiries(10, 16));
        QCOMPARE(due.size(), 2);
        QCOMPARE(rang.size(), 1);
    }

    void scanEndsAtItsNextStepWhenTheProgramStops()
    {
        Fixture f;
        AlarmTable& table = f.desk.Table();
        table.AlarmCount = 2;
        table.At(1) = SetAlarm(QStringLiteral("A1"), QStringLiteral("10:15"));
        table.At(2) = SetAlarm(QStringLiteral("A2"), QStringLiteral("10:15"));
        // The window of the first alarm is where the program is told to stop.
        QObject::connect(&f.desk, &AlarmDesk::AlarmDue, &f.desk, [&f] { f.desk.Stop(); });
        QSignalSpy due(&f.desk, &AlarmDesk::AlarmDue);
        QSignalSpy rang(&f.desk, &AlarmDesk::AlarmsRang);
        f.desk.ScanExpiries(10, 15);
        QCOMPARE(due.size(), 1);
        QCOMPARE(rang.size(), 0);
        QVERIFY(!table.At(2).Ringing);
        QVERIFY(f.desk.IsStopped());
    }

    void deletingAnnouncesTheMoveAndKeepsTheSelectionOnItsAlarm()
    {
        Fixture f;
        AlarmTable& table = f.desk.Table();
        table.AlarmCount = 3;
        for (int n = 1; n <= 3; ++n)
            table.At(n) = SetAlarm(QStringLiteral("A%1").arg(n), QStringLiteral("09:00"));
        table.SelectedAlarm = 3;
        QSignalSpy deleted(&f.desk, &AlarmDesk::AlarmDeleted);
        QSignalSpy changed(&f.desk, &AlarmDesk::TableChanged);
        QSignalSpy selection(&f.desk, &AlarmDesk::SelectionChanged);
        f.desk.DeleteAlarm(1);
        QCOMPARE(deleted.size(), 1);
        QCOMPARE(deleted.at(0).at(0).toInt(), 1);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(selection.size(), 1);
        QCOMPARE(table.AlarmCount, 2);
        QCOMPARE(table.SelectedAlarm, 2);
        QCOMPARE(table.At(2).Message, QStringLiteral("A3"));
        // A number past the count changes nothing and announces nothing.
        f.desk.DeleteAlarm(3);
        QCOMPARE(deleted.size(), 1);
        QCOMPARE(table.AlarmCount, 2);
    }

    void timerExpiryIsAnnouncedAndAnUnreadableIntervalLeavesIt()
    {
        Fixture f;
        f.desk.Table().AlarmCount = 1;
        f.desk.Table().At(1) = SetAlarm(QStringLiteral("T"), QStringLiteral("09:00"));
        QSignalSpy expiry(&f.desk, &AlarmDesk::ExpiryChanged);
        f.desk.CalcExpire(QStringLiteral("00:30"), 1);
        QCOMPARE(f.desk.Table().At(1).Expire, QStringLiteral("10:45"));
        QCOMPARE(expiry.size(), 1);
        f.desk.CalcExpire(QStringLiteral("1_:3_"), 1);
        QCOMPARE(f.desk.Table().At(1).Expire, QStringLiteral("10:45"));
        QCOMPARE(expiry.size(), 1);
    }

    void expiriesFollowTheInternetMinuteOffset()
    {
        Fixture f;
        f.preferences.Change([](Settings& values) { values.InetMinOffset = 7; });
        QCOMPARE(f.desk.InternetNow(), QStringLiteral("10:22"));
        f.desk.Table().AlarmCount = 1;
        f.desk.CalcExpire(QStringLiteral("00:10"), 1);
        QCOMPARE(f.desk.Table().At(1).Expire, QStringLiteral("10:32"));
    }

    void refreshingTheListBlanksUnsetExpiriesAndAnnouncesIt()
    {
        Fixture f;
        f.desk.Table().AlarmCount = 2;
        f.desk.Table().At(1) = SetAlarm(QStringLiteral("On"), QStringLiteral("09:00"));
        f.desk.Table().At(2) = SetAlarm(QStringLiteral("Off"), QStringLiteral("09:00"), false);
        QSignalSpy changed(&f.desk, &AlarmDesk::TableChanged);
        f.desk.RefreshAlarmList();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(f.desk.Table().At(1).Expire, QStringLiteral("09:00"));
        QCOMPARE(f.desk.Table().At(2).Expire, QStringLiteral(" "));
    }

    void savedTableReadsBack()
    {
        Fixture f;
        f.desk.Table().AlarmCount = 1;
        f.desk.Table().At(1) = SetAlarm(QStringLiteral("Convoy"), QStringLiteral("07:30"));
        QSignalSpy failed(&f.desk, &AlarmDesk::Failed);
        f.desk.SaveAlarms();
        QCOMPARE(failed.size(), 0);
        SettingsStore again(f.env.SettingsFile());
        AlarmDesk restored(again, f.log, f.clock, f.preferences);
        QSignalSpy changed(&restored, &AlarmDesk::TableChanged);
        restored.LoadAlarms();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(restored.Table().AlarmCount, 1);
        QCOMPARE(restored.Table().At(1).Message, QStringLiteral("Convoy"));
        QCOMPARE(restored.Table().At(1).Expire, QStringLiteral("07:30"));
    }

    void saveThatCannotReachTheDiskIsAnnounced()
    {
        TestEnvironment other;
        // A folder where the settings file should be: the store cannot write it.
        const QString blocked = QDir(other.Root()).filePath(QStringLiteral("blocked.ini"));
        QVERIFY(QDir().mkpath(blocked));
        Fixture f(blocked);
        f.desk.Table().AlarmCount = 1;
        QSignalSpy failed(&f.desk, &AlarmDesk::Failed);
        f.desk.SaveAlarms();
        QCOMPARE(failed.size(), 1);
        QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("Error saving the alarms to ") + blocked);
    }
};

QTEST_GUILESS_MAIN(TestAlarmDesk)
#include "tst_alarmdesk.moc"
