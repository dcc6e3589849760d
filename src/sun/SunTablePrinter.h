#pragma once

#include "sun/SunTable.h"

class QPrinter;

// Prints the year's table in Arial on one page where it fits: an empty line, the heading,
// an empty line, the column heading and the 73 rows. The five columns share the page width;
// a tab moves to the next of three stops in each column (rise, set and the bar).
class SunTablePrinter
{
public:
    // False when the printer could not start or failed while printing.
    static bool Print(QPrinter& printer, const SunTablePrintout& table);
};
