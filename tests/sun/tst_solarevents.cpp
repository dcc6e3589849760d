#include "sun/SolarEvents.h"

#include <QtTest>

namespace {
const QString N = QStringLiteral("N");
const QString W = QStringLiteral("W");

SunTimes At(int latDeg, int latMin, int longDeg, int longMin, int zone, QDate date)
{
    return ComputeSunTimes(qint16(latDeg), qint16(latMin), N, qint16(longDeg), qint16(longMin), W,
                           qint16(zone), date);
}
} // namespace

class TestSolarEvents : public QObject
{
    Q_OBJECT
private slots:
    void agreesWithPublishedTimesToTheMinute_data()
    {
        QTest::addColumn<int>("latDeg");
        QTest::addColumn<int>("latMin");
        QTest::addColumn<int>("longDeg");
        QTest::addColumn<int>("longMin");
        QTest::addColumn<int>("zone");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QString>("rise");
        QTest::addColumn<QString>("set");
        // Almanac times for these places (local standard or daylight time).
        QTest::newRow("Chicago, November, CST") << 41 << 52 << 87 << 38 << 6 << QDate(2026, 11, 16) << "06:41"
                                                << "16:29";
        QTest::newRow("New York, June, EDT") << 40 << 43 << 74 << 0 << 4 << QDate(2026, 6, 21) << "05:25"
                                             << "20:31";
        QTest::newRow("Anchorage, November, AKST")
            << 61 << 13 << 149 << 54 << 9 << QDate(2026, 11, 16) << "09:09"
            << "16:19";
    }

    void agreesWithPublishedTimesToTheMinute()
    {
        QFETCH(int, latDeg);
        QFETCH(int, latMin);
        QFETCH(int, longDeg);
        QFETCH(int, longMin);
        QFETCH(int, zone);
        QFETCH(QDate, date);
        QFETCH(QString, rise);
        QFETCH(QString, set);
        const SunTimes times = At(latDeg, latMin, longDeg, longMin, zone, date);
        QCOMPARE(times.Rise, rise);
        QCOMPARE(times.Set, set);
    }

    void arcticSummerIsUpAllDay()
    {
        const SunTimes times = At(80, 0, 100, 0, 7, QDate(2026, 6, 21));
        QCOMPARE(times.Rise, QStringLiteral("Up all day"));
        QCOMPARE(times.Set, QString());
    }

    void arcticWinterIsDownAllDay()
    {
        const SunTimes times = At(80, 0, 100, 0, 7, QDate(2026, 12, 21));
        QCOMPARE(times.Rise, QStringLiteral("Down all day"));
        QCOMPARE(times.Set, QString());
    }

    void aDayWithASetButNoRiseSaysNoneForTheRise()
    {
        const SunTimes times = At(63, 0, 136, 0, 11, QDate(2026, 6, 26));
        QCOMPARE(times.Rise, QStringLiteral("None"));
        QCOMPARE(times.Set, QStringLiteral("20:14"));
    }

    void aDayWithARiseButNoSetSaysNoneForTheSet()
    {
        const SunTimes times = At(60, 0, 101, 0, 4, QDate(2026, 6, 7));
        QCOMPARE(times.Rise, QStringLiteral("05:26"));
        QCOMPARE(times.Set, QStringLiteral("None"));
    }

    void anEventJustBeforeMidnightReads2400()
    {
        const SunTimes times = At(60, 0, 101, 0, 4, QDate(2026, 6, 6));
        QCOMPARE(times.Set, QStringLiteral("24:00"));
        // The next day the set falls past midnight and is not that day's.
        QCOMPARE(At(60, 0, 101, 0, 4, QDate(2026, 6, 7)).Set, QStringLiteral("None"));
    }

    void southAndEastTurnTheSigns()
    {
        // Sydney (33 52 S, 151 13 E), 21 December, AEDT (11 hours east: -11).
        const SunTimes sydney = ComputeSunTimes(33, 52, QStringLiteral("S"), 151, 13, QStringLiteral("E"),
                                                -11, QDate(2026, 12, 21));
        QCOMPARE(sydney.Rise, QStringLiteral("05:41"));
        QCOMPARE(sydney.Set, QStringLiteral("20:05"));
    }

    void zeroLatitudeIsNotCheckedWhateverTheLongitude()
    {
        QCOMPARE(ValidateCoordinates(QStringLiteral("00"), QStringLiteral("00"), QStringLiteral("999"),
                                     QStringLiteral("99")),
                 QString());
        QCOMPARE(ValidateCoordinates(QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("0"),
                                     QStringLiteral("0")),
                 QString());
    }

    void longitudeMinutesAreReportedWithTheLatitudeWording()
    {
        QCOMPARE(ValidateCoordinates(QStringLiteral("45"), QStringLiteral("30"), QStringLiteral("122"),
                                     QStringLiteral("75")),
                 QStringLiteral(" - Latitude minutes must be between 0 and 59\r"));
    }

    void latitudeLimitsAreTwentyAndEightyInclusive()
    {
        for (const char* valid : {"20", "80"})
            QCOMPARE(ValidateCoordinates(QString::fromLatin1(valid), QStringLiteral("59"),
                                         QStringLiteral("100"), QStringLiteral("00")),
                     QString());
        for (const char* invalid : {"19", "81"})
            QCOMPARE(ValidateCoordinates(QString::fromLatin1(invalid), QStringLiteral("00"),
                                         QStringLiteral("100"), QStringLiteral("00")),
                     QStringLiteral(" - Latitude degrees must be between 20 and 80\r"));
    }

    void everyFaultHasItsLineInOrder()
    {
        QCOMPARE(ValidateCoordinates(QStringLiteral("10"), QStringLiteral("60"), QStringLiteral("79"),
                                     QStringLiteral("60")),
                 QStringLiteral(" - Latitude degrees must be between 20 and 80\r"
                                " - Latitude minutes must be between 0 and 59\r"
                                " - Longitude degrees must be between 80 and 180\r"
                                " - Latitude minutes must be between 0 and 59\r"));
        QCOMPARE(ValidateCoordinates(QStringLiteral("45"), QStringLiteral("00"), QStringLiteral("181"),
                                     QStringLiteral("00")),
                 QStringLiteral(" - Longitude degrees must be between 80 and 180\r"));
    }

    void textThatIsNotANumberCountsAsZero()
    {
        // Latitude minutes alone open the checks; "abc" degrees read as 0.
        QCOMPARE(ValidateCoordinates(QStringLiteral("abc"), QStringLiteral("10"), QStringLiteral("100"),
                                     QStringLiteral("00")),
                 QStringLiteral(" - Latitude degrees must be between 20 and 80\r"));
        QCOMPARE(ValidateCoordinates(QStringLiteral("abc"), QStringLiteral("xyz"), QStringLiteral("0"),
                                     QStringLiteral("0")),
                 QString());
    }
};

QTEST_GUILESS_MAIN(TestSolarEvents)
#include "tst_solarevents.moc"
