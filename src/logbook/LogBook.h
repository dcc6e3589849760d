#pragma once

#include <QDate>
#include <QFile>
#include <QList>
#include <QLocale>
#include <QString>

#include <optional>

class Clock;

// One entry of the day's log: seven fields.
struct LogEntry
{
    QDate LogDate;
    QString LogTime; // "hh:mm" of the corrected clock
    QString LogCode; // "ST", "EX", "SA", "CA", "EA", "NT"
    qint16 LogSafety = 0;
    QString LogText1;
    QString LogText2;
    QString LogText3;
};

// The two logging switches of the logbook panel, read at every entry.
struct LogSwitches
{
    bool LogOn = false;      // "Enable Logging"
    bool SafetyOnly = false; // "Safety  Events Only"
};

// The entry date in the locale's short date order, always with a four-digit year
// (a two-digit year would read back as the wrong century).
QString LogDateFormat(const QLocale& locale);
QString FormatLogDate(QDate date, const QLocale& locale);
std::optional<QDate> ParseLogDate(const QString& text, const QLocale& locale);

// A date written as three numbers ("02/04/2004"), read in the order in which the locale's
// short date format names day, month and year, as the system's date conversion does.
std::optional<QDate> ParseNumericDate(const QString& text, const QLocale& locale);

// "yyyymmdd.log"
QString LogFileName(QDate day);

// One line of the log file, ended by CR LF: text fields quoted as they are (the format has
// no escape), the safety flag bare, fields joined by single commas.
QByteArray FormatLogLine(const LogEntry& entry, const QLocale& locale);

// Whether the switches let this entry be written.
bool ShouldLog(qint16 safety, const LogSwitches& switches);

// The daily log files in one folder, and the open file of today.
class LogBook
{
public:
    LogBook(QString folder, const Clock& clock, QLocale locale);
    ~LogBook();

    QString Folder() const { return m_folder; }
    const QLocale& Locale() const { return m_locale; }
    QString PathOf(QDate day) const;

    // Opens today's file (by the PC's date) for appending, creating the folder and the
    // file as needed. Returns the message to show when that failed; the log stays closed.
    std::optional<QString> OpenTodaysLog();
    void CloseTodaysLog();
    bool IsTodaysLogOpen() const;
    QDate OpenDay() const { return m_openDay; }

    // Appends one entry to today's file when the switches allow it, and pushes it to the
    // disk at once. Returns the message to show when the entry could not be written.
    std::optional<QString> WriteLogEntry(const QString& code, qint16 safety, const QString& text1,
                                         const QString& text2, const QString& text3, const QString& time,
                                         const LogSwitches& switches);

    // Opens the given day's file for reading. `found` tells whether the file exists; a
    // missing file is not an error. Returns the message to show when an existing file
    // could not be opened ("Error opening logbook yyyymmdd.log").
    std::optional<QString> OpenDayLog(QDate day, bool& found);
    void CloseDayLog();
    // The file opened by OpenDayLog, for reading its entries.
    QFile& DayLog() { return m_dayRead; }

    // The days that have a log file; names other than eight digits and ".log" are skipped.
    // The date is rebuilt as month/day/year text and read with the locale's date order.
    QList<QDate> AvailableLogDates() const;

private:
    QString m_folder;
    const Clock& m_clock;
    QLocale m_locale;
    QFile m_today;
    QDate m_openDay;
    QFile m_dayRead;
};
