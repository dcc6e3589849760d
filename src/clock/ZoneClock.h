#pragma once

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>
#include <span>

class Clock;

// One row of the fixed zone table. The index of a row is the value stored under "Zone".
struct ZoneInfo
{
    const char16_t* Tag;      // face tag and short name ("Pacific")
    const char16_t* LongName; // name in the properties dialog's list
    int Offset;               // standard-time hours from UTC
};

inline constexpr int ZoneCount = 6;
inline constexpr int UtcZone = 5;

inline constexpr std::array<ZoneInfo, ZoneCount> Zones{{
    {u"Alaska", u"Alaska Time (GMT -9 hrs)", -9},
    {u"Pacific", u"Pacific Time (GMT -8 hrs)", -8},
    {u"Mountain", u"Mountain Time (GMT -7 hrs)", -7},
    {u"Central", u"Central Time (GMT -6 hrs)", -6},
    {u"Eastern", u"Eastern Time (GMT -5 hrs)", -5},
    {u"UTC", u"UTC Time (GMT)", 0},
}};

QString ZoneTag(int index);
QString ZoneLongName(int index);

// The properties dialog labels its own list with "-4 hrs" for Eastern while keeping the
// offset -5; FillZoneLists replaces the labels with ZoneLongName whenever it runs.
QString DialogZoneLabel(int index);

// The corrected date and time: the PC clock plus the Internet minute offset.
QDateTime InternetDateTime(const QDateTime& now, int inetMinOffset);

// The minute a clock on the wall shows at `local`: its date, hour and minute as a plain
// reading without the zone's offset. Alarms are counted by this reading, so that the hour a
// daylight-time change repeats looks like a clock set back, and the hour it skips like a
// clock jumping forward.
QDateTime WallMinute(const QDateTime& local);

// The time of day of `at` as "hh:nn" (seconds dropped), as the log and the alarms show it.
QString MinuteText(const QDateTime& at);
// The corrected time of day as "hh:nn" (seconds dropped).
QString InternetNow(const Clock& clock, int inetMinOffset);

// The time of face `face` as "hh:nn", derived from the corrected local time of day by
// whole hours, with `offsets` the hour offsets of the six zone-list entries. The UTC face
// is one hour earlier when daylight time is in force. Returns nothing when `localZone` is
// not a row of the table: the faces are then left as they were.
std::optional<QString> ZoneFaceTime(QTime internetNow, int face, int localZone, std::span<const int> offsets,
                                    bool daylightTime);

// "Next Sync: hh:nn" for the sync button: the last sync plus the interval in hours (at
// least one).
QDateTime NextSync(const QDateTime& lastSync, int autoSyncHrs);
QString NextSyncToolTip(const QDateTime& lastSync, int autoSyncHrs);

// Colours are the program's colour values: red + 256 * green + 65536 * blue.
using ColourValue = qint32;
inline constexpr ColourValue White = 16777215;
inline constexpr ColourValue SyncWarningColour = 255;     // pure red: not synchronised
inline constexpr ColourValue SyncNormalColour = 12632256; // light grey: synchronised

// The sync button's back colour: normal when synchronised, pure red otherwise.
ColourValue SyncButtonColour(bool synchronised);

// The UTC rule of ShowSyncColours: the text colour the UTC face must take, or nothing
// when the rule leaves it alone. A not-synchronised button gives the UTC face the
// background of face 1; automatic sync off gives it its own background.
std::optional<ColourValue> UtcFaceRuleColour(bool utcRule, bool autoSync, ColourValue syncButtonBack,
                                             ColourValue face1Back, ColourValue utcFaceBack);
