#include "widgets/PrintDialog.h"

#include "widgets/TestAnswers.h"
#include "widgets/WindowModal.h"

#include <QPrintDialog>
#include <QPrinter>

namespace {
TestAnswers<QString>& Test()
{
    static TestAnswers<QString> answers;
    return answers;
}
} // namespace

bool PrintDialog::Ask(QWidget* parent, QString& printerName)
{
    if (Test().On()) {
        printerName = Test().Take().value_or(QString());
        return !printerName.isEmpty();
    }
    QPrinter printer;
    QPrintDialog dialog(&printer, parent);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    if (ExecWindowModal(dialog) != QDialog::Accepted)
        return false;
    printerName = printer.printerName();
    return true;
}

void PrintDialog::SetTestMode(bool on)
{
    Test().Reset(on);
}

void PrintDialog::SetNextAnswer(const QString& printerOrEmptyForCancel)
{
    Test().Queue(printerOrEmptyForCancel);
}

int PrintDialog::Asked()
{
    return Test().Asked();
}
