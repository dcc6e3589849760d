#include "widgets/frmPrinterSetup.h"

#include "widgets/TestAnswers.h"
#include "widgets/WindowModal.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPrinterInfo>
#include <QPushButton>

namespace {
TestAnswers<QString>& Test()
{
    static TestAnswers<QString> answers;
    return answers;
}
// The printer the last call asked to have chosen first.
QString& LastPreselected()
{
    static QString printer;
    return printer;
}
} // namespace

frmPrinterSetup::frmPrinterSetup(QWidget* parent)
    : QDialog(parent), m_cmbPrinters(new QComboBox), m_lstDeviceName(new QListWidget),
      m_lstDriverName(new QListWidget), m_lstPort(new QListWidget)
{
    setObjectName(QStringLiteral("frmPrinterSetup"));
    setWindowTitle(QStringLiteral("Select Printer"));
    auto* lblPrinter = new QLabel(QStringLiteral("Printer:"));
    lblPrinter->setObjectName(QStringLiteral("lblPrinter"));
    auto* lblName = new QLabel(QStringLiteral("&Name:"));
    lblName->setObjectName(QStringLiteral("lblName"));
    lblName->setBuddy(m_cmbPrinters);
    m_cmbPrinters->setObjectName(QStringLiteral("cmbPrinters"));
    m_cmbPrinters->setAccessibleName(QStringLiteral("Printers Available"));
    m_cmbPrinters->setToolTip(QStringLiteral("Printers Available"));
    m_lstDeviceName->setObjectName(QStringLiteral("lstDeviceName"));
    m_lstDriverName->setObjectName(QStringLiteral("lstDriverName"));
    m_lstPort->setObjectName(QStringLiteral("lstPort"));
    for (QListWidget* list : {m_lstDeviceName, m_lstDriverName, m_lstPort}) {
        list->setAccessibleName(list->objectName());
        list->setMaximumHeight(80);
    }
    auto* ok = new QPushButton(QStringLiteral("OK"));
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    cancel->setObjectName(QStringLiteral("cmdCancel"));

    // One row per installed printer, in the same order in every list.
    const QList<QPrinterInfo> printers = QPrinterInfo::availablePrinters();
    for (const QPrinterInfo& p : printers) {
        m_cmbPrinters->addItem(p.printerName());
        m_lstDeviceName->addItem(p.printerName());
        m_lstDriverName->addItem(p.makeAndModel());
        m_lstPort->addItem(p.location());
    }
    m_cmbPrinters->setCurrentIndex(-1);

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblPrinter, 0, 0);
    grid->addWidget(lblName, 1, 0);
    grid->addWidget(m_cmbPrinters, 1, 1, 1, 3);
    grid->addWidget(m_lstDeviceName, 2, 1);
    grid->addWidget(m_lstDriverName, 2, 2);
    grid->addWidget(m_lstPort, 2, 3);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    grid->addLayout(buttons, 3, 0, 1, 4);
    connect(ok, &QPushButton::clicked, this, &frmPrinterSetup::cmdOK_Click);
    connect(cancel, &QPushButton::clicked, this, &frmPrinterSetup::cmdCancel_Click);
}

QString frmPrinterSetup::ChosenPrinter() const
{
    return m_cmbPrinters->currentIndex() >= 0 ? m_cmbPrinters->currentText() : QString();
}

void frmPrinterSetup::cmdOK_Click()
{
    accept();
}

void frmPrinterSetup::cmdCancel_Click()
{
    reject();
}

void frmPrinterSetup::reject()
{
    // "Cancel", Esc and the window's close button all cancel the print.
    canceled = true;
    QDialog::reject();
}

bool frmPrinterSetup::Ask(QWidget* parent, QString& printer, const QString& preselect)
{
    if (Test().On()) {
        LastPreselected() = preselect;
        const std::optional<QString> answer = Test().Take();
        printer = answer.value_or(QString());
        return !answer || !answer->isEmpty(); // none queued: OK with no printer chosen
    }
    frmPrinterSetup dialog(parent);
    if (!preselect.isEmpty())
        dialog.m_cmbPrinters->setCurrentIndex(dialog.m_cmbPrinters->findText(preselect));
    ExecWindowModal(dialog);
    printer = dialog.ChosenPrinter();
    return !dialog.canceled;
}

void frmPrinterSetup::SetTestMode(bool on)
{
    Test().Reset(on);
    LastPreselected().clear();
}

void frmPrinterSetup::SetNextAnswer(const QString& printerOrEmptyForCancel)
{
    Test().Queue(printerOrEmptyForCancel);
}

QString frmPrinterSetup::LastPreselect()
{
    return LastPreselected();
}
