// The day's log goes to a real CUPS queue: the queue named in TW_CUPS_QUEUE (set up by
// tests/e2e/cups.sh on a private CUPS server, reached through CUPS_SERVER) receives the
// blank first document and the 57-entry log, then a year's sunrise/sunset table; the script
// then checks what the queue wrote.
#include "Desk.h"
#include "logbook/LogPrinter.h"
#include "sun/BuildSunTable.h"
#include "widgets/MessageBox.h"
#include "widgets/frmPrinterSetup.h"

#include <QPrinterInfo>

class TestCupsPrint : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_queue = qEnvironmentVariable("TW_CUPS_QUEUE");
        if (m_queue.isEmpty())
            QSKIP("TW_CUPS_QUEUE is not set: run tests/e2e/cups.sh, which sets up a CUPS queue");
    }
    void init()
    {
        MessageBox::SetTestMode(true);
        frmPrinterSetup::SetTestMode(true);
    }
    void cleanup()
    {
        MessageBox::SetTestMode(false);
        frmPrinterSetup::SetTestMode(false);
    }

    void queueIsSeenThroughQt()
    {
        const QPrinterInfo info = QPrinterInfo::printerInfo(m_queue);
        QVERIFY2(
            !info.isNull(),
            qPrintable(QStringLiteral("no printer named %1; printers: %2")
                           .arg(m_queue, QPrinterInfo::availablePrinterNames().join(QStringLiteral(", ")))));
    }

    void fiftySevenEntriesArePrintedWithoutAnError()
    {
        Desk desk{"[General]\nLogOn=1\nLogSafetyOnly=False\n"};
        TestEnvironment::WriteFile(desk.LogPath(Desk::Monday), Desk::NotesFromEight(57));
        QVERIFY(desk.window->Load());

        frmPrinterSetup::SetNextAnswer(m_queue);
        PrintLog(desk.window.get(), desk.Viewer(), Desk::Monday);
        QStringList shown;
        for (const MessageBox::Request& request : MessageBox::Shown())
            shown << request.Text;
        QVERIFY2(shown.isEmpty(), qPrintable(shown.join(QStringLiteral(" | "))));
    }

    void sunTableIsPrintedWithoutAnError()
    {
        frmPrinterSetup::SetNextAnswer(m_queue);
        const SunTablePlace place{QStringLiteral("Chicago"), 41, 52, 87, 38, 6, QStringLiteral("2003")};
        QCOMPARE(BuildSunTable(nullptr, place, QStringLiteral("Print")), QString());
        QStringList shown;
        for (const MessageBox::Request& request : MessageBox::Shown())
            shown << request.Text;
        QVERIFY2(shown.isEmpty(), qPrintable(shown.join(QStringLiteral(" | "))));
    }

private:
    QString m_queue;
};

QTEST_MAIN(TestCupsPrint)
#include "cups_print.moc"
