#include "widgets/PrintSetup.h"

#include <QPageLayout>
#include <QPrinter>

namespace {
QString& OutputFile()
{
    static QString path;
    return path;
}
} // namespace

void PrintSetup::Prepare(QPrinter& printer)
{
    printer.setPageOrientation(QPageLayout::Portrait);
    printer.setCopyCount(1);
    printer.setFullPage(false);
    if (!OutputFile().isEmpty()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(OutputFile());
    }
}

void PrintSetup::SetTestOutputFile(const QString& pdfPath)
{
    OutputFile() = pdfPath;
}
