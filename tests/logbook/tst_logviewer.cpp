#include "DocumentDiff.h"
#include "Owners.h"
#include "logbook/LogPanel.h"
#include "widgets/MessageBox.h"
#include "widgets/MonthCalendar.h"
#include "widgets/RtfReader.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTextEdit>

namespace {

const QByteArray LogAll = "[General]\nLogOn=1\nLogSafetyOnly=False\n";

QByteArray Fixture(const char* name)
{
    QFile file(QStringLiteral(TW_TEST_DATA "/logbook/") + QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The logbook panel after start-up, its clock reading 17 November, with the prepared log of
// the 16th, opened as the status bar opens it.
struct Viewer
{
    explicit Viewer(const QByteArray& ini = LogAll) : desk(ini)
    {
        desk.clock.Set(Owners::Monday.addDays(1), QTime(9, 0));
        TestEnvironment::WriteFile(desk.LogPath(Owners::Monday), Fixture("20261116.log"));
        panel = desk.Place(new LogPanel(desk.viewer, desk.log));
        QVERIFY(desk.Start());
        desk.host.show();
        desk.viewer.RefreshLogView();
        panel->EnableChoicesFromLogCheck();
    }
    QString Text() const { return desk.Find<QTextEdit>(QStringLiteral("txtLog"))->toPlainText(); }
    QPushButton* Button(const char* name) const { return desk.Find<QPushButton>(QString::fromLatin1(name)); }
    QScrollBar* Bar() const { return desk.Find<QScrollBar>(QStringLiteral("hscDate")); }
    QString DateCaption() const { return desk.Find<QLabel>(QStringLiteral("txtDate"))->text(); }
    Owners desk;
    LogPanel* panel = nullptr;
};

} // namespace

class TestLogViewer : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void controlsCarryTheirCaptions()
    {
        Viewer v;
        QCOMPARE(v.Button("cmdReset")->text(), QStringLiteral("Today"));
        QCOMPARE(v.Button("cmdReset")->toolTip(), QStringLiteral("View Today's Log"));
        QCOMPARE(v.Button("cmdPrint")->toolTip(), QStringLiteral("Print the above day's log"));
        QCOMPARE(v.Button("cmdCalendar")->text(), QStringLiteral("Calendar..."));
        QCOMPARE(v.desk.Find<QWidget>(QStringLiteral("calDate"))->toolTip(),
                 QStringLiteral("Available Logs in Red"));
        QCOMPARE(v.Bar()->minimum(), -365);
        QCOMPARE(v.Bar()->maximum(), 365);
        QCOMPARE(v.Bar()->value(), 0);
    }

    void stepsBackToADayAndShowsItsEntries()
    {
        Viewer v;
        QVERIFY(!v.Text().contains(QStringLiteral("08:05--"))); // today is shown first
        v.Bar()->setValue(-1);
        QCOMPARE(v.Bar()->value(), 0); // the bar goes back to rest
        QCOMPARE(v.desk.Viewer().LogBookDate(), Owners::Monday);
        QCOMPARE(v.DateCaption(), QStringLiteral("Monday, November 16, 2026"));
        const QStringList lines = v.Text().split(u'\n');
        QVERIFY2(lines.contains(QStringLiteral("08:00--Start program")), qPrintable(v.Text()));
        QVERIFY(lines.contains(QStringLiteral("08:05--Alarm set for Crew 7, expires at 08:20")));
        QVERIFY(lines.contains(QStringLiteral("08:20--Alarm Expired for Crew 7")));
        QVERIFY(lines.contains(QStringLiteral("08:30--Tea: kettle on (08:30)")));
        // Braces and backslashes of an entry go into the document unescaped and are read
        // as rich text: the group's text stays, the control word "\road" is dropped.
        QVERIFY(v.Text().contains(
            QStringLiteral("08:21--Alarm acknowleged, reset for Crew 7, expires at 08:36, Ridge km 4 C:")));
        QVERIFY(v.Button("cmdPrint")->isEnabled());
    }

    void documentIsWrittenByteForByteInTheCurrentDirectory()
    {
        Viewer v;
        v.Bar()->setValue(-1);
        QCOMPARE(
            TestEnvironment::ReadFile(QDir(v.desk.env.WorkFolder()).filePath(QStringLiteral("LogBook.rtf"))),
            Fixture("LogBook-20261116.rtf"));
    }

    void viewShowsTheDayAsTheWrittenDocumentReadsBack()
    {
        Viewer v;
        // The prepared day (with braces and a backslash in an entry), and lines of every sort
        // after it: odd characters, an empty note, rich-text syntax that reaches over lines, a
        // long line.
        QByteArray log = Fixture("20261116.log");
        log += Owners::Line("09:00", "NT", 0,
                            "Caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac: ", "\xf0\x9f\x98\x80\ttab", " (09:00)");
        log += Owners::Line("09:01", "NT", 0, "", "", "");
        log += Owners::Line("09:02", "NT", 1, "{\\b open ", "\\i x", "\\par y");
        log += Owners::Line("09:03", "EA", 1, "Alarm Expired for ", "Crew 8", "");
        log += Owners::Line("09:04", "NT", 0, "close} ", "\\uc2 z", "");
        log += Owners::Line("09:05", "EX", 0, "Exit program", "", "");
        log += Owners::Line("09:06", "NT", 0, "Long: ", QByteArray("word ").repeated(3000).constData(), "");
        TestEnvironment::WriteFile(v.desk.LogPath(Owners::Monday), log);
        v.Bar()->setValue(-1);

        auto* text = v.desk.Find<QTextEdit>(QStringLiteral("txtLog"));
        QTextDocument read;
        read.setDefaultFont(text->document()->defaultFont());
        QString error;
        QVERIFY(LoadRtfFile(QDir(v.desk.env.WorkFolder()).filePath(QStringLiteral("LogBook.rtf")), read,
                            &error, LogPanel::DisplayFactor));
        QVERIFY(read.toPlainText().contains(QStringLiteral("09:05--Exit program")));
        const QString difference = documentdiff::Difference(read, *text->document());
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void dayWithoutAFileIsNotAvailableAndCannotBePrinted()
    {
        Viewer v;
        v.Bar()->setValue(-5);
        QCOMPARE(v.Text(), QStringLiteral("Log not available for this date"));
        QVERIFY(!v.Button("cmdPrint")->isEnabled());
        v.Bar()->setValue(4);
        QCOMPARE(v.desk.Viewer().LogBookDate(), Owners::Monday);
        QVERIFY(v.Button("cmdPrint")->isEnabled());
    }

    void redrawsReuseTheViewersDocument()
    {
        Viewer v;
        auto* text = v.desk.Find<QTextEdit>(QStringLiteral("txtLog"));
        QTextDocument* document = text->document();
        for (int i = 0; i < 5; ++i)
            v.desk.Viewer().RefreshLogView();
        QCOMPARE(text->document(), document);
        QCOMPARE(text->findChildren<QTextDocument*>().size(), 1);
    }

    void todayButtonReturnsToToday()
    {
        Viewer v;
        v.Bar()->setValue(-3);
        QTest::mouseClick(v.Button("cmdReset"), Qt::LeftButton);
        QCOMPARE(v.desk.Viewer().LogBookDate(), Owners::Monday.addDays(1));
        QCOMPARE(v.DateCaption(), QStringLiteral("Tuesday, November 17, 2026"));
    }

    void entryOfAnotherDayIsNotShownButItsDayIsMarked()
    {
        Viewer v;
        v.Bar()->setValue(-1);
        QVERIFY(!v.Text().contains(QStringLiteral("written late")));
        QVERIFY(v.desk.Viewer().MarkedLogDays().contains(QDate(2026, 11, 15)));
        QVERIFY(v.desk.Viewer().MarkedLogDays().contains(Owners::Monday));
    }

    void calendarOpensOnTheShownDayAndAClickShowsThatDay()
    {
        Viewer v;
        QTest::mouseClick(v.Button("cmdCalendar"), Qt::LeftButton);
        auto* calendar = v.desk.Find<MonthCalendar>(QStringLiteral("calDate"));
        QVERIFY(calendar->isVisible());
        QCOMPARE(v.Button("cmdCalendar")->text(), QStringLiteral("Close Calendar"));
        QCOMPARE(calendar->CurrentDay(), Owners::Monday.addDays(1));
        emit calendar->DateClicked(Owners::Monday);
        QCOMPARE(v.desk.Viewer().LogBookDate(), Owners::Monday);
        QVERIFY(v.Text().contains(QStringLiteral("08:05--Alarm set for Crew 7")));
        QVERIFY(!calendar->isVisible());
        QCOMPARE(v.Button("cmdCalendar")->text(), QStringLiteral("Calendar..."));
    }

    void daysWithLogsAreMarkedAtStartUp()
    {
        Viewer v;
        auto* calendar = v.desk.Find<MonthCalendar>(QStringLiteral("calDate"));
        QVERIFY(calendar->IsMarked(Owners::Monday));
        QVERIFY(calendar->IsMarked(Owners::Monday.addDays(1))); // today's file, opened at start-up
        QVERIFY(!calendar->IsMarked(Owners::Monday.addDays(-3)));
    }

    void todaysLogStaysOpenAfterViewingToday()
    {
        Viewer v;
        QVERIFY(v.desk.log.IsTodaysLogOpen());
        v.desk.log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("x: "), QStringLiteral("y"),
                                 QString());
        v.desk.Viewer().RefreshLogView();
        QVERIFY(v.Text().contains(QStringLiteral("09:00--x: y")));
        QVERIFY(v.desk.log.IsTodaysLogOpen());
    }

    void viewingTodayWhileItsFileIsMissingLeavesTheLogClosed()
    {
        Viewer v;
        QFile::remove(v.desk.LogPath(v.desk.clock.Today()));
        v.desk.Viewer().RefreshLogView();
        QCOMPARE(v.Text(), QStringLiteral("Log not available for this date"));
        QVERIFY(!v.desk.log.IsTodaysLogOpen());
        v.desk.log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("x"), QString(), QString());
        QVERIFY(
            MessageBox::Shown().last().Text.startsWith(QStringLiteral("Error writing to the logbook\r\r")));
    }

    void documentThatCannotBeWrittenIsReported()
    {
        Viewer v;
        QDir work(v.desk.env.WorkFolder());
        QVERIFY(work.remove(QStringLiteral("LogBook.rtf"))); // written when the panel opened
        QVERIFY(work.mkdir(QStringLiteral("LogBook.rtf")));  // a folder in its way
        MessageBox::ClearShown();
        v.Bar()->setValue(-1);
        QVERIFY(!MessageBox::Shown().isEmpty());
        QVERIFY(MessageBox::Shown().last().Text.startsWith(QStringLiteral("Error refreshing logbook\r\r")));
        QVERIFY(v.desk.log.IsTodaysLogOpen());
    }

    void dayTooLargeToReadWholeIsShownAndPrintedInPartWithANote()
    {
        Viewer v;
        // A hundred megabytes of entries for the 16th: far more than any day's work.
        const QByteArray line = Owners::Line("08:00", "NT", 0, "Entry: ", "one of many", " (x)");
        const qint64 lines = (qint64(100) << 20) / line.size() + 1;
        {
            QFile big(v.desk.LogPath(Owners::Monday));
            QVERIFY(big.open(QIODevice::WriteOnly | QIODevice::Truncate));
            const QByteArray block = line.repeated(10000);
            for (qint64 written = 0; written < lines; written += 10000)
                QVERIFY(big.write(block) == block.size());
        }
        const qint64 size = QFileInfo(v.desk.LogPath(Owners::Monday)).size();
        QVERIFY(size >= (qint64(100) << 20));
        v.Bar()->setValue(-1);
        QCOMPARE(v.desk.Viewer().LogBookDate(), Owners::Monday);
        const QString text = v.Text();
        const QString note = QStringLiteral("(This day's log is ") + Owners::EnUs.toString(size) +
                             QStringLiteral(" bytes long: only its first 1,048,576 bytes are shown.)");
        QVERIFY2(text.endsWith(note), qPrintable(text.right(200)));
        const qsizetype shown = text.count(QStringLiteral("08:00--Entry: one of many (x)"));
        QVERIFY(shown > 0);
        QVERIFY(shown <= (1 << 20) / line.size() + 1);

        const LogViewer::PrintLines print = v.desk.viewer.ReadPrintLines(Owners::Monday);
        QCOMPARE(print.Lines.size(), shown + 1);
        QCOMPARE(print.Lines.last(),
                 QString(note).replace(QStringLiteral("shown"), QStringLiteral("printed")));
        QVERIFY(QFile::remove(v.desk.LogPath(Owners::Monday)));
    }

    void dayOfOneEndlessLineIsCutToo()
    {
        Viewer v;
        {
            QFile big(v.desk.LogPath(Owners::Monday));
            QVERIFY(big.open(QIODevice::WriteOnly | QIODevice::Truncate));
            const QByteArray block(1 << 20, 'x');
            for (int i = 0; i < 8; ++i)
                QVERIFY(big.write(block) == block.size()); // 8 MiB and no line end
        }
        v.Bar()->setValue(-1);
        QVERIFY2(v.Text().endsWith(QStringLiteral(" bytes are shown.)")), qPrintable(v.Text().right(100)));
        QVERIFY(QFile::remove(v.desk.LogPath(Owners::Monday)));
    }

    void loggingSwitchTurnsTheWriterOffAndDisablesTheChoices()
    {
        Viewer v;
        QTest::mouseClick(v.desk.Find<QCheckBox>(QStringLiteral("chkLog")), Qt::LeftButton);
        QVERIFY(!v.desk.log.Switches().LogOn);
        QVERIFY(!v.desk.Find<QWidget>(QStringLiteral("optAll"))->isEnabled());
    }
};

QTEST_MAIN(TestLogViewer)
#include "tst_logviewer.moc"
