#pragma once

#include <QDate>
#include <QString>

// Sunrise and sunset of one day at one place, as local clock times "hh:mm" (an event less
// than half a minute before midnight reads "24:00"), or "None" (no such event that day),
// "Down all day" / "Up all day" (with an empty set text).
struct SunTimes
{
    QString Rise;
    QString Set;
};

// The hour-by-hour horizon-crossing search with low-precision solar coordinates: the sun's
// position at the start and the end of the day, interpolated over 24 one-hour steps, and a
// crossing of the refracted horizon (zenith distance 90.833 degrees) located by a quadratic
// through three altitudes. A latitude hemisphere of "S" makes the latitude negative and a
// longitude hemisphere of "W" the longitude; zoneHours is added to local clock time to get
// universal time (5 for US Eastern Standard Time). A later crossing of a kind wins.
SunTimes ComputeSunTimes(qint16 latDeg, qint16 latMin, const QString& latHemisphere, qint16 longDeg,
                         qint16 longMin, const QString& longHemisphere, qint16 zoneHours, QDate date);

// Checks the four texts of the coordinate boxes: an empty text when they are valid, else one
// line per fault, each ended by a carriage return. Nothing is checked while the latitude is
// 0 degrees 0 minutes.
QString ValidateCoordinates(const QString& latDeg, const QString& latMin, const QString& longDeg,
                            const QString& longMin);
