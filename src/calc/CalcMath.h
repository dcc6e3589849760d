#pragma once

#include <QString>

#include <optional>

// The time calculator's arithmetic, on the texts of its "##:##" boxes.
//
// A box reads as a time as IntervalMinutes reads it ("hh:mm", hour 0-23, minute 0-59), and a
// result is written by FormatHourMinute. Times are handled as whole minutes around a fixed
// reference day; only hours and minutes are ever shown, so every result wraps at midnight. Each routine works
// step by step and skips a step that cannot be done (a half-typed box such as "1_:3_" or an empty "__:__"
// does not read as a time): the following steps run with what they have, and a working value whose step was
// skipped keeps its starting value, midnight of the reference day. A routine therefore always has an answer,
// however little of the boxes has been typed.

// Which of the three times the calculator works out from the two others.
enum class CalcUnknown
{
    ETD,
    ETA,
    Elapsed,
};

// The whole hours of a box, read up to the colon: its leading digits as a number, 0 when
// it starts with anything else ("1_:3_" gives 1, "__:__" and "_5:00" give 0).
int CalcWholeHours(const QString& text);

// The travel time from departure to arrival. The arrival is taken on the day after the
// departure, unless the arrival's whole hours are more than the departure's: an arrival in
// the same hour as the departure, or earlier, is next day, so the result is always under
// 24 hours ("14:10" to "14:50" gives "00:40", "22:00" to "01:30" gives "03:30").
QString SolveForElapsed(const QString& etd, const QString& eta);

// The departure: the arrival less the travel time ("00:15" less "00:30" gives "23:45").
QString SolveForETD(const QString& eta, const QString& elapsed);

// The arrival: the departure plus the travel time ("23:30" plus "01:00" gives "00:30").
QString SolveForETA(const QString& etd, const QString& elapsed);

// The text of the unknown box worked out from the two others.
QString SolveFor(CalcUnknown unknown, const QString& etd, const QString& elapsed, const QString& eta);

// The whole hours that turn home local time into the time of the chosen zone; offsets are
// hours from UTC, negative west of Greenwich. For the UTC entry (chosen offset 0) it is the
// home offset without its sign, one hour less when the daylight setting is 1: the zones of
// the table lie west of Greenwich, so this turns home time into UTC. For another zone it is
// the chosen offset less the home offset with no daylight correction, both zones being
// taken to change to daylight time together.
int SecondZoneShift(int chosenOffset, int homeOffset, int dayLight);

// A local box's time moved by whole hours, as "hh:mm" and wrapped at midnight. Nothing when
// the local box does not read as a time: its second-zone box then keeps what it showed.
std::optional<QString> SecondZoneTime(const QString& local, int shiftHours);
