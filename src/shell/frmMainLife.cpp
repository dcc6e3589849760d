// The main window's life: start-up, the tick and the minute's work, the system's notices,
// the close question and the shutdown.
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmPanel.h"
#include "alarms/SoundFile.h"
#include "alarms/frmAlarm.h"
#include "calc/CalcPanel.h"
#include "clock/Clock.h"
#include "logbook/LogPanel.h"
#include "settings/SettingsStore.h"
#include "shell/ClockPanel.h"
#include "shell/frmMain.h"
#include "sun/SolarEvents.h"
#include "widgets/MessageBox.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

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
        step = 1;
        m_clockFont = QFont();

        step = 2;
        m_picCalc->setVisible(false);
        m_picAlarm->setVisible(false);
        m_picLog->setVisible(false);

        step = 3;
        m_logBookDate = m_clock.Today();
        m_picLog->SetDateCaption(FormatDateLong(m_logBookDate));

        step = 4;
        setWindowTitle(QStringLiteral("Tarrowind"));

        step = 5; // steps 5 to 11 and 16 read the store, in that order
        if (!m_store.IsReadable()) {
            MessageBox::Notice(
                this, QStringLiteral("The settings file cannot be read: ") + m_store.FileName() + u'\r' +
                          QStringLiteral("Tarrowind will close and leave the file unchanged."));
            return false;
        }
        SettingsReadResult read = ReadSettings(m_store, m_clock.Now());
        if (read.Error) {
            MessageBox::Notice(this, SettingsErrorMessage(*read.Error));
            return false;
        }
        m_settings = std::move(read.Values);
        m_clockFont.setFamily(m_settings.FontName);
        m_clockFont.setPointSizeF(m_settings.FontSize);
        m_clockFont.setItalic(m_settings.FontItalic);
        m_clockFont.setBold(m_settings.FontBold);

        step = 6;
        if (ResolveSoundFile(m_settings.Sound, m_soundFolders).isEmpty()) {
            m_settings.Audible = 0;
            MessageBox::Notice(
                this, QStringLiteral("Notice - Can not find sound file: ") + m_settings.Sound + u'\r' +
                          QStringLiteral("Sound turned off. Select a new default sound file in "
                                         "Properties"));
        }

        step = 10;
        m_picLog->SetSwitches(m_settings.LogOn, m_settings.LogSafetyOnly);

        step = 12;
        if (m_settings.Audible != 1)
            m_picAlarm->SetSoundChoicesEnabled(false);

        step = 13;
        if (m_settings.ForeColor.isEmpty())
            m_settings.ForeColor = QString::number(White);
        const auto fore = ParseInt32(m_settings.ForeColor);
        if (!fore)
            throw LoadStepError();
        m_foreColour = *fore;

        step = 15; // step 14, the faces' tags, is part of the clock panel
        ShowTitle();

        step = 16;
        const qint32 zone = m_settings.Zone;
        m_settings.Zone = 1;
        FillZoneLists();
        m_settings.Zone = zone;

        step = 18; // step 17: the capacity is MaxAlarms
        LoadAlarms();
        m_alarms.SelectedAlarm = 1;
        if (m_alarms.AlarmCount > 0)
            SetSelectedAlarm();

        step = 19;
        m_coordinatesValid =
            ValidateCoordinates(m_settings.LatDeg, m_settings.LatMin, m_settings.LongDeg, m_settings.LongMin)
                .isEmpty();

        step = 20;
        MarkAvailableLogs();

        step = 21;
        OpenTodaysLog();

        step = 22;
        QFont secondsFont = m_picMain->Seconds()->font();
        secondsFont.setFamily(m_clockFont.family());
        secondsFont.setPointSizeF(m_clockFont.pointSizeF() * 0.9);
        m_picMain->Seconds()->setFont(secondsFont);
        for (int i = 0; i < ZoneCount; ++i)
            m_picMain->Face(i)->setFont(m_clockFont);

        step = 23;
        WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(), QString());

        step = 24;
        ClockProps();

        step = 25;
        NewDay();

        step = 26;
        m_loaded = true;

        step = 27;
        m_picMain->SyncButton()->setVisible(m_settings.AutoSync != 0);
        m_synchronised = true;
        if (m_settings.AutoSync != 0)
            SyncCheck(1);
        SyncCheck(0);

        step = 28;
        SetTimes();

        step = 29;
        ArmTick();
        return true;
    } catch (const std::exception& e) {
        MessageBox::Notice(this, QStringLiteral("Tarrowind could not start (start-up step ") +
                                     QString::number(step) + QStringLiteral(")\r\r") +
                                     QString::fromLocal8Bit(e.what()));
        return false;
    }
}

int frmMain::MsecToNextHalfSecond(const QTime& now)
{
    return 500 - now.msec() % 500;
}

void frmMain::ArmTick()
{
    if (!m_stopped)
        m_tmrMain.start(MsecToNextHalfSecond(m_clock.Now().time()));
}

void frmMain::tmrMain_Timer()
{
    try {
        const QString seconds = m_clock.Now().toString(QStringLiteral("ss"));
        // Half the ticks fall in a second already shown: repaint only on a change.
        if (m_picMain->Seconds()->text() != seconds)
            m_picMain->Seconds()->setText(seconds);
        // While the sync run sets the clock, the half-set clock is not acted on.
        if (seconds.toInt() != 0 || m_clockBeingSet)
            return;
        SetTimes();
        // The seconds come from the PC clock, the hour and minute from the corrected clock.
        const QString now = InternetNow();
        CheckAlarms(now.left(2).toInt(), now.mid(3, 2).toInt());
    } catch (const std::exception&) {
        // This tick's work ends; the next tick starts afresh.
    }
}

void frmMain::CheckAlarms(int hour, int minute)
{
    try {
        const auto handleDayChange = [this] {
            const QDate today = m_clock.Today();
            if (today != m_lastDate)
                NewDay();
        };
        handleDayChange();
        // Second zero is seen by two ticks: each minute is handled once.
        if (minute == m_lastMinute)
            return;
        m_lastMinute = minute;

        // Every set alarm due this minute goes off, lower numbers first, each with its own
        // window. The count is read again at each step: a window may change the table.
        bool expired = false;
        for (int n = 1; n <= m_alarms.AlarmCount; ++n) {
            if (!ExpiresAt(m_alarms.At(n), hour, minute))
                continue;
            ShowAlarmWindow(n);
            if (m_stopped)
                return; // the program was ended while a message was open
            m_alarms.At(n).Ringing = true;
            expired = true;
            const AlarmRecord& a = m_alarms.At(n);
            WriteLogEntry(QStringLiteral("EA"), a.Safety, QString::fromUtf16(AlarmLogText::Expired),
                          a.Message, QString());
            if (m_stopped)
                return;
        }
        if (expired) {
            RelayoutAlarmWindows();
            RefreshAlarmList();
            RefreshLogView();
            // The ringing alarm's buttons are locked in the editor.
            SetSelectedAlarm();
        }

        if (m_settings.AutoSync != 0)
            SyncCheck(1);
        if (minute % 15 == 0)
            SaveAlarms();
        handleDayChange();
        ShowTitle();
    } catch (const std::exception&) {
        // The minute's work ends quietly.
    }
}

void frmMain::NewDay()
{
    // The day this was done for: start-up's call counts, so the first minute does not redo it.
    m_lastDate = m_clock.Today();
    m_log->CloseTodaysLog();
    OpenTodaysLog();
    RefreshLogView();
}

bool frmMain::SysInfo1_QuerySuspend()
{
    SaveAlarms();
    if (m_alarms.SetCount() == 0)
        return true;
    return MessageBox::AskYesNo(
               this,
               QStringLiteral("You have alarms that are set\rDo you wish to suspend system?\r"
                              "(if yes alarms will be disabled)"),
               QStringLiteral("Tarrowind")) == MessageBox::Answer::Yes;
}

void frmMain::SysInfo1_TimeChanged()
{
    if (!m_loaded || m_stopped || m_clockBeingSet)
        return;
    // Show the new time at once and keep the tick in phase with the changed clock.
    SetTimes();
    ShowTitle();
    ArmTick();
}

bool frmMain::QueryUnload()
{
    SaveAlarms();
    if (m_alarms.SetCount() == 0)
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
    WriteLogEntry(QStringLiteral("EX"), 0, QStringLiteral("Exit program"), QString(), QString());
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
    StopProgram();
    MessageBox::DismissOpen();
}

void frmMain::StopProgram()
{
    if (m_stopped)
        return;
    m_stopped = true;
    m_tmrMain.stop();

    m_settings.FontName = m_clockFont.family();
    m_settings.FontSize = m_clockFont.pointSizeF();
    m_settings.FontBold = m_clockFont.bold();
    m_settings.FontItalic = m_clockFont.italic();
    m_settings.LogOn = m_picLog->LogOnValue();
    m_settings.LogSafetyOnly = m_picLog->SafetyOnlyValue();
    WriteSettings(m_store, m_settings);
    SaveAlarms();
    m_log->CloseTodaysLog();

    // From here on nothing may keep the program alive: close every other window, the
    // alarm windows last opened first.
    const QList<frmAlarm*> alarmWindows = OpenAlarmWindows();
    for (auto it = alarmWindows.crbegin(); it != alarmWindows.crend(); ++it)
        (*it)->close();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        QWidget* window = *it;
        if (window != this && window->isVisible())
            window->close();
    }
    // Closing a safety alarm's window records the location typed in it: keep it.
    SaveAlarms();
}

void frmMain::LoadAlarms()
{
    m_alarms.Load(m_store);
    RefreshAlarmList();
}

void frmMain::SaveAlarms()
{
    m_alarms.Save(m_store);
    if (!m_store.Sync())
        MessageBox::Notice(this, QStringLiteral("Error saving the alarms to ") + m_store.FileName());
}

void frmMain::RefreshAlarmList()
{
    m_alarms.BlankUnsetExpiries();
    m_picAlarm->RefreshRows();
    ShowTitle();
    ShowStatus();
}

void frmMain::OpenTodaysLog()
{
    if (const auto error = m_log->OpenTodaysLog())
        MessageBox::Notice(this, *error);
}

void frmMain::WriteLogEntry(const QString& code, qint16 safety, const QString& text1, const QString& text2,
                            const QString& text3)
{
    const auto error =
        m_log->WriteLogEntry(code, safety, text1, text2, text3, InternetNow(), m_picLog->Switches());
    if (error)
        MessageBox::Notice(this, *error);
}

void frmMain::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        m_picMain->SyncButton()->setVisible(m_settings.AutoSync != 0);
        ShowSyncColours();
    }
    QWidget::changeEvent(event);
}
