#pragma once

#include "sun/SunTable.h"

#include <QList>
#include <QStringList>

#include <functional>

class QPrinter;

// Prints the year's table in Arial on one page where it fits: an empty line, the heading,
// an empty line, the column heading and the 73 rows. The five columns share the page width.
class SunTablePrinter
{
public:
    // False when the printer could not start or failed while printing.
    static bool Print(QPrinter& printer, const SunTablePrintout& table);

    // Where each tab-separated field of a line starts. A tab moves to the next stop (rise,
    // set, bar) past the text so far; a field that starts with the bar "|" ends its column
    // and stands at that column's bar, so a cell with a field left out or an empty field
    // cannot push the columns after it out of line.
    static QList<double> FieldPositions(const QStringList& fields, double columnWidth,
                                        const std::function<double(const QString&)>& advance);
};
