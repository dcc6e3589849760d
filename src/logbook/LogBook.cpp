#include "logbook/LogBook.h"

#include "clock/Clock.h"
#include "common/ErrorText.h"
#include "logbook/LogView.h"
#include "platform/FileSync.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <cstring>

QString LogDateFormat(const QLocale& locale)
{
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains(QStringLiteral("yyyy")))
        format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    return format;
}

QString FormatLogDate(QDate date, const QLocale& locale)
{
    return locale.toString(date, LogDateFormat(locale));
}

std::optional<QDate> ParseLogDate(const QString& text, const QLocale& locale)
{
    const QDate date = locale.toDate(text.trimmed(), LogDateFormat(locale));
    if (!date.isValid())
        return std::nullopt;
    return date;
}

std::optional<QDate> ParseNumericDate(const QString& text, const QLocale& locale)
{
    static const QRegularExpression numbers(QStringLiteral("^\\s*(\\d{1,4})\\D(\\d{1,4})\\D(\\d{1,4})\\s*$"));
    const auto match = numbers.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString format = locale.dateFormat(QLocale::ShortFormat);
    const qsizetype dayAt = format.indexOf(u'd');
    const qsizetype monthAt = format.indexOf(u'M');
    const qsizetype yearAt = format.indexOf(u'y');
    if (dayAt < 0 || monthAt < 0 || yearAt < 0)
        return std::nullopt;
    // Rank each part by where the format names it: 0 first, 1 second, 2 third.
    const auto rank = [&](qsizetype at) { return int(at > dayAt) + int(at > monthAt) + int(at > yearAt); };
    const int day = match.captured(1 + rank(dayAt)).toInt();
    const int month = match.captured(1 + rank(monthAt)).toInt();
    const int year = match.captured(1 + rank(yearAt)).toInt();
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;
    return date;
}

QString LogFileName(QDate day)
{
    return day.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".log");
}

bool ShouldLog(qint16 safety, const LogSwitches& switches)
{
    if (!switches.LogOn)
        return false;
    if (safety == 0 && switches.SafetyOnly)
        return false;
    return true;
}

QByteArray FormatLogLine(const LogEntry& e, const QLocale& locale)
{
    const auto quoted = [](const QString& text) -> QString { return u'"' + text + u'"'; };
    const QString line = quoted(FormatLogDate(e.LogDate, locale)) + u',' + quoted(e.LogTime) + u',' +
                         quoted(e.LogCode) + u',' + QString::number(e.LogSafety) + u',' + quoted(e.LogText1) +
                         u',' + quoted(e.LogText2) + u',' + quoted(e.LogText3) + QStringLiteral("\r\n");
    return line.toUtf8();
}

LogBook::LogBook(QString folder, const Clock& clock, QLocale locale, QObject* parent)
    : QObject(parent), m_folder(std::move(folder)), m_clock(clock), m_locale(std::move(locale))
{}

LogBook::~LogBook()
{
    CloseTodaysLog();
    CloseDayLog();
}

QString LogBook::PathOf(QDate day) const
{
    return QDir(m_folder).filePath(LogFileName(day));
}

std::optional<QString> LogBook::Report(std::optional<QString> error)
{
    // A failure is announced once; while the log keeps failing the entries are tried
    // again but not announced again, until one is written.
    if (error && !m_failing) {
        m_failing = true;
        emit Failed(*error);
    }
    return error;
}

bool LogBook::EndsWithNewLine(const QString& path)
{
    QFile reader(path);
    if (!reader.open(QIODevice::ReadOnly) || reader.size() == 0)
        return true;
    reader.seek(reader.size() - 1);
    char last = 0;
    return reader.getChar(&last) && last == '\n';
}

void LogBook::SetSwitches(const LogSwitches& switches)
{
    if (switches.LogOn == m_switches.LogOn && switches.SafetyOnly == m_switches.SafetyOnly)
        return;
    m_switches = switches;
    emit SwitchesChanged();
}

std::optional<QString> LogBook::OpenTodaysLog()
{
    return OpenForWriting(m_clock.Today());
}

std::optional<QString> LogBook::OpenForWriting(QDate day)
{
    CloseTodaysLog();
    QDir().mkpath(m_folder);
    m_today.setFileName(PathOf(day));
    // Unbuffered: each entry goes to the file in one write, so that a failed one can be
    // taken back whole.
    if (!m_today.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return Report(ErrorText(QStringLiteral("Error opening today's logbook"), int(m_today.error()),
                                m_today.errorString()));
    m_openDay = day;
    m_startOnNewLine = !EndsWithNewLine(m_today.fileName());
    return std::nullopt;
}

void LogBook::CloseTodaysLog()
{
    if (m_today.isOpen())
        m_today.close();
    m_openDay = QDate();
}

bool LogBook::IsTodaysLogOpen() const
{
    return m_today.isOpen();
}

void LogBook::WriteLogEntry(const QString& code, qint16 safety, const QString& text1, const QString& text2,
                            const QString& text3)
{
    const Stamp stamp = m_now ? m_now() : Stamp{m_clock.Today(), QString()};
    WriteLogEntryAt(stamp.Day, stamp.Time, code, safety, text1, text2, text3);
}

std::optional<QString> LogBook::WriteLogEntry(const QString& code, qint16 safety, const QString& text1,
                                              const QString& text2, const QString& text3, const QString& time,
                                              const LogSwitches& switches)
{
    return Write(LogEntry{m_clock.Today(), time, code, safety, text1, text2, text3}, switches);
}

void LogBook::WriteLogEntryAt(QDate day, const QString& time, const QString& code, qint16 safety,
                              const QString& text1, const QString& text2, const QString& text3)
{
    Write(LogEntry{day, time, code, safety, text1, text2, text3}, m_switches);
}

std::optional<QString> LogBook::Write(const LogEntry& entry, const LogSwitches& switches)
{
    if (!ShouldLog(entry.LogSafety, switches))
        return std::nullopt;
    const QString fixedText = QStringLiteral("Error writing to the logbook");
    if (!m_today.isOpen())
        return Report(ErrorText(fixedText, int(QFileDevice::WriteError),
                                QStringLiteral("The logbook file is not open")));
    // Each entry goes into the file of its own date. Between midnight and the tick that
    // turns the day (or after the clock was set across a midnight) the open file may be
    // another day's: the entry's day is opened instead, and later entries follow it there.
    // That file is tried before the open one is let go: when it cannot be opened the
    // failure is told and the entry still goes into the open file rather than being lost.
    if (entry.LogDate.isValid() && entry.LogDate != m_openDay) {
        QFile trial(PathOf(entry.LogDate));
        if (trial.open(QIODevice::WriteOnly | QIODevice::Append)) {
            trial.close();
            if (const auto error = OpenForWriting(entry.LogDate))
                return error;
        } else {
            Report(ErrorText(QStringLiteral("Error opening logbook ") + LogFileName(entry.LogDate),
                             int(trial.error()), trial.errorString()));
        }
    }

    QByteArray line = FormatLogLine(entry, m_locale);
    // A file that ends in the middle of a line (cut short by a crash) gets the entry on a
    // line of its own.
    const qint64 before = m_today.size();
    if (m_startOnNewLine)
        line.prepend("\r\n");
    errno = 0;
    if (m_today.write(line) != line.size() || !SyncFileToDisk(m_today)) {
        // A write cut short leaves no error in the file object: the system's says why.
        const int cause = errno;
        const QString message =
            m_today.error() != QFileDevice::NoError || cause == 0
                ? ErrorText(fixedText, int(m_today.error()), m_today.errorString())
                : ErrorText(fixedText, cause, QString::fromLocal8Bit(std::strerror(cause)));
        // What part of the entry reached the file is taken back: the log never ends in a
        // torn line, and the next entry starts on a line of its own.
        m_today.unsetError();
        if (!m_today.resize(before))
            m_startOnNewLine = true; // could not be taken back: the next entry starts a line
        m_today.unsetError();
        return Report(message);
    }
    m_failing = false;
    m_startOnNewLine = false;
    return std::nullopt;
}

std::optional<QString> LogBook::OpenDayLog(QDate day, bool& found)
{
    QDir().mkpath(m_folder);
    const QString path = PathOf(day);
    found = QFileInfo::exists(path);
    if (!found)
        return std::nullopt;
    CloseDayLog();
    m_dayRead.setFileName(path);
    if (!m_dayRead.open(QIODevice::ReadOnly))
        return ErrorText(QStringLiteral("Error opening logbook ") + LogFileName(day), int(m_dayRead.error()),
                         m_dayRead.errorString());
    return std::nullopt;
}

void LogBook::CloseDayLog()
{
    if (m_dayRead.isOpen())
        m_dayRead.close();
}

LogDay LogBook::ReadDay(QDate day, bool reopenWhenMissing)
{
    const bool today = day == m_clock.Today();
    if (today)
        CloseTodaysLog();
    LogDay read;
    read.OpenError = OpenDayLog(day, read.Found);
    if (read.Found) {
        read.Size = m_dayRead.size();
        LogDayRead entries = ReadLogDay(m_dayRead, day, m_locale, MaxDayBytes);
        read.Entries = std::move(entries.Entries);
        read.SeenDates = std::move(entries.SeenDates);
        read.Cut = entries.Cut;
    }
    CloseDayLog();
    if (today && (read.Found || reopenWhenMissing))
        OpenTodaysLog();
    return read;
}

QList<QDate> LogBook::AvailableLogDates() const
{
    static const QRegularExpression name(QStringLiteral("^(\\d{4})(\\d{2})(\\d{2})\\.log$"),
                                         QRegularExpression::CaseInsensitiveOption);
    QList<QDate> days;
    const QStringList files = QDir(m_folder).entryList({QStringLiteral("*.log")}, QDir::Files);
    for (const QString& file : files) {
        const auto match = name.match(file);
        if (!match.hasMatch())
            continue;
        const QString text = match.captured(2) + u'/' + match.captured(3) + u'/' + match.captured(1);
        if (const auto day = ParseNumericDate(text, m_locale))
            days.append(*day);
    }
    return days;
}
