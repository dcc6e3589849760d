#include "alarms/AlarmWindows.h"

#include "alarms/AlarmDesk.h"
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmSound.h"
#include "alarms/SoundFile.h"
#include "alarms/frmAlarm.h"
#include "platform/WindowFlash.h"
#include "settings/Preferences.h"
#include "widgets/MessageBox.h"

#include <exception>

AlarmWindows::AlarmWindows(AlarmDesk& desk, const Preferences& preferences, QStringList soundFolders,
                           SoundFactory makeSound, WindowFlash& flash, QWidget* owner)
    : m_desk(desk), m_preferences(preferences), m_soundFolders(std::move(soundFolders)),
      m_makeSound(std::move(makeSound)), m_flash(flash), m_owner(owner)
{
    connect(&m_desk, &AlarmDesk::AlarmDue, this, &AlarmWindows::ShowAlarmWindow);
    connect(&m_desk, &AlarmDesk::AlarmsRang, this, &AlarmWindows::RelayoutAlarmWindows);
}

AlarmWindows::~AlarmWindows()
{
    // The windows have no parent to take them along.
    for (const QPointer<frmAlarm>& window : std::as_const(m_openAlarmWindows))
        delete window.data();
}

void AlarmWindows::Track(frmAlarm* window)
{
    m_openAlarmWindows.append(window);
}

void AlarmWindows::ShowAlarmWindow(int n)
{
    frmAlarm* window = nullptr;
    try {
        window = new frmAlarm(m_desk, *this, n, false);
        Track(window);
        window->show();
    } catch (const std::exception& e) {
        const AlarmRecord& a = m_desk.Table().At(n);
        MessageBox::Show(m_owner, {QStringLiteral("Unable to show alarm: \r  Alarm: ") + a.Message +
                                       QStringLiteral("\r  Expired at: ") + a.Expire +
                                       QStringLiteral("\rError: ") + QString::fromLocal8Bit(e.what()),
                                   MessageBox::Title(), MessageBox::Buttons::OkOnly,
                                   MessageBox::Icon::Critical, false});
    }
    if (window) {
        m_desk.RefreshAlarmList();
        window->FlashTimer().start();
    }
}

void AlarmWindows::StartCheckIn(int n)
{
    auto* window = new frmAlarm(m_desk, *this, n, true);
    Track(window);
    // The pending expiry is withdrawn while the operator reports; what it was is kept.
    AlarmRecord& a = m_desk.Table().At(n);
    a.CheckingIn = true;
    a.PendingSet = a.AlarmSet;
    a.PendingExpire = a.Expire;
    a.AlarmSet = false;
    m_desk.SetSelectedAlarm();
    window->show();
    m_desk.RefreshAlarmList();
}

void AlarmWindows::RelayoutAlarmWindows()
{
    // The expired alarms' windows are placed in their order of opening, moved (not
    // resized); check-in windows stay where they are.
    int k = 0;
    QPoint last;
    for (const QPointer<frmAlarm>& window : std::as_const(m_openAlarmWindows)) {
        if (!window || window->CheckIn())
            continue;
        ++k;
        const QSize size = window->frameGeometry().size();
        if (const auto position = AlarmWindowPositionTwips(k, size.width(), size.height()))
            last = *position; // computed on pixel sizes, so already in pixels
        window->move(last);
    }
}

frmAlarm* AlarmWindows::AlarmWindow(int n) const
{
    for (const QPointer<frmAlarm>& window : m_openAlarmWindows)
        if (window && window->ExpirePtr() == n)
            return window;
    return nullptr;
}

QList<frmAlarm*> AlarmWindows::OpenAlarmWindows() const
{
    QList<frmAlarm*> windows;
    for (const QPointer<frmAlarm>& w : m_openAlarmWindows)
        if (w)
            windows.append(w);
    return windows;
}

void AlarmWindows::AlarmWindowClosed(frmAlarm* window)
{
    m_openAlarmWindows.removeAll(window);
    emit WindowClosed(window->Id());
}
void AlarmWindows::AlarmAnswered()
{
    emit Answered();
}

void AlarmWindows::FlashMainWindow()
{
    m_flash.Flash(m_owner);
}

std::unique_ptr<AlarmSound> AlarmWindows::MakeSound(QObject* parent) const
{
    return m_makeSound(parent);
}

QString AlarmWindows::DefaultSoundFile() const
{
    return ResolveSoundFile(m_preferences.Values().Sound, m_soundFolders);
}

bool AlarmWindows::SoundOn() const
{
    return m_preferences.Values().Audible == 1;
}
