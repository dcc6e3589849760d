#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "clock/ZoneClock.h"
#include "widgets/MessageBox.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

QDateTime Utc(const char* utc)
{
    return QDateTime::fromString(QString::fromLatin1(utc), Qt::ISODate);
}

// The local time of an instant given in UTC (this test runs with TZ=America/Los_Angeles).
QDateTime LocalAt(const char* utc)
{
    return Utc(utc).toLocalTime();
}

// An instant given in UTC, shown in a zone `hours` off UTC.
QDateTime InZone(const char* utc, int hours)
{
    return Utc(utc).toOffsetFromUtc(hours * 3600);
}

// Settings that log every event, with a default timer interval of `interval`.
QByteArray WithInterval(const char* interval)
{
    return QByteArray("[General]\nLogOn=1\nLogSafetyOnly=False\nDefaultInterval=") + interval + "\n";
}

int RangCount(const Desk& desk, const char* message)
{
    int count = 0;
    for (const QByteArray& line : desk.TodaysLog().split('\n'))
        if (line.contains("\"EA\"") && line.contains(message))
            ++count;
    return count;
}

// Answers every open alarm window with Reset: a retained clock alarm is set again for the
// same time, so that only the expiry rule keeps it from ringing twice.
void ResetAll(Desk& desk)
{
    for (frmAlarm* w : desk.Windows().OpenAlarmWindows())
        w->cmdReset_Click();
    QCoreApplication::processEvents();
}

const QByteArray Retained = "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\n";

// Sets a new safety timer "Crew 7" of the default interval through the alarm panel, at the
// clock's present time.
void SetSafetyTimer(Desk& desk)
{
    desk.window->show();
    desk.ClickPanel(QStringLiteral("Alarm"));
    desk.Find<QPushButton>(QStringLiteral("cmdNew"))->click();
    desk.Find<QLineEdit>(QStringLiteral("txtMessage"))->setText(QStringLiteral("Crew 7"));
    desk.Find<QCheckBox>(QStringLiteral("chkSafety"))->click(); // a timer of the default interval
    desk.Find<QPushButton>(QStringLiteral("cmdSet"))->click();
}

// Ticks once a minute from `start` for `minutes` minutes, or until an alarm window opens;
// returns the minute it opened at, or -1.
int MinuteOfFirstRing(Desk& desk, const QDateTime& start, int minutes)
{
    for (int minute = 0; minute <= minutes; ++minute) {
        desk.clock.Set(start.addSecs(60 * minute));
        desk.window->tmrMain_Timer();
        if (!desk.Windows().OpenAlarmWindows().isEmpty())
            return minute;
    }
    return -1;
}

} // namespace

// Alarms across the two daylight-time changes of a year in a zone that keeps daylight time,
// and timers across a change of the computer's zone.
class TestDaylight : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY2(LocalAt("2026-11-01T09:30:00Z").offsetFromUtc() == -8 * 3600,
                 "the test must run with TZ=America/Los_Angeles");
    }
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void repeatedHourOfTheAutumnChangeRingsEachAlarmOnce()
    {
        Desk desk(Retained +
                  "Count=3\n"
                  "Message%201=At one\nExpire%201=01:00\nAlarmSet%201=True\nRepeat%201=1\n"
                  "Message%202=At half past one\nExpire%202=01:30\nAlarmSet%202=True\nRepeat%202=1\n"
                  "Message%203=At one fifty-nine\nExpire%203=01:59\nAlarmSet%203=True\nRepeat%203=1\n");
        desk.clock.Set(LocalAt("2026-11-01T07:50:00Z")); // 00:50 daylight time
        QVERIFY(desk.window->Load());
        // A tick every minute through both passes of the hour from 01:00 to 02:00.
        for (int minute = 0; minute <= 10 + 60 + 61; ++minute) {
            desk.clock.Set(LocalAt("2026-11-01T07:50:00Z").addSecs(60 * minute));
            desk.window->tmrMain_Timer();
            ResetAll(desk);
        }
        QCOMPARE(desk.clock.Now().time(), QTime(2, 1));
        QCOMPARE(RangCount(desk, "At one\""), 1);
        QCOMPARE(RangCount(desk, "At half past one"), 1);
        QCOMPARE(RangCount(desk, "At one fifty-nine"), 1);
    }

    void timerAcrossTheAutumnChangeRingsAfterItsIntervalNotAnHourEarly()
    {
        Desk desk(WithInterval("01:30"));
        desk.clock.Set(LocalAt("2026-11-01T07:45:00Z")); // 00:45 daylight time
        QVERIFY(desk.window->Load());
        SetSafetyTimer(desk);
        QCOMPARE(desk.Alarms().At(1).Expire, QStringLiteral("01:15")); // 01:15 standard time
        QCOMPARE(MinuteOfFirstRing(desk, LocalAt("2026-11-01T07:45:00Z"), 100), 90);
        QCOMPARE(desk.clock.Now().offsetFromUtc(), -8 * 3600);
    }

    // The machine sleeps from 00:50 daylight time to 01:20 standard time: the timer's moment,
    // 01:35 daylight time, passed in the sleep, though the wall has not shown 01:35 again yet.
    void timerDueWhileAsleepAcrossTheAutumnChangeRingsLateAtWaking()
    {
        Desk desk(WithInterval("00:50"));
        desk.clock.Set(LocalAt("2026-11-01T07:45:00Z")); // 00:45 daylight time
        QVERIFY(desk.window->Load());
        SetSafetyTimer(desk);
        QCOMPARE(desk.Alarms().At(1).Expire, QStringLiteral("01:35"));
        QCOMPARE(MinuteOfFirstRing(desk, LocalAt("2026-11-01T07:45:00Z"), 5), -1);
        QCOMPARE(MinuteOfFirstRing(desk, LocalAt("2026-11-01T09:20:00Z"), 0), 0); // 01:20 standard time
        const QByteArray log = desk.TodaysLog();
        QVERIFY2(log.contains(Desk::Line("01:20", "EA", 1, "Alarm Expired for ", "Crew 7",
                                         ", rang 45 minutes late", "11/1/2026")),
                 log.constData());
    }

    // The computer's zone is moved an hour while a 30-minute timer runs: the timer rings after
    // its interval, at the wall time that moment has now. Moved east, the wall passes the old
    // expiry before the moment; moved west, it would show the old expiry an hour late.
    void timerRingsAfterItsIntervalWhenTheZoneMoves_data()
    {
        QTest::addColumn<int>("hoursBefore");
        QTest::addColumn<int>("hoursAfter");
        QTest::addColumn<QString>("expiryAtSetting");
        QTest::addColumn<QString>("expiryAtRinging");
        // Set at 09:50 six hours west of UTC; from 10:00 five hours west (the wall reads 11:00).
        QTest::newRow("east") << -6 << -5 << QStringLiteral("10:20") << QStringLiteral("11:20");
        // Set at 10:50 five hours west of UTC; from 11:00 six hours west (the wall reads 10:00).
        QTest::newRow("west") << -5 << -6 << QStringLiteral("11:20") << QStringLiteral("10:20");
    }
    void timerRingsAfterItsIntervalWhenTheZoneMoves()
    {
        QFETCH(int, hoursBefore);
        QFETCH(int, hoursAfter);
        QFETCH(QString, expiryAtSetting);
        QFETCH(QString, expiryAtRinging);
        Desk desk(WithInterval("00:30"));
        desk.clock.Set(InZone("2026-11-16T15:50:00Z", hoursBefore));
        QVERIFY(desk.window->Load());
        SetSafetyTimer(desk);
        QCOMPARE(desk.Alarms().At(1).Expire, expiryAtSetting);
        QCOMPARE(MinuteOfFirstRing(desk, InZone("2026-11-16T15:50:00Z", hoursBefore), 9), -1);
        QCOMPARE(MinuteOfFirstRing(desk, InZone("2026-11-16T16:00:00Z", hoursAfter), 90), 20);
        QCOMPARE(MinuteText(desk.clock.Now()), expiryAtRinging);
        // The window and the list show the expiry on the wall as it reads now.
        QCOMPARE(desk.Alarms().At(1).Expire, expiryAtRinging);
        QCOMPARE(desk.Windows().AlarmWindow(1)->findChild<QLabel*>(QStringLiteral("lblExpired"))->text(),
                 QStringLiteral("Expired on\n") + expiryAtRinging);
        const QByteArray log = desk.TodaysLog();
        QVERIFY2(log.contains(
                     Desk::Line(qPrintable(expiryAtRinging), "EA", 1, "Alarm Expired for ", "Crew 7", "")),
                 log.constData());
    }

    // The operator flips a set timer's type to clock time and back without touching its time:
    // the alarm stays set and keeps its moment.
    void setTimerFlippedToClockAndBackKeepsItsMoment()
    {
        Desk desk(WithInterval("00:30"));
        desk.clock.Set(InZone("2026-11-16T15:50:00Z", -6));
        QVERIFY(desk.window->Load());
        SetSafetyTimer(desk);
        desk.Find<QRadioButton>(QStringLiteral("optClock"))->click();
        desk.Find<QRadioButton>(QStringLiteral("optTimer"))->click();
        QVERIFY(desk.Alarms().At(1).AlarmSet);
        QVERIFY(desk.Alarms().At(1).TypeTimer);
        QCOMPARE(MinuteOfFirstRing(desk, InZone("2026-11-16T16:00:00Z", -5), 60), 20);
        QCOMPARE(desk.Alarms().At(1).LateMinutes, 0);
    }

    void skippedHourOfTheSpringChangeRingsItsAlarmsAtTheChangeLate()
    {
        Desk desk(Retained + "Count=4\n"
                             "Message%201=At two\nExpire%201=02:00\nAlarmSet%201=True\n"
                             "Message%202=At half past two\nExpire%202=02:30\nAlarmSet%202=True\n"
                             "Message%203=Crew 7\nTypeTimer%203=True\nInterval%203=00:25\nExpire%203=02:15\n"
                             "AlarmSet%203=True\nRepeat%203=1\nSafety%203=1\n"
                             "Message%204=At three ten\nExpire%204=03:10\nAlarmSet%204=True\n");
        desk.clock.Set(LocalAt("2026-03-08T09:55:00Z")); // 01:55 standard time
        QVERIFY(desk.window->Load());
        desk.window->tmrMain_Timer();
        desk.clock.Set(LocalAt("2026-03-08T09:59:00Z")); // 01:59
        desk.window->tmrMain_Timer();
        QVERIFY(desk.Windows().OpenAlarmWindows().isEmpty());
        desk.clock.Set(LocalAt("2026-03-08T10:00:00Z")); // 03:00 daylight time
        QCOMPARE(desk.clock.Now().time(), QTime(3, 0));
        desk.window->tmrMain_Timer();
        QCOMPARE(desk.Windows().OpenAlarmWindows().size(), 3);
        const QByteArray log = desk.TodaysLog();
        QVERIFY2(log.contains(Desk::Line("03:00", "EA", 0, "Alarm Expired for ", "At two",
                                         ", rang 60 minutes late", "3/8/2026")),
                 log.constData());
        QVERIFY(log.contains(Desk::Line("03:00", "EA", 1, "Alarm Expired for ", "Crew 7",
                                        ", rang 45 minutes late", "3/8/2026")));
        QVERIFY(log.contains(Desk::Line("03:00", "EA", 0, "Alarm Expired for ", "At half past two",
                                        ", rang 30 minutes late", "3/8/2026")));
        QVERIFY(!log.contains("At three ten"));
    }
};

QTEST_MAIN(TestDaylight)
#include "tst_daylight.moc"
