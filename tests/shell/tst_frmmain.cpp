#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "sync/SyncState.h"
#include "widgets/MessageBox.h"
#include "widgets/SecondsBox.h"
#include "widgets/TopMost.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QToolButton>
#include <QtTest>

namespace {

const QLocale EnUs = Desk::EnUs;
const QDate Monday = Desk::Monday;

const QByteArray LogAllEvents = "[General]\nLogOn=1\nLogSafetyOnly=False\n";
const QByteArray TwoAlarmsOneSet =
    "[General]\nLogOn=1\nLogSafetyOnly=False\n"
    "[Alarms]\nCount=2\nMessage%201=Crew 7\nExpire%201=11:30\nAlarmSet%201=True\n"
    "Safety%201=1\nMessage%202=Tea\nExpire%202=00:00\nAlarmSet%202=False\n";

} // namespace

class TestFrmMain : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup() { MessageBox::SetTestMode(false); }

    void firstRunShowsDefaultFacesAndLeavesEveryKeyAtItsDefault()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        QVERIFY(MessageBox::Shown().isEmpty());
        const QFont font = desk.Find<QLabel>(QStringLiteral("lblClock1_1"))->font();
        QCOMPARE(font.family(), QStringLiteral("Arial"));
        QCOMPARE(font.pointSizeF(), 16.0);
        QVERIFY(font.bold());
        QVERIFY(!font.italic());
        QCOMPARE(desk.FaceFore(1), QColor(255, 255, 0)); // yellow
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("lblClock1_1"))->palette().color(QPalette::Window),
                 QColor(1, 0, 0)); // practically black
        QCOMPARE(desk.Find<SecondsBox>(QStringLiteral("txtSeconds"))->font().pointSizeF(), 16.0 * 0.9);
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:00")); // Pacific is the local zone
        QCOMPARE(desk.FaceText(4), QStringLiteral("13:00"));
        QCOMPARE(desk.window->windowTitle(),
                 QStringLiteral("Tarrowind --Monday November 16,2026 [Standard Time]"));
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging Off, System Clock"));
        QVERIFY(!desk.Find<QCheckBox>(QStringLiteral("chkLog"))->isChecked());
        QVERIFY(desk.Find<QRadioButton>(QStringLiteral("optSafetyOnly"))->isChecked());

        desk.window->close();
        QVERIFY(desk.window->IsStopped());
        QSettings ini(desk.env.SettingsFile(), QSettings::IniFormat);
        const QStringList expected{QStringLiteral("Font/ForeColor"),
                                   QStringLiteral("Font/BackColor"),
                                   QStringLiteral("Font/Name"),
                                   QStringLiteral("Font/Bold"),
                                   QStringLiteral("Font/Size"),
                                   QStringLiteral("Font/Italic"),
                                   QStringLiteral("Sound"),
                                   QStringLiteral("StartWithWindows"),
                                   QStringLiteral("Zone"),
                                   QStringLiteral("Audible"),
                                   QStringLiteral("AutoSync"),
                                   QStringLiteral("AutoSyncHrs"),
                                   QStringLiteral("SyncSite"),
                                   QStringLiteral("LastSync"),
                                   QStringLiteral("InetMinOffset"),
                                   QStringLiteral("DayLight"),
                                   QStringLiteral("Sun/LatDeg"),
                                   QStringLiteral("Sun/LatMin"),
                                   QStringLiteral("Sun/LongDeg"),
                                   QStringLiteral("Sun/LongMin"),
                                   QStringLiteral("DefaultInterval"),
                                   QStringLiteral("LogOn"),
                                   QStringLiteral("LogSafetyOnly"),
                                   QStringLiteral("Connection"),
                                   QStringLiteral("UTCRule"),
                                   QStringLiteral("Alarms/Count")};
        for (const QString& key : expected)
            QVERIFY2(ini.contains(key), qPrintable(key));
        QCOMPARE(ini.value(QStringLiteral("Font/ForeColor")).toString(), QStringLiteral("65535"));
        QCOMPARE(ini.value(QStringLiteral("Font/BackColor")).toString(), QStringLiteral("1"));
        QCOMPARE(ini.value(QStringLiteral("Audible")).toString(), QStringLiteral("1"));
        QCOMPARE(ini.value(QStringLiteral("Zone")).toString(), QStringLiteral("1"));
        QCOMPARE(ini.value(QStringLiteral("UTCRule")).toString(), QStringLiteral("1"));
        QCOMPARE(ini.value(QStringLiteral("AutoSyncHrs")).toString(), QStringLiteral("24"));
        QCOMPARE(ini.value(QStringLiteral("DefaultInterval")).toString(), QStringLiteral("00:15"));
        QCOMPARE(ini.value(QStringLiteral("LogOn")).toString(), QStringLiteral("0"));
        QCOMPARE(ini.value(QStringLiteral("LogSafetyOnly")).toString(), QStringLiteral("True"));
        QCOMPARE(ini.value(QStringLiteral("Alarms/Count")).toString(), QStringLiteral("0"));
    }

    void storedEmptyForeColorGivesWhiteFaces()
    {
        Desk desk("[Font]\nForeColor=\n[General]\nUTCRule=0\n");
        QVERIFY(desk.window->Load());
        for (int i = 0; i < 6; ++i)
            QCOMPARE(desk.FaceFore(i), QColor(255, 255, 255));
        desk.window->close();
        QCOMPARE(desk.Stored(QStringLiteral("Font/ForeColor")), QStringLiteral("16777215"));
    }

    void absentForeColorGivesYellowFaces()
    {
        Desk desk("[General]\nUTCRule=0\n");
        QVERIFY(desk.window->Load());
        for (int i = 0; i < 6; ++i)
            QCOMPARE(desk.FaceFore(i), QColor(255, 255, 0));
    }

    void missingSoundFileTurnsSoundOffWithANotice_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::newRow("sound on") << QByteArray();
        QTest::newRow("sound already off") << QByteArray("[General]\nAudible=0\n");
    }

    void missingSoundFileTurnsSoundOffWithANotice()
    {
        QFETCH(QByteArray, ini);
        Desk desk(ini, false);
        QVERIFY(desk.window->Load());
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text,
                 QStringLiteral("Notice - Can not find sound file: DefaultAlarm.Wav\rSound turned off. "
                                "Select a new default sound file in Properties"));
        QCOMPARE(shown[0].Title, QStringLiteral("Tarrowind"));
        QCOMPARE(shown[0].ButtonSet, MessageBox::Buttons::OkOnly);
        QCOMPARE(desk.window->Prefs().Values().Audible, qint16(0));
        QVERIFY(!desk.Find<QRadioButton>(QStringLiteral("optDefault"))->isEnabled());
        QVERIFY(!desk.Find<QRadioButton>(QStringLiteral("optNamed"))->isEnabled());
        desk.window->close();
        QCOMPARE(desk.Stored(QStringLiteral("Audible")), QStringLiteral("0"));
        QCOMPARE(desk.Stored(QStringLiteral("Sound")), QStringLiteral("DefaultAlarm.Wav"));
    }

    void soundChoicesStayEnabledWhenSoundIsOn()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        QVERIFY(desk.Find<QRadioButton>(QStringLiteral("optDefault"))->isEnabled());
    }

    void corruptSettingEndsTheLoadAndLeavesTheStoreUntouched()
    {
        const QByteArray ini = "[General]\nZone=4\nAudible=loud\n[Font]\nName=Arial\n";
        Desk desk(ini);
        QVERIFY(!desk.window->Load());
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text,
                 QStringLiteral("The stored setting \"Audible\" in section \"General\" has the value "
                                "\"loud\", which cannot be read.\rTarrowind will close and leave the "
                                "stored settings unchanged."));
        desk.window->close();
        desk.window.reset();
        desk.store.reset();
        QCOMPARE(TestEnvironment::ReadFile(desk.env.SettingsFile()), ini);
        QVERIFY(!QFileInfo::exists(desk.env.LogFolder()));
    }

    void startEntryIsLoggedInTheSevenFieldFormat()
    {
        Desk desk(LogAllEvents);
        QVERIFY(desk.window->Load());
        QCOMPARE(desk.TodaysLog(),
                 QByteArray("\"11/16/2026\",\"10:00\",\"ST\",0,\"Start program\",\"\",\"\"\r\n"));
    }

    void safetyOnlyLoggingDropsTheStartEntry()
    {
        Desk desk("[General]\nLogOn=1\n");
        QVERIFY(desk.window->Load());
        QVERIFY(QFileInfo::exists(desk.LogPath(Monday)));
        QCOMPARE(desk.TodaysLog(), QByteArray());
    }

    void logSwitchesAreWrittenBackFromThePanel()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Log"));
        QTest::mouseClick(desk.Find<QCheckBox>(QStringLiteral("chkLog")), Qt::LeftButton);
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging On, System Clock"));
        QVERIFY(desk.Find<QRadioButton>(QStringLiteral("optAll"))->isEnabled());
        desk.Find<QRadioButton>(QStringLiteral("optAll"))->click();
        desk.window->close();
        QCOMPARE(desk.Stored(QStringLiteral("LogOn")), QStringLiteral("1"));
        QCOMPARE(desk.Stored(QStringLiteral("LogSafetyOnly")), QStringLiteral("False"));
    }

    void tickWritesThePcSecondsAndRedrawsTheFacesWhenTheMinuteChanges()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 0, 42, 500));
        QCOMPARE(desk.Find<SecondsBox>(QStringLiteral("txtSeconds"))->text(), QStringLiteral("42"));
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:00"));
        desk.Find<QLabel>(QStringLiteral("lblClock1_1"))->setText(QStringLiteral("mark"));
        desk.Tick(QTime(10, 0, 59, 500)); // the same minute: the faces are left alone
        QCOMPARE(desk.FaceText(1), QStringLiteral("mark"));
        desk.Tick(QTime(10, 1, 0, 0));
        QCOMPARE(desk.Find<SecondsBox>(QStringLiteral("txtSeconds"))->text(), QStringLiteral("00"));
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:01"));
        // A tick that comes late still shows the new minute at once.
        desk.Tick(QTime(10, 5, 42, 500));
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:05"));
    }

    void secondsBoxIgnoresTyping()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        auto* seconds = desk.Find<SecondsBox>(QStringLiteral("txtSeconds"));
        desk.Tick(QTime(10, 5, 42));
        QTest::keyClicks(seconds, QStringLiteral("99"));
        QCOMPARE(seconds->text(), QStringLiteral("42"));
    }

    void secondZeroSeenTwiceRunsTheMinuteOnce()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 15, 0, 0));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("0"));
        desk.store->Write(QStringLiteral("Alarms"), QStringLiteral("Count"), QStringLiteral("99"));
        desk.store->Sync();
        desk.Tick(QTime(10, 15, 0, 500));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("99"));
    }

    void alarmsAreSavedEveryQuarterHourOnly()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        const auto markStore = [&] {
            desk.store->Write(QStringLiteral("Alarms"), QStringLiteral("Count"), QStringLiteral("99"));
            desk.store->Sync();
        };
        for (int minute : {15, 30, 45}) {
            markStore();
            desk.window->CheckAlarms(10, minute);
            QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("0"));
        }
        markStore();
        desk.window->CheckAlarms(11, 0);
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("0"));
        markStore();
        desk.window->CheckAlarms(10, 16);
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("99"));
    }

    void internetOffsetMovesFacesAndMinuteButNotSeconds()
    {
        Desk desk("[General]\nInetMinOffset=-2\n");
        QVERIFY(desk.window->Load());
        desk.store->Write(QStringLiteral("Alarms"), QStringLiteral("Count"), QStringLiteral("99"));
        // PC time 10:17:00 is corrected to 10:15: the quarter-hour save runs.
        desk.Tick(QTime(10, 17, 0));
        QCOMPARE(desk.Find<SecondsBox>(QStringLiteral("txtSeconds"))->text(), QStringLiteral("00"));
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:15"));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("0"));
        QCOMPARE(desk.window->InternetNow(), QStringLiteral("10:15"));
    }

    void ticksWithinAMinuteDoNotReadTheLocalTime()
    {
        Desk desk;
        desk.clock.Set(Monday, QTime(10, 0, 0, 100));
        QVERIFY(desk.window->Load());
        desk.window->tmrMain_Timer();
        const int reads = desk.clock.NowReads();
        auto* seconds = desk.Find<SecondsBox>(QStringLiteral("txtSeconds"));
        // Every half second up to 10:00:59.600: the seconds box follows, the zone is not read.
        for (int tick = 1; tick < 120; ++tick) {
            desk.clock.Set(Monday, QTime(10, 0, 0, 100).addMSecs(tick * 500));
            desk.window->tmrMain_Timer();
            QCOMPARE(seconds->text(), QStringLiteral("%1").arg(tick / 2, 2, 10, QLatin1Char('0')));
        }
        QCOMPARE(desk.clock.NowReads(), reads);
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:00"));
        // The next minute is read and shown at its first tick.
        desk.clock.Set(Monday, QTime(10, 1, 0, 100));
        desk.window->tmrMain_Timer();
        QVERIFY(desk.clock.NowReads() > reads);
        QCOMPARE(seconds->text(), QStringLiteral("00"));
        QCOMPARE(desk.FaceText(1), QStringLiteral("10:01"));
    }

    void midnightOpensTheNewDaysLogBeforeTheMinutesWork()
    {
        Desk desk(LogAllEvents);
        desk.clock.Set(Monday, QTime(23, 59, 58));
        QVERIFY(desk.window->Load());
        desk.clock.Set(Monday.addDays(1), QTime(0, 0, 0));
        desk.window->tmrMain_Timer();
        QVERIFY(QFileInfo::exists(desk.LogPath(Monday.addDays(1))));
        QCOMPARE(desk.window->Log().OpenDay(), Monday.addDays(1));
        // The new day has a log now: the calendar marks it.
        QVERIFY(desk.window->Viewer().MarkedLogDays().contains(Monday.addDays(1)));
        desk.window->Log().WriteLogEntry(QStringLiteral("EA"), 1, QStringLiteral("Alarm Expired for "),
                                         QStringLiteral("Night crew"), QString());
        QCOMPARE(
            TestEnvironment::ReadFile(desk.LogPath(Monday.addDays(1))),
            QByteArray("\"11/17/2026\",\"00:00\",\"EA\",1,\"Alarm Expired for \",\"Night crew\",\"\"\r\n"));
        QCOMPARE(desk.window->windowTitle(),
                 QStringLiteral("Tarrowind --Tuesday November 17,2026 [Standard Time]"));
    }

    void titleShowsDaylightTime()
    {
        Desk desk("[General]\nDayLight=1\n");
        QVERIFY(desk.window->Load());
        QCOMPARE(desk.window->windowTitle(),
                 QStringLiteral("Tarrowind --Monday November 16,2026 [Daylight Time]"));
    }

    void daylightTimeMovesOnlyTheUtcFace()
    {
        Desk desk("[General]\nZone=4\nDayLight=1\nUTCRule=0\n");
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(14, 0, 0));
        QCOMPARE(desk.FaceText(4), QStringLiteral("14:00"));
        QCOMPARE(desk.FaceText(1), QStringLiteral("11:00"));
        QCOMPARE(desk.FaceText(5), QStringLiteral("18:00"));
    }

    void utcRuleBlanksTheUtcFaceWhileTheClockIsThePcs()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.Tick(QTime(10, 1, 0));
        auto* utc = desk.Find<QLabel>(QStringLiteral("lblClock1_5"));
        QCOMPARE(utc->palette().color(QPalette::WindowText), utc->palette().color(QPalette::Window));
        QCOMPARE(utc->text(), QStringLiteral("18:01"));
    }

    void zoneOutsideTheTableLeavesTheFacesAlone()
    {
        Desk desk("[General]\nZone=9\n");
        QVERIFY(desk.window->Load());
        const QString before = desk.FaceText(2);
        desk.Tick(QTime(10, 7, 0));
        QCOMPARE(desk.FaceText(2), before);
        QVERIFY(desk.Find<QComboBox>(QStringLiteral("cboTimeZone"))->currentIndex() < 0);
    }

    void zoneListsCarryTheOffsets()
    {
        Desk desk("[General]\nZone=3\n");
        QVERIFY(desk.window->Load());
        auto* zones = desk.Find<QComboBox>(QStringLiteral("cboTimeZone"));
        QCOMPARE(zones->count(), 6);
        QCOMPARE(zones->itemText(4), QStringLiteral("Eastern Time (GMT -5 hrs)"));
        QCOMPARE(zones->itemData(4).toInt(), -5);
        QCOMPARE(zones->currentIndex(), 3);
        auto* calcZones = desk.Find<QComboBox>(QStringLiteral("cboZone"));
        QCOMPARE(calcZones->count(), 6);
        QCOMPARE(calcZones->itemText(0), QStringLiteral("Alaska"));
        QCOMPARE(calcZones->itemData(0).toInt(), -9);
        QCOMPARE(calcZones->currentText(), QStringLiteral("UTC"));
        // The calculator's list is filled once: a later choice survives redraws.
        calcZones->setCurrentIndex(2);
        desk.window->SetTimes();
        QCOMPARE(calcZones->currentIndex(), 2);
        QCOMPARE(calcZones->count(), 6);
    }

    void restoredAlarmsShowInTheStatusAndUnsetExpiriesAreBlanked()
    {
        Desk desk(TwoAlarmsOneSet);
        QVERIFY(desk.window->Load());
        QCOMPARE(desk.Status(), QStringLiteral("2 alarms, 1 set, Logging On, System Clock"));
        QCOMPARE(desk.Alarms().At(1).Expire, QStringLiteral("11:30"));
        QCOMPARE(desk.Alarms().At(2).Expire, QStringLiteral(" "));
        QCOMPARE(desk.Alarms().SelectedAlarm, 1);
    }

    void closingWithNoAlarmSetNeitherAsksNorLogs()
    {
        Desk desk(LogAllEvents);
        QVERIFY(desk.window->Load());
        const QByteArray before = desk.TodaysLog();
        QVERIFY(desk.window->close());
        QVERIFY(MessageBox::Shown().isEmpty());
        QCOMPARE(desk.TodaysLog(), before);
        QVERIFY(!desk.window->Log().IsTodaysLogOpen());
    }

    void closingWithAlarmsSetAndNoKeepsRunning()
    {
        Desk desk(TwoAlarmsOneSet);
        QVERIFY(desk.window->Load());
        const QByteArray before = desk.TodaysLog();
        MessageBox::SetNextAnswer(MessageBox::Answer::No);
        QVERIFY(!desk.window->close());
        QVERIFY(!desk.window->IsStopped());
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text, QStringLiteral("You have alarms that are set\rDo you wish to continue ?"));
        QCOMPARE(shown[0].Title, QStringLiteral("Exit Tarrowind"));
        QCOMPARE(shown[0].ButtonSet, MessageBox::Buttons::YesNo);
        QCOMPARE(shown[0].IconKind, MessageBox::Icon::Exclamation);
        QVERIFY(shown[0].DefaultSecond);
        QCOMPARE(desk.TodaysLog(), before);
        // The alarms were saved before the question.
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Expire 2")), QStringLiteral(" "));
    }

    void closingWithAlarmsSetAndYesLogsTheExit()
    {
        Desk desk(TwoAlarmsOneSet);
        QVERIFY(desk.window->Load());
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->close());
        QVERIFY(desk.window->IsStopped());
        QVERIFY(
            desk.TodaysLog().endsWith("\"11/16/2026\",\"10:00\",\"EX\",0,\"Exit program\",\"\",\"\"\r\n"));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("2"));
    }

    void exitPanelClosesTheWindow()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Exit"));
        QVERIFY(desk.window->IsStopped());
        QVERIFY(!desk.window->isVisible());
    }

    void suspendWithNoAlarmSetIsAllowedWithoutAQuestion()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        QVERIFY(desk.window->SysInfo1_QuerySuspend());
        QVERIFY(MessageBox::Shown().isEmpty());
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("0"));
    }

    void suspendWithAlarmsSetAsks()
    {
        Desk desk(TwoAlarmsOneSet);
        QVERIFY(desk.window->Load());
        MessageBox::SetNextAnswer(MessageBox::Answer::No);
        QVERIFY(!desk.window->SysInfo1_QuerySuspend());
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].Text,
                 QStringLiteral("You have alarms that are set\rDo you wish to suspend system?\r"
                                "(if yes alarms will be disabled)"));
        QCOMPARE(shown[0].Title, QStringLiteral("Tarrowind"));
        QVERIFY(shown[0].DefaultSecond);
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Count")), QStringLiteral("2"));
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->SysInfo1_QuerySuspend());
    }

    void endingTheSessionSavesEverythingWithoutAQuestion()
    {
        Desk desk(TwoAlarmsOneSet);
        QVERIFY(desk.window->Load());
        desk.Alarms().At(2).Message = QStringLiteral("Changed");
        desk.window->EndSession();
        QVERIFY(MessageBox::Shown().isEmpty());
        QVERIFY(desk.window->IsStopped());
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Message 2")), QStringLiteral("Changed"));
        QCOMPARE(desk.Stored(QStringLiteral("Zone")), QStringLiteral("1"));
        QVERIFY(!desk.window->Log().IsTodaysLogOpen());
        QVERIFY(desk.window->close()); // closing afterwards asks nothing
        QVERIFY(MessageBox::Shown().isEmpty());
    }

    void exitStoresNoFalseSafetyRecord()
    {
        Desk desk(
            "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\nCount=1\nMessage%201=Crew 7\n"
            "TypeTimer%201=True\nInterval%201=00:15\nExpire%201=10:15\nAlarmSet%201=True\nRepeat%201=1\n"
            "Safety%201=1\nLastPosition%201=09:58 Pass road km 3\n");
        desk.clock.Set(Monday, QTime(10, 14, 50));
        QVERIFY(desk.window->Load());
        desk.window->CheckAlarms(10, 15);
        frmAlarm* w = desk.Windows().AlarmWindow(1);
        QVERIFY(w);
        w->findChild<QLineEdit*>(QStringLiteral("txtLocation"))->setText(QStringLiteral("half typed"));
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->close());
        // The crew never checked in: their last safety check is the one before.
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/LastPosition 1")),
                 QStringLiteral("09:58 Pass road km 3"));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/AlarmSet 1")), QStringLiteral("True"));
    }

    void exitDuringACheckInStoresTheAlarmStillPending()
    {
        Desk desk(
            "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\nCount=1\nMessage%201=Crew 7\n"
            "TypeTimer%201=True\nInterval%201=00:15\nExpire%201=10:40\nAlarmSet%201=True\nRepeat%201=1\n"
            "Safety%201=1\n");
        QVERIFY(desk.window->Load());
        desk.Windows().StartCheckIn(1);
        QVERIFY(!desk.Alarms().At(1).AlarmSet);
        desk.window->EndSession();
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/AlarmSet 1")), QStringLiteral("True"));
        QCOMPARE(desk.Stored(QStringLiteral("Alarms/Expire 1")), QStringLiteral("10:40"));
    }

    void endOfSessionWithAlarmsSetLogsTheExit()
    {
        Desk desk(TwoAlarmsOneSet);
        QVERIFY(desk.window->Load());
        desk.window->EndSession();
        QVERIFY(
            desk.TodaysLog().endsWith("\"11/16/2026\",\"10:00\",\"EX\",0,\"Exit program\",\"\",\"\"\r\n"));
        QVERIFY(!desk.window->Log().IsTodaysLogOpen());
    }

    void endOfSessionWithNoAlarmSetLogsNoExit()
    {
        Desk desk(LogAllEvents);
        QVERIFY(desk.window->Load());
        const QByteArray before = desk.TodaysLog();
        desk.window->EndSession();
        QCOMPARE(desk.TodaysLog(), before);
    }

    void clockChangeRedrawsTheFacesAtOnce()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.clock.Set(Monday, QTime(15, 42, 10));
        desk.window->SysInfo1_TimeChanged();
        QCOMPARE(desk.FaceText(1), QStringLiteral("15:42"));
    }

    void syncButtonShowsTheNextSync()
    {
        Desk desk("[General]\nLastSync=2026-11-16 08:45:00\nAutoSyncHrs=3\nAutoSync=-1\n");
        QVERIFY(desk.window->Load());
        auto* sync = desk.Find<QPushButton>(QStringLiteral("cmdSync"));
        QCOMPARE(sync->text(), QStringLiteral("Clock Sync"));
        QCOMPARE(sync->toolTip(), QStringLiteral("Next Sync: 11:45"));
        QVERIFY(!sync->isHidden());
        QCOMPARE(desk.Status(), QStringLiteral("0 alarms, 0 set, Logging Off, Internet Clock"));
        desk.window->Sync().SetSynchronised(false);
        desk.window->SyncCheck(0);
        QCOMPARE(sync->palette().color(QPalette::Button), QColor(255, 0, 0));
        // Not synchronised with the UTC rule: the UTC face takes face 1's background.
        QCOMPARE(desk.FaceFore(5),
                 desk.Find<QLabel>(QStringLiteral("lblClock1_1"))->palette().color(QPalette::Window));
    }

    void syncButtonIsHiddenWhileTheClockIsThePcs()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        QVERIFY(desk.Find<QPushButton>(QStringLiteral("cmdSync"))->isHidden());
    }

    void alarmPanelReplacesTheCalculator()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        QVERIFY(QTest::qWaitForWindowExposed(desk.window.get()));
        auto* calc = desk.Find<QWidget>(QStringLiteral("picCalc"));
        auto* alarm = desk.Find<QWidget>(QStringLiteral("picAlarm"));
        auto* log = desk.Find<QWidget>(QStringLiteral("picLog"));
        desk.ClickPanel(QStringLiteral("Calc"));
        QVERIFY(calc->isVisible());
        desk.ClickPanel(QStringLiteral("Alarm"));
        QVERIFY(!calc->isVisible());
        QVERIFY(alarm->isVisible());
        QVERIFY(!log->isVisible());
        desk.ClickPanel(QStringLiteral("Log"));
        QVERIFY(!alarm->isVisible());
        QVERIFY(log->isVisible());
    }

    void panelOpensBelowTheClockAndTheWindowGrowsAndShrinks()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        QVERIFY(QTest::qWaitForWindowExposed(desk.window.get()));
        auto* main = desk.Find<QWidget>(QStringLiteral("picMain"));
        auto* bar = desk.Find<QWidget>(QStringLiteral("stsBar"));
        auto* calc = desk.Find<QWidget>(QStringLiteral("picCalc"));
        QTRY_COMPARE(desk.window->height(), main->height() + bar->height());
        const int bareHeight = desk.window->height();
        const int barTop = bar->y();

        desk.ClickPanel(QStringLiteral("Calc"));
        QTRY_COMPARE(desk.window->height(), main->height() + calc->height() + bar->height());
        QCOMPARE(calc->y(), barTop);
        QCOMPARE(bar->y() + bar->height(), desk.window->height());

        desk.ClickPanel(QStringLiteral("Calc"));
        QVERIFY(!calc->isVisible());
        QTRY_COMPARE(desk.window->height(), bareHeight);

        desk.ClickPanel(QStringLiteral("Alarm"));
        QTest::mouseClick(desk.Find<QPushButton>(QStringLiteral("cmdCloseAlarm")), Qt::LeftButton);
        QVERIFY(!desk.Find<QWidget>(QStringLiteral("picAlarm"))->isVisible());
        QTRY_COMPARE(desk.window->height(), bareHeight);
    }

    void statusLineFollowsTheAlarmPanelAndTheLogSwitch()
    {
        Desk desk(LogAllEvents);
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Alarm"));
        QTest::mouseClick(desk.Find<QPushButton>(QStringLiteral("cmdNew")), Qt::LeftButton);
        QCOMPARE(desk.Status(), QStringLiteral("1 alarms, 0 set, Logging On, System Clock"));
        auto* expire = desk.Find<QLineEdit>(QStringLiteral("edtExpire"));
        expire->setFocus();
        expire->selectAll();
        QTest::keyClicks(expire, QStringLiteral("0730"));
        QTest::mouseClick(desk.Find<QPushButton>(QStringLiteral("cmdSet")), Qt::LeftButton);
        QCOMPARE(desk.Status(), QStringLiteral("1 alarms, 1 set, Logging On, System Clock"));
        desk.ClickPanel(QStringLiteral("Log"));
        QTest::mouseClick(desk.Find<QCheckBox>(QStringLiteral("chkLog")), Qt::LeftButton);
        QCOMPARE(desk.Status(), QStringLiteral("1 alarms, 1 set, Logging Off, System Clock"));
    }

    void logPanelEnablesItsChoicesFromTheLogSwitch()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Log"));
        QVERIFY(!desk.Find<QRadioButton>(QStringLiteral("optAll"))->isEnabled());
        QVERIFY(!desk.Find<QRadioButton>(QStringLiteral("optSafetyOnly"))->isEnabled());
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("txtDate"))->text(),
                 QStringLiteral("Monday, November 16, 2026"));
        QCOMPARE(desk.Find<QPushButton>(QStringLiteral("cmdCloseLog"))->toolTip(),
                 QStringLiteral("Close log book"));
    }

    void openingTheCalculatorFillsTheDepartureWithTheClockTime()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        auto* etd = desk.Find<QLineEdit>(QStringLiteral("edtETD"));
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(etd->displayText(), QStringLiteral("10:00"));
        // Pacific standard time is eight hours behind UTC, the calculator's first zone.
        QCOMPARE(desk.Find<QLineEdit>(QStringLiteral("edtETDUTC"))->displayText(), QStringLiteral("18:00"));

        desk.ClickPanel(QStringLiteral("Calc"));
        desk.clock.Set(Monday, QTime(10, 7, 40));
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(etd->displayText(), QStringLiteral("10:07"));
    }

    void calculatorUtcBoxesFollowTheHomeZoneAndDaylightTime()
    {
        Desk desk("[General]\nZone=3\nDayLight=1\n");
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.Find<QLineEdit>(QStringLiteral("edtETD"))->displayText(), QStringLiteral("10:00"));
        // Central is six hours behind UTC, five in daylight time.
        QCOMPARE(desk.Find<QLineEdit>(QStringLiteral("edtETDUTC"))->displayText(), QStringLiteral("15:00"));
    }

    void tablesButtonOpensTheTablesDialogWithTheWindowsZone()
    {
        Desk desk("[General]\nZone=4\nDayLight=1\n");
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Calc"));
        QString caption;
        int zone = -1;
        bool dayLight = false;
        // The dialog is modal: look at it and close it from the event loop it runs.
        QTimer::singleShot(0, desk.window.get(), [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog == nullptr) {
                // Not the dialog expected: close whatever is open so that the test ends.
                for (QWidget* top : QApplication::topLevelWidgets())
                    if (auto* other = qobject_cast<QDialog*>(top); other && other->isVisible())
                        other->reject();
                return;
            }
            caption = dialog->windowTitle();
            zone = dialog->findChild<QComboBox*>(QStringLiteral("cboTimeZone"))->currentIndex();
            dayLight = dialog->findChild<QCheckBox*>(QStringLiteral("chkDayLight"))->isChecked();
            dialog->findChild<QPushButton*>(QStringLiteral("cmdClose"))->click();
        });
        desk.Find<QPushButton>(QStringLiteral("cmdTables"))->click();
        QCOMPARE(caption, QStringLiteral("Sunrise/Sunset Tables"));
        QCOMPARE(zone, 4);
        QVERIFY(dayLight);
    }

    void sunLineShowsNoCoordinatesForLatitudeZero()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("lblSun"))->text(),
                 QStringLiteral("Sunrise/Sunset\n(no coordinates)"));
    }

    void sunLineShowsTodaysSunriseAndSunsetForValidCoordinates()
    {
        // Chicago, Central Standard Time.
        Desk desk("[General]\nZone=3\n[Sun]\nLatDeg=41\nLatMin=52\nLongDeg=087\nLongMin=38\n");
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("lblSun"))->text(),
                 QStringLiteral("Sunrise: 06:41\nSunset:  16:29"));
    }

    void sunLineUsesDaylightTimeAnHourAhead()
    {
        Desk desk("[General]\nZone=3\nDayLight=1\n[Sun]\nLatDeg=41\nLatMin=52\nLongDeg=087\nLongMin=38\n");
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("lblSun"))->text(),
                 QStringLiteral("Sunrise: 07:41\nSunset:  17:29"));
    }

    void invalidCoordinatesShowNoSunTimes()
    {
        Desk desk("[Sun]\nLatDeg=10\nLatMin=00\nLongDeg=087\nLongMin=38\n");
        QVERIFY(desk.window->Load());
        desk.window->show();
        desk.ClickPanel(QStringLiteral("Calc"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("lblSun"))->text(),
                 QStringLiteral("Sunrise/Sunset\n(no coordinates)"));
    }

    void stayOnTopToggles()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->show();
        QVERIFY(QTest::qWaitForWindowExposed(desk.window.get()));
        auto* onTop = desk.Find<QToolButton>(QStringLiteral("imgOnTop"));
        auto* notTop = desk.Find<QToolButton>(QStringLiteral("imgNotTop"));
        QCOMPARE(onTop->toolTip(), QStringLiteral("Stay on Top"));
        QCOMPARE(notTop->toolTip(), QStringLiteral("Don't stay on top"));
        QVERIFY(!IsTopMost(desk.window.get()));
        QTest::mouseClick(onTop, Qt::LeftButton);
        QVERIFY(IsTopMost(desk.window.get()));
        QVERIFY(desk.window->isVisible());
        QVERIFY(onTop->isHidden() && !onTop->isEnabled());
        QVERIFY(!notTop->isHidden() && notTop->isEnabled());
        QTest::mouseClick(notTop, Qt::LeftButton);
        QVERIFY(!IsTopMost(desk.window.get()));
        QVERIFY(!onTop->isHidden() && onTop->isEnabled());
        QVERIFY(notTop->isHidden());
    }

    void statusBarPanelsCarryTheirToolTips()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("Calc"))->toolTip(), QStringLiteral("Calculate Times"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("Alarm"))->toolTip(), QStringLiteral("Alarm Set"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("Props"))->toolTip(),
                 QStringLiteral("Set Clock Properties"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("Log"))->toolTip(), QStringLiteral("Logbook"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("Exit"))->toolTip(), QStringLiteral("Exit"));
        QCOMPARE(desk.Find<QLabel>(QStringLiteral("lblClock1_3"))->property("Tag").toString(),
                 QStringLiteral("Central"));
    }

    void existingLogFilesAreMarked()
    {
        Desk desk;
        TestEnvironment::WriteFile(desk.LogPath(QDate(2026, 11, 2)), "");
        TestEnvironment::WriteFile(QDir(desk.env.LogFolder()).filePath(QStringLiteral("readme.log")), "");
        QVERIFY(desk.window->Load());
        QVERIFY(desk.Viewer().MarkedLogDays().contains(QDate(2026, 11, 2)));
        QVERIFY(desk.Viewer().MarkedLogDays().size() == 1); // today's file is opened after the marking
    }

    void settingsFileThatCannotBeReadWholeIsLeftAsItWas_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<QString>("message");
        const QString unreadable = QStringLiteral(
            "it is not a settings file that can be read whole (a line without \"=\", a byte-order mark or "
            "binary data)");
        QTest::newRow("a line without =") << "note-line.ini" << unreadable;
        QTest::newRow("a byte-order mark") << "byte-order-mark.ini" << unreadable;
        QTest::newRow("binary data") << "binary.ini" << unreadable;
        QTest::newRow("a word for true or false")
            << "alarmset-word.ini"
            << "The stored setting \"AlarmSet 1\" in section \"Alarms\" has the value \"yes\", which cannot "
               "be read.";
    }

    void settingsFileThatCannotBeReadWholeIsLeftAsItWas()
    {
        QFETCH(QString, fixture);
        QFETCH(QString, message);
        QFile source(QStringLiteral(TW_TEST_DATA "/settings/") + fixture);
        QVERIFY(source.open(QIODevice::ReadOnly));
        const QByteArray bytes = source.readAll();
        {
            Desk desk;
            TestEnvironment::WriteFile(desk.env.SettingsFile(), bytes);
            SettingsStore store(desk.env.SettingsFile());
            PlatformServices platform = Desk::FakePlatform(desk.flash);
            frmMain window({desk.clock, store, desk.env.LogFolder(), Desk::EnUs, desk.SoundFolders(),
                            desk.SoundFactory(), platform});
            QVERIFY(!window.Load());
            const auto shown = MessageBox::Shown();
            QCOMPARE(shown.size(), 1);
            QVERIFY2(shown[0].Text.contains(message), qPrintable(shown[0].Text));
            QVERIFY(shown[0].Text.endsWith(
                        QStringLiteral("Tarrowind will close and leave the file unchanged.")) ||
                    shown[0].Text.endsWith(
                        QStringLiteral("Tarrowind will close and leave the stored settings unchanged.")));
            QCOMPARE(TestEnvironment::ReadFile(desk.env.SettingsFile()), bytes);
        }
    }

    void settingsWrittenInLatin1AreReadAsWritten()
    {
        QFile source(QStringLiteral(TW_TEST_DATA "/settings/latin1.ini"));
        QVERIFY(source.open(QIODevice::ReadOnly));
        Desk desk(source.readAll());
        QVERIFY(desk.window->Load());
        QCOMPARE(desk.window->Prefs().Values().SyncSite, QStringLiteral("caf\u00e9.example"));
        QCOMPARE(desk.Alarms().At(1).Message, QStringLiteral("Caf\u00e9 on the ridge"));
    }

    void settingsWrittenInLatin1KeepEveryKeyWhenWrittenBack()
    {
        Desk desk("[General]\nLogOn=1\nNote=na\xefve\nLead=Zo\xe9\n[Sect\xe9]\nK\xe9y=\xe9t\xe9\n[Alarms]"
                  "\nCount=1\n"
                  "Message%201=Caf\xe9\nExpire%201=10:15\nAlarmSet%201=True\nMessage%203=Old \xe9t\xe9\n");
        QVERIFY(desk.window->Load());
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->close());
        const QByteArray written = TestEnvironment::ReadFile(desk.env.SettingsFile());
        QVERIFY2(!written.contains("\xef\xbf\xbd") && !written.contains("UFFFD"), written.constData());
        QSettings back(desk.env.SettingsFile(), QSettings::IniFormat);
        QCOMPARE(back.value(QStringLiteral("Note")).toString(), QStringLiteral("na\u00efve"));
        QCOMPARE(back.value(QStringLiteral("Lead")).toString(), QStringLiteral("Zo\u00e9"));
        QCOMPARE(back.value(QStringLiteral("Sect\u00e9/K\u00e9y")).toString(),
                 QStringLiteral("\u00e9t\u00e9"));
        QCOMPARE(back.value(QStringLiteral("Alarms/Message 1")).toString(), QStringLiteral("Caf\u00e9"));
        QCOMPARE(back.value(QStringLiteral("Alarms/Message 3")).toString(),
                 QStringLiteral("Old \u00e9t\u00e9"));
    }

    void settingsThatCannotBeWrittenAreToldOnceAndTheExitDoesNotHang()
    {
        Desk desk(TwoAlarmsOneSet);
        // The folder of the settings file is taken by a file: nothing can be written there.
        QFile::remove(desk.env.SettingsFile());
        QVERIFY(QDir(desk.env.ConfigFolder()).removeRecursively());
        TestEnvironment::WriteFile(desk.env.ConfigFolder(), "not a folder");
        QVERIFY(desk.window->Load());
        desk.window->CheckAlarms(10, 15); // a quarter hour: the alarms are saved, and cannot be
        desk.window->CheckAlarms(10, 30);
        const auto told = [] {
            return std::count_if(
                MessageBox::Shown().cbegin(), MessageBox::Shown().cend(), [](const MessageBox::Request& r) {
                    return r.Text.startsWith(QStringLiteral("The settings file cannot be written: "));
                });
        };
        QCOMPARE(told(), 1);
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QVERIFY(desk.window->close());
        QVERIFY(desk.window->IsStopped());
        QCOMPARE(told(), 1);
        // Nor is any failed save told again: the operator knows already.
        QVERIFY(std::none_of(MessageBox::Shown().cbegin(), MessageBox::Shown().cend(),
                             [](const MessageBox::Request& r) {
                                 return r.Text.contains(QStringLiteral("Error saving the alarms"));
                             }));
    }

    void logOpenFailureIsReportedOnceAndTheWritesAfterItAreNotReportedAgain()
    {
        Desk desk(LogAllEvents);
        TestEnvironment::WriteFile(desk.env.LogFolder(), "a file where the folder should be");
        QVERIFY(desk.window->Load());
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 1);
        QVERIFY(shown[0].Text.startsWith(QStringLiteral("Error opening today's logbook\r\r")));
        QVERIFY(std::none_of(shown.cbegin(), shown.cend(), [](const MessageBox::Request& r) {
            return r.Text.startsWith(QStringLiteral("Error writing to the logbook\r\r"));
        }));
    }

    void tickStaysInPhaseWithTheWallClock()
    {
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 0).msecsSinceStartOfDay(), 500), 500);
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 1).msecsSinceStartOfDay(), 500), 499);
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 499).msecsSinceStartOfDay(), 500), 1);
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 500).msecsSinceStartOfDay(), 500), 500);
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 750).msecsSinceStartOfDay(), 500), 250);
        // Without a half-tick watch the timer runs both halves of the tick.
        Desk desk({}, true, [](PlatformServices& p) {
            static_cast<FakeHalfTickWatch&>(*p.halfTick).Startable = false;
        });
        desk.clock.Set(Monday, QTime(10, 0, 17, 250));
        QVERIFY(desk.window->Load());
        auto* timer = desk.window->findChild<QTimer*>(QStringLiteral("tmrMain"));
        QVERIFY(timer && timer->isActive());
        QCOMPARE(timer->interval(), 250);
        QVERIFY(timer->isSingleShot());
        // Fired in phase: from now on it repeats by itself, without being armed again.
        desk.clock.Set(Monday, QTime(10, 0, 17, 501));
        desk.window->tmrMain_Timer();
        desk.window->KeepTickInPhase();
        QVERIFY(timer->isActive());
        QVERIFY(!timer->isSingleShot());
        QCOMPARE(timer->interval(), 500);
        desk.clock.Set(Monday, QTime(10, 0, 18, 8));
        desk.window->KeepTickInPhase();
        QVERIFY(!timer->isSingleShot());
        QCOMPARE(timer->interval(), 500);
        // Fallen behind the wall clock (a stall, or the wall clock slewed): armed for the next
        // half second, once.
        desk.clock.Set(Monday, QTime(10, 0, 18, 640));
        desk.window->KeepTickInPhase();
        QVERIFY(timer->isSingleShot());
        QCOMPARE(timer->interval(), 360);
        // Just before the second (the wall clock ahead): armed for the second itself, or the
        // box would show the second that is ending for half a second.
        desk.clock.Set(Monday, QTime(10, 0, 18, 996));
        desk.window->KeepTickInPhase();
        QVERIFY(timer->isSingleShot());
        QCOMPARE(timer->interval(), 4);
    }

    void withAHalfTickWatchTheTimerRunsAtTheWholeSecondAlone()
    {
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 0).msecsSinceStartOfDay(), 1000), 1000);
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 500).msecsSinceStartOfDay(), 1000), 500);
        QCOMPARE(frmMain::MsecToNextTick(QTime(10, 0, 0, 999).msecsSinceStartOfDay(), 1000), 1);
        Desk desk;
        desk.clock.Set(Monday, QTime(10, 0, 17, 250));
        QVERIFY(desk.window->Load());
        QVERIFY(desk.HalfTick().Changed);
        QCOMPARE(desk.window->TickPeriodMsec(), 1000);
        auto* timer = desk.window->findChild<QTimer*>(QStringLiteral("tmrMain"));
        QVERIFY(timer && timer->isActive());
        QVERIFY(timer->isSingleShot());
        QCOMPARE(timer->interval(), 750);
        // Fired in phase at .000: from now on it repeats every second by itself.
        desk.clock.Set(Monday, QTime(10, 0, 18, 1));
        desk.window->tmrMain_Timer();
        desk.window->KeepTickInPhase();
        QVERIFY(!timer->isSingleShot());
        QCOMPARE(timer->interval(), 1000);
        // Fallen behind: armed for the next whole second, once.
        desk.clock.Set(Monday, QTime(10, 0, 19, 640));
        desk.window->KeepTickInPhase();
        QVERIFY(timer->isSingleShot());
        QCOMPARE(timer->interval(), 360);
        // The program stops: so does the watch, and its thread no longer asks the window.
        desk.window->StopProgram();
        QVERIFY(desk.HalfTick().Stops > 0);
        QVERIFY(!desk.HalfTick().Changed);
    }

    void theHalfTickFindsNothingToDoUntilTheClockIsSet()
    {
        Desk desk;
        desk.clock.Set(Monday, QTime(10, 0, 17, 0));
        QVERIFY(desk.window->Load());
        const auto changed = desk.HalfTick().Changed;
        QVERIFY(changed);
        const auto at = [](QTime t) { return QDateTime(Monday, t).toMSecsSinceEpoch(); };
        auto* seconds = desk.Find<SecondsBox>(QStringLiteral("txtSeconds"));
        desk.window->tmrMain_Timer();
        QCOMPARE(seconds->text(), QStringLiteral("17"));
        // At .500 of the second shown, in the minute already handled: nothing to do.
        QVERIFY(!changed(at(QTime(10, 0, 17, 500))));
        QVERIFY(!changed(at(QTime(10, 0, 17, 999))));
        // The clock was set on by a second, or back by one, meanwhile: the tick has work.
        QVERIFY(changed(at(QTime(10, 0, 18, 500))));
        QVERIFY(changed(at(QTime(10, 0, 16, 500))));
        // Set across a minute: the seconds shown could match, the minute does not.
        QVERIFY(changed(at(QTime(10, 1, 17, 500))));
        // The watch reports it; the tick then shows the new second at once.
        desk.clock.Set(Monday, QTime(10, 0, 40, 500));
        desk.HalfTick().Emit();
        QCOMPARE(seconds->text(), QStringLiteral("40"));
        QVERIFY(!changed(at(QTime(10, 0, 40, 600))));
        // Stopped, the program ignores a report still on its way.
        desk.window->StopProgram();
        desk.clock.Set(Monday, QTime(10, 0, 45, 500));
        desk.HalfTick().Emit();
        QCOMPARE(seconds->text(), QStringLiteral("40"));
    }
};

QTEST_MAIN(TestFrmMain)
#include "tst_frmmain.moc"
