#include "Owners.h"
#include "logbook/LogPrinter.h"
#include "widgets/MessageBox.h"
#include "widgets/PrintSetup.h"
#include "widgets/frmPrinterSetup.h"

#include <QComboBox>
#include <QPrinter>
#include <QProcess>
#include <QStandardPaths>

namespace {

// The text of a PDF, page by page (pdftotext separates pages by form feeds).
QStringList PdfPages(const QString& pdf)
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    if (!process.waitForFinished(30000))
        return {};
    QStringList pages = QString::fromUtf8(process.readAllStandardOutput()).split(u'\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

struct Printing
{
    explicit Printing(const QByteArray& log)
    {
        TestEnvironment::WriteFile(desk.LogPath(Owners::Monday), log);
        QVERIFY(desk.Start());
        pdf = QDir(desk.env.Root()).filePath(QStringLiteral("printed.pdf"));
        PrintSetup::SetTestOutputFile(pdf);
    }
    ~Printing() { PrintSetup::SetTestOutputFile(QString()); }
    Owners desk{"[General]\nLogOn=1\nLogSafetyOnly=False\n"};
    QString pdf;
};

} // namespace

class TestLogPrint : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QFAIL("pdftotext is missing (scripts/deps installs poppler-utils)");
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

    void pageHasTheHeadingAndTheEntryLines()
    {
        Printing p(Owners::NotesFromEight(3));
        PrintLog(&p.desk.host, p.desk.Viewer(), Owners::Monday);
        const QStringList pages = PdfPages(p.pdf);
        QCOMPARE(pages.size(), 1);
        const QString page = pages[0];
        QVERIFY2(page.contains(QStringLiteral("Tarrowind Logbook")), qPrintable(page));
        QVERIFY(page.contains(QStringLiteral("Entries for: Monday, November 16, 2026")));
        QVERIFY(page.contains(QStringLiteral("Page: 1")));
        QVERIFY(page.contains(QString(136, u'-')));
        QVERIFY(page.contains(QStringLiteral("08:00--Entry: 1 (x)")));
        QVERIFY(page.contains(QStringLiteral("08:02--Entry: 3 (x)")));
        QVERIFY(MessageBox::Shown().isEmpty());
    }

    void fiftySixEntriesStartASecondPageWithOnlyTheHeading()
    {
        Printing p(Owners::NotesFromEight(56));
        PrintLog(&p.desk.host, p.desk.Viewer(), Owners::Monday);
        const QStringList pages = PdfPages(p.pdf);
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[0].contains(QStringLiteral("Entry: 56 (x)")));
        QVERIFY(pages[1].contains(QStringLiteral("Page: 2")));
        QVERIFY(pages[1].contains(QStringLiteral("Tarrowind Logbook")));
        QVERIFY(!pages[1].contains(QStringLiteral("Entry:")));
    }

    void fiftySevenEntriesPutOneOnThePageTwo()
    {
        Printing p(Owners::NotesFromEight(57));
        PrintLog(&p.desk.host, p.desk.Viewer(), Owners::Monday);
        const QStringList pages = PdfPages(p.pdf);
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[1].contains(QStringLiteral("08:56--Entry: 57 (x)")));
        QVERIFY(!pages[1].contains(QStringLiteral("Entry: 56 ")));
    }

    void cancelPrintsNothingAndLeavesTodaysLogOpen()
    {
        Printing p(Owners::NotesFromEight(3));
        frmPrinterSetup::SetNextAnswer(QString());
        PrintLog(&p.desk.host, p.desk.Viewer(), p.desk.clock.Today());
        QVERIFY(!QFileInfo::exists(p.pdf));
        QVERIFY(p.desk.log.IsTodaysLogOpen());
    }

    void printingTodayReopensTodaysLog()
    {
        Printing p(Owners::NotesFromEight(3));
        PrintLog(&p.desk.host, p.desk.Viewer(), p.desk.clock.Today());
        QVERIFY(QFileInfo::exists(p.pdf));
        QVERIFY(p.desk.log.IsTodaysLogOpen());
        QVERIFY(PdfPages(p.pdf).value(0).contains(QStringLiteral("08:00--Entry: 1 (x)")));
    }

    void printerThatCannotStartIsReportedAndTodaysLogReopened()
    {
        Printing p(Owners::NotesFromEight(3));
        // A folder where the output file should be: the printer cannot start.
        QVERIFY(QDir().mkpath(p.pdf));
        PrintLog(&p.desk.host, p.desk.Viewer(), p.desk.clock.Today());
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text,
                 QStringLiteral("Error printing logbook\r\r482 - The printer could not start printing"));
        QCOMPARE(shown[0].Title, QStringLiteral("Tarrowind"));
        QVERIFY(p.desk.log.IsTodaysLogOpen());
    }

    void printerSetupListsPrintersWithDriverAndPort()
    {
        frmPrinterSetup dialog;
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Select Printer"));
        QCOMPARE(dialog.Printers()->toolTip(), QStringLiteral("Printers Available"));
        QVERIFY(!dialog.canceled);
        QCOMPARE(dialog.ChosenPrinter(), QString()); // no row chosen: the system's printer
        dialog.cmdCancel_Click();
        QVERIFY(dialog.canceled);
    }

    void printerSetupClosedWithEscapeCancels()
    {
        frmPrinterSetup dialog;
        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(dialog.canceled);
        QVERIFY(!dialog.isVisible());
    }
};

QTEST_MAIN(TestLogPrint)
#include "tst_logprint.moc"
