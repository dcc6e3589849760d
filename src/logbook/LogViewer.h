#pragma once

#include "logbook/LogView.h"

#include <QDate>
#include <QLocale>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <optional>

class Clock;
class LogBook;

// The logbook viewer's state: the day it shows (LogBookDate), the days known to have a
// log, and the redraw of the view: the day's document "LogBook.rtf" is written, and the
// viewer panel shows the same day (and whatever else it announces); the printout reads its
// lines here.
class LogViewer : public QObject
{
    Q_OBJECT
public:
    LogViewer(LogBook& log, const Clock& clock, QLocale locale, QObject* parent = nullptr);

    QDate LogBookDate() const { return m_logBookDate; }
    // Moves the viewer to another day (it is redrawn by RefreshLogView).
    void SetLogBookDate(QDate day);
    QDate Today() const;
    QString FormatDateLong(QDate date) const;

    // The days marked on the calendar as having a log.
    const QSet<QDate>& MarkedLogDays() const { return m_marked; }
    void MarkAvailableLogs();

    // Redraws the view for LogBookDate: writes "LogBook.rtf" and shows it.
    void RefreshLogView();

    // The printed lines of a day's entries, or the message of a file that could not be
    // opened.
    struct PrintLines
    {
        QStringList Lines;
        std::optional<QString> OpenError;
    };
    PrintLines ReadPrintLines(QDate day);

signals:
    void LogBookDateChanged(QDate day);
    void PlainTextShown(const QString& text);
    // The day written to "LogBook.rtf" (LogViewDocument), for the view to show.
    void DayShown(const LogViewDay& day);
    void PrintAvailable(bool enabled);
    void DaysMarked();
    void Failed(const QString& message);

private:
    void Mark(const QList<QDate>& days);
    // The line that says a day's file was too large to read whole.
    QString CutNote(qint64 size, QStringView what) const;

    LogBook& m_log;
    const Clock& m_clock;
    QLocale m_locale;
    QDate m_logBookDate;
    QSet<QDate> m_marked;
};
