#include "sun/SunTable.h"

#include "sun/SolarEvents.h"

#include <QFile>

#include <array>
#include <cstdlib>

namespace {

const QString DownAllDay = QStringLiteral("Down all day");
const QString UpAllDay = QStringLiteral("Up all day");

// 1 January of the year in `text`, or an invalid date when it is not a four-digit year.
QDate FirstOfYear(const QString& text)
{
    bool ok = false;
    const int year = text.toInt(&ok);
    if (!ok || text.size() != 4 || year < 1000)
        return {};
    return QDate(year, 1, 1);
}

SunTimes TimesOn(const SunTablePlace& place, QDate date)
{
    return ComputeSunTimes(place.LatDeg, place.LatMin, QStringLiteral("N"), place.LongDeg, place.LongMin,
                           QStringLiteral("W"), place.ZoneHours, date);
}

QString MonthDay(QDate date)
{
    return date.toString(QStringLiteral("M/d"));
}

// The document is ANSI text: Latin-1 characters are written as they are, others as Unicode
// escapes, and so are the control characters 0x80-0x9F, which an ANSI reader would take for
// the typographic characters of its code page. The three characters that mark up rich text are escaped, so
// that a location name cannot break the document.
QByteArray RtfText(const QString& text)
{
    QByteArray out;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u == u'\\' || u == u'{' || u == u'}') {
            out += '\\';
            out += char(u);
        } else if (u < 0x80 || (u >= 0xA0 && u < 0x100)) {
            out += char(u);
        } else {
            out += "\\u" + QByteArray::number(qint16(u)) + '?';
        }
    }
    return out;
}

} // namespace

QString ZoneAbbreviation(int zoneHours)
{
    switch (zoneHours) {
    case 0:
        return QStringLiteral("GMT");
    case 4:
        return QStringLiteral("EDT");
    case 5:
        return QStringLiteral("EST/CDT");
    case 6:
        return QStringLiteral("CST/MDT");
    case 7:
        return QStringLiteral("MST/PDT");
    case 8:
        return QStringLiteral("PST/ADT");
    case 9:
        return QStringLiteral("AST/YST");
    case 10:
        return QStringLiteral("HST");
    case 11:
        return QStringLiteral("BST");
    default:
        return {};
    }
}

QString PrintListNumber(int number)
{
    return (number < 0 ? QStringLiteral("-") : QStringLiteral(" ")) + QString::number(std::abs(number)) +
           QStringLiteral(" ");
}

QByteArray SunTableDocument(const SunTablePlace& place)
{
    const QDate first = FirstOfYear(place.Year);
    if (!first.isValid())
        return {};
    const QDate nextYear = first.addYears(1);

    QByteArray doc;
    doc.reserve(16 * 1024);
    const auto line = [&doc](const QByteArray& text) {
        doc += text;
        doc += "\r\n";
    };
    line(
        R"({\rtf1\ansi\deff0\deftab5000{\fonttbl{\f0\fswiss MS Sans Serif;}{\f1\froman\fcharset2 Symbol;}{\f2\fswiss System;}})");
    line(R"({\colortbl\red0\green0\blue0;})");
    line(R"(\deftab5000)");
    line(R"(\deflang1033\pard\plain\f2\fs20 Sunrise/Sunset Table for: )" + RtfText(place.LocationName));
    line(R"(\par Lat = )" + PrintListNumber(place.LatDeg).toLatin1() + ':' +
         PrintListNumber(place.LatMin).toLatin1() + "N   Long = " +
         PrintListNumber(place.LongDeg).toLatin1() + ':' + PrintListNumber(place.LongMin).toLatin1() + 'W');
    line(R"(\par Year = )" + place.Year.toLatin1() +
         "   All times are: " + ZoneAbbreviation(place.ZoneHours).toLatin1());
    line(R"(\par )");
    line(R"(\par \ul Date     Rise     Set     Date     Rise      Set    \ul0\f1)");

    QDate left = first;
    QDate right = first.addDays(40);
    int row = 1;
    for (;;) {
        if (right == nextYear)
            break;
        if (row == 41) {
            left = right;
            right = left.addDays(40);
            row = 1;
        }
        const SunTimes l = TimesOn(place, left);
        const SunTimes r = TimesOn(place, right);
        const QByteArray rightPart = R"(\f2\tab )" + MonthDay(right).toLatin1() + R"(\f0\tab )" +
                                     r.Rise.toLatin1() + R"(\tab )" + r.Set.toLatin1();
        if (l.Rise == DownAllDay)
            line(R"(\par\f2\fs8 )" + MonthDay(left).toLatin1() + R"(\f0\tab )" + l.Rise.toLatin1() +
                 rightPart);
        else
            line(R"(\par\pard\plain\f2\fs10 )" + MonthDay(left).toLatin1() + R"(\f0\tab )" +
                 l.Rise.toLatin1() + R"(\tab )" + l.Set.toLatin1() + rightPart);
        left = left.addDays(1);
        right = right.addDays(1);
        ++row;
    }
    line(R"(\par })");
    return doc;
}

QString WriteSunTable(const SunTablePlace& place, const QString& path)
{
    const QByteArray doc = SunTableDocument(place);
    if (doc.isEmpty())
        return QStringLiteral("The year \"") + place.Year + QStringLiteral("\" is not a four-digit year");
    if (QFile::exists(path) && !QFile::remove(path))
        return QStringLiteral("Cannot replace ") + path;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    if (file.write(doc) != doc.size() || !file.flush())
        return file.errorString();
    file.close();
    if (file.error() != QFileDevice::NoError)
        return file.errorString();
    return {};
}

SunTablePrintout SunTablePrintLines(const SunTablePlace& place)
{
    SunTablePrintout out;
    const QDate first = FirstOfYear(place.Year);
    if (!first.isValid())
        return out;
    const QDate nextYear = first.addYears(1);

    out.Heading = QStringLiteral("Sunrise/Sunset Table for: ") + place.LocationName +
                  QStringLiteral("  Lat = ") + QString::number(place.LatDeg) + u':' +
                  QString::number(place.LatMin) + QStringLiteral("N   Long = ") +
                  QString::number(place.LongDeg) + u':' + QString::number(place.LongMin) +
                  QStringLiteral("W   Year = ") + place.Year + QStringLiteral("   All times are: ") +
                  ZoneAbbreviation(place.ZoneHours);
    QStringList heading;
    for (int column = 0; column < 5; ++column)
        heading << (column == 0 ? QStringLiteral("Date") : QStringLiteral(" Date")) << QStringLiteral("Rise")
                << QStringLiteral("Set");
    out.ColumnHeading = heading.join(u'\t');

    std::array<QDate, 5> dates{};
    for (int column = 0; column < 5; ++column)
        dates.at(std::size_t(column)) = first.addDays(73 * column);
    for (int row = 0; row < 73 && dates[1] != nextYear; ++row) {
        QString line;
        for (std::size_t column = 0; column < dates.size(); ++column) {
            const SunTimes times = TimesOn(place, dates.at(column));
            // Only the first column prints an empty set field for a day the sun stays up.
            const bool noSet = times.Rise == DownAllDay || (column > 0 && times.Rise == UpAllDay);
            line += MonthDay(dates.at(column)) + u'\t' + times.Rise + u'\t';
            if (!noSet)
                line += times.Set + u'\t';
            line += QStringLiteral("| ");
            dates.at(column) = dates.at(column).addDays(1);
        }
        out.Rows << line + QStringLiteral(" |");
    }
    return out;
}
