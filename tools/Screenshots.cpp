// Saves screenshots of the program's windows with a fixed date and prepared alarms, for the
// documentation. Usage: tw_screenshots OUTPUT_FOLDER (run under a display, e.g. xvfb-run).
#include "alarms/AlarmDesk.h"
#include "alarms/AlarmSound.h"
#include "alarms/AlarmWindows.h"
#include "alarms/frmAlarm.h"
#include "clock/Clock.h"
#include "help/frmHelp.h"
#include "platform/PlatformServices.h"
#include "props/frmClockProps.h"
#include "settings/Preferences.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"
#include "shell/frmMain.h"
#include "shell/frmMessage.h"
#include "sun/BuildSunTable.h"
#include "sun/SunTablePrinter.h"
#include "sun/frmSSTables.h"
#include "sun/frmView.h"
#include "sync/SyncState.h"
#include "sync/frmAutoSync.h"
#include "widgets/PrintSetup.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPrinter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace {

class FixedClock final : public Clock
{
public:
    QDateTime Now() const override { return At; }
    QDateTime At{QDate(2026, 11, 16), QTime(10, 14, 58)};
};

// A time server that never answers: the run window stays on "Connecting ...".
class SilentServer final : public TimeQuery
{
public:
    SntpResult Start(const QString&, int) override { return {}; }
    void Cancel() override {}
};

bool Save(QWidget* widget, const QString& path)
{
    QApplication::processEvents();
    const bool ok = widget->grab().save(path);
    std::printf("%s %s\n", ok ? "wrote" : "FAILED", qPrintable(path));
    return ok;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: tw_screenshots OUTPUT_FOLDER\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QTemporaryDir work;
    const QString ini = QDir(work.path()).filePath(QStringLiteral("Tarrowind 2.ini"));
    QFile file(ini);
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    file.write("[General]\nZone=4\nLogOn=1\nLogSafetyOnly=False\nUTCRule=0\n"
               "[Alarms]\nCount=4\n"
               "Message%201=Convoy 12 departs Ridge depot\nExpire%201=11:30\nAlarmSet%201=True\n"
               "Message%202=Crew 7 safety check\nTypeTimer%202=True\nInterval%202=00:30\nExpire%202=10:15\n"
               "AlarmSet%202=True\nRepeat%202=1\nSafety%202=1\nLastPosition%202=09:45 Pass road km 14\n"
               "Message%203=Shift handover\nExpire%203=14:00\nAlarmSet%203=False\n"
               "Message%204=Fuel truck due\nTypeTimer%204=True\nInterval%204=01:15\nExpire%204=11:20\n"
               "AlarmSet%204=True\nRepeat%204=1\n"
               "[Sun]\nLatDeg=41\nLatMin=52\nLongDeg=87\nLongMin=38\n");
    file.close();

    // A morning's entries in the day's log.
    QDir().mkpath(QDir(work.path()).filePath(QStringLiteral("Logs")));
    QFile log(QDir(work.path()).filePath(QStringLiteral("Logs/20261116.log")));
    if (!log.open(QIODevice::WriteOnly))
        return 1;
    log.write("\"11/16/2026\",\"06:58\",\"ST\",0,\"Start program\",\"\",\"\"\r\n"
              "\"11/16/2026\",\"07:02\",\"SA\",1,\"Alarm set for \",\"Crew 7 safety check\",\", expires at "
              "07:32\"\r\n"
              "\"11/16/2026\",\"07:32\",\"EA\",1,\"Alarm Expired for \",\"Crew 7 safety check\",\"\"\r\n"
              "\"11/16/2026\",\"07:34\",\"SA\",1,\"Alarm acknowleged, reset for \",\"Crew 7 safety check\","
              "\", expires at 08:04, Pass road km 9\"\r\n"
              "\"11/16/2026\",\"08:10\",\"NT\",0,\"Convoy 12 departs Ridge depot: \",\"loaded, 4 trucks\",\" "
              "(08:10)\"\r\n");
    log.close();
    QFile older(QDir(work.path()).filePath(QStringLiteral("Logs/20261112.log")));
    if (older.open(QIODevice::WriteOnly))
        older.close();

    FixedClock clock;
    SettingsStore store(ini);
    PlatformServices platform = CreatePlatformServices();
    const MainServices services{
        clock,
        store,
        QDir(work.path()).filePath(QStringLiteral("Logs")),
        QLocale(QLocale::English, QLocale::UnitedStates),
        // the default sound generated beside the program in the build tree
        {QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../src"))},
        [](QObject* owner) { return AlarmSound::Create(owner); },
        platform};
    frmMain window(services);
    if (!window.Load())
        return 1;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    window.stsBar_PanelClick(QStringLiteral("Alarm"));
    window.Alarms().Table().SelectedAlarm = 2;
    window.Alarms().SetSelectedAlarm();
    bool ok = Save(&window, out.filePath(QStringLiteral("alarm-panel.png")));

    clock.At = QDateTime(QDate(2026, 11, 16), QTime(10, 15, 0));
    window.CheckAlarms(10, 15);
    frmAlarm* alarm = window.Windows().AlarmWindow(2);
    if (!alarm)
        return 1;
    alarm->findChild<QLineEdit*>(QStringLiteral("txtLocation"))
        ->setText(QStringLiteral("Pass road km 19, all well"));
    alarm->Timer1_Timer(); // the heading's red phase
    ok = Save(alarm, out.filePath(QStringLiteral("alarm-window-safety.png"))) && ok;
    alarm->cmdReset_Click();
    QApplication::processEvents();

    // The machine slept from 10:15 to 11:27: the two alarms due meanwhile ring at once and say
    // how late they are.
    clock.At = QDateTime(QDate(2026, 11, 16), QTime(11, 27, 5));
    window.tmrMain_Timer();
    frmAlarm* late = window.Windows().AlarmWindow(2);
    if (!late)
        return 1;
    ok = Save(late, out.filePath(QStringLiteral("alarm-window-late.png"))) && ok;
    for (frmAlarm* open : window.Windows().OpenAlarmWindows())
        open->cmdReset_Click();
    QApplication::processEvents();

    // The logbook panel with the day's entries and the calendar open.
    window.stsBar_PanelClick(QStringLiteral("Log"));
    window.findChild<QPushButton*>(QStringLiteral("cmdCalendar"))->click();
    ok = Save(&window, out.filePath(QStringLiteral("logbook-panel.png"))) && ok;

    // The calculator: leaving now, two hours thirty-five minutes on the road.
    window.tmrMain_Timer(); // the faces catch up with the clock moved on above
    window.stsBar_PanelClick(QStringLiteral("Calc"));
    auto* elapsed = window.findChild<QLineEdit*>(QStringLiteral("edtElapsed"));
    elapsed->setFocus();
    QTest::keyClicks(elapsed, QStringLiteral("0235"));
    ok = Save(&window, out.filePath(QStringLiteral("calc-panel.png"))) && ok;

    // The tables dialog, as the Tables button opens it.
    Settings here;
    here.Zone = 4;
    here.LatDeg = QStringLiteral("41");
    here.LatMin = QStringLiteral("52");
    here.LongDeg = QStringLiteral("87");
    here.LongMin = QStringLiteral("38");
    frmSSTables tables(here, 2026);
    tables.show();
    if (!QTest::qWaitForWindowExposed(&tables))
        return 1;
    ok = Save(&tables, out.filePath(QStringLiteral("sun-tables-dialog.png"))) && ok;
    tables.close();

    // A year's sunrise/sunset table in the viewer; the table is written in the current folder.
    QDir::setCurrent(work.path());
    const SunTablePlace place{QStringLiteral("Ridge depot"), 41, 52, 87, 38, 6, QStringLiteral("2004")};
    if (!WriteSunTable(place, SunTableFile).isEmpty())
        return 1;
    frmView view(place);
    view.show();
    if (!QTest::qWaitForWindowExposed(&view))
        return 1;
    ok = Save(&view, out.filePath(QStringLiteral("sun-table-viewer.png"))) && ok;
    view.close();

    // The same table as printed, to a PDF that tools/screenshots.sh turns into a picture.
    PrintSetup::SetTestOutputFile(out.filePath(QStringLiteral("sun-table-printed.pdf")));
    QPrinter printer(QPrinter::HighResolution);
    ok = SunTablePrinter::Print(printer, SunTablePrintLines(place)) && ok;
    PrintSetup::SetTestOutputFile(QString());

    // A sync run waiting for the server, and the notice when it does not answer.
    Preferences syncPrefs;
    syncPrefs.Change([](Settings& v) {
        v.SyncSite = QStringLiteral("pool.ntp.org");
        v.AutoSync = -1;
        v.AutoSyncHrs = 1;
        v.LastSync = QDateTime(QDate(2026, 11, 15), QTime(9, 12, 40));
    });
    SyncState syncState(syncPrefs, clock);
    NullClockSetter noSetter;
    frmMessage notice;
    frmAutoSync run(
        {syncState, syncPrefs, clock, noSetter, [&notice](const QString& text) { notice.SetMessage(text); }},
        std::make_unique<SilentServer>(), true);
    run.setAttribute(Qt::WA_DeleteOnClose, false);
    run.show();
    run.Form_Activate();
    if (!QTest::qWaitForWindowExposed(&run))
        return 1;
    ok = Save(&run, out.filePath(QStringLiteral("sync-window.png"))) && ok;
    run.Timer1_Timer();
    notice.show();
    if (!QTest::qWaitForWindowExposed(&notice))
        return 1;
    ok = Save(&notice, out.filePath(QStringLiteral("sync-notice.png"))) && ok;
    notice.close();

    // The properties dialog as the Props panel opens it.
    frmClockProps& props = window.ClockProps();
    props.FillOwnZoneList(window.Prefs().Values().Zone);
    props.Form_Load();
    props.show();
    if (!QTest::qWaitForWindowExposed(&props))
        return 1;
    ok = Save(&props, out.filePath(QStringLiteral("properties-dialog.png"))) && ok;
    props.hide();

    // The user guide, as the help picture shows it.
    frmHelp help;
    if (!help.Form_Load(
            QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../src/Help.RTF"))))
        return 1;
    help.show();
    if (!QTest::qWaitForWindowExposed(&help))
        return 1;
    ok = Save(&help, out.filePath(QStringLiteral("help-window.png"))) && ok;
    help.close();

    window.EndSession();
    return ok ? 0 : 1;
}
