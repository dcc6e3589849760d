#pragma once

#include <QDate>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFont>
#include <QLocale>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <atomic>
#include <functional>
#include <limits>
#include <memory>

class AlarmDesk;
class AlarmPanel;
class AlarmSound;
class AlarmWindows;
class CalcPanel;
class Clock;
class ClockPanel;
class KeyedStatusBar;
class LogBook;
class LogPanel;
class LogViewer;
class Preferences;
class SettingsStore;
class SyncScheduler;
class SyncState;
class TimeQuery;
class frmClockProps;
class frmMessage;
struct PlatformServices;

// What the main window is given from outside: the clock, the settings store, where the
// logs live, the locale of dates, where the program's own files (the default sound, the
// help document) are installed, the sound
// player of this system, the operating system's services and the query of a time server
// (SNTP when none is given). main.cpp creates them; tests hand in their own.
struct MainServices
{
    const Clock& clock;
    SettingsStore& store;
    QString logFolder;
    QLocale locale;
    QStringList dataFolders;
    std::function<std::unique_ptr<AlarmSound>(QObject*)> makeSound;
    PlatformServices& platform;
    std::function<std::unique_ptr<TimeQuery>(QObject*)> makeTimeQuery = {};
};

// The main window: it places the clock panel, the three working panels and the status
// bar, and runs the half-second tick and the work of each minute. The program-wide state
// lives in the owners it creates and holds for the whole run (preferences, log, viewer,
// alarms); the panels and windows are handed the owners they use.
class frmMain : public QWidget
{
    Q_OBJECT
public:
    explicit frmMain(const MainServices& services, QWidget* parent = nullptr);
    ~frmMain() override;

    // The start-up sequence. False when the program must end (a stored setting could not
    // be read); the store is then left untouched.
    bool Load();

    // The half-second tick and the work of each minute.
    void tmrMain_Timer();
    // After each tick: keeps the tick repeating at .000 and .500 of the wall clock.
    void KeepTickInPhase();
    void CheckAlarms(int hour, int minute);
    void NewDay();

    // Operating-system notices.
    bool SysInfo1_QuerySuspend(); // true: the suspend may go ahead
    void SysInfo1_TimeChanged();
    // The desktop session ends or the program is told to stop: save everything, no question.
    void EndSession();
    void StopProgram();

    // Shared routines of the main window.
    void SetTimes();
    void ShowTitle();
    void ShowStatus();
    void FillZoneLists();
    void ShowSyncColours();
    void SyncCheck(int mode);
    QString InternetNow() const;

    // Status bar and panels.
    void stsBar_PanelClick(const QString& key);
    // Opens the sunrise/sunset tables dialog, modally.
    void cmdTables_Click();
    void imgOnTop_Click();
    void imgNotTop_Click();
    // The help picture: the user guide installed with the program.
    void Image3_Click();
    // The help document "Help.RTF" of the current folder (F1 with Ctrl).
    void ShowLocalHelp();

    // The owners of the program's state, for the shell's own use and for tests.
    Preferences& Prefs() { return *m_preferences; }
    AlarmDesk& Alarms() { return *m_alarms; }
    AlarmWindows& Windows() { return *m_alarmWindows; }
    LogBook& Log() { return *m_log; }
    LogViewer& Viewer() { return *m_viewer; }
    SyncState& Sync() { return *m_sync; }
    SyncScheduler& Scheduler() { return *m_scheduler; }
    // The properties dialog, loaded unseen on first use.
    frmClockProps& ClockProps();
    // The notice of a failed sync, while it is open.
    frmMessage* SyncMessage() const;
    bool IsStopped() const { return m_stopped; }
    // Milliseconds from `msecs` (since the epoch, or since midnight) to the next multiple of
    // `periodMsec`: the next .000 or .500 of a second for 500, the next .000 for 1000.
    static int MsecToNextTick(qint64 msecs, int periodMsec);
    // Whether a tick at `msecs` (the wall clock, since the epoch) would change anything: a
    // second not shown yet, or a minute whose work is not done. Safe to call from any thread:
    // the half-tick watch asks it at .500 of each second on its own.
    bool TickChangesAnything(qint64 msecs) const;
    // The period of the main tick's timer: 500 ms, or 1000 ms (at .000) while the half-tick
    // watch takes the .500 half.
    int TickPeriodMsec() const { return m_tickMsec; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BuildLayout();
    void ConnectOwners();
    void ArmTick();
    // The work of the minutes after the last one handled, up to `to`.
    void HandleMinutes(const QDateTime& to);
    QDateTime CorrectedMinute() const;
    static bool QuarterHourPassed(const QDateTime& from, const QDateTime& to);
    bool QueryUnload();
    void OpenPanel(QWidget* panel);
    void ClosePanel(QWidget* panel);
    void CloseOpenPanel();
    void ShowSunLine();
    void ShowFaceStyle();
    void FillZoneLists(int zone);
    void Report(const QString& message);
    // Shows the notice of a failed sync without waiting for it to be read.
    void ShowSyncMessage(const QString& text);
    // Opens a help window on the document at `path`; the window says when it cannot.
    void ShowHelp(const QString& path);
    // The clock faces' font, from the preferences.
    QFont ClockFont() const;
    // Hours from UTC of the local zone in standard time.
    int LocalZoneOffset() const;

    const Clock& m_clock;
    SettingsStore& m_store;
    QStringList m_dataFolders;
    PlatformServices& m_platform;
    QLocale m_locale;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LogBook> m_log;
    std::unique_ptr<LogViewer> m_viewer;
    std::unique_ptr<AlarmDesk> m_alarms;
    std::unique_ptr<AlarmWindows> m_alarmWindows;
    std::unique_ptr<SyncState> m_sync;
    std::unique_ptr<SyncScheduler> m_scheduler;

    bool m_coordinatesValid = false;
    bool m_loaded = false;
    bool m_stopped = false;
    bool m_closeQuestionOpen = false;
    bool m_endingQuietly = false;
    QStringList m_exitErrors;
    QDate m_lastDate;
    // The last minute of the corrected clock whose work was done.
    QDateTime m_lastHandled;
    // What the tick knows without reading the local time: the local zone's offset from UTC in
    // seconds (read at each minute's work), the local second shown in the seconds box, and the
    // local minute (both counted from the epoch) the tick last did the minute's work in.
    // Atomic: the half-tick watch reads them on its own thread.
    std::atomic<int> m_localOffsetSecs{0};
    std::atomic<qint64> m_shownSecond{std::numeric_limits<qint64>::min()};
    std::atomic<qint64> m_minuteSeen{std::numeric_limits<qint64>::min()};
    int m_tickMsec = 500;
    // Makes the next tick do the minute's work even within the same minute.
    void ForgetMinuteSeen() { m_minuteSeen = std::numeric_limits<qint64>::min(); }

    ClockPanel* m_picMain = nullptr;
    CalcPanel* m_picCalc = nullptr;
    AlarmPanel* m_picAlarm = nullptr;
    LogPanel* m_picLog = nullptr;
    KeyedStatusBar* m_stsBar = nullptr;
    QWidget* m_openPanel = nullptr;
    std::unique_ptr<frmClockProps> m_clockProps;
    QPointer<frmMessage> m_message;
    QTimer m_tmrMain{this};
    // Waking makes the clock look changed: no sync is started for that.
    bool m_asleep = false;
    QElapsedTimer m_sinceResume;
};
