#include "sun/BuildSunTable.h"

#include "sun/SunTablePrinter.h"
#include "widgets/MessageBox.h"
#include "widgets/frmPrinterSetup.h"

#include <QApplication>
#include <QPrinter>
#include <QScopeGuard>

QString BuildSunTable(QWidget* parent, const SunTablePlace& place, const QString& mode,
                      const QString& preselect)
{
    if (mode == u"View")
        return WriteSunTable(place, SunTableFile);

    QString printerName;
    if (!frmPrinterSetup::Ask(parent, printerName, preselect) || printerName.isEmpty())
        return {}; // no printer chosen: nothing is printed
    bool printed = false;
    {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        const auto restore = qScopeGuard([] { QApplication::restoreOverrideCursor(); });
        const SunTablePrintout table = SunTablePrintLines(place);
        QPrinter printer(QPrinter::HighResolution);
        printer.setPrinterName(printerName);
        printed = SunTablePrinter::Print(printer, table);
    }
    if (!printed)
        MessageBox::Notice(parent, QStringLiteral("Printer Error - Check Printer"));
    return {};
}
