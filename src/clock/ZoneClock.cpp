#include "clock/ZoneClock.h"

#include "clock/Clock.h"

#include <algorithm>

QString ZoneTag(int index)
{
    return QString::fromUtf16(Zones.at(index).Tag);
}

QString ZoneLongName(int index)
{
    return QString::fromUtf16(Zones.at(index).LongName);
}

QString DialogZoneLabel(int index)
{
    if (index == 4)
        return QStringLiteral("Eastern Time (GMT -4 hrs)");
    return ZoneLongName(index);
}

QDateTime WallMinute(const QDateTime& local)
{
    return QDateTime(local.date(), QTime(local.time().hour(), local.time().minute()), Qt::UTC);
}

QDateTime InternetDateTime(const QDateTime& now, int inetMinOffset)
{
    return now.addSecs(qint64(inetMinOffset) * 60);
}

QString MinuteText(const QDateTime& at)
{
    return at.toString(QStringLiteral("HH:mm"));
}

QString InternetNow(const Clock& clock, int inetMinOffset)
{
    return MinuteText(InternetDateTime(clock.Now(), inetMinOffset));
}

std::optional<QString> ZoneFaceTime(QTime internetNow, int face, int localZone, std::span<const int> offsets,
                                    bool daylightTime)
{
    if (localZone < 0 || localZone >= int(offsets.size()) || face < 0 || face >= int(offsets.size()))
        return std::nullopt;
    int hours = offsets[face] - offsets[localZone];
    if (daylightTime && face == UtcZone)
        hours -= 1;
    // Only hours and minutes are shown, so the result wraps past midnight without a date.
    return internetNow.addSecs(hours * 3600).toString(QStringLiteral("HH:mm"));
}

QDateTime NextSync(const QDateTime& lastSync, int autoSyncHrs)
{
    // An interval below one hour (a hand-edited 0) would ask the server at every minute.
    return lastSync.addSecs(qint64(std::max(autoSyncHrs, 1)) * 3600);
}

QString NextSyncToolTip(const QDateTime& lastSync, int autoSyncHrs)
{
    return QStringLiteral("Next Sync: ") + NextSync(lastSync, autoSyncHrs).toString(QStringLiteral("HH:mm"));
}

ColourValue SyncButtonColour(bool synchronised)
{
    return synchronised ? SyncNormalColour : SyncWarningColour;
}

std::optional<ColourValue> UtcFaceRuleColour(bool utcRule, bool autoSync, ColourValue syncButtonBack,
                                             ColourValue face1Back, ColourValue utcFaceBack)
{
    if (!utcRule)
        return std::nullopt;
    std::optional<ColourValue> colour;
    if (syncButtonBack == SyncWarningColour)
        colour = face1Back;
    if (!autoSync)
        colour = utcFaceBack;
    return colour;
}
