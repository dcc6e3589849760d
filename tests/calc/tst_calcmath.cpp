#include "alarms/AlarmLogic.h"
#include "calc/CalcMath.h"

#include <QtTest>

class TestCalcMath : public QObject
{
    Q_OBJECT
private slots:
    void boxReadsAsATimeOnlyWhenFullyTyped_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("minutes"); // -1: does not read as a time
        QTest::newRow("full") << QStringLiteral("07:30") << 450;
        QTest::newRow("midnight") << QStringLiteral("00:00") << 0;
        QTest::newRow("last minute") << QStringLiteral("23:59") << 1439;
        QTest::newRow("short digits") << QStringLiteral("7:5") << 425;
        QTest::newRow("half typed") << QStringLiteral("1_:3_") << -1;
        QTest::newRow("minute half typed") << QStringLiteral("10:3_") << -1;
        QTest::newRow("empty box") << QStringLiteral("__:__") << -1;
        QTest::newRow("empty text") << QString() << -1;
        QTest::newRow("hour 24") << QStringLiteral("24:00") << -1;
        QTest::newRow("minute 60") << QStringLiteral("12:60") << -1;
        QTest::newRow("no colon") << QStringLiteral("1230") << -1;
    }
    void boxReadsAsATimeOnlyWhenFullyTyped()
    {
        QFETCH(QString, text);
        QFETCH(int, minutes);
        const std::optional<int> read = IntervalMinutes(text);
        QCOMPARE(read.has_value(), minutes >= 0);
        if (read)
            QCOMPARE(*read, minutes);
    }

    void wholeHoursAreTheLeadingDigitsUpToTheColon_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("hours");
        QTest::newRow("full") << QStringLiteral("14:10") << 14;
        QTest::newRow("leading zero") << QStringLiteral("07:30") << 7;
        QTest::newRow("half typed") << QStringLiteral("1_:3_") << 1;
        QTest::newRow("empty box") << QStringLiteral("__:__") << 0;
        QTest::newRow("blank first place") << QStringLiteral("_5:00") << 0;
        QTest::newRow("empty text") << QString() << 0;
        QTest::newRow("long run of digits") << QStringLiteral("99999999999:00") << 100'000'000;
    }
    void wholeHoursAreTheLeadingDigitsUpToTheColon()
    {
        QFETCH(QString, text);
        QFETCH(int, hours);
        QCOMPARE(CalcWholeHours(text), hours);
    }

    void resultIsHourTimesHundredPlusMinuteFormattedWithAColon_data()
    {
        QTest::addColumn<int>("hour");
        QTest::addColumn<int>("minute");
        QTest::addColumn<QString>("text");
        QTest::newRow("2 h 35 min") << 2 << 35 << QStringLiteral("02:35");
        QTest::newRow("midnight") << 0 << 0 << QStringLiteral("00:00");
        QTest::newRow("minutes only") << 0 << 7 << QStringLiteral("00:07");
        QTest::newRow("last minute") << 23 << 59 << QStringLiteral("23:59");
    }
    void resultIsHourTimesHundredPlusMinuteFormattedWithAColon()
    {
        QFETCH(int, hour);
        QFETCH(int, minute);
        QFETCH(QString, text);
        QCOMPARE(FormatHourMinute(hour, minute), text);
    }

    void elapsedCountsAnArrivalInTheSameHourAsNextDay()
    {
        // 24 hours 40 minutes, wrapped to the day.
        QCOMPARE(SolveForElapsed(QStringLiteral("14:10"), QStringLiteral("14:50")), QStringLiteral("00:40"));
    }

    void elapsedCountsAnArrivalInAnEarlierHourAsNextDay()
    {
        QCOMPARE(SolveForElapsed(QStringLiteral("22:00"), QStringLiteral("01:30")), QStringLiteral("03:30"));
        QCOMPARE(SolveForElapsed(QStringLiteral("14:50"), QStringLiteral("14:10")), QStringLiteral("23:20"));
    }

    void elapsedTakesAnArrivalInALaterHourOnTheSameDay()
    {
        QCOMPARE(SolveForElapsed(QStringLiteral("08:00"), QStringLiteral("10:15")), QStringLiteral("02:15"));
        QCOMPARE(SolveForElapsed(QStringLiteral("00:00"), QStringLiteral("23:59")), QStringLiteral("23:59"));
    }

    void departureWrapsBackPastMidnight()
    {
        QCOMPARE(SolveForETD(QStringLiteral("00:15"), QStringLiteral("00:30")), QStringLiteral("23:45"));
        QCOMPARE(SolveForETD(QStringLiteral("10:00"), QStringLiteral("02:45")), QStringLiteral("07:15"));
    }

    void arrivalWrapsPastMidnight()
    {
        QCOMPARE(SolveForETA(QStringLiteral("23:30"), QStringLiteral("01:00")), QStringLiteral("00:30"));
        QCOMPARE(SolveForETA(QStringLiteral("08:05"), QStringLiteral("00:55")), QStringLiteral("09:00"));
        QCOMPARE(SolveForETA(QStringLiteral("12:00"), QStringLiteral("23:59")), QStringLiteral("11:59"));
    }

    void solveForWorksOutTheChosenUnknown()
    {
        const QString etd = QStringLiteral("22:00");
        const QString elapsed = QStringLiteral("02:00");
        const QString eta = QStringLiteral("01:30");
        QCOMPARE(SolveFor(CalcUnknown::ETA, etd, elapsed, eta), QStringLiteral("00:00"));
        QCOMPARE(SolveFor(CalcUnknown::ETD, etd, elapsed, eta), QStringLiteral("23:30"));
        QCOMPARE(SolveFor(CalcUnknown::Elapsed, etd, elapsed, eta), QStringLiteral("03:30"));
    }

    // A step that cannot read its box is skipped; a value it would have set stays at
    // midnight of the reference day, and the later steps run on.
    void halfTypedBoxesSkipTheirSteps_data()
    {
        QTest::addColumn<int>("unknown");
        QTest::addColumn<QString>("etd");
        QTest::addColumn<QString>("elapsed");
        QTest::addColumn<QString>("eta");
        QTest::addColumn<QString>("result");
        const int forElapsed = int(CalcUnknown::Elapsed);
        const int forEtd = int(CalcUnknown::ETD);
        const int forEta = int(CalcUnknown::ETA);
        // Arrival unreadable: the arrival stays at midnight, 08:00 before it is 16:00.
        QTest::newRow("elapsed, empty arrival") << forElapsed << QStringLiteral("08:00") << QString()
                                                << QStringLiteral("__:__") << QStringLiteral("16:00");
        // Departure unreadable: its whole hours (1) are fewer than the arrival's, so the arrival
        // is taken on the reference day; the departure stays at midnight.
        QTest::newRow("elapsed, half-typed departure") << forElapsed << QStringLiteral("1_:3_") << QString()
                                                       << QStringLiteral("05:00") << QStringLiteral("05:00");
        // The hours compare (8 < 10) but the arrival still cannot be read: both arrival steps
        // are skipped.
        QTest::newRow("elapsed, arrival minute half typed")
            << forElapsed << QStringLiteral("08:00") << QString() << QStringLiteral("10:3_")
            << QStringLiteral("16:00");
        QTest::newRow("elapsed, both empty") << forElapsed << QStringLiteral("__:__") << QString()
                                             << QStringLiteral("1_:3_") << QStringLiteral("00:00");
        // Departure unreadable: midnight plus the travel time.
        QTest::newRow("arrival, half-typed departure")
            << forEta << QStringLiteral("1_:3_") << QStringLiteral("01:00") << QString()
            << QStringLiteral("01:00");
        // Travel time unreadable: no hours and no minutes are added.
        QTest::newRow("arrival, empty travel time")
            << forEta << QStringLiteral("09:00") << QStringLiteral("__:__") << QString()
            << QStringLiteral("09:00");
        QTest::newRow("departure, empty arrival") << forEtd << QString() << QStringLiteral("00:30")
                                                  << QStringLiteral("__:__") << QStringLiteral("23:30");
        QTest::newRow("departure, half-typed travel time")
            << forEtd << QString() << QStringLiteral("0_:__") << QStringLiteral("06:00")
            << QStringLiteral("06:00");
    }
    void halfTypedBoxesSkipTheirSteps()
    {
        QFETCH(int, unknown);
        QFETCH(QString, etd);
        QFETCH(QString, elapsed);
        QFETCH(QString, eta);
        QFETCH(QString, result);
        QCOMPARE(SolveFor(CalcUnknown(unknown), etd, elapsed, eta), result);
    }

    void secondZoneShift_data()
    {
        QTest::addColumn<int>("chosen");
        QTest::addColumn<int>("home");
        QTest::addColumn<int>("dayLight");
        QTest::addColumn<int>("shift");
        QTest::newRow("UTC from Pacific") << 0 << -8 << 0 << 8;
        QTest::newRow("UTC from Pacific in daylight time") << 0 << -8 << 1 << 7;
        QTest::newRow("UTC with a daylight value other than 1") << 0 << -8 << 2 << 8;
        QTest::newRow("UTC from UTC") << 0 << 0 << 0 << 0;
        QTest::newRow("Eastern from Pacific") << -5 << -8 << 0 << 3;
        QTest::newRow("Eastern from Pacific, daylight ignored") << -5 << -8 << 1 << 3;
        QTest::newRow("Alaska from Eastern") << -9 << -5 << 0 << -4;
        QTest::newRow("home zone itself") << -6 << -6 << 1 << 0;
    }
    void secondZoneShift()
    {
        QFETCH(int, chosen);
        QFETCH(int, home);
        QFETCH(int, dayLight);
        QFETCH(int, shift);
        QCOMPARE(SecondZoneShift(chosen, home, dayLight), shift);
    }

    void secondZoneTimeWrapsAtMidnight()
    {
        QCOMPARE(SecondZoneTime(QStringLiteral("10:05"), 8), std::optional<QString>(QStringLiteral("18:05")));
        QCOMPARE(SecondZoneTime(QStringLiteral("20:30"), 8), std::optional<QString>(QStringLiteral("04:30")));
        QCOMPARE(SecondZoneTime(QStringLiteral("01:15"), -4),
                 std::optional<QString>(QStringLiteral("21:15")));
        QCOMPARE(SecondZoneTime(QStringLiteral("12:00"), 0), std::optional<QString>(QStringLiteral("12:00")));
    }

    void secondZoneTimeOfAnUnreadableBoxIsNothing()
    {
        QVERIFY(!SecondZoneTime(QStringLiteral("1_:3_"), 8).has_value());
        QVERIFY(!SecondZoneTime(QStringLiteral("__:__"), 0).has_value());
    }
};

QTEST_GUILESS_MAIN(TestCalcMath)
#include "tst_calcmath.moc"
