#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

class LogViewer;
class QPrinter;
class QWidget;

// The printed logbook: on every page a heading block (from 2700 by 300 twips, Arial 12
// bold: an empty line, "Tarrowind Logbook", "Entries for: " and the long date, "Page: " and
// the page number, 136 hyphens), then the entry lines in Arial 10, 56 to a page.
class LogPrinter
{
public:
    // Prints to a printer that is set up already; false when the printer could not start.
    static bool Print(QPrinter& printer, const QString& longDate, const QStringList& lines);
    // A blank document, sent first so that the printout starts on a fresh document.
    static bool PrintEmptyDocument(QPrinter& printer);
    static constexpr int LinesPerPage = 56;
};

// Prints a day's log on a printer chosen in "Select Printer"; "Cancel" prints nothing. A
// failure is reported as "Error printing logbook".
void PrintLog(QWidget* parent, LogViewer& viewer, QDate day);
