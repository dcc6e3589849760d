#pragma once

#include <QDateTime>
#include <QString>

// One alarm. Text fields hold exactly the characters written; Safety and Repeat hold
// check box values and count as ticked only when they equal 1 (any other stored number is
// kept as it was, and counts as not ticked).
struct AlarmRecord
{
    QString Message;
    bool TypeTimer = false;                     // false: clock-time alarm; true: interval timer
    QString Expire = QStringLiteral("00:00");   // "hh:mm" time of day it goes off
    QString Interval = QStringLiteral("00:00"); // "hh:mm" a timer runs
    qint32 Safety = 0;                          // 1: a safety check alarm
    QString LastPosition;                       // "hh:mm location" of the last safety check
    qint32 Repeat = 0;                          // 1: "Retain"
    bool AlarmSet = false;
    QString AudioPath;    // empty: the default sound
    bool Ringing = false; // never stored
    // Never stored either: which alarm this is for its open windows while records move
    // between slots (0 until asked for), the expiry it last rang for (so that a clock set
    // back does not ring it twice for the same one), and how many minutes late it rang.
    quint64 Id = 0;
    QDateTime RangFor;
    int LateMinutes = 0;
    // For a timer set in this run: the moment it is due, by which it rings (cleared when it
    // rings). Its "hh:mm" alone could come an hour early or late after a change of daylight
    // time or of the zone, or be passed over while the machine sleeps across one.
    QDateTime DueAt;
    // While a check-in window is open the alarm is withdrawn (AlarmSet false); what it was
    // before is kept here, stored as the alarm, and given back if the check-in is called off.
    bool CheckingIn = false;
    bool PendingSet = false;
    QString PendingExpire;
};
