// The main window's logbook routines: the days marked on the calendar and the redraw of
// the viewer through the view document "LogBook.rtf".
#include "clock/Clock.h"
#include "logbook/LogPanel.h"
#include "logbook/LogPrinter.h"
#include "logbook/LogView.h"
#include "logbook/frmPrinterSetup.h"
#include "shell/ErrorText.h"
#include "shell/frmMain.h"
#include "widgets/MessageBox.h"
#include "widgets/MonthCalendar.h"

#include <QApplication>
#include <QFile>
#include <QPrinter>

namespace {

// A failure while the view is redrawn.
struct RedrawError
{
    int Number;
    QString Description;
};

} // namespace

QDate frmMain::Today() const
{
    return m_clock.Today();
}

void frmMain::MarkAvailableLogs()
{
    // Names that are not a day's file are skipped.
    for (const QDate& day : m_log->AvailableLogDates())
        m_picLog->Calendar()->MarkDate(day);
}

const QSet<QDate>& frmMain::MarkedLogDays() const
{
    return m_picLog->Calendar()->Marked();
}

void frmMain::RefreshLogView()
{
    const QDate day = m_logBookDate;
    const bool today = day == m_clock.Today();
    m_picLog->ShowPlainText(QString());
    try {
        if (today)
            m_log->CloseTodaysLog();
        bool found = false;
        const auto openError = m_log->OpenDayLog(day, found);
        if (!found) {
            // Today's log is not reopened on this path.
            m_picLog->ShowPlainText(QStringLiteral("Log not available for this date"));
            m_picLog->SetPrintEnabled(false);
            return;
        }
        m_picLog->SetPrintEnabled(true);
        if (openError)
            MessageBox::Notice(this, *openError);

        QFile document(QStringLiteral("LogBook.rtf"));
        if (document.exists() && !document.remove())
            throw RedrawError{int(document.error()), document.errorString()};
        if (!document.open(QIODevice::WriteOnly | QIODevice::Truncate))
            throw RedrawError{int(document.error()), document.errorString()};
        QByteArray text = LogViewHeader();
        const LogDayRead read = ReadLogDay(m_log->DayLog(), day, m_locale);
        for (const LogFields& entry : read.Entries)
            text += LogViewEntry(entry);
        for (const QDate& seen : read.SeenDates)
            m_picLog->Calendar()->MarkDate(seen);
        text += LogViewFooter();
        if (document.write(text) != text.size() || !document.flush())
            throw RedrawError{int(document.error()), document.errorString()};
        document.close();
        m_log->CloseDayLog();
        // The viewer shows the document just written, from the same bytes.
        m_picLog->ShowDocument(text);
        if (today)
            OpenTodaysLog();
    } catch (const RedrawError& error) {
        m_log->CloseDayLog();
        if (today)
            OpenTodaysLog();
        MessageBox::Notice(
            this, ErrorText(QStringLiteral("Error refreshing logbook"), error.Number, error.Description));
    }
}

void frmMain::PrintLog(QDate day)
{
    QString printerName;
    if (!frmPrinterSetup::Ask(this, printerName))
        return; // "Cancel" prints nothing
    const bool today = day == m_clock.Today();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        if (today)
            m_log->CloseTodaysLog();
        bool found = false;
        if (const auto openError = m_log->OpenDayLog(day, found))
            throw RedrawError{int(QFileDevice::OpenError), *openError};
        QStringList lines;
        if (found)
            for (const LogFields& entry : ReadLogDay(m_log->DayLog(), day, m_locale).Entries)
                lines << LogPrintLine(entry);
        m_log->CloseDayLog();
        if (today)
            OpenTodaysLog();

        QPrinter printer(QPrinter::HighResolution);
        if (!printerName.isEmpty())
            printer.setPrinterName(printerName);
        const int printerError = 482;
        if (!LogPrinter::PrintEmptyDocument(printer))
            throw RedrawError{printerError, QStringLiteral("The printer could not start printing")};
        QApplication::processEvents();
        if (!LogPrinter::Print(printer, FormatDateLong(day), lines))
            throw RedrawError{printerError, QStringLiteral("The printer could not start printing")};
    } catch (const RedrawError& error) {
        m_log->CloseDayLog();
        if (today && !m_log->IsTodaysLogOpen())
            OpenTodaysLog();
        QApplication::restoreOverrideCursor();
        MessageBox::Notice(
            this, ErrorText(QStringLiteral("Error printing logbook"), error.Number, error.Description));
        return;
    }
    QApplication::restoreOverrideCursor();
}
