#include "Desk.h"
#include "props/frmClockProps.h"
#include "shell/frmMain.h"
#include "sun/SolarEvents.h"
#include "sync/SyncScheduler.h"
#include "sync/SyncState.h"
#include "widgets/ColourDialog.h"
#include "widgets/Colours.h"
#include "widgets/FileDialog.h"
#include "widgets/MessageBox.h"
#include "widgets/TimeBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

namespace {

const QByteArray Chicago =
    "[General]\nZone=3\nAutoSync=0\n[Sun]\nLatDeg=41\nLatMin=52\nLongDeg=87\nLongMin=38\n";

// The main window with its properties dialog filled and shown, as the Props panel opens it.
struct PropsDesk : Desk
{
    explicit PropsDesk(const QByteArray& ini = Chicago) : Desk(ini)
    {
        if (!window->Load())
            qWarning("the main window did not load");
        props = &window->ClockProps();
        props->FillOwnZoneList(window->Prefs().Values().Zone);
        props->Form_Load();
        props->show();
    }
    template <typename T>
    T* Control(const char* name) const
    {
        T* control = props->findChild<T*>(QString::fromLatin1(name));
        if (!control)
            qWarning("no control named %s", name);
        return control;
    }
    const Settings& Values() const { return window->Prefs().Values(); }
    FakeStartAtLogin& Login() const { return static_cast<FakeStartAtLogin&>(*platform.startAtLogin); }
    QString SunLine() const { return window->findChild<QLabel*>(QStringLiteral("lblSun"))->text(); }

    frmClockProps* props = nullptr;
};

} // namespace

// "Clock Properties": what it shows when opened, the controls that take effect at once, OK
// with its coordinate check, Cancel, and the time source.
class TestFrmClockProps : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        MessageBox::SetTestMode(true);
        FileDialog::SetTestMode(true);
        ColourDialog::SetTestMode(true);
        FontDialog::SetTestMode(true);
    }
    void cleanup()
    {
        MessageBox::SetTestMode(false);
        FileDialog::SetTestMode(false);
        ColourDialog::SetTestMode(false);
        FontDialog::SetTestMode(false);
    }

    void controlsCarryTheirCaptionsAndTips()
    {
        PropsDesk desk;
        QCOMPARE(desk.props->windowTitle(), QStringLiteral("Clock Properties"));
        QCOMPARE(desk.Control<QCheckBox>("chkUTCRule")->text(),
                 QStringLiteral("Turn off UTC clock if not synchronized to an Internet clock "));
        QCOMPARE(desk.Control<QCheckBox>("chkWinStart")->toolTip(),
                 QStringLiteral("Check if you want Tarrowind to start automatically"));
        QCOMPARE(desk.Control<QCheckBox>("chkDayLight")->toolTip(),
                 QStringLiteral("Check if you are currently under daylight time"));
        QCOMPARE(desk.Control<QLineEdit>("edtLatMinutes")->toolTip(), QStringLiteral("Enter minutes 0-59"));
        QCOMPARE(desk.Control<QLineEdit>("txtBack")->toolTip(), QStringLiteral("Click here to change color"));
        QCOMPARE(desk.Control<QRadioButton>("optInternet")->toolTip(),
                 QStringLiteral("Requires Internet Connection"));
        QCOMPARE(desk.Control<QComboBox>("cboConnection")->toolTip(), QStringLiteral("Select a connection"));
        QCOMPARE(desk.Control<QPushButton>("cmdSync")->text(),
                 QStringLiteral("Set Computer's Clock to Internet Clock"));
        QCOMPARE(desk.Control<QPushButton>("cmdSync")->toolTip(),
                 QStringLiteral("Set your computer clock to a master Internet clock"));
        QCOMPARE(desk.Control<QPushButton>("cmdSetInet")->text(), QStringLiteral("Sync Now"));
        QStringList labels;
        for (QLabel* label : desk.props->findChildren<QLabel*>())
            labels << label->text();
        for (const char* text :
             {"Lat.", "Long.", "Deg.", "Min.", "Location Coordinates for Sunrise/Sunset   ",
              "Default Sound Clip", "Start with Windows", "Default Safety Check Interval", "Font Color",
              "Background Color", "Current Local Time", "Local Time Zone", "Clock Site", "Interval (hrs)",
              "Connection"})
            QVERIFY2(labels.contains(QString::fromLatin1(text)), text);
        // The dialog's own fill labels Eastern "-4 hrs" as it opens (the main window's redraw
        // puts the long names back whenever it runs).
        auto* zones = desk.Control<QComboBox>("cboTimeZone");
        QCOMPARE(zones->count(), 6);
        QCOMPARE(zones->itemText(4), QStringLiteral("Eastern Time (GMT -4 hrs)"));
        QCOMPARE(zones->itemData(4).toInt(), -5);
        auto* sites = desk.Control<QComboBox>("cboSyncSite");
        QCOMPARE(sites->count(), 6);
        QCOMPARE(sites->itemText(0), QStringLiteral("pool.ntp.org"));
        auto* hours = desk.Control<QComboBox>("cboSyncHours");
        QCOMPARE(hours->itemText(0), QStringLiteral("1"));
        QCOMPARE(desk.Control<QComboBox>("cboConnection")->itemText(1), QStringLiteral("Dial-up Connection"));
    }

    void openingFillsEveryControlFromTheValues()
    {
        PropsDesk desk(
            "[General]\nZone=4\nDayLight=1\nAudible=1\nSound=/sounds/bell.wav\nDefaultInterval=00:45\n"
            "AutoSync=-1\nAutoSyncHrs=3\nConnection=1\nSyncSite=time.example\nInetMinOffset=2\nUTCRule=0\n"
            "[Font]\nBackColor=255\nForeColor=65280\n[Sun]\nLatDeg=41\nLatMin=52\nLongDeg=87\nLongMin=38\n");
        QCOMPARE(desk.Control<QComboBox>("cboTimeZone")->currentIndex(), 4);
        QVERIFY(desk.Control<QCheckBox>("chkDayLight")->isChecked());
        // "/sounds/bell.wav" is not there: sound went off at start-up, and the box says so.
        QCOMPARE(desk.Values().Audible, 0);
        QVERIFY(!desk.Control<QCheckBox>("Check1")->isChecked());
        QCOMPARE(desk.Control<QLineEdit>("Text1")->text(), QStringLiteral("/sounds/bell.wav"));
        QCOMPARE(desk.Control<TimeBox>("edtDefault")->Text(), QStringLiteral("00:45"));
        QVERIFY(desk.Control<QRadioButton>("optInternet")->isChecked());
        QCOMPARE(desk.Control<QComboBox>("cboSyncHours")->currentText(), QStringLiteral("3"));
        QCOMPARE(desk.Control<QComboBox>("cboConnection")->currentIndex(), 1);
        QCOMPARE(desk.Control<QComboBox>("cboSyncSite")->currentText(), QStringLiteral("time.example"));
        QVERIFY(!desk.Control<QCheckBox>("chkUTCRule")->isChecked());
        QCOMPARE(desk.Control<QLineEdit>("edtLong")->text(), QStringLiteral("87"));
        QCOMPARE(desk.Control<QLineEdit>("txtBack")->palette().color(QPalette::Base), QColor(255, 0, 0));
        QCOMPARE(desk.Control<QLineEdit>("txtFore")->palette().color(QPalette::Base), QColor(0, 255, 0));
        QCOMPARE(desk.Control<QLabel>("lblSet")->text(), QStringLiteral("10:00"));
        QVERIFY(desk.Control<QLabel>("lblOffset")->isVisibleTo(desk.props));
        QCOMPARE(desk.Control<QLabel>("lblOffset")->text(), QStringLiteral("Time Difference:  2 minutes"));
        QVERIFY(desk.Control<QComboBox>("cboSyncSite")->isEnabled());
    }

    void zoneChangedThenCancelKeepsTheNewZone()
    {
        PropsDesk desk;
        desk.props->cboTimeZone_Click(4);
        QCOMPARE(desk.Values().Zone, 4);
        // The faces follow at once: Eastern is now the local face.
        QCOMPARE(desk.FaceText(4), QStringLiteral("10:00"));
        QCOMPARE(desk.FaceText(3), QStringLiteral("09:00"));
        desk.Control<QPushButton>("cmdCancel")->click();
        QVERIFY(!desk.props->isVisible());
        QCOMPARE(desk.Values().Zone, 4);
    }

    void zoneChosenFromTheListTakesEffect()
    {
        PropsDesk desk;
        auto* zones = desk.Control<QComboBox>("cboTimeZone");
        zones->setFocus();
        QTest::keyClick(zones, Qt::Key_Down); // Central to Eastern, as the operator picks it
        QCOMPARE(desk.Values().Zone, 4);
        QCOMPARE(zones->currentIndex(), 4);
        QCOMPARE(desk.FaceText(4), QStringLiteral("10:00"));
    }

    void halfTypedIntervalIsNotTaken()
    {
        PropsDesk desk;
        auto* interval = desk.Control<TimeBox>("edtDefault");
        interval->setFocus();
        interval->selectAll();
        QTest::keyClicks(interval, QStringLiteral("1"));
        QCOMPARE(desk.Values().DefaultInterval, QStringLiteral("00:15"));
    }

    void fontWithoutAPointSizeKeepsTheClocksSize()
    {
        PropsDesk desk;
        const double before = desk.Values().FontSize;
        QVERIFY(before > 0);
        QFont pixels(QStringLiteral("DejaVu Sans"));
        pixels.setPixelSize(30);
        FontDialog::SetNextAnswer(pixels);
        desk.Control<QPushButton>("cmdFont")->click();
        desk.props->cmdOK_Click();
        QCOMPARE(desk.Values().FontName, QStringLiteral("DejaVu Sans"));
        QCOMPARE(desk.Values().FontSize, before);
        desk.window->StopProgram();
        QVERIFY(!ReadSettings(*desk.store, desk.clock.Now()).Error);
    }

    void cancelWithWrongCoordinatesShowsNoSunTimes()
    {
        PropsDesk desk;
        desk.ClickPanel(QStringLiteral("Calc"));
        desk.Control<QLineEdit>("edtLat")->setText(QStringLiteral("89"));
        desk.Control<QLineEdit>("edtLatMinutes")->setText(QStringLiteral("99"));
        desk.props->cmdCancel_Click();
        QCOMPARE(MessageBox::Shown().size(), 0);
        QCOMPARE(desk.SunLine(), QStringLiteral("Sunrise/Sunset\n(no coordinates)"));
        QCOMPARE(desk.Values().LatMin, QStringLiteral("99"));
    }

    void computersClockResetsTheInternetOffsetAtOnce()
    {
        PropsDesk desk("[General]\nAutoSync=-1\nInetMinOffset=7\nAutoSyncHrs=24\n");
        QCOMPARE(desk.Values().InetMinOffset, 7);
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:07"));
        desk.Control<QRadioButton>("optPC")->click();
        QCOMPARE(desk.Values().InetMinOffset, 0);
        QCOMPARE(desk.Values().AutoSync, 0);
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:00"));
        QVERIFY(!desk.Control<QLabel>("lblOffset")->isVisibleTo(desk.props));
        for (const char* name : {"cboSyncSite", "cboSyncHours", "cboConnection"})
            QVERIFY(!desk.Control<QComboBox>(name)->isEnabled());
        QVERIFY(!desk.Control<QPushButton>("cmdSync")->isEnabled());
        QVERIFY(!desk.Control<QPushButton>("cmdSetInet")->isEnabled());
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging Off, System Clock"));
        // And the Internet clock again: the controls come back, the offset stays 0.
        desk.Control<QRadioButton>("optInternet")->click();
        QCOMPARE(desk.Values().AutoSync, -1);
        QVERIFY(desk.Control<QComboBox>("cboSyncSite")->isEnabled());
        QCOMPARE(desk.Control<QLabel>("lblOffset")->text(), QStringLiteral("Time Difference:  0 minutes"));
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging Off, Internet Clock"));
    }

    void emptySiteFallsBackToTheFirstSite_data()
    {
        QTest::addColumn<bool>("ok");
        QTest::newRow("OK") << true;
        QTest::newRow("Cancel") << false;
    }

    void emptySiteFallsBackToTheFirstSite()
    {
        QFETCH(bool, ok);
        PropsDesk desk;
        desk.Control<QComboBox>("cboSyncSite")->setCurrentText(QString());
        desk.Control<QPushButton>(ok ? "cmdOK" : "cmdCancel")->click();
        QCOMPARE(desk.Values().SyncSite, QStringLiteral("pool.ntp.org"));
        QVERIFY(!desk.props->isVisible());
    }

    void siteTypedIsTakenByOk()
    {
        PropsDesk desk;
        desk.Control<QComboBox>("cboSyncSite")->setCurrentText(QStringLiteral("ntp.example.org"));
        desk.props->cmdOK_Click();
        QCOMPARE(desk.Values().SyncSite, QStringLiteral("ntp.example.org"));
    }

    void checkBoxesTakeEffectAtOnce()
    {
        PropsDesk desk;
        desk.Control<QCheckBox>("chkDayLight")->click();
        QCOMPARE(desk.Values().DayLight, 1);
        QVERIFY(desk.window->windowTitle().endsWith(QStringLiteral("[Daylight Time]")));
        QCOMPARE(desk.FaceText(5), QStringLiteral("15:00")); // UTC in Central daylight time
        desk.Control<QCheckBox>("chkUTCRule")->click();
        QCOMPARE(desk.Values().UTCRule, 0);
        auto* audible = desk.Control<QCheckBox>("Check1");
        const qint16 before = desk.Values().Audible;
        audible->click();
        QCOMPARE(desk.Values().Audible, qint16(before == 1 ? 0 : 1));
        audible->click();
        QCOMPARE(desk.Values().Audible, before);
        desk.props->cmdCancel_Click();
        QCOMPARE(desk.Values().DayLight, 1);
    }

    void soundCanBeTurnedBackOnWithANewFile()
    {
        // Sound went off at start-up because the file was missing; a new file and the box
        // bring it back, and it is kept.
        Desk probe("[General]\nSound=/gone/alarm.wav\nAudible=1\n", false);
        QVERIFY(probe.window->Load());
        QCOMPARE(probe.window->Prefs().Values().Audible, 0);
        frmClockProps& props = probe.window->ClockProps();
        props.Form_Load();
        const QString wav = QDir(probe.env.ProgramFolder()).filePath(QStringLiteral("Bell.Wav"));
        TestEnvironment::WriteFile(wav, "RIFF");
        FileDialog::SetNextAnswer(wav);
        props.findChild<QPushButton*>(QStringLiteral("cmdBrowse"))->click();
        QCOMPARE(props.findChild<QLineEdit*>(QStringLiteral("Text1"))->text(), wav);
        props.findChild<QCheckBox*>(QStringLiteral("Check1"))->click();
        QCOMPARE(probe.window->Prefs().Values().Sound, wav);
        QCOMPARE(probe.window->Prefs().Values().Audible, 1);
        probe.window->StopProgram();
        QCOMPARE(probe.Stored(QStringLiteral("Audible")), QStringLiteral("1"));
        QCOMPARE(probe.Stored(QStringLiteral("Sound")), wav);
    }

    void listsAndBoxesTakeEffectAtOnce()
    {
        PropsDesk desk;
        desk.props->cboSyncHours_Click(5);
        QCOMPARE(desk.Values().AutoSyncHrs, 6);
        desk.props->cboConnection_Click(1);
        QCOMPARE(desk.Values().Connection, 1);
        auto* interval = desk.Control<TimeBox>("edtDefault");
        interval->setFocus();
        interval->selectAll();
        QTest::keyClicks(interval, QStringLiteral("0130"));
        QCOMPARE(desk.Values().DefaultInterval, QStringLiteral("01:30"));
        desk.Control<QLineEdit>("edtLat")->setText(QStringLiteral("45"));
        QCOMPARE(desk.Values().LatDeg, QStringLiteral("45"));
        desk.Control<QLineEdit>("edtLongMinutes")->setText(QStringLiteral("5"));
        QCOMPARE(desk.Values().LongMin, QStringLiteral("5"));
        desk.props->cmdCancel_Click();
        QCOMPARE(desk.Values().AutoSyncHrs, 6);
        QCOMPARE(desk.Values().DefaultInterval, QStringLiteral("01:30"));
    }

    void coloursShowOnTheSwatchAndTheClockAtOnce()
    {
        PropsDesk desk;
        ColourDialog::SetNextAnswer(ColourValue(255 + 256 * 128));
        QTest::mouseClick(desk.Control<QLineEdit>("txtFore"), Qt::LeftButton);
        QCOMPARE(desk.Values().ForeColor, QString::number(255 + 256 * 128));
        QCOMPARE(desk.Control<QLineEdit>("txtFore")->palette().color(QPalette::Base), QColor(255, 128, 0));
        QCOMPARE(desk.FaceFore(1), QColor(255, 128, 0));
        ColourDialog::SetNextAnswer(ColourValue(65536 * 200));
        QTest::mouseClick(desk.Control<QLineEdit>("txtBack"), Qt::LeftButton);
        QCOMPARE(desk.Values().BackColor, 65536 * 200);
        QCOMPARE(
            desk.window->findChild<QLabel*>(QStringLiteral("lblClock1_1"))->palette().color(QPalette::Window),
            QColor(0, 0, 200));
        // A cancelled colour dialog changes nothing.
        ColourDialog::SetNextAnswer(std::nullopt);
        QTest::mouseClick(desk.Control<QLineEdit>("txtBack"), Qt::LeftButton);
        QCOMPARE(desk.Values().BackColor, 65536 * 200);
        desk.props->cmdCancel_Click();
        QCOMPARE(desk.FaceFore(1), QColor(255, 128, 0));
    }

    void fontIsTakenByOkOnly()
    {
        PropsDesk desk;
        const QString before = desk.Values().FontName;
        QFont chosen(QStringLiteral("DejaVu Serif"));
        chosen.setPointSizeF(20);
        chosen.setItalic(true);
        chosen.setBold(false);
        FontDialog::SetNextAnswer(chosen);
        desk.Control<QPushButton>("cmdFont")->click();
        QCOMPARE(desk.Values().FontName, before);
        desk.props->cmdCancel_Click();
        QCOMPARE(desk.Values().FontName, before);

        desk.props->Form_Load();
        FontDialog::SetNextAnswer(chosen);
        desk.Control<QPushButton>("cmdFont")->click();
        desk.props->cmdOK_Click();
        QCOMPARE(desk.Values().FontName, QStringLiteral("DejaVu Serif"));
        QCOMPARE(desk.Values().FontSize, 20.0);
        QVERIFY(desk.Values().FontItalic);
        QVERIFY(!desk.Values().FontBold);
        QCOMPARE(desk.window->findChild<QLabel*>(QStringLiteral("lblClock1_1"))->font().family(),
                 QStringLiteral("DejaVu Serif"));
    }

    void okWithWrongCoordinatesSaysSoAndStaysOpen()
    {
        PropsDesk desk;
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.SunLine(), QStringLiteral("Sunrise: 06:41\nSunset:  16:29"));
        desk.Control<QLineEdit>("edtLat")->setText(QStringLiteral("12"));
        desk.props->cmdOK_Click();
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown().at(0).Text,
                 QStringLiteral("There is an error in the coordinates you entered: \r\r"
                                " - Latitude degrees must be between 20 and 80\r"));
        QCOMPARE(int(MessageBox::Shown().at(0).ButtonSet), int(MessageBox::Buttons::OkOnly));
        QVERIFY(desk.props->isVisible());
        QCOMPARE(desk.props->result(), 0);
        // Sunrise and sunset are no longer shown.
        QCOMPARE(desk.SunLine(), QStringLiteral("Sunrise/Sunset\n(no coordinates)"));
    }

    void okWithRightCoordinatesShowsTodaysSunriseAndSunset()
    {
        PropsDesk desk("[General]\nZone=3\n[Sun]\nLatDeg=0\nLatMin=0\nLongDeg=0\nLongMin=0\n");
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.SunLine(), QStringLiteral("Sunrise/Sunset\n(no coordinates)"));
        desk.Control<QLineEdit>("edtLat")->setText(QStringLiteral("41"));
        desk.Control<QLineEdit>("edtLatMinutes")->setText(QStringLiteral("52"));
        desk.Control<QLineEdit>("edtLong")->setText(QStringLiteral("87"));
        desk.Control<QLineEdit>("edtLongMinutes")->setText(QStringLiteral("38"));
        desk.props->cmdOK_Click();
        QCOMPARE(MessageBox::Shown().size(), 0);
        QVERIFY(!desk.props->isVisible());
        // Chicago on 16 November 2026, Central Standard Time.
        const SunTimes times =
            ComputeSunTimes(41, 52, QStringLiteral("N"), 87, 38, QStringLiteral("W"), 6, Desk::Monday);
        QCOMPARE(times.Rise, QStringLiteral("06:41"));
        QCOMPARE(times.Set, QStringLiteral("16:29"));
        QCOMPARE(desk.SunLine(), QStringLiteral("Sunrise: 06:41\nSunset:  16:29"));
    }

    void startAtLoginFollowsTheBox()
    {
        PropsDesk desk;
        auto* box = desk.Control<QCheckBox>("chkWinStart");
        QVERIFY(!box->isChecked());
        box->click();
        QVERIFY(desk.Login().Enabled);
        QCOMPARE(desk.Values().StartWithWindows, 1);
        box->click();
        QVERIFY(!desk.Login().Enabled);
        QCOMPARE(desk.Values().StartWithWindows, 0);
        // A failure is told, and the box shows what is so.
        desk.Login().ForcedError = QStringLiteral("The start at login could not be turned on: no room");
        box->click();
        QCOMPARE(MessageBox::Shown().constLast().Text,
                 QStringLiteral("The start at login could not be turned on: no room"));
        QVERIFY(!box->isChecked());
        QCOMPARE(desk.Values().StartWithWindows, 0);
    }

    void startAtLoginBoxShowsWhetherTheEntryExists()
    {
        Desk desk("[General]\nStartWithWindows=0\n");
        static_cast<FakeStartAtLogin&>(*desk.platform.startAtLogin).Enabled = true;
        QVERIFY(desk.window->Load());
        frmClockProps& props = desk.window->ClockProps();
        props.Form_Load();
        QVERIFY(props.findChild<QCheckBox*>(QStringLiteral("chkWinStart"))->isChecked());
        QCOMPARE(desk.window->Prefs().Values().StartWithWindows, 1);
    }

    void syncNowRunsASyncAndShowsTheTimeAfterwards()
    {
        PropsDesk desk("[General]\nZone=1\nAutoSync=-1\nAutoSyncHrs=24\nLastSync=2026-11-16 09:00:00\n");
        desk.Control<QComboBox>("cboSyncSite")->setCurrentText(QStringLiteral("ntp.example.org"));
        desk.Control<QPushButton>("cmdSetInet")->click();
        frmAutoSync* run = desk.window->Scheduler().Run();
        QVERIFY(run);
        QCOMPARE(run->parentWidget(), desk.props);
        QCOMPARE(desk.queries.Last()->Sites, QStringList{QStringLiteral("ntp.example.org")});
        // The server is 3 minutes ahead: the offset becomes 3.
        desk.queries.Last()->Finish(ServerAnswer(desk.clock, 3 * 60000));
        QCOMPARE(desk.Values().InetMinOffset, 3);
        QCOMPARE(desk.Control<QLabel>("lblOffset")->text(), QStringLiteral("Time Difference:  3 minutes"));
        // The clock's time in the chosen zone: 10:00 UTC here, Pacific is 8 hours behind.
        QCOMPARE(desk.Control<QLabel>("lblSet")->text(), QStringLiteral("02:00"));
    }

    void setComputersClockRunsASyncToo()
    {
        PropsDesk desk("[General]\nAutoSync=-1\nAutoSyncHrs=24\nLastSync=2026-11-16 09:00:00\n");
        desk.Control<QPushButton>("cmdSync")->click();
        QVERIFY(desk.window->Scheduler().Run());
        QCOMPARE(desk.queries.Made.size(), 1);
    }

    void everyChoiceSurvivesARestart()
    {
        PropsDesk desk;
        desk.props->cboTimeZone_Click(2);
        desk.Control<QCheckBox>("chkDayLight")->click();
        desk.Control<QRadioButton>("optInternet")->click();
        desk.props->cboSyncHours_Click(2);
        desk.props->cboConnection_Click(1);
        desk.Control<QComboBox>("cboSyncSite")->setCurrentText(QStringLiteral("time.example"));
        ColourDialog::SetNextAnswer(ColourValue(1234567));
        desk.props->txtBack_Click();
        desk.props->cmdOK_Click();
        desk.window->StopProgram();
        SettingsReadResult read = ReadSettings(*desk.store, desk.clock.Now());
        QVERIFY(!read.Error);
        QCOMPARE(read.Values.Zone, 2);
        QCOMPARE(read.Values.DayLight, 1);
        QCOMPARE(read.Values.AutoSync, -1);
        QCOMPARE(read.Values.AutoSyncHrs, 3);
        QCOMPARE(read.Values.Connection, 1);
        QCOMPARE(read.Values.SyncSite, QStringLiteral("time.example"));
        QCOMPARE(read.Values.BackColor, 1234567);
    }
};

QTEST_MAIN(TestFrmClockProps)
#include "tst_frmclockprops.moc"
