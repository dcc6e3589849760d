#include "logbook/LogPrinter.h"

#include "common/ErrorText.h"
#include "logbook/LogViewer.h"
#include "widgets/MessageBox.h"
#include "widgets/PrintSetup.h"
#include "widgets/frmPrinterSetup.h"

#include <QApplication>
#include <QFileDevice>
#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>

namespace {

// Writes lines at a print position kept in twips, as a printer's own "print" does.
class PrintHead
{
public:
    PrintHead(QPainter& painter, int resolution) : m_painter(painter), m_resolution(resolution) {}
    void SetFont(int points, bool bold)
    {
        QFont font(QStringLiteral("Arial"));
        font.setPointSize(points);
        font.setBold(bold);
        m_painter.setFont(font);
    }
    void MoveTo(int xTwips, int yTwips)
    {
        m_x = xTwips;
        m_y = yTwips;
    }
    // Prints one line at the current position; the next line starts at the left margin.
    void PrintLine(const QString& text)
    {
        const QFontMetrics metrics(m_painter.font(), m_painter.device());
        m_painter.drawText(QPointF(Device(m_x), Device(m_y) + metrics.ascent()), text);
        m_y += metrics.lineSpacing() * 1440 / m_resolution;
        m_x = 0;
    }

private:
    double Device(int twips) const { return double(twips) * m_resolution / 1440.0; }
    QPainter& m_painter;
    int m_resolution;
    int m_x = 0;
    int m_y = 0;
};

void Heading(PrintHead& head, const QString& longDate, int page)
{
    head.MoveTo(2700, 300);
    head.SetFont(12, true);
    head.PrintLine(QString());
    head.PrintLine(QStringLiteral("Tarrowind Logbook"));
    head.PrintLine(QStringLiteral("Entries for: ") + longDate);
    head.PrintLine(QStringLiteral("Page: ") + QString::number(page));
    head.PrintLine(QString(136, u'-'));
    head.SetFont(10, false);
}

} // namespace

bool LogPrinter::Print(QPrinter& printer, const QString& longDate, const QStringList& lines)
{
    PrintSetup::Prepare(printer);
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    PrintHead head(painter, printer.resolution());
    int page = 1;
    Heading(head, longDate, page);
    int count = 0;
    for (const QString& line : lines) {
        head.PrintLine(line);
        ++count;
        // After a full page of lines a new page starts with its heading.
        if (count >= LinesPerPage) {
            count = 0;
            printer.newPage();
            Heading(head, longDate, ++page);
        }
    }
    return painter.end();
}

bool LogPrinter::PrintEmptyDocument(QPrinter& printer)
{
    PrintSetup::Prepare(printer);
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    PrintHead head(painter, printer.resolution());
    head.SetFont(12, true);
    head.PrintLine(QString());
    return painter.end();
}

void PrintLog(QWidget* parent, LogViewer& viewer, QDate day)
{
    QString printerName;
    if (!frmPrinterSetup::Ask(parent, printerName))
        return; // "Cancel" prints nothing
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const auto failed = [&](int number, const QString& description) {
        QApplication::restoreOverrideCursor();
        MessageBox::Notice(parent, ErrorText(QStringLiteral("Error printing logbook"), number, description));
    };
    const LogViewer::PrintLines read = viewer.ReadPrintLines(day);
    if (read.OpenError)
        return failed(int(QFileDevice::OpenError), *read.OpenError);

    QPrinter printer(QPrinter::HighResolution);
    if (!printerName.isEmpty())
        printer.setPrinterName(printerName);
    const int printerError = 482;
    if (!LogPrinter::PrintEmptyDocument(printer))
        return failed(printerError, QStringLiteral("The printer could not start printing"));
    QApplication::processEvents();
    if (!LogPrinter::Print(printer, viewer.FormatDateLong(day), read.Lines))
        return failed(printerError, QStringLiteral("The printer could not start printing"));
    QApplication::restoreOverrideCursor();
}
