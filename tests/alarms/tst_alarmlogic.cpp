#include "AlarmRecords.h"
#include "alarms/AlarmLogic.h"

#include <QtTest>

namespace {
const QDate Monday(2026, 11, 16);
} // namespace

class TestAlarmLogic : public QObject
{
    Q_OBJECT
private slots:
    void hoursAndMinutesAreFormattedWithLeadingZeros()
    {
        QCOMPARE(FormatHourMinute(14, 30), QStringLiteral("14:30"));
        QCOMPARE(FormatHourMinute(2, 35), QStringLiteral("02:35"));
        QCOMPARE(FormatHourMinute(0, 0), QStringLiteral("00:00"));
    }

    void timerIntervalCrossingMidnightExpiresAfterMidnight()
    {
        QCOMPARE(CalcExpire(QDateTime(Monday, QTime(23, 30, 40)), QStringLiteral("00:45")),
                 QStringLiteral("00:15"));
        QCOMPARE(CalcExpire(QDateTime(Monday, QTime(10, 7)), QStringLiteral("00:30")),
                 QStringLiteral("10:37"));
        QCOMPARE(CalcExpire(QDateTime(Monday, QTime(10, 7)), QStringLiteral("23:59")),
                 QStringLiteral("10:06"));
    }

    void unreadableIntervalGivesNoExpiry()
    {
        QVERIFY(!CalcExpire(QDateTime(Monday, QTime(10, 0)), QStringLiteral("1_:3_")));
        QVERIFY(!CalcExpire(QDateTime(Monday, QTime(10, 0)), QStringLiteral("25:00")));
        QVERIFY(!CalcExpire(QDateTime(Monday, QTime(10, 0)), QStringLiteral("00:60")));
        QVERIFY(!CalcExpire(QDateTime(Monday, QTime(10, 0)), QString()));
        QCOMPARE(IntervalMinutes(QStringLiteral("01:30")), 90);
    }

    void timeTextNormalisesTimesAndKeepsAnythingElse()
    {
        QCOMPARE(TimeText(QStringLiteral("7:05")), QStringLiteral("07:05"));
        QCOMPARE(TimeText(QStringLiteral("07:05")), QStringLiteral("07:05"));
        QCOMPARE(TimeText(QStringLiteral("1_:3_")), QStringLiteral("1_:3_"));
    }

    void unsetAlarmAtItsTimeDoesNotRing()
    {
        QVERIFY(!ExpiresAt(SetAlarm(QStringLiteral("a"), QStringLiteral("10:15"), false), 10, 15));
        QVERIFY(ExpiresAt(SetAlarm(QStringLiteral("a"), QStringLiteral("10:15")), 10, 15));
        QVERIFY(!ExpiresAt(SetAlarm(QStringLiteral("a"), QStringLiteral("10:15")), 10, 16));
        QVERIFY(!ExpiresAt(SetAlarm(QStringLiteral("a"), QStringLiteral("10:15")), 11, 15));
    }

    void expiryOfMidnightRingsAtMidnight()
    {
        QVERIFY(ExpiresAt(SetAlarm(QStringLiteral("a"), QStringLiteral("00:00")), 0, 0));
    }

    void malformedExpiryNeverMatches()
    {
        for (const char* expire : {" ", "7:30", "07:3", "ab:cd", "1_:3_", "07:30 "})
            for (int h = 0; h < 24; ++h)
                for (int m = 0; m < 60; ++m)
                    QVERIFY(!ExpiresAt(SetAlarm(QStringLiteral("a"), QString::fromLatin1(expire)), h, m));
    }

    void deletingMovesLaterAlarmsDownAndClearsTheLastSlot()
    {
        AlarmTable table;
        table.AlarmCount = 4;
        for (int n = 1; n <= 4; ++n) {
            table.At(n) = SetAlarm(QStringLiteral("A%1").arg(n), QStringLiteral("0%1:00").arg(n));
            table.At(n).Safety = qint16(n % 2);
            table.At(n).Repeat = 1;
            table.At(n).TypeTimer = n == 3;
            table.At(n).Interval = QStringLiteral("00:1%1").arg(n);
            table.At(n).AudioPath = QStringLiteral("/s%1.wav").arg(n);
            table.At(n).LastPosition = QStringLiteral("pos %1").arg(n);
        }
        table.At(3).Ringing = true;
        DeleteAlarm(table, 2);
        QCOMPARE(table.AlarmCount, 3);
        QCOMPARE(table.At(2).Message, QStringLiteral("A3"));
        QCOMPARE(table.At(2).Expire, QStringLiteral("03:00"));
        QCOMPARE(table.At(2).TypeTimer, true);
        QCOMPARE(table.At(2).Interval, QStringLiteral("00:13"));
        QCOMPARE(table.At(2).AudioPath, QStringLiteral("/s3.wav"));
        QCOMPARE(table.At(2).LastPosition, QStringLiteral("pos 3"));
        QCOMPARE(table.At(2).Safety, qint16(1));
        QCOMPARE(table.At(3).Message, QStringLiteral("A4"));
        // The ringing flag moves with its alarm.
        QCOMPARE(table.At(2).Ringing, true);
        QCOMPARE(table.At(3).Ringing, false);
        const AlarmRecord& cleared = table.At(4);
        QCOMPARE(cleared.AlarmSet, false);
        QCOMPARE(cleared.Expire, QStringLiteral("00:00"));
        QCOMPARE(cleared.Interval, QStringLiteral("00:00"));
        QCOMPARE(cleared.Message, QString());
        QCOMPARE(cleared.LastPosition, QString());
        QCOMPARE(cleared.AudioPath, QString());
        QCOMPARE(cleared.Safety, qint16(0));
        QCOMPARE(cleared.Repeat, qint16(0));
        QCOMPARE(cleared.TypeTimer, false);
        QCOMPARE(cleared.Ringing, false);

        // A later new alarm starts from that cleared slot.
        QCOMPARE(NewAlarm(table), 4);
        QCOMPARE(table.At(4).Message, QStringLiteral("<NEW>"));
        QCOMPARE(table.At(4).Expire, QStringLiteral("00:00"));
        QCOMPARE(table.At(4).AudioPath, QString());
    }

    void deletingTheLastAlarmClearsItsSlot()
    {
        AlarmTable table;
        table.AlarmCount = 1;
        table.At(1) = SetAlarm(QStringLiteral("only"), QStringLiteral("08:00"));
        DeleteAlarm(table, 1);
        QCOMPARE(table.AlarmCount, 0);
        QCOMPARE(table.At(1).Message, QString());
        QCOMPARE(table.At(1).AlarmSet, false);
    }

    void numberPastTheCountDeletesNothing()
    {
        AlarmTable table;
        table.AlarmCount = 2;
        table.At(1) = SetAlarm(QStringLiteral("One"), QStringLiteral("08:00"));
        table.At(2) = SetAlarm(QStringLiteral("Two"), QStringLiteral("09:00"));
        DeleteAlarm(table, 3);
        DeleteAlarm(table, 0);
        QCOMPARE(table.AlarmCount, 2);
        QCOMPARE(table.At(2).Message, QStringLiteral("Two"));
    }

    void newAlarmStartsCleanEvenInAUsedSlot()
    {
        AlarmTable table;
        table.At(1).Ringing = true;
        table.At(1).Safety = 1;
        table.At(1).AlarmSet = true;
        table.At(1).AudioPath = QStringLiteral("/x.wav");
        QCOMPARE(NewAlarm(table), 1);
        QCOMPARE(table.At(1).Ringing, false);
        QCOMPARE(table.At(1).Safety, qint16(0));
        QCOMPARE(table.At(1).AlarmSet, false);
        QCOMPARE(table.At(1).AudioPath, QString());
    }

    void thirtyFirstAlarmIsRefused()
    {
        AlarmTable table;
        for (int n = 1; n <= 30; ++n)
            QCOMPARE(NewAlarm(table), n);
        QVERIFY(!NewAlarm(table));
        QCOMPARE(table.AlarmCount, 30);
    }

    void listRowsCarryTheirTexts()
    {
        AlarmRecord a = SetAlarm(QStringLiteral("Crew 7"), QStringLiteral("10:15"));
        QCOMPARE(RowText(a), QStringLiteral("   Crew 7"));
        QCOMPARE(RowStatus(a), QStringLiteral("Set"));
        QCOMPARE(ListToolTip(a), QStringLiteral("   Crew 7 , alarm set to Expire at 10:15"));
        a.AlarmSet = false;
        QCOMPARE(RowStatus(a), QStringLiteral(" "));
        QCOMPARE(ListToolTip(a), QStringLiteral("   Crew 7 , alarm not set"));
        QCOMPARE(RowTag(3), QStringLiteral(" 3"));
        QCOMPARE(TagNumber(QStringLiteral(" 12")), 12);
    }

    void logTextsKeepTheirSpelling()
    {
        QCOMPARE(QString::fromUtf16(AlarmLogText::Reset), QStringLiteral("Alarm acknowleged, reset for "));
        QCOMPARE(QString::fromUtf16(AlarmLogText::Terminated),
                 QStringLiteral("Alarm acknowledged, terminated for  "));
        QCOMPARE(QString::fromUtf16(AlarmLogText::Cancelled), QStringLiteral("Alarm canceled for "));
        QCOMPARE(AlarmLogText::ExpiresAt(QStringLiteral("14:20")), QStringLiteral(", expires at 14:20"));
    }

    void alarmWindowsFillTwoColumnsThreeRowsThenStartAgain()
    {
        const int w = 100;
        const int h = 50;
        QCOMPARE(AlarmWindowPositionTwips(1, w, h), QPoint(0, 0));
        QCOMPARE(AlarmWindowPositionTwips(2, w, h), QPoint(100, 0));
        QCOMPARE(AlarmWindowPositionTwips(3, w, h), QPoint(0, 50));
        QCOMPARE(AlarmWindowPositionTwips(4, w, h), QPoint(100, 50));
        QCOMPARE(AlarmWindowPositionTwips(5, w, h), QPoint(0, 100));
        QCOMPARE(AlarmWindowPositionTwips(6, w, h), QPoint(100, 100));
        QCOMPARE(AlarmWindowPositionTwips(7, w, h), QPoint(0, 0));
        // The second place of each later cycle is w * (k - 1) from the left.
        QCOMPARE(AlarmWindowPositionTwips(8, w, h), QPoint(700, 0));
        QCOMPARE(AlarmWindowPositionTwips(14, w, h), QPoint(1300, 0));
        QCOMPARE(AlarmWindowPositionTwips(30, w, h), QPoint(100, 100));
        QVERIFY(!AlarmWindowPositionTwips(31, w, h));
    }
};

QTEST_GUILESS_MAIN(TestAlarmLogic)
#include "tst_alarmlogic.moc"
