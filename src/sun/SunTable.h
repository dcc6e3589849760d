#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>

// One place and year for a yearly sunrise/sunset table. The latitude is north and the
// longitude west; zoneHours are hours west of Greenwich of the clock the table is given in,
// daylight time already applied (4 is Eastern Daylight Time).
struct SunTablePlace
{
    QString LocationName;
    qint16 LatDeg = 0;
    qint16 LatMin = 0;
    qint16 LongDeg = 0;
    qint16 LongMin = 0;
    qint16 ZoneHours = 0;
    QString Year; // four digits, such as "2004"
};

// The name shown after "All times are: ": empty for a zone without one (1, 2, 3 ...).
QString ZoneAbbreviation(int zoneHours);

// A number as a line printer lists it: a blank in place of a plus sign, then one blank.
QString PrintListNumber(int number);

// The year's table as a rich-text document, each line ended by CR LF. The left column holds
// 40 consecutive days and the right column the next 40; the next block starts where the
// right column stopped, and the table ends when the right column reaches the next year, so
// the last block is cut short and the days between its two columns do not appear. Empty
// when the year is not a four-digit year.
QByteArray SunTableDocument(const SunTablePlace& place);

// Writes the document to `path`, replacing any file there. Returns an empty text, or the
// file error.
QString WriteSunTable(const SunTablePlace& place, const QString& path);

// The printed table: five columns of 73 days each (1 January, then every 73 days after),
// each row the five cells "m/d<TAB>rise<TAB>set<TAB>| " followed by " |". A day the sun
// stays down prints no set field; in the second to fifth columns so does a day it stays up,
// while the first column keeps an empty set field for it.
struct SunTablePrintout
{
    QString Heading;       // "Sunrise/Sunset Table for: ..."
    QString ColumnHeading; // Date, Rise, Set five times, separated by tabs
    QStringList Rows;
};
SunTablePrintout SunTablePrintLines(const SunTablePlace& place);
