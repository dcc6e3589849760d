#include "calc/CalcMath.h"

#include "clock/TimeText.h"

namespace {

constexpr int MinutesPerDay = 24 * 60;

// Working times are whole minutes from midnight of the reference day. Every working time
// starts at 0, which is what a skipped step leaves it at.
QString Show(qint64 minutes)
{
    const int inDay = int(((minutes % MinutesPerDay) + MinutesPerDay) % MinutesPerDay);
    return FormatHourMinute(inDay / 60, inDay % 60);
}

} // namespace

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

QString SolveForElapsed(const QString& etd, const QString& eta)
{
    qint64 arrival = 0;
    qint64 departure = 0;
    // 1. The arrival on the day after the reference day.
    if (const auto minutes = IntervalMinutes(eta))
        arrival = MinutesPerDay + *minutes;
    // 2. An arrival whose whole hours are more than the departure's is on the same day.
    if (CalcWholeHours(etd) < CalcWholeHours(eta))
        if (const auto minutes = IntervalMinutes(eta))
            arrival = *minutes;
    // 3. The departure on the reference day.
    if (const auto minutes = IntervalMinutes(etd))
        departure = *minutes;
    // 4. The minutes between them, as a time of day.
    return Show(arrival - departure);
}

QString SolveForETD(const QString& eta, const QString& elapsed)
{
    qint64 arrival = 0;
    if (const auto minutes = IntervalMinutes(eta))
        arrival = MinutesPerDay + *minutes;
    // An unreadable travel time keeps its starting value, midnight: no hours, no minutes.
    return Show(arrival - IntervalMinutes(elapsed).value_or(0));
}

QString SolveForETA(const QString& etd, const QString& elapsed)
{
    qint64 departure = 0;
    if (const auto minutes = IntervalMinutes(etd))
        departure = MinutesPerDay + *minutes;
    return Show(departure + IntervalMinutes(elapsed).value_or(0));
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
    const auto minutes = IntervalMinutes(local);
    if (!minutes)
        return std::nullopt;
    return Show(*minutes + qint64(shiftHours) * 60);
}
