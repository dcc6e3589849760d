#pragma once

#include <QDialog>

class QComboBox;
class QListWidget;

// "Select Printer": the system's printers by device name, with their driver and port.
class frmPrinterSetup : public QDialog
{
    Q_OBJECT
public:
    explicit frmPrinterSetup(QWidget* parent = nullptr);

    bool canceled = false;
    // The device name chosen in the list; empty when no row is chosen.
    QString ChosenPrinter() const;
    QComboBox* Printers() const { return m_cmbPrinters; }

    void cmdOK_Click();
    void cmdCancel_Click();
    void reject() override;

    // Shows the dialog modally, with `preselect` chosen when it names a printer. In test mode
    // nothing is shown: the queued answer is taken (a printer name, or an empty text for
    // "Cancel"; with none queued, OK with no choice).
    static bool Ask(QWidget* parent, QString& printer, const QString& preselect = {});
    static void SetTestMode(bool on);
    static void SetNextAnswer(const QString& printerOrEmptyForCancel);
    // The printer the last call asked to have chosen first.
    static QString LastPreselect();

private:
    QComboBox* m_cmbPrinters;
    QListWidget* m_lstDeviceName;
    QListWidget* m_lstDriverName;
    QListWidget* m_lstPort;
};
