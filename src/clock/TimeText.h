#pragma once

#include <QString>

#include <optional>

// Times of day and intervals as the program shows and types them: "hh:mm", 24-hour.

// "hh:mm" from hours and minutes: the number hour * 100 + minute in the form "00:00".
QString FormatHourMinute(int hour, int minute);

// The minutes of an interval typed as "hh:mm" (hour 0-23, minute 0-59); nothing when the
// text is not such a time (a half-typed box, say).
std::optional<int> IntervalMinutes(const QString& etime);

// A time box's text as hours and minutes: "7:5" or "07:05" gives "07:05"; a text that is
// not a time is kept as it stands.
QString TimeText(const QString& boxText);
