#include "sun/SunTablePrinter.h"

#include "logbook/LogPrinter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>

#include <array>

namespace {

constexpr int Columns = 5;
constexpr int PointSize = 8;
// Where a tab goes within a column, as fractions of the column's width.
constexpr std::array<double, 3> Stops{0.27, 0.55, 0.86};

class TablePage
{
public:
    TablePage(QPainter& painter, QPrinter& printer) : m_painter(painter), m_printer(printer)
    {
        QFont font(QStringLiteral("Arial"));
        font.setPointSize(PointSize);
        m_painter.setFont(font);
        m_metrics = QFontMetricsF(font, &printer);
        m_page = printer.pageLayout().paintRectPixels(printer.resolution());
        m_columnWidth = m_page.width() / double(Columns);
    }

    // Prints one line; each tab moves to the first stop past the text printed so far.
    bool PrintLine(const QString& text)
    {
        if (m_y + m_metrics.lineSpacing() > m_page.height() && m_y > 0) {
            if (!m_printer.newPage())
                return false;
            m_y = 0;
        }
        double x = 0;
        const QStringList fields = text.split(u'\t');
        for (qsizetype i = 0; i < fields.size(); ++i) {
            if (i > 0)
                x = NextStop(x);
            m_painter.drawText(QPointF(x, m_y + m_metrics.ascent()), fields.at(i));
            x += m_metrics.horizontalAdvance(fields.at(i));
        }
        m_y += m_metrics.lineSpacing();
        return m_printer.printerState() != QPrinter::Error;
    }

private:
    double NextStop(double x) const
    {
        const double gap = m_metrics.horizontalAdvance(u' ') / 2;
        for (int column = 0;; ++column)
            for (const double stop : Stops) {
                const double at = m_columnWidth * (column + stop);
                if (at >= x + gap)
                    return at;
            }
    }

    QPainter& m_painter;
    QPrinter& m_printer;
    QFontMetricsF m_metrics{QFont()};
    QRect m_page;
    double m_columnWidth = 0;
    double m_y = 0;
};

} // namespace

bool SunTablePrinter::Print(QPrinter& printer, const SunTablePrintout& table)
{
    printer.setPageOrientation(QPageLayout::Portrait);
    printer.setCopyCount(1);
    printer.setFullPage(false);
    if (!LogPrinter::TestOutputFile().isEmpty()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(LogPrinter::TestOutputFile());
    }
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    TablePage page(painter, printer);
    bool ok = page.PrintLine(QString()) && page.PrintLine(table.Heading) && page.PrintLine(QString()) &&
              page.PrintLine(table.ColumnHeading);
    for (qsizetype i = 0; ok && i < table.Rows.size(); ++i)
        ok = page.PrintLine(table.Rows.at(i));
    if (!ok) {
        printer.abort();
        painter.end();
        return false;
    }
    return painter.end();
}
