#pragma once

#include "alarms/AlarmTable.h"
#include "clock/ZoneClock.h"
#include "logbook/LogBook.h"
#include "settings/Settings.h"

#include <QDate>
#include <QFont>
#include <QLocale>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <array>
#include <functional>
#include <memory>

class AlarmPanel;
class AlarmSound;
class WindowFlash;
class frmAlarm;
class CalcPanel;
class Clock;
class ClockPanel;
class KeyedStatusBar;
class LogPanel;
class SettingsStore;
class frmClockProps;

// What the main window is given from outside: the clock, the settings store, where the
// logs live, the locale of dates, where the program's own sounds are installed, and the
// sound player and window flash of this system (left empty, the system's own are used).
struct MainServices
{
    const Clock& clock;
    SettingsStore& store;
    QString logFolder;
    QLocale locale;
    QStringList soundFolders;
    std::function<std::unique_ptr<AlarmSound>(QObject*)> makeSound = {};
    std::shared_ptr<WindowFlash> flash = {};
};

// The main window: the clock panel, the three working panels and the status bar. It owns
// the program-wide state for the whole run and drives every face and alarm from its tick.
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
    void CheckAlarms(int hour, int minute);
    void NewDay();

    // Operating-system notices.
    bool SysInfo1_QuerySuspend(); // true: the suspend may go ahead
    void SysInfo1_TimeChanged();
    // The desktop session ends or the program is told to stop: save everything, no question.
    void EndSession();
    void StopProgram();

    // Shared routines.
    void SetTimes();
    void ShowTitle();
    void ShowStatus();
    void FillZoneLists();
    void ShowSyncColours();
    void SyncCheck(int mode);
    QString InternetNow() const;
    void LoadAlarms();
    void SaveAlarms();
    void RefreshAlarmList();
    void OpenTodaysLog();
    void WriteLogEntry(const QString& code, qint16 safety, const QString& text1, const QString& text2,
                       const QString& text3);
    void MarkAvailableLogs();
    // Redraws the logbook view for the day it shows (LogBookDate), through "LogBook.rtf".
    void RefreshLogView();
    void SetLogBookDate(QDate day) { m_logBookDate = day; }
    // Prints a day's log on a printer chosen in "Select Printer".
    void PrintLog(QDate day);
    QDate Today() const;
    QString FormatDateLong(QDate date) const;

    // Alarm routines shared by the alarm panel, the alarm windows and the note window.
    QDateTime InternetDateTimeNow() const;
    void CalcExpire(const QString& etime, int ptr);
    void DeleteAlarm(int ptr);
    void SetSelectedAlarm();
    void ShowAlarmWindow(int n);
    void StartCheckIn(int n);
    void RelayoutAlarmWindows();
    void AlarmWindowClosed(frmAlarm* window);
    void OpenNote();
    void FlashMainWindow();
    std::unique_ptr<AlarmSound> MakeSound(QObject* parent) const;
    // The default sound file, found as at start-up (an empty text when there is none).
    QString DefaultSoundFile() const;
    frmAlarm* AlarmWindow(int n) const;
    QList<frmAlarm*> OpenAlarmWindows() const;

    // Status bar and panels.
    void stsBar_PanelClick(const QString& key);
    // Opens the sunrise/sunset tables dialog, modally.
    void cmdTables_Click();
    void imgOnTop_Click();
    void imgNotTop_Click();

    // State read by the other windows and by tests.
    Settings& Values() { return m_settings; }
    AlarmTable& Alarms() { return m_alarms; }
    LogBook& Log() { return *m_log; }
    bool IsLoaded() const { return m_loaded; }
    bool IsStopped() const { return m_stopped; }
    bool Synchronised() const { return m_synchronised; }
    void SetSynchronised(bool value) { m_synchronised = value; }
    const QSet<QDate>& MarkedLogDays() const;
    QDate LogBookDate() const { return m_logBookDate; }
    ColourValue ForeColour() const { return m_foreColour; }
    const QFont& ClockFont() const { return m_clockFont; }
    // Milliseconds from `now` to the next .000 or .500 of a second.
    static int MsecToNextHalfSecond(const QTime& now);

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BuildLayout();
    void ArmTick();
    bool QueryUnload();
    void OpenPanel(QWidget* panel);
    void ClosePanel(QWidget* panel);
    void CloseOpenPanel();
    void ShowSunLine();
    // Hours from UTC of the local zone in standard time.
    int LocalZoneOffset();
    frmClockProps& ClockProps();

    const Clock& m_clock;
    SettingsStore& m_store;
    QLocale m_locale;
    QStringList m_soundFolders;
    std::unique_ptr<LogBook> m_log;

    Settings m_settings;
    AlarmTable m_alarms;
    QFont m_clockFont;
    ColourValue m_foreColour = White;
    bool m_coordinatesValid = false;
    bool m_loaded = false;
    bool m_stopped = false;
    bool m_closeQuestionOpen = false;
    bool m_synchronised = false;
    bool m_clockBeingSet = false;
    QDate m_lastDate;
    int m_lastMinute = -1;
    QDate m_logBookDate;

    ClockPanel* m_picMain = nullptr;
    CalcPanel* m_picCalc = nullptr;
    AlarmPanel* m_picAlarm = nullptr;
    LogPanel* m_picLog = nullptr;
    KeyedStatusBar* m_stsBar = nullptr;
    QWidget* m_openPanel = nullptr;
    std::unique_ptr<frmClockProps> m_clockProps;
    std::function<std::unique_ptr<AlarmSound>(QObject*)> m_makeSound;
    std::shared_ptr<WindowFlash> m_flash;
    // The alarm windows by alarm number (slot 1 first), and every open one in the order
    // they were opened.
    std::array<QPointer<frmAlarm>, MaxAlarms> m_alarmWindows{};
    QList<QPointer<frmAlarm>> m_openAlarmWindows;
    QTimer m_tmrMain{this};
};
