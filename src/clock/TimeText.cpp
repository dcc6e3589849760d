#include "clock/TimeText.h"

#include <QRegularExpression>
#include <QTime>

QString FormatHourMinute(int hour, int minute)
{
    return QStringLiteral("%1:%2").arg(hour, 2, 10, QLatin1Char('0')).arg(minute, 2, 10, QLatin1Char('0'));
}

namespace {

std::optional<QTime> ParseTime(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*(\\d{1,2}):(\\d{1,2})\\s*$"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QTime time(match.captured(1).toInt(), match.captured(2).toInt());
    if (!time.isValid())
        return std::nullopt;
    return time;
}

} // namespace

std::optional<int> IntervalMinutes(const QString& etime)
{
    const auto time = ParseTime(etime);
    if (!time)
        return std::nullopt;
    return time->hour() * 60 + time->minute();
}

QString TimeText(const QString& boxText)
{
    const auto time = ParseTime(boxText);
    return time ? FormatHourMinute(time->hour(), time->minute()) : boxText;
}
