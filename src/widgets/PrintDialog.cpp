#include "widgets/PrintDialog.h"

#include <QList>
#include <QPrintDialog>
#include <QPrinter>

namespace {
struct TestState
{
    bool On = false;
    QList<QString> Answers;
    int Asked = 0;
};

TestState& Test()
{
    static TestState state;
    return state;
}
} // namespace

bool PrintDialog::Ask(QWidget* parent, QString& printerName)
{
    if (Test().On) {
        ++Test().Asked;
        printerName = Test().Answers.isEmpty() ? QString() : Test().Answers.takeFirst();
        return !printerName.isEmpty();
    }
    QPrinter printer;
    QPrintDialog dialog(&printer, parent);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    printerName = printer.printerName();
    return true;
}

void PrintDialog::SetTestMode(bool on)
{
    Test() = TestState{};
    Test().On = on;
}

void PrintDialog::SetNextAnswer(const QString& printerOrEmptyForCancel)
{
    Test().Answers.append(printerOrEmptyForCancel);
}

int PrintDialog::Asked()
{
    return Test().Asked;
}
