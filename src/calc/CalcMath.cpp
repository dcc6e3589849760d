#include "calc/CalcMath.h"

#include <QRegularExpression>

#include <cstdlib>

namespace {

// A moment in seconds from midnight of the reference day. Every working moment starts at
// 0, which is what a skipped step leaves it at.
using Moment = qint64;

constexpr qint64 SecondsPerDay = 24 * 60 * 60;

// Division rounding towards minus infinity, so that moments before the reference day fall
// in the day and minute they belong to.
qint64 FloorDiv(qint64 a, qint64 b)
{
    const qint64 q = a / b;
    return (a % b != 0 && ((a < 0) != (b < 0))) ? q - 1 : q;
}

// The moment `minutesOfDay` past midnight of the reference day plus `dayOffset` days.
Moment At(int dayOffset, int minutesOfDay, int second)
{
    return qint64(dayOffset) * SecondsPerDay + qint64(minutesOfDay) * 60 + second;
}

// The hours and minutes of a moment, as a box shows them.
QString Show(Moment moment)
{
    const qint64 inDay = moment - FloorDiv(moment, SecondsPerDay) * SecondsPerDay;
    return FormatCalcTime(int(inDay / 3600), int(inDay % 3600 / 60));
}

} // namespace

std::optional<int> CalcBoxMinutes(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*(\\d{1,2}):(\\d{1,2})\\s*$"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const int hour = match.captured(1).toInt();
    const int minute = match.captured(2).toInt();
    if (hour > 23 || minute > 59)
        return std::nullopt;
    return hour * 60 + minute;
}

int CalcWholeHours(const QString& text)
{
    // A box holds five characters; the cap only keeps a long run of digits from overflowing.
    constexpr int Cap = 100'000'000;
    int value = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            break;
        value = value * 10 + (c.unicode() - u'0');
        if (value >= Cap)
            return Cap;
    }
    return value;
}

QString FormatCalcTime(int hour, int minute)
{
    const QString digits = QStringLiteral("%1").arg(hour * 100 + minute, 4, 10, QLatin1Char('0'));
    return digits.left(digits.size() - 2) + u':' + digits.right(2);
}

QString SolveForElapsed(const QString& etd, const QString& eta)
{
    Moment arrival = 0;
    Moment departure = 0;
    // 1. The arrival on the day after the reference day, one second past the minute.
    if (const auto minutes = CalcBoxMinutes(eta))
        arrival = At(1, *minutes, 1);
    // 2. An arrival whose whole hours are more than the departure's is on the same day.
    if (CalcWholeHours(etd) < CalcWholeHours(eta))
        if (const auto minutes = CalcBoxMinutes(eta))
            arrival = At(0, *minutes, 0);
    // 3. The departure on the reference day.
    if (const auto minutes = CalcBoxMinutes(etd))
        departure = At(0, *minutes, 0);
    // 4. The whole minutes between them, counted from one second past midnight.
    const qint64 minutes = FloorDiv(arrival, 60) - FloorDiv(departure, 60);
    return Show(1 + minutes * 60);
}

QString SolveForETD(const QString& eta, const QString& elapsed)
{
    Moment arrival = 0;
    if (const auto minutes = CalcBoxMinutes(eta))
        arrival = At(1, *minutes, 1);
    // An unreadable travel time keeps its starting value, midnight: no hours, no minutes.
    const int travel = CalcBoxMinutes(elapsed).value_or(0);
    return Show(arrival - qint64(travel) * 60);
}

QString SolveForETA(const QString& etd, const QString& elapsed)
{
    Moment departure = 0;
    if (const auto minutes = CalcBoxMinutes(etd))
        departure = At(1, *minutes, 1);
    const int travel = CalcBoxMinutes(elapsed).value_or(0);
    return Show(departure + qint64(travel) * 60);
}

QString SolveFor(CalcUnknown unknown, const QString& etd, const QString& elapsed, const QString& eta)
{
    switch (unknown) {
    case CalcUnknown::ETD:
        return SolveForETD(eta, elapsed);
    case CalcUnknown::ETA:
        return SolveForETA(etd, elapsed);
    case CalcUnknown::Elapsed:
        return SolveForElapsed(etd, eta);
    }
    return SolveForETA(etd, elapsed);
}

int SecondZoneShift(int chosenOffset, int homeOffset, int dayLight)
{
    if (chosenOffset == 0)
        return std::abs(homeOffset) - (dayLight == 1 ? 1 : 0);
    return chosenOffset - homeOffset;
}

std::optional<QString> SecondZoneTime(const QString& local, int shiftHours)
{
    const auto minutes = CalcBoxMinutes(local);
    if (!minutes)
        return std::nullopt;
    return Show(At(0, *minutes, 0) + qint64(shiftHours) * 3600);
}
