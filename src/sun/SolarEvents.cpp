#include "sun/SolarEvents.h"

#include <array>
#include <cmath>

namespace {

constexpr double P1 = 3.14159265; // this value of pi, as the method has it
constexpr double P2 = 2 * P1;
constexpr double DR = P1 / 180;
constexpr double K1 = 15 * DR * 1.0027379;

double Int(double x)
{
    return std::floor(x);
}

int Sgn(double x)
{
    return x > 0 ? 1 : (x < 0 ? -1 : 0);
}

// A number as the system's text conversion writes it: a sign place ("-" or a blank), then
// the digits; the time field keeps two places.
QString TimeField(int n)
{
    const QString text = (n < 0 ? QStringLiteral("-") : QStringLiteral(" ")) + QString::number(std::abs(n));
    return text.size() == 2 ? u'0' + text.right(1) : text.right(2);
}

class Search
{
public:
    Search(double latitude, double t0)
        : m_sb(std::sin(latitude * DR)), m_cb(std::cos(latitude * DR)), m_t0(t0)
    {}

    // One hour C0: A0/D0 at its start, A2/D2 at its end.
    void TestHour(int c0, double a0, double d0, double a2, double d2)
    {
        const double l0 = m_t0 + c0 * K1;
        const double l2 = l0 + K1;
        const double h0 = l0 - a0;
        const double h2 = l2 - a2;
        const double h1 = (h2 + h0) / 2;
        const double d1 = (d2 + d0) / 2;
        if (c0 == 0)
            m_v0 = Altitude(d0, h0);
        m_v2 = Altitude(d2, h2);
        if (Sgn(m_v0) == Sgn(m_v2))
            return;
        const double v1 = Altitude(d1, h1);
        const double aq = 2 * m_v2 - 4 * v1 + 2 * m_v0;
        const double bq = 4 * v1 - 3 * m_v0 - m_v2;
        double dq = bq * bq - 4 * aq * m_v0;
        if (dq < 0)
            return;
        dq = std::sqrt(dq);
        const bool rise = m_v0 < 0 && m_v2 > 0;
        const bool set = m_v0 > 0 && m_v2 < 0;
        if (rise)
            m_riseFound = true;
        if (set)
            m_setFound = true;
        double e = aq != 0 ? (-bq + dq) / (2 * aq) : -m_v0 / bq;
        if (aq != 0 && (e > 1 || e < 0))
            e = (-bq - dq) / (2 * aq);
        const double t3 = c0 + e + 1.0 / 120; // half a minute: truncation gives the nearest minute
        const int h3 = int(Int(t3));
        const int m3 = int(Int((t3 - h3) * 60));
        const QString time = TimeField(h3) + u':' + TimeField(m3);
        if (rise)
            m_times.Rise = time;
        if (set)
            m_times.Set = time;
    }

    void NextHour() { m_v0 = m_v2; }

    SunTimes Finish()
    {
        if (!m_riseFound && m_setFound)
            m_times.Rise = QStringLiteral("None");
        if (m_riseFound && !m_setFound)
            m_times.Set = QStringLiteral("None");
        if (!m_riseFound && !m_setFound) {
            if (m_v2 < 0) {
                m_times.Rise = QStringLiteral("Down all day");
                m_times.Set = QString();
            } else if (m_v2 > 0) {
                m_times.Rise = QStringLiteral("Up all day");
                m_times.Set = QString();
            }
        }
        return m_times;
    }

private:
    double Altitude(double declination, double hourAngle) const
    {
        static const double z = std::cos(90.833 * DR);
        return m_sb * std::sin(declination) + m_cb * std::cos(declination) * std::cos(hourAngle) - z;
    }

    double m_sb;
    double m_cb;
    double m_t0;
    double m_v0 = 0;
    double m_v2 = 0;
    bool m_riseFound = false;
    bool m_setFound = false;
    SunTimes m_times;
};

// Days from 2000 January 1.5 at 0 h of the date (calendar to day number, Gregorian switch).
double DayNumber(int y, int m, int d)
{
    const double g = y < 1583 ? 0 : 1;
    const double d1 = Int(d);
    double f = d - d1 - 0.5;
    double j = -Int(7 * (Int((m + 9) / 12.0) + y) / 4.0);
    double j3 = 0;
    if (g == 1) {
        const int s = Sgn(m - 9);
        const double a = std::abs(m - 9);
        j3 = Int(y + s * Int(a / 7));
        j3 = -Int((Int(j3 / 100) + 1) * 3 / 4);
    }
    j = j + Int(275.0 * m / 9) + d1 + g * j3;
    j = j + 1721027 + 2 * g + 367.0 * y;
    if (f < 0) {
        f = f + 1;
        j = j - 1;
    }
    return (j - 2451545) + f;
}

// The sun's right ascension and declination for day count t (tt: centuries from 1900.0).
void SunPosition(double t, double tt, float& rightAscension, float& declination)
{
    double lm = 0.779072 + 0.00273790931 * t;
    double g = 0.993126 + 0.0027377785 * t;
    lm = lm - Int(lm);
    g = g - Int(g);
    lm = lm * P2;
    g = g * P2;
    double v = 0.39785 * std::sin(lm);
    v = v - 0.01 * std::sin(lm - g);
    v = v + 0.00333 * std::sin(lm + g);
    v = v - 0.00021 * tt * std::sin(lm);
    double u = 1 - 0.03349 * std::cos(g);
    u = u - 0.00014 * std::cos(2 * lm);
    u = u + 0.00008 * std::cos(lm);
    double w = -0.0001 - 0.04129 * std::sin(2 * lm);
    w = w + 0.03211 * std::sin(g);
    w = w + 0.00104 * std::sin(2 * lm - g);
    w = w - 0.00035 * std::sin(2 * lm + g);
    w = w - 0.00008 * tt * std::sin(g);
    double s = w / std::sqrt(u - v * v);
    rightAscension = float(lm + std::atan(s / std::sqrt(1 - s * s)));
    s = v / std::sqrt(u);
    declination = float(std::atan(s / std::sqrt(1 - s * s)));
}

} // namespace

SunTimes ComputeSunTimes(qint16 latDeg, qint16 latMin, const QString& latHemisphere, qint16 longDeg,
                         qint16 longMin, const QString& longHemisphere, qint16 zoneHours, QDate date)
{
    // Latitude and longitude are single precision, as are the two positions below: that
    // decides the last minute of some results.
    float b = float(latDeg + latMin / 60.0);
    if (latHemisphere == u"S")
        b = -b;
    float l = float(longDeg + longMin / 60.0);
    if (longHemisphere == u"W")
        l = -l;
    const double l5 = double(l) / 360;
    const double z0 = zoneHours / 24.0;

    double t = DayNumber(date.year(), date.month(), date.day());
    const double tt = t / 36525 + 1;

    // Local sidereal time at 0 h zone time.
    double t0 = t / 36525;
    double s = 24110.5 + 8640184.813 * t0;
    s = s + 86636.6 * z0 + 86400 * l5;
    s = s / 86400;
    s = s - Int(s);
    t0 = s * 360 * DR;

    t = t + z0;
    std::array<float, 3> a{};
    std::array<float, 3> d{};
    for (int i = 1; i <= 2; ++i) {
        SunPosition(t, tt, a[std::size_t(i)], d[std::size_t(i)]);
        t = t + 1;
    }
    if (a[2] < a[1])
        a[2] = float(a[2] + P2);

    Search search(b, t0);
    double a0 = a[1];
    double d0 = d[1];
    const double da = double(a[2]) - double(a[1]);
    const double dd = double(d[2]) - double(d[1]);
    for (int c0 = 0; c0 <= 23; ++c0) {
        const double p = (c0 + 1) / 24.0;
        const double a2 = a[1] + p * da;
        const double d2 = d[1] + p * dd;
        search.TestHour(c0, a0, d0, a2, d2);
        a0 = a2;
        d0 = d2;
        search.NextHour();
    }
    return search.Finish();
}

namespace {

// The leading number of a text, as the system's text-to-number reading does: blanks, a sign,
// digits and a decimal part; anything else, or nothing, is 0.
double Val(const QString& text)
{
    const QString t = text.trimmed();
    qsizetype end = 0;
    if (end < t.size() && (t[end] == u'-' || t[end] == u'+'))
        ++end;
    while (end < t.size() && (t[end].isDigit() || t[end] == u'.'))
        ++end;
    bool ok = false;
    const double value = t.left(end).toDouble(&ok);
    return ok ? value : 0;
}

} // namespace

QString ValidateCoordinates(const QString& latDeg, const QString& latMin, const QString& longDeg,
                            const QString& longMin)
{
    const double latitudeDegrees = Val(latDeg);
    const double latitudeMinutes = Val(latMin);
    const double longitudeDegrees = Val(longDeg);
    const double longitudeMinutes = Val(longMin);
    QString message;
    // Only the latitude opens the checks: 0 degrees 0 minutes passes with any longitude.
    if (latitudeDegrees == 0 && latitudeMinutes == 0)
        return message;
    if (latitudeDegrees < 20 || latitudeDegrees > 80)
        message += QStringLiteral(" - Latitude degrees must be between 20 and 80\r");
    if (latitudeMinutes > 59)
        message += QStringLiteral(" - Latitude minutes must be between 0 and 59\r");
    if (longitudeDegrees < 80 || longitudeDegrees > 180)
        message += QStringLiteral(" - Longitude degrees must be between 80 and 180\r");
    // The longitude-minutes fault is reported with the latitude's wording.
    if (longitudeMinutes > 59)
        message += QStringLiteral(" - Latitude minutes must be between 0 and 59\r");
    return message;
}
