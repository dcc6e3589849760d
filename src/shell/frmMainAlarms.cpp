// The main window's alarm routines: expiry times, delete, the alarm windows and their
// places on the screen, check-in, notes, sound and flash.
#include "alarms/AlarmListView.h"
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmPanel.h"
#include "alarms/AlarmSound.h"
#include "alarms/SoundFile.h"
#include "alarms/frmAlarm.h"
#include "clock/Clock.h"
#include "logbook/frmNote.h"
#include "platform/WindowFlash.h"
#include "shell/frmMain.h"
#include "widgets/MessageBox.h"

#include <exception>

QDateTime frmMain::InternetDateTimeNow() const
{
    return InternetDateTime(m_clock.Now(), m_settings.InetMinOffset);
}

void frmMain::CalcExpire(const QString& etime, int ptr)
{
    // A time that cannot be read leaves the expiry as it was; the editor reports nothing.
    if (const auto expire = ::CalcExpire(InternetDateTimeNow(), etime)) {
        m_alarms.At(ptr).Expire = *expire;
        m_picAlarm->List()->SetRowExpires(RowTag(ptr), *expire);
    }
}

void frmMain::DeleteAlarm(int ptr)
{
    if (ptr < 1 || ptr > m_alarms.AlarmCount)
        return;
    ::DeleteAlarm(m_alarms, ptr);
    // The windows of the later alarms follow them down one slot, so that answering one
    // acts on its own alarm and not on the one that moved into its old slot.
    for (int n = ptr + 1; n <= MaxAlarms; ++n) {
        QPointer<frmAlarm>& from = m_alarmWindows.at(std::size_t(n - 1));
        if (from) {
            from->SetExpirePtr(n - 1);
            if (!from->Tag().isEmpty())
                from->SetTag(QStringLiteral("Alarm") + QString::number(n - 1));
        }
        m_alarmWindows.at(std::size_t(n - 2)) = from;
        from = nullptr;
    }
    m_alarms.SelectedAlarm =
        qBound(1, m_alarms.SelectedAlarm > ptr ? m_alarms.SelectedAlarm - 1 : m_alarms.SelectedAlarm,
               qMax(1, m_alarms.AlarmCount));
    RefreshAlarmList();
    SetSelectedAlarm();
}

void frmMain::SetSelectedAlarm()
{
    m_picAlarm->SetSelectedAlarm();
}

void frmMain::ShowAlarmWindow(int n)
{
    m_alarms.SelectedAlarm = n;
    SetSelectedAlarm();
    frmAlarm* window = nullptr;
    try {
        window = new frmAlarm(*this, n, false, this);
        m_alarmWindows.at(std::size_t(n - 1)) = window;
        m_openAlarmWindows.append(window);
        window->show();
    } catch (const std::exception& e) {
        const AlarmRecord& a = m_alarms.At(n);
        MessageBox::Show(this, {QStringLiteral("Unable to show alarm: \r  Alarm: ") + a.Message +
                                    QStringLiteral("\r  Expired at: ") + a.Expire +
                                    QStringLiteral("\rError: ") + QString::fromLocal8Bit(e.what()),
                                MessageBox::Title(), MessageBox::Buttons::OkOnly, MessageBox::Icon::Critical,
                                false});
    }
    if (window) {
        window->SetTag(QStringLiteral("Alarm") + QString::number(n));
        RefreshAlarmList();
        window->FlashTimer().start();
    }
}

void frmMain::StartCheckIn(int n)
{
    auto* window = new frmAlarm(*this, n, true, this);
    m_alarmWindows.at(std::size_t(n - 1)) = window;
    m_openAlarmWindows.append(window);
    // The pending expiry is withdrawn while the operator reports.
    m_alarms.At(n).AlarmSet = false;
    SetSelectedAlarm();
    window->show();
    RefreshAlarmList();
}

void frmMain::RelayoutAlarmWindows()
{
    // The open windows are walked in their order of opening; each alarm window counts, and
    // its alarm number picks the window of that slot, which is moved (not resized).
    int k = 0;
    QPoint last;
    for (const QPointer<frmAlarm>& walked : std::as_const(m_openAlarmWindows)) {
        if (!walked || !walked->Tag().startsWith(QStringLiteral("Alarm")))
            continue;
        ++k;
        const int number = walked->Tag().mid(5).toInt();
        if (number < 1 || number > MaxAlarms)
            return;
        frmAlarm* window = m_alarmWindows.at(std::size_t(number - 1));
        if (!window)
            continue;
        const QSize size = window->frameGeometry().size();
        if (const auto position = AlarmWindowPositionTwips(k, size.width(), size.height()))
            last = *position; // computed on pixel sizes, so already in pixels
        window->move(last);
    }
}

void frmMain::AlarmWindowClosed(frmAlarm* window)
{
    m_openAlarmWindows.removeAll(window);
}

frmAlarm* frmMain::AlarmWindow(int n) const
{
    return m_alarmWindows.at(std::size_t(n - 1));
}

QList<frmAlarm*> frmMain::OpenAlarmWindows() const
{
    QList<frmAlarm*> windows;
    for (const QPointer<frmAlarm>& w : m_openAlarmWindows)
        if (w)
            windows.append(w);
    return windows;
}

void frmMain::OpenNote()
{
    auto* note = new frmNote(*this, this);
    note->show();
}

void frmMain::FlashMainWindow()
{
    m_flash->Flash(this);
}

std::unique_ptr<AlarmSound> frmMain::MakeSound(QObject* parent) const
{
    return m_makeSound(parent);
}

QString frmMain::DefaultSoundFile() const
{
    return ResolveSoundFile(m_settings.Sound, m_soundFolders);
}
