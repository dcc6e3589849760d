#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

class QIODevice;

// The seven fields of one log line, read as the writer put them: a quoted field runs to
// the next quotation mark (the format has no escape, so a text with a quotation mark in it
// reads back wrongly), an unquoted field to the next comma. Nothing when the line holds
// fewer than seven fields.
using LogFields = std::array<QString, 7>;
std::optional<LogFields> SplitLogLine(QStringView line);

// The lines of the view document "LogBook.rtf", each ended by CR LF.
QByteArray LogViewHeader();                       // lines 1 to 4
QByteArray LogViewEntry(const LogFields& fields); // one line per shown entry
QByteArray LogViewFooter();                       // the last line
QByteArray LogViewNote(const QString& note);      // a line of the viewer's own, in the entries' font

// What the viewer shows of a day: its entries, and the note of a file too large to read
// whole (empty when it was read whole).
struct LogViewDay
{
    QList<LogFields> Entries;
    QString CutNote;
};

// The whole view document of a day: the header, one line per entry, the note, the footer.
QByteArray LogViewDocument(const LogViewDay& day);

struct LogDayRead
{
    QList<LogFields> Entries; // the entries of the day, in file order
    QList<QDate> SeenDates;   // every valid date met in field 1, for the calendar
    bool Cut = false;         // the file was longer than the bytes read
};

// Reads a day's log file: the entries whose first field is that day; lines whose first
// field is not a date are skipped. With `maxBytes` at or above 0, reading stops at the
// first line that begins past that many bytes (Cut then tells).
LogDayRead ReadLogDay(QIODevice& file, QDate day, const QLocale& locale, qint64 maxBytes = -1);

// A printed entry line: the time, "--", then the three texts joined.
QString LogPrintLine(const LogFields& fields);
