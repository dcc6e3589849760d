#pragma once

#include "alarms/AlarmTable.h"
#include "clock/TimeText.h"

#include <QDateTime>
#include <QList>
#include <QPoint>
#include <QString>

#include <optional>

// The expiry of a timer set now: the corrected time plus the interval, as "hh:mm".
// Nothing when the interval cannot be read; the caller then leaves the expiry as it was.
std::optional<QString> CalcExpire(const QDateTime& internetNow, const QString& etime);

// Whether a set alarm goes off at this hour and minute. An expiry that is not two digits,
// a colon and two digits never matches.
bool ExpiresAt(const AlarmRecord& alarm, int hour, int minute);

// Adds an alarm after the last one, initialised as new ("<NEW>", clock time, "00:00").
// Returns its number, or nothing when the table is full (the count stays at 30).
std::optional<int> NewAlarm(AlarmTable& table);

// Removes alarm `ptr`: later alarms move down one slot, each with its Ringing flag, the last
// slot is cleared, the count goes down by one. A number past the count changes nothing.
void DeleteAlarm(AlarmTable& table, int ptr);

// The safety flag of an alarm's log entries: 1 for a safety alarm, 0 for any other.
qint16 SafetyFlag(const AlarmRecord& alarm);

// The list row of an alarm.
QString RowText(const AlarmRecord& alarm);   // three blanks and the message
QString RowStatus(const AlarmRecord& alarm); // "Set" or one blank
QString RowTag(int n);                       // " 3"
int TagNumber(const QString& tag);
QString ListToolTip(const AlarmRecord& alarm);

// The texts of the log entries about an alarm.
namespace AlarmLogText {
inline constexpr auto Set = u"Alarm set for ";
inline constexpr auto Cancelled = u"Alarm canceled for ";
inline constexpr auto Expired = u"Alarm Expired for ";
inline constexpr auto Reset = u"Alarm acknowleged, reset for ";
inline constexpr auto Terminated = u"Alarm acknowledged, terminated for  ";
QString ExpiresAt(const QString& expire); // ", expires at 14:20"
} // namespace AlarmLogText

// Where the k-th open alarm window (k from 1) goes, in twips, for windows of width w and
// height h: a grid of two columns and three rows, started again every six windows. The
// second place of each cycle is w * (k - 1) from the left, not w. Nothing above 30.
std::optional<QPoint> AlarmWindowPositionTwips(int k, int w, int h);
