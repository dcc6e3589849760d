#pragma once

#include <QDate>
#include <QFile>
#include <QList>
#include <QLocale>
#include <QObject>
#include <QString>

#include <array>
#include <functional>
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

// The two logging switches, held by the writer and read at every entry.
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

// A day's log read for the viewer or the printer.
struct LogDay
{
    bool Found = false;                    // the day has a log file
    std::optional<QString> OpenError;      // the file exists but could not be opened
    QList<std::array<QString, 7>> Entries; // the entries of the day, in file order
    QList<QDate> SeenDates;                // every valid date met in the file's first field
    qint64 Size = 0;                       // the file's size in bytes
    bool Cut = false;                      // only the first MaxDayBytes of the file were read
};

// How much of a day's file is read for the viewer or a printout: about ten thousand
// entries, a busy day's worth. A larger file (hostile or broken) is shown in part rather
// than holding the window and the clock while it is read.
inline constexpr qint64 MaxDayBytes = 1 << 20;

// The daily log files in one folder, the open file of today, and the one writer of
// entries with its two switches. Every entry goes into the file of the date it carries: an
// entry stamped with another day than the open file's (midnight passed before the day was
// turned) opens that day's file. Every failure is announced through Failed() (and, from
// the lower-level calls, also returned) so that the program reports it in one place.
class LogBook : public QObject
{
    Q_OBJECT
public:
    // The moment stamped on an entry, from one reading of the clock: the PC's date and the
    // corrected time of day ("hh:mm"). Read once, so that the two never straddle a midnight.
    struct Stamp
    {
        QDate Day;
        QString Time;
    };
    using TimeSource = std::function<Stamp()>;

    LogBook(QString folder, const Clock& clock, QLocale locale, QObject* parent = nullptr);
    ~LogBook() override;

    QString PathOf(QDate day) const;

    void SetTimeSource(TimeSource now) { m_now = std::move(now); }
    const LogSwitches& Switches() const { return m_switches; }
    // Changes the switches; SwitchesChanged() tells when they did change.
    void SetSwitches(const LogSwitches& switches);

    // Opens today's file (by the PC's date) for appending, creating the folder and the
    // file as needed. Returns the message to show when that failed; the log stays closed.
    std::optional<QString> OpenTodaysLog();
    void CloseTodaysLog();
    bool IsTodaysLogOpen() const;
    QDate OpenDay() const { return m_openDay; }

    // Writes one entry stamped with the time source's time, under the book's switches.
    void WriteLogEntry(const QString& code, qint16 safety, const QString& text1, const QString& text2,
                       const QString& text3);
    // Appends one entry to today's file when the switches allow it, and pushes it to the
    // disk at once. Returns the message to show when the entry could not be written.
    std::optional<QString> WriteLogEntry(const QString& code, qint16 safety, const QString& text1,
                                         const QString& text2, const QString& text3, const QString& time,
                                         const LogSwitches& switches);
    // Writes one entry stamped with a moment read before: the PC's date `day` and the
    // time `time` as the program shows it, under the book's switches. Used when that moment
    // also went into what the entry says (an expiry counted from it), so the stamp and the
    // text cannot name two different minutes.
    void WriteLogEntryAt(QDate day, const QString& time, const QString& code, qint16 safety,
                         const QString& text1, const QString& text2, const QString& text3);

    // Opens the given day's file for reading. `found` tells whether the file exists; a
    // missing file is not an error. Returns the message to show when an existing file
    // could not be opened ("Error opening logbook yyyymmdd.log").
    std::optional<QString> OpenDayLog(QDate day, bool& found);
    void CloseDayLog();
    // The file opened by OpenDayLog, for reading its entries.
    QFile& DayLog() { return m_dayRead; }

    // Reads a whole day's log. When the day is today, today's file is closed around the
    // read and opened again after it; when the day has no file it is opened again only if
    // `reopenWhenMissing` says so. An open error is returned, not announced.
    LogDay ReadDay(QDate day, bool reopenWhenMissing);

    // The days that have a log file; names other than eight digits and ".log" are skipped.
    // The date is rebuilt as month/day/year text and read with the locale's date order.
    QList<QDate> AvailableLogDates() const;

signals:
    void SwitchesChanged();
    void Failed(const QString& message);

private:
    std::optional<QString> Report(std::optional<QString> error);
    std::optional<QString> Write(const LogEntry& entry, const LogSwitches& switches);
    // Opens the file of `day` for appending in place of the one open.
    std::optional<QString> OpenForWriting(QDate day);
    // Whether the file at `path` is empty or ends with a whole line.
    static bool EndsWithNewLine(const QString& path);

    QString m_folder;
    const Clock& m_clock;
    QLocale m_locale;
    TimeSource m_now;
    LogSwitches m_switches;
    bool m_failing = false;
    bool m_startOnNewLine = false;
    QFile m_today;
    QDate m_openDay;
    QFile m_dayRead;
};
