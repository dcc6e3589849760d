#include "sun/SunTablePrinter.h"

#include "widgets/PrintSetup.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int Columns = 5;
constexpr int PointSize = 8;
// Where a tab goes within a column, as fractions of the column's width: rise, set, bar.
constexpr std::array<double, 3> Stops{0.27, 0.55, 0.86};
constexpr double BarStop = Stops[2];

// The first stop at least `gap` past x; the stops repeat in every column.
double NextStop(double x, double width, double gap)
{
    const int first = std::max(0, int(std::floor(x / width)));
    for (int column = first; column <= first + 1; ++column)
        for (const double stop : Stops)
            if (const double at = width * (column + stop); at >= x + gap)
                return at;
    return width * (first + 2);
}

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

    bool PrintLine(const QString& text)
    {
        if (m_y + m_metrics.lineSpacing() > m_page.height() && m_y > 0) {
            if (!m_printer.newPage())
                return false;
            m_y = 0;
        }
        const QStringList fields = text.split(u'\t');
        const QList<double> at = SunTablePrinter::FieldPositions(
            fields, m_columnWidth, [this](const QString& s) { return m_metrics.horizontalAdvance(s); });
        for (qsizetype i = 0; i < fields.size(); ++i)
            m_painter.drawText(QPointF(at.at(i), m_y + m_metrics.ascent()), fields.at(i));
        m_y += m_metrics.lineSpacing();
        return m_printer.printerState() != QPrinter::Error;
    }

private:
    QPainter& m_painter;
    QPrinter& m_printer;
    QFontMetricsF m_metrics{QFont()};
    QRect m_page;
    double m_columnWidth = 0;
    double m_y = 0;
};

} // namespace

QList<double> SunTablePrinter::FieldPositions(const QStringList& fields, double columnWidth,
                                              const std::function<double(const QString&)>& advance)
{
    QList<double> positions;
    const double width = std::max(columnWidth, 1.0);
    const double gap = advance(QStringLiteral(" ")) / 2;
    int column = 0; // the column whose bar comes next
    double x = 0;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        const QString& field = fields.at(i);
        if (i > 0) {
            if (field.startsWith(u'|')) {
                x = width * (column + BarStop);
                ++column;
            } else {
                x = NextStop(x, width, gap);
            }
        }
        positions << x;
        x += advance(field);
    }
    return positions;
}

bool SunTablePrinter::Print(QPrinter& printer, const SunTablePrintout& table)
{
    PrintSetup::Prepare(printer);
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
