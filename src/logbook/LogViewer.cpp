#include "logbook/LogViewer.h"

#include "clock/Clock.h"
#include "common/ErrorText.h"
#include "logbook/LogBook.h"
#include "logbook/LogView.h"

#include <QFile>

LogViewer::LogViewer(LogBook& log, const Clock& clock, QLocale locale, QObject* parent)
    : QObject(parent), m_log(log), m_clock(clock), m_locale(std::move(locale))
{}

void LogViewer::SetLogBookDate(QDate day)
{
    m_logBookDate = day;
    emit LogBookDateChanged(day);
}

QDate LogViewer::Today() const
{
    return m_clock.Today();
}

QString LogViewer::FormatDateLong(QDate date) const
{
    return m_locale.toString(date, QLocale::LongFormat);
}

void LogViewer::Mark(const QList<QDate>& days)
{
    const qsizetype before = m_marked.size();
    for (const QDate& day : days)
        m_marked.insert(day);
    if (m_marked.size() != before)
        emit DaysMarked();
}

void LogViewer::MarkAvailableLogs()
{
    // Names that are not a day's file are skipped.
    Mark(m_log.AvailableLogDates());
}

void LogViewer::RefreshLogView()
{
    const QDate day = m_logBookDate;
    emit PlainTextShown(QString());
    // Today's log is not reopened when the day has no file.
    const LogDay read = m_log.ReadDay(day, false);
    if (!read.Found) {
        emit PlainTextShown(QStringLiteral("Log not available for this date"));
        emit PrintAvailable(false);
        return;
    }
    emit PrintAvailable(true);
    if (read.OpenError)
        emit Failed(*read.OpenError);

    LogViewDay shown{read.Entries, read.Cut ? CutNote(read.Size, u"shown") : QString()};
    const QByteArray text = LogViewDocument(shown);
    Mark(read.SeenDates);

    QFile document(QStringLiteral("LogBook.rtf"));
    const auto failed = [&] {
        emit Failed(ErrorText(QStringLiteral("Error refreshing logbook"), int(document.error()),
                              document.errorString()));
    };
    if (document.exists() && !document.remove())
        return failed();
    if (!document.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return failed();
    if (document.write(text) != text.size() || !document.flush())
        return failed();
    document.close();
    // The viewer builds the document just written from the same entries, without reading
    // it back.
    emit DayShown(shown);
}

LogViewer::PrintLines LogViewer::ReadPrintLines(QDate day)
{
    const LogDay read = m_log.ReadDay(day, true);
    PrintLines lines;
    lines.OpenError = read.OpenError;
    for (const LogFields& entry : read.Entries)
        lines.Lines << LogPrintLine(entry);
    if (read.Cut)
        lines.Lines << CutNote(read.Size, u"printed");
    return lines;
}

QString LogViewer::CutNote(qint64 size, QStringView what) const
{
    return QStringLiteral("(This day's log is ") + m_locale.toString(size) +
           QStringLiteral(" bytes long: only its first ") + m_locale.toString(MaxDayBytes) +
           QStringLiteral(" bytes are ") + what + QStringLiteral(".)");
}
