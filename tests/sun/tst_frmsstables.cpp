// The tables dialog, the table viewer and the printed table.
#include "TestEnvironment.h"
#include "settings/Settings.h"
#include "sun/SunTablePrinter.h"
#include "sun/frmSSTables.h"
#include "sun/frmView.h"
#include "widgets/MessageBox.h"
#include "widgets/PrintDialog.h"
#include "widgets/PrintSetup.h"
#include "widgets/frmPrinterSetup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QtTest>

namespace {

Settings DeskSettings(int zone, int dayLight)
{
    Settings settings;
    settings.Zone = zone;
    settings.DayLight = qint16(dayLight);
    settings.LatDeg = QStringLiteral("41");
    settings.LatMin = QStringLiteral("52");
    settings.LongDeg = QStringLiteral("87");
    settings.LongMin = QStringLiteral("38");
    return settings;
}

QLineEdit* Box(QWidget& dialog, const char* name)
{
    return dialog.findChild<QLineEdit*>(QString::fromLatin1(name));
}

void SetCoordinates(frmSSTables& dialog, const QString& lat, const QString& latMin, const QString& lon,
                    const QString& lonMin)
{
    Box(dialog, "edtLat")->setText(lat);
    Box(dialog, "edtLatMinutes")->setText(latMin);
    Box(dialog, "edtLong")->setText(lon);
    Box(dialog, "edtLongMinutes")->setText(lonMin);
}

QList<QByteArray> TableLines()
{
    QFile file(QStringLiteral("TWTable.rtf"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().split('\n');
}

QStringList PdfPages(const QString& pdf)
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    process.waitForFinished(30000);
    QStringList pages = QString::fromUtf8(process.readAllStandardOutput()).split(u'\f');
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// The dialog with the viewer replaced by a record of what it would show.
struct Tables
{
    explicit Tables(int zone = 3, int dayLight = 0, int thisYear = 2026)
        : settings(DeskSettings(zone, dayLight)), dialog(settings, thisYear)
    {
        dialog.SetViewOpener([this](QWidget*, const SunTablePlace& place) { shown << place; });
    }
    TestEnvironment env;
    Settings settings;
    frmSSTables dialog;
    QList<SunTablePlace> shown;
};

} // namespace

class TestFrmSSTables : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        MessageBox::SetTestMode(true);
        PrintDialog::SetTestMode(true);
        frmPrinterSetup::SetTestMode(true);
    }
    void cleanup()
    {
        MessageBox::SetTestMode(false);
        PrintDialog::SetTestMode(false);
        frmPrinterSetup::SetTestMode(false);
        PrintSetup::SetTestOutputFile(QString());
    }

    void dialogHasItsControls()
    {
        Tables t;
        QCOMPARE(t.dialog.windowTitle(), QStringLiteral("Sunrise/Sunset Tables"));
        QCOMPARE(Box(t.dialog, "txtLabel")->text(), QStringLiteral("Local"));
        QCOMPARE(Box(t.dialog, "edtLatMinutes")->toolTip(), QStringLiteral("Enter minutes 0-59"));
        QCOMPARE(Box(t.dialog, "edtLongMinutes")->toolTip(), QStringLiteral("Enter minutes 0-59"));
        QVERIFY(t.dialog.findChild<QPushButton*>(QStringLiteral("cmdCalculate")));
        QVERIFY(t.dialog.findChild<QPushButton*>(QStringLiteral("cmdClose")));
        // The coordinates start as the settings hold them.
        QCOMPARE(Box(t.dialog, "edtLat")->text(), QStringLiteral("41"));
        QCOMPARE(Box(t.dialog, "edtLong")->text(), QStringLiteral("87"));
    }

    void zoneListCarriesItsNumbersWithEasternLabelledMinusFour()
    {
        Tables t;
        auto* zones = t.dialog.findChild<QComboBox*>(QStringLiteral("cboTimeZone"));
        const QStringList texts{
            QStringLiteral("(GMT -9 hrs) Alaska Time"),   QStringLiteral("(GMT -8 hrs) Pacific Time"),
            QStringLiteral("(GMT -7 hrs) Mountain Time"), QStringLiteral("(GMT -6 hrs) Central Time"),
            QStringLiteral("(GMT -4 hrs) Eastern Time"),  QStringLiteral("(GMT) Greenwich Mean Time - UTC")};
        const QList<int> numbers{-9, -8, -7, -6, -5, 0};
        QCOMPARE(zones->count(), 6);
        for (int i = 0; i < 6; ++i) {
            QCOMPARE(zones->itemText(i), texts[i]);
            QCOMPARE(zones->itemData(i).toInt(), numbers[i]);
        }
    }

    void openingTakesTheZoneAndDaylightSettingsAndTheFirstYear()
    {
        Tables t(4, 1);
        QCOMPARE(t.dialog.findChild<QComboBox*>(QStringLiteral("cboTimeZone"))->currentIndex(), 4);
        QVERIFY(t.dialog.findChild<QCheckBox*>(QStringLiteral("chkDayLight"))->isChecked());
        auto* years = t.dialog.findChild<QComboBox*>(QStringLiteral("cboYear"));
        // 1998 to ten years past this year (2026): this year's table can be made.
        QCOMPARE(years->count(), 39);
        QCOMPARE(years->itemText(0), QStringLiteral("1998"));
        QCOMPARE(years->itemText(12), QStringLiteral("2010"));
        QCOMPARE(years->itemText(28), QStringLiteral("2026"));
        QCOMPARE(years->itemText(38), QStringLiteral("2036"));
        QCOMPARE(years->itemData(5).toInt(), 2003);
        QCOMPARE(years->currentText(), QStringLiteral("1998"));
        // A clock set far back still offers every year the dialog always offered.
        Tables old(4, 1, 1990);
        auto* oldYears = old.dialog.findChild<QComboBox*>(QStringLiteral("cboYear"));
        QCOMPARE(oldYears->count(), 13);
        QCOMPARE(oldYears->itemText(12), QStringLiteral("2010"));
        Tables plain(1, 0);
        QVERIFY(!plain.dialog.findChild<QCheckBox*>(QStringLiteral("chkDayLight"))->isChecked());
    }

    void zoneHoursAreTheStoredNumberLessOneInDaylightTime()
    {
        QCOMPARE(frmSSTables::ZoneHoursFor(-5, false), 5);
        QCOMPARE(frmSSTables::ZoneHoursFor(-5, true), 4);
        QCOMPARE(frmSSTables::ZoneHoursFor(-9, true), 8);
        QCOMPARE(frmSSTables::ZoneHoursFor(0, true), 1);
        QCOMPARE(frmSSTables::ZoneHoursFor(0, false), 0);
    }

    void easternWithoutDaylightGivesStandardTimeHeadedEstCdt()
    {
        Tables t(4, 0);
        t.dialog.findChild<QComboBox*>(QStringLiteral("cboYear"))->setCurrentIndex(5);
        t.dialog.cmdCalculate_Click();
        QVERIFY(MessageBox::Shown().isEmpty());
        QCOMPARE(t.shown.size(), 1);
        QCOMPARE(t.shown[0].ZoneHours, qint16(5));
        QCOMPARE(t.shown[0].Year, QStringLiteral("2003"));
        const QList<QByteArray> lines = TableLines();
        QVERIFY(lines.size() > 8);
        QCOMPARE(lines[3],
                 QByteArray("\\deflang1033\\pard\\plain\\f2\\fs20 Sunrise/Sunset Table for: Local\r"));
        QCOMPARE(lines[4], QByteArray("\\par Lat =  41 : 52 N   Long =  87 : 38 W\r"));
        QCOMPARE(lines[5], QByteArray("\\par Year = 2003   All times are: EST/CDT\r"));
    }

    void greenwichWithDaylightShowsNoAbbreviation()
    {
        Tables t(5, 1);
        t.dialog.cmdCalculate_Click();
        QCOMPARE(t.shown.size(), 1);
        QCOMPARE(t.shown[0].ZoneHours, qint16(1));
        QCOMPARE(TableLines().value(5), QByteArray("\\par Year = 1998   All times are: \r"));
    }

    void latitudeZeroZeroPassesTheCheckAndProducesATable()
    {
        Tables t;
        SetCoordinates(t.dialog, QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("87"),
                       QStringLiteral("38"));
        t.dialog.cmdCalculate_Click();
        QVERIFY(MessageBox::Shown().isEmpty());
        QCOMPARE(t.shown.size(), 1);
        const QList<QByteArray> lines = TableLines();
        QCOMPARE(lines.value(4), QByteArray("\\par Lat =  0 : 0 N   Long =  87 : 38 W\r"));
        QCOMPARE(lines.size(), 8 + 165 + 1 + 1); // header, rows, the end, and the empty tail
    }

    void badCoordinatesShowTheMessageAndNothingElse()
    {
        Tables t;
        SetCoordinates(t.dialog, QStringLiteral("10"), QStringLiteral("0"), QStringLiteral("87"),
                       QStringLiteral("38"));
        t.dialog.cmdCalculate_Click();
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text,
                 QStringLiteral("There is an error in the coordinates you entered: \r\r - Latitude "
                                "degrees must be between 20 and 80\r"));
        QVERIFY(t.shown.isEmpty());
        QVERIFY(!QFile::exists(QStringLiteral("TWTable.rtf")));
    }

    void aZoneSettingOutsideTheListAsksForAZone()
    {
        Tables t(9, 1);
        QCOMPARE(t.dialog.findChild<QComboBox*>(QStringLiteral("cboTimeZone"))->currentIndex(), -1);
        t.dialog.cmdCalculate_Click();
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text, QStringLiteral("Choose the time zone of the table."));
        QVERIFY(t.shown.isEmpty());
        QVERIFY(!QFile::exists(QStringLiteral("TWTable.rtf")));
        t.dialog.findChild<QComboBox*>(QStringLiteral("cboTimeZone"))->setCurrentIndex(0);
        t.dialog.cmdCalculate_Click();
        QCOMPARE(t.shown.size(), 1);
        QCOMPARE(t.shown[0].ZoneHours, qint16(8)); // Alaska in daylight time
    }

    void aTableThatCannotBeWrittenIsReported()
    {
        Tables t;
        QVERIFY(QDir().mkpath(QStringLiteral("TWTable.rtf/blocked"))); // a folder in its place
        t.dialog.cmdCalculate_Click();
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].Text.startsWith(QStringLiteral("Error writing TWTable.rtf\r\r75 - ")),
                 qPrintable(shown[0].Text));
        QVERIFY(t.shown.isEmpty());
    }

    void viewerShowsTheWrittenTable()
    {
        Tables t(4, 0);
        t.dialog.cmdCalculate_Click();
        frmView view(t.shown.value(0));
        QCOMPARE(view.LoadError(), QString());
        const QString text = view.TableText()->toPlainText();
        QVERIFY2(text.contains(QStringLiteral("Sunrise/Sunset Table for: Local")), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("All times are: EST/CDT")));
        QVERIFY(text.contains(QStringLiteral("1/1\t")));
        QVERIFY(text.contains(QStringLiteral("12/31\t")));
        QCOMPARE(view.TableText()->font().family(), QStringLiteral("Arial"));
        QVERIFY(view.TableText()->isReadOnly());
    }

    void viewerLinesTheRowsUpUnderTheHeadingAndOpensAtTheTop()
    {
        Tables t;
        t.dialog.cmdCalculate_Click();
        frmView view(t.shown.value(0));
        QTextDocument* document = view.TableText()->document();
        // The document's 5000-twip tab would put each column about 333 pixels apart.
        const qreal tab = document->defaultTextOption().tabStopDistance();
        QVERIFY2(tab > 20 && tab < 150, qPrintable(QString::number(tab)));
        QCOMPARE(view.TableText()->textCursor().position(), 0);
        // Rows are shown at twice the five points they are written at.
        const QTextBlock row = document->findBlockByNumber(5);
        QVERIFY2(row.text().startsWith(QStringLiteral("1/1\t")), qPrintable(row.text()));
        QCOMPARE(row.charFormat().fontPointSize(), 10.0);
    }

    void viewerShowsALocationNameOfAnyScriptAsTyped()
    {
        Tables t;
        const QString name = QStringLiteral("Z\u00fcrich \u03a9mega \u6771\u4eac {Camp} \\par x");
        Box(t.dialog, "txtLabel")->setText(name);
        t.dialog.cmdCalculate_Click();
        frmView view(t.shown.value(0));
        const QString firstLine = view.TableText()->document()->firstBlock().text();
        QCOMPARE(firstLine, QStringLiteral("Sunrise/Sunset Table for: ") + name);
    }

    void viewerWithoutATableSaysWhy()
    {
        TestEnvironment env;
        frmView view(SunTablePlace{});
        QVERIFY(!view.LoadError().isEmpty());
        QCOMPARE(view.TableText()->toPlainText(), view.LoadError());
    }

    void printingCancelledInThePrinterDialogPrintsNothing()
    {
        Tables t;
        t.dialog.cmdCalculate_Click();
        const QString pdf = QDir::current().filePath(QStringLiteral("table.pdf"));
        PrintSetup::SetTestOutputFile(pdf);
        frmView view(t.shown.value(0));
        PrintDialog::SetNextAnswer(QString());
        frmPrinterSetup::SetNextAnswer(QStringLiteral("Desk"));
        view.cmdPrint_Click();
        QCOMPARE(PrintDialog::Asked(), 1);
        QVERIFY(!QFile::exists(pdf));
        QVERIFY(MessageBox::Shown().isEmpty());
    }

    void printingWithNoPrinterChosenInTheListPrintsNothing()
    {
        Tables t;
        t.dialog.cmdCalculate_Click();
        const QString pdf = QDir::current().filePath(QStringLiteral("table.pdf"));
        PrintSetup::SetTestOutputFile(pdf);
        frmView view(t.shown.value(0));
        PrintDialog::SetNextAnswer(QStringLiteral("Desk"));
        // No queued answer: the list is left with no printer chosen.
        view.cmdPrint_Click();
        QVERIFY(!QFile::exists(pdf));
        QVERIFY(MessageBox::Shown().isEmpty());
    }

    void printedTableHasTheHeadingAndFiveColumnsOnOnePage()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QFAIL("pdftotext is missing (scripts/deps installs poppler-utils)");
        Tables t(3, 0);
        t.dialog.findChild<QComboBox*>(QStringLiteral("cboYear"))->setCurrentIndex(5);
        t.dialog.cmdCalculate_Click();
        const QString pdf = QDir::current().filePath(QStringLiteral("table.pdf"));
        PrintSetup::SetTestOutputFile(pdf);
        frmView view(t.shown.value(0));
        PrintDialog::SetNextAnswer(QStringLiteral("Desk"));
        frmPrinterSetup::SetNextAnswer(QStringLiteral("Desk"));
        view.cmdPrint_Click();
        QVERIFY(MessageBox::Shown().isEmpty());
        // The printer dialog's choice is the one offered first in the printer list.
        QCOMPARE(frmPrinterSetup::LastPreselect(), QStringLiteral("Desk"));
        const QStringList pages = PdfPages(pdf);
        QCOMPARE(pages.size(), 1);
        const QString page = pages[0];
        QVERIFY2(
            page.contains(QStringLiteral("Sunrise/Sunset Table for: Local Lat = 41:52N Long = 87:38W Year = "
                                         "2003 All times are: CST/MDT")) ||
                page.contains(
                    QStringLiteral("Sunrise/Sunset Table for: Local  Lat = 41:52N   Long = 87:38W")),
            qPrintable(page));
        // The first row: 1 January beside 15 March, 27 May, 8 August and 20 October.
        const QStringList lines = page.split(u'\n');
        bool firstRow = false;
        bool lastRow = false;
        for (const QString& line : lines) {
            const QString simple = line.simplified();
            firstRow =
                firstRow || simple.startsWith(QStringLiteral("1/1 07:18 16:30 | 3/15 06:03 17:57 | 5/27 "
                                                             "04:21 19:15 | 8/8 04:51 19:01 | 10/20 06:08 "
                                                             "17:02 | |"));
            lastRow = lastRow || (simple.startsWith(QStringLiteral("3/14 ")) &&
                                  simple.contains(QStringLiteral("| 12/31 ")));
        }
        QVERIFY2(firstRow, qPrintable(page));
        QVERIFY2(lastRow, qPrintable(page));
    }

    void printedFirstColumnUpAllDayKeepsTheOtherColumnsInLine()
    {
        // Three units a character on columns 100 wide: "Up all day" runs past the set stop.
        const auto advance = [](const QString& text) { return 3.0 * double(text.size()); };
        const QStringList normal =
            QStringLiteral("1/1\t07:18\t16:30\t| 3/15\t06:03\t17:57\t| 5/27\t04:21\t19:15\t| "
                           "8/8\t04:51\t19:01\t| 10/20\t06:08\t17:02\t|  |")
                .split(u'\t');
        const QStringList upAllDay =
            QStringLiteral("1/1\tUp all day\t\t| 3/15\t06:03\t17:57\t| 5/27\t04:21\t19:15\t| "
                           "8/8\t04:51\t19:01\t| 10/20\t06:08\t17:02\t|  |")
                .split(u'\t');
        const auto rounded = [](const QList<double>& at) {
            QList<int> out;
            for (const double x : at)
                out << qRound(x);
            return out;
        };
        const QList<int> expected = rounded(SunTablePrinter::FieldPositions(normal, 100, advance));
        QCOMPARE(expected,
                 (QList<int>{0, 27, 55, 86, 127, 155, 186, 227, 255, 286, 327, 355, 386, 427, 455, 486}));
        const QList<int> up = rounded(SunTablePrinter::FieldPositions(upAllDay, 100, advance));
        // The empty set field may fall anywhere; every field from the bar on stays in line.
        QCOMPARE(up.mid(0, 2), expected.mid(0, 2));
        QCOMPARE(up.mid(3), expected.mid(3));
        // The column heading's words stand over the columns.
        const QStringList heading =
            SunTablePrintLines({QStringLiteral("X"), 41, 52, 87, 38, 6, QStringLiteral("2003")})
                .ColumnHeading.split(u'\t');
        QCOMPARE(rounded(SunTablePrinter::FieldPositions(heading, 100, advance)).mid(0, 5),
                 (QList<int>{0, 27, 55, 86, 127}));
        // A column width of nothing still ends.
        QCOMPARE(SunTablePrinter::FieldPositions(normal, 0, advance).size(), normal.size());
    }

    void printerThatFailsShowsPrinterError()
    {
        Tables t;
        t.dialog.cmdCalculate_Click();
        const QString pdf = QDir::current().filePath(QStringLiteral("table.pdf"));
        QVERIFY(QDir().mkpath(pdf)); // a folder where the output should go: the printer cannot start
        PrintSetup::SetTestOutputFile(pdf);
        frmView view(t.shown.value(0));
        PrintDialog::SetNextAnswer(QStringLiteral("Desk"));
        frmPrinterSetup::SetNextAnswer(QStringLiteral("Desk"));
        view.cmdPrint_Click();
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text, QStringLiteral("Printer Error - Check Printer"));
    }
};

QTEST_MAIN(TestFrmSSTables)
#include "tst_frmsstables.moc"
