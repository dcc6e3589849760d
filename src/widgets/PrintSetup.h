#pragma once

#include <QString>

class QPrinter;

// The program's one page set-up for its printouts: portrait, one copy, within the page's
// margins. A test sets an output file: every printout then goes to that PDF file instead.
class PrintSetup
{
public:
    static void Prepare(QPrinter& printer);
    static void SetTestOutputFile(const QString& pdfPath);
};
