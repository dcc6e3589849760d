// ComputeSunTimes against reference times computed with PyEphem (tests/data/sun/ephem.tsv,
// written by tools/make_sun_fixture.py): local days at 20..81 degrees north, 80..181 degrees
// west, zone offset round(longitude / 15).
//
// Rules (the hour-step search explains every allowed disagreement):
// * Up to 65 degrees (latitude <= 65.0): the kind of each event (time, "None", up or down all
//   day) must agree and every time must be within MaxMinutesLow. The search locates a crossing
//   by a quadratic through three altitudes half an hour apart, so its only errors are the
//   low-precision position and the rounding of both sides to the minute. Measured: at most
//   1 minute in every 5-degree band from 20 to 64 degrees (10,418 days, no kind mismatch).
// * Above 65 degrees: times within MaxMinutesHigh. The sun crosses the horizon at a shallow
//   angle there, so the same small position error moves the crossing further. Measured: at
//   most 2 minutes (65..80 degrees); 3 allows one minute of rounding on top.
// * Above 65 degrees a kind mismatch (or a larger time difference) is accepted only near a
//   polar day/night edge: when the sun's altitude at an upper or lower culmination of that day
//   is within EdgeDegrees of the horizon. There the altitude curve only just touches the
//   horizon: it may dip below and come back within one hour step without a sign change at the
//   hour boundaries (the search then misses both crossings), a day may hold two crossings of
//   one kind (the search keeps the last, the reference the first), and the reference decides
//   "always up" from the declination at one instant.
//   Depth of a dip that fits between two hourly samples: near culmination the altitude is
//   h(t) ~ h0 + cos(lat) cos(dec) (15 deg/h * t)^2 / 2 (radians), which is 0.73 degree one
//   hour from culmination at 66 degrees and 23.4 degrees of declination; a dip centred between
//   two samples, each half an hour away, is at most 0.73 / 4 = 0.18 degree deep. EdgeDistance
//   takes the nearest of three culminations around the day, so the daily change of the
//   declination is covered; 0.25 degree adds a margin for the approximate local noon and the
//   low-precision position. Measured: 15 kind mismatches, all within 0.11 degree of the edge.

#include "sun/SolarEvents.h"

#include <QFile>
#include <QtTest>

#include <cmath>
#include <map>
#include <optional>

namespace {

constexpr int MaxMinutesLow = 2;
constexpr int MaxMinutesHigh = 3;
constexpr double EdgeDegrees = 0.25;
constexpr double Horizon = -0.833;

enum class Kind
{
    Time,
    None,
    UpAll,
    DownAll,
    Other
};

Kind KindOf(const QString& text)
{
    if (text == QStringLiteral("None"))
        return Kind::None;
    if (text == QStringLiteral("Up all day"))
        return Kind::UpAll;
    if (text == QStringLiteral("Down all day"))
        return Kind::DownAll;
    static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d$"));
    return time.match(text).hasMatch() ? Kind::Time : Kind::Other;
}

// Minutes since the start of the local day; "24:00" is 1440, the next day's 00:00.
int Minutes(const QString& text)
{
    return text.left(2).toInt() * 60 + text.mid(3, 2).toInt();
}

// The day's kind pair. The program writes "Up/Down all day" in the rise text with an empty set
// text; the fixture repeats it in both columns.
std::pair<Kind, Kind> Kinds(const QString& rise, const QString& set)
{
    const Kind r = KindOf(rise);
    if ((r == Kind::UpAll || r == Kind::DownAll) && (set.isEmpty() || KindOf(set) == r))
        return {r, r};
    return {r, KindOf(set)};
}

// Solar declination in degrees at a Julian day (low-precision almanac formula).
double Declination(double jd)
{
    const double n = jd - 2451545.0;
    const double rad = M_PI / 180;
    const double g = (357.528 + 0.9856003 * n) * rad;
    const double l = (280.460 + 0.9856474 * n) * rad + (1.915 * std::sin(g) + 0.020 * std::sin(2 * g)) * rad;
    const double eps = (23.439 - 0.0000004 * n) * rad;
    return std::asin(std::sin(eps) * std::sin(l)) / rad;
}

// Distance in degrees of the day's closest culmination (upper or lower) from the horizon.
double EdgeDistance(double latitude, QDate date, int zoneHours)
{
    const double jdNoon = double(date.toJulianDay()) + zoneHours / 24.0; // local noon, about
    double closest = 180;
    for (const double jd : {jdNoon - 0.5, jdNoon, jdNoon + 0.5}) {
        const double dec = Declination(jd);
        const double upper = 90 - latitude + dec;
        const double lower = latitude + dec - 90;
        closest = std::min({closest, std::abs(upper - Horizon), std::abs(lower - Horizon)});
    }
    return closest;
}

struct Band
{
    int cases = 0;
    int times = 0;
    int maxDiff = 0;
    int kindMismatches = 0;
    int excused = 0;
};

} // namespace

class TestSolarEphem : public QObject
{
    Q_OBJECT
private slots:
    void agreesWithEphem()
    {
        QFile file(QStringLiteral(TW_TEST_DATA "/sun/ephem.tsv"));
        QVERIFY2(file.open(QIODevice::ReadOnly | QIODevice::Text), "fixture missing");
        const QStringList lines = QString::fromLatin1(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        QVERIFY(lines.size() > 10000);
        QCOMPARE(lines.first().split(u'\t').size(), 8);

        std::map<int, Band> bands; // keyed by the band's lowest latitude, 5 degrees wide
        QStringList failures;
        int compared = 0;
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const QStringList f = lines[i].split(u'\t');
            QCOMPARE(f.size(), 8);
            const QDate date = QDate::fromString(f[0], Qt::ISODate);
            QVERIFY(date.isValid());
            const auto latDeg = qint16(f[1].toInt());
            const auto latMin = qint16(f[2].toInt());
            const auto longDeg = qint16(f[3].toInt());
            const auto longMin = qint16(f[4].toInt());
            const auto zone = qint16(f[5].toInt());
            const double latitude = latDeg + latMin / 60.0;
            const bool high = latitude > 65.0;
            const SunTimes got = ComputeSunTimes(latDeg, latMin, QStringLiteral("N"), longDeg, longMin,
                                                 QStringLiteral("W"), zone, date);
            ++compared;
            Band& band = bands[latDeg / 5 * 5];
            ++band.cases;
            const bool nearEdge = high && EdgeDistance(latitude, date, zone) <= EdgeDegrees;
            const auto want = Kinds(f[6], f[7]);
            const auto have = Kinds(got.Rise, got.Set);
            QString fault;
            if (have.first == Kind::Other || have.second == Kind::Other) {
                fault = QStringLiteral("unknown text");
            } else if (want != have) {
                ++band.kindMismatches;
                if (nearEdge)
                    ++band.excused;
                else
                    fault = QStringLiteral("kind differs");
            } else {
                const QString wantTimes[2] = {f[6], f[7]};
                const QString haveTimes[2] = {got.Rise, got.Set};
                for (int k = 0; k < 2; ++k) {
                    if (KindOf(wantTimes[k]) != Kind::Time)
                        continue;
                    const int diff = std::abs(Minutes(haveTimes[k]) - Minutes(wantTimes[k]));
                    ++band.times;
                    band.maxDiff = std::max(band.maxDiff, diff);
                    const int limit = high ? MaxMinutesHigh : MaxMinutesLow;
                    if (diff > limit) {
                        if (nearEdge)
                            ++band.excused;
                        else
                            fault = QStringLiteral("%1 minutes apart").arg(diff);
                    }
                }
            }
            if (!fault.isEmpty())
                failures << QStringLiteral("%1: %2 / %3 expected, %4 / %5 computed (%6)")
                                .arg(lines[i].left(lines[i].indexOf(f[6]) - 1), f[6], f[7], got.Rise, got.Set,
                                     fault);
        }
        qInfo("%d days compared", compared);
        for (const auto& [low, b] : bands)
            qInfo("latitude %d..%d: %d days, %d times, max difference %d min, %d kind mismatches, "
                  "%d excused near a polar edge",
                  low, low + 4, b.cases, b.times, b.maxDiff, b.kindMismatches, b.excused);
        for (qsizetype i = 0; i < std::min<qsizetype>(failures.size(), 20); ++i)
            qWarning("%s", qPrintable(failures[i]));
        QVERIFY2(failures.isEmpty(), qPrintable(QStringLiteral("%1 days disagree").arg(failures.size())));
    }
};

QTEST_GUILESS_MAIN(TestSolarEphem)
#include "tst_solarephem.moc"
