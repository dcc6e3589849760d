// The main window's life: start-up, the tick and the minute's work, the system's notices,
// the close question and the shutdown.
#include "alarms/AlarmDesk.h"
#include "alarms/AlarmPanel.h"
#include "alarms/AlarmWindows.h"
#include "alarms/SoundFile.h"
#include "alarms/frmAlarm.h"
#include "calc/CalcPanel.h"
#include "clock/Clock.h"
#include "common/FloorDiv.h"
#include "logbook/LogBook.h"
#include "logbook/LogPanel.h"
#include "logbook/LogViewer.h"
#include "platform/PlatformServices.h"
#include "settings/Preferences.h"
#include "settings/SettingsStore.h"
#include "shell/ClockPanel.h"
#include "shell/frmMain.h"
#include "shell/frmMessage.h"
#include "sun/SolarEvents.h"
#include "sync/SyncScheduler.h"
#include "sync/SyncState.h"
#include "widgets/MessageBox.h"
#include "widgets/SecondsBox.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <array>
#include <cstdio>
#include <exception>

namespace {

class LoadStepError : public std::exception
{
public:
    const char* what() const noexcept override { return "start-up step failed"; }
};

} // namespace

bool frmMain::Load()
{
    int step = 0;
    try {
        step = 1; // the clock font is made from the preferences when it is used

        step = 2;
        m_picCalc->setVisible(false);
        m_picAlarm->setVisible(false);
        m_picLog->setVisible(false);

        step = 3;
        m_viewer->SetLogBookDate(m_clock.Today());

        step = 4;
        setWindowTitle(QStringLiteral("Tarrowind"));

        step = 5; // steps 5 to 11 and 16 read the store, in that order
        const auto unreadable = [this] {
            MessageBox::Notice(this,
                               QStringLiteral("The settings file cannot be read: ") + m_store.FileName() +
                                   u'\r' + m_store.Problem() + u'\r' +
                                   QStringLiteral("Tarrowind will close and leave the file unchanged."));
            return false;
        };
        if (!m_store.IsReadable())
            return unreadable();
        SettingsReadResult read = ReadSettings(m_store, m_clock.Now());
        if (read.Error) {
            MessageBox::Notice(this, SettingsErrorMessage(*read.Error));
            return false;
        }
        // Checked again once every key was read: the whole file must have been understood.
        if (!m_store.IsReadable())
            return unreadable();
        m_preferences->Replace(std::move(read.Values));
        // From here the minutes count: one due while the start-up goes on rings at the first tick.
        m_lastHandled = CorrectedMinute().addSecs(-60);
        // Messages of the start-up do not wait for an answer: the clock starts meanwhile.
        if (!m_store.IsWritable()) {
            // Told once: the saves that fail from now on are not told again.
            m_alarms->StoreKnownUnwritable();
            MessageBox::NoticeLater(
                this, QStringLiteral("The settings file cannot be written: ") + m_store.FileName() + u'\r' +
                          QStringLiteral("Settings and alarms changed from now on will not "
                                         "be kept when Tarrowind ends."));
        }

        step = 6;
        if (m_alarmWindows->DefaultSoundFile().isEmpty()) {
            m_preferences->Change([](Settings& values) { values.Audible = 0; });
            MessageBox::NoticeLater(this,
                                    QStringLiteral("Notice - Can not find sound file: ") +
                                        m_preferences->Values().Sound + u'\r' +
                                        QStringLiteral("Sound turned off. Select a new default sound file in "
                                                       "Properties"));
        }

        step = 10;
        m_log->SetSwitches({m_preferences->Values().LogOn == 1, m_preferences->Values().LogSafetyOnly});

        step = 12; // the alarm panel's sound choices follow "Audible"

        step = 13;
        if (m_preferences->Values().ForeColor.isEmpty())
            m_preferences->Change([](Settings& values) { values.ForeColor = QString::number(White); });
        if (!ParseInt32(m_preferences->Values().ForeColor))
            throw LoadStepError();

        step = 15; // step 14, the faces' tags, is part of the clock panel
        ShowTitle();

        step = 16;
        // The lists are first filled as for the second zone; SetTimes shows the real one.
        FillZoneLists(1);

        step = 18; // step 17: the capacity is MaxAlarms
        if (const auto error = m_alarms->LoadAlarms()) {
            MessageBox::Notice(this, SettingsErrorMessage(*error));
            return false;
        }
        m_alarms->Table().SelectedAlarm = 1;
        if (m_alarms->Table().AlarmCount > 0)
            m_alarms->SetSelectedAlarm();

        step = 19;
        const Settings& values = m_preferences->Values();
        m_coordinatesValid =
            ValidateCoordinates(values.LatDeg, values.LatMin, values.LongDeg, values.LongMin).isEmpty();

        step = 20;
        m_viewer->MarkAvailableLogs();

        step = 21;
        m_log->OpenTodaysLog();

        step = 22;
        const QFont clockFont = ClockFont();
        QFont secondsFont = m_picMain->Seconds()->font();
        secondsFont.setFamily(clockFont.family());
        secondsFont.setPointSizeF(clockFont.pointSizeF() * 0.9);
        m_picMain->Seconds()->setFont(secondsFont);
        for (int i = 0; i < ZoneCount; ++i)
            m_picMain->Face(i)->setFont(clockFont);

        step = 23;
        m_log->WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(), QString());

        step = 24;
        ClockProps();

        step = 25;
        NewDay();

        step = 26;
        m_loaded = true;

        step = 27;
        m_picMain->SyncButton()->setVisible(m_preferences->Values().AutoSync != 0);
        m_sync->SetSynchronised(true);
        if (m_preferences->Values().AutoSync != 0)
            SyncCheck(1);
        SyncCheck(0);

        step = 28;
        SetTimes();

        step = 29;
        // Where the system has a half-tick watch, it takes the .500 half of the tick, which
        // changes nothing unless the clock was set, and the timer runs at .000 alone.
        m_tickMsec = m_platform.halfTick->Start([this](qint64 msecs) { return TickChangesAnything(msecs); })
                         ? 1000
                         : 500;
        ArmTick();
        return true;
    } catch (const std::exception& e) {
        MessageBox::Notice(this, QStringLiteral("Tarrowind could not start (start-up step ") +
                                     QString::number(step) + QStringLiteral(")\r\r") +
                                     QString::fromLocal8Bit(e.what()));
        return false;
    }
}

namespace {

// "00" to "59", made once rather than formatted again at every change of the second.
const QString& TwoDigits(int n)
{
    static const std::array<QString, 60> texts = [] {
        std::array<QString, 60> made;
        for (int i = 0; i < 60; ++i)
            made[size_t(i)] = QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0'));
        return made;
    }();
    return texts[size_t(n)];
}

} // namespace

int frmMain::MsecToNextTick(qint64 msecs, int periodMsec)
{
    return int(periodMsec - (msecs - FloorDiv(msecs, periodMsec) * periodMsec));
}

bool frmMain::TickChangesAnything(qint64 msecs) const
{
    const qint64 localSecond = FloorDiv(msecs, 1000) + m_localOffsetSecs;
    return localSecond != m_shownSecond || FloorDiv(localSecond, 60) != m_minuteSeen;
}

void frmMain::ArmTick()
{
    if (m_stopped)
        return;
    m_tmrMain.setSingleShot(true);
    m_tmrMain.start(MsecToNextTick(m_clock.MSecsSinceEpoch(), m_tickMsec));
}

void frmMain::KeepTickInPhase()
{
    if (m_stopped)
        return;
    // Once in phase the tick repeats every period by itself (a precise timer keeps to its
    // schedule on the steady clock), so a tick costs no re-arming. It is put back in phase
    // when it falls more than a little after .000 (or .500) of the wall clock, or at all
    // before it: after a stall, or as the wall clock is slewed against the steady one. A tick
    // just before the second would show the second that is ending.
    constexpr int SlackMsec = 10;
    const int late = m_tickMsec - MsecToNextTick(m_clock.MSecsSinceEpoch(), m_tickMsec);
    if (late > SlackMsec) {
        ArmTick();
        return;
    }
    if (m_tmrMain.isSingleShot()) {
        m_tmrMain.setSingleShot(false);
        m_tmrMain.start(m_tickMsec);
    }
}

QDateTime frmMain::CorrectedMinute() const
{
    return m_alarms->WallMinuteNow();
}

void frmMain::tmrMain_Timer()
{
    try {
        // Most ticks change nothing, so a tick reads only the milliseconds of the system clock:
        // reading the local time makes the C library check the zone file each time. The local
        // second is the UTC second shifted by the zone's offset, kept from the minute's work.
        const qint64 second = FloorDiv(m_clock.MSecsSinceEpoch(), 1000);
        const qint64 localSecond = second + m_localOffsetSecs;
        // Half the ticks fall in a second already shown: repaint only on a change.
        if (localSecond != m_shownSecond) {
            m_shownSecond = localSecond;
            const int ss = int(localSecond - FloorDiv(localSecond, 60) * 60);
            m_picMain->Seconds()->setText(TwoDigits(ss));
        }
        // While the sync run sets the clock, the half-set clock is not acted on.
        if (m_sync->ClockBeingSet())
            return;
        // Zone offsets are whole minutes, so the minute changes when the local second crosses
        // a multiple of 60; only then is the local time read.
        if (FloorDiv(localSecond, 60) == m_minuteSeen)
            return;
        m_localOffsetSecs = m_clock.Now().offsetFromUtc();
        m_minuteSeen = FloorDiv(second + m_localOffsetSecs, 60);
        // A new minute is handled at the first tick that sees it, normally the one at second
        // 0; a late tick, or a clock step across second 0, loses nothing.
        const QDateTime minute = CorrectedMinute();
        if (minute == m_lastHandled)
            return;
        SetTimes();
        HandleMinutes(minute);
    } catch (const std::exception&) {
        // This tick's work ends; the next tick starts afresh.
    }
}

void frmMain::CheckAlarms(int hour, int minute)
{
    HandleMinutes(QDateTime(m_alarms->WallMinuteNow().date(), QTime(hour, minute), Qt::UTC));
}

void frmMain::HandleMinutes(const QDateTime& to)
{
    try {
        const auto handleDayChange = [this] {
            const QDate today = m_clock.Today();
            if (today != m_lastDate)
                NewDay();
        };
        handleDayChange();
        // Second zero is seen by two ticks: each minute is handled once.
        if (to == m_lastHandled)
            return;
        // The minutes since the last one handled. A clock set back starts again from the
        // present minute; a gap of more than a day counts as one day.
        QDateTime from = m_lastHandled;
        if (!from.isValid() || to < from)
            from = to.addSecs(-60);
        else if (from.secsTo(to) > 24 * 3600)
            from = to.addDays(-1);
        // Marked first: a later tick, while a message of this minute is open, handles the
        // next minute and not this one again.
        m_lastHandled = to;

        // Every set alarm due in these minutes goes off, each with its own window.
        m_alarms->ScanSpan(from, to);
        if (m_stopped)
            return; // the program was ended while a message was open

        if (m_preferences->Values().AutoSync != 0)
            SyncCheck(1);
        if (QuarterHourPassed(from, to))
            m_alarms->SaveAlarms();
        handleDayChange();
        ShowTitle();
    } catch (const std::exception&) {
        // The minute's work ends quietly.
    }
}

bool frmMain::QuarterHourPassed(const QDateTime& from, const QDateTime& to)
{
    if (from.secsTo(to) >= 15 * 60)
        return true;
    for (QDateTime t = from.addSecs(60); t <= to; t = t.addSecs(60))
        if (t.time().minute() % 15 == 0)
            return true;
    return false;
}

void frmMain::NewDay()
{
    // The day this was done for: start-up's call counts, so the first minute does not redo it.
    m_lastDate = m_clock.Today();
    m_log->CloseTodaysLog();
    m_log->OpenTodaysLog();
    // A day turned while the program runs: the new day's file now exists, and the calendar
    // marks it. (Start-up marks the days found before it opened today's file.)
    if (m_loaded)
        m_viewer->MarkAvailableLogs();
    m_viewer->RefreshLogView();
}

bool frmMain::SysInfo1_QuerySuspend()
{
    m_alarms->SaveAlarms();
    if (m_alarms->Table().SetCount() == 0)
        return true;
    return MessageBox::AskYesNo(
               this,
               QStringLiteral("You have alarms that are set\rDo you wish to suspend system?\r"
                              "(if yes alarms will be disabled)"),
               QStringLiteral("Tarrowind")) == MessageBox::Answer::Yes;
}

void frmMain::SysInfo1_TimeChanged()
{
    if (!m_loaded || m_stopped || m_sync->ClockBeingSet())
        return;
    // Show the new time at once and keep the tick in phase with the changed clock; minutes
    // that a step forward passed are caught up now.
    SetTimes();
    ShowTitle();
    ForgetMinuteSeen();
    tmrMain_Timer();
    ArmTick();
    // With automatic sync on, a clock changed by someone else is checked against the server;
    // the change that waking from sleep looks like is not one (the network may not be up).
    const bool waking = m_asleep || (m_sinceResume.isValid() && m_sinceResume.elapsed() < 5000);
    if (!waking)
        m_scheduler->ClockChanged();
}

bool frmMain::QueryUnload()
{
    m_alarms->SaveAlarms();
    if (m_alarms->Table().SetCount() == 0)
        return true;
    m_closeQuestionOpen = true;
    const auto answer =
        MessageBox::AskYesNo(this, QStringLiteral("You have alarms that are set\rDo you wish to continue ?"),
                             QStringLiteral("Exit Tarrowind"));
    m_closeQuestionOpen = false;
    if (m_stopped)
        return true; // the program was ended while the question was open
    if (answer != MessageBox::Answer::Yes)
        return false;
    m_log->WriteLogEntry(QStringLiteral("EX"), 0, QStringLiteral("Exit program"), QString(), QString());
    return true;
}

void frmMain::closeEvent(QCloseEvent* event)
{
    // A window that never finished loading writes nothing back.
    if (!m_loaded || m_stopped) {
        event->accept();
        return;
    }
    if (m_closeQuestionOpen || !QueryUnload()) {
        event->ignore();
        return;
    }
    StopProgram();
    event->accept();
}

void frmMain::EndSession()
{
    if (!m_loaded || m_stopped)
        return;
    m_endingQuietly = true;
    // The log shows this exit as it shows one the operator confirmed.
    if (m_alarms->Table().SetCount() > 0)
        m_log->WriteLogEntry(QStringLiteral("EX"), 0, QStringLiteral("Exit program"), QString(), QString());
    StopProgram();
    MessageBox::DismissOpen();
}

void frmMain::StopProgram()
{
    if (m_stopped)
        return;
    m_stopped = true;
    m_alarms->Stop();
    m_tmrMain.stop();
    m_platform.halfTick->Stop();

    // The logging switches are the writer's; every other value is kept by the preferences.
    Settings values = m_preferences->Values();
    values.LogOn = m_log->Switches().LogOn ? 1 : 0;
    values.LogSafetyOnly = m_log->Switches().SafetyOnly;
    WriteSettings(m_store, values);
    // A check-in still open is stored as the pending alarm it was (the table does so).
    m_alarms->SaveAlarms();
    m_alarms->Seal();
    m_log->CloseTodaysLog();

    // The sync window goes first, without a word; then every other window.
    m_scheduler->Stop();

    // From here on nothing may keep the program alive: close every other window, the
    // alarm windows last opened first.
    const QList<frmAlarm*> alarmWindows = m_alarmWindows->OpenAlarmWindows();
    for (auto it = alarmWindows.crbegin(); it != alarmWindows.crend(); ++it)
        (*it)->close();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        QWidget* window = *it;
        if (window != this && window->isVisible())
            window->close();
    }
    // What failed while stopping is told now, when nothing else is open any more.
    if (!m_exitErrors.isEmpty() && !m_endingQuietly) {
        const QString errors = m_exitErrors.join(u'\r');
        m_exitErrors.clear();
        std::fprintf(stderr, "tarrowind: %s\n", qUtf8Printable(QString(errors).replace(u'\r', u' ')));
        MessageBox::Notice(nullptr, errors);
    }
    // Nothing is saved after this: a window closed here was not answered, and what it
    // records (a location at the exit time) is no check-in.
}

void frmMain::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        m_picMain->SyncButton()->setVisible(m_preferences->Values().AutoSync != 0);
        ShowSyncColours();
    }
    QWidget::changeEvent(event);
}
