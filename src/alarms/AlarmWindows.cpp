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
    connect(&m_desk, &AlarmDesk::AlarmDeleted, this, &AlarmWindows::FollowDeletedAlarm);
}

AlarmWindows::~AlarmWindows() = default;

void AlarmWindows::FollowDeletedAlarm(int ptr)
{
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
}

void AlarmWindows::ShowAlarmWindow(int n)
{
    m_desk.Table().SelectedAlarm = n;
    m_desk.SetSelectedAlarm();
    frmAlarm* window = nullptr;
    try {
        window = new frmAlarm(m_desk, *this, n, false, m_owner);
        m_alarmWindows.at(std::size_t(n - 1)) = window;
        m_openAlarmWindows.append(window);
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
        window->SetTag(QStringLiteral("Alarm") + QString::number(n));
        m_desk.RefreshAlarmList();
        window->FlashTimer().start();
    }
}

void AlarmWindows::StartCheckIn(int n)
{
    auto* window = new frmAlarm(m_desk, *this, n, true, m_owner);
    m_alarmWindows.at(std::size_t(n - 1)) = window;
    m_openAlarmWindows.append(window);
    // The pending expiry is withdrawn while the operator reports.
    m_desk.Table().At(n).AlarmSet = false;
    m_desk.SetSelectedAlarm();
    window->show();
    m_desk.RefreshAlarmList();
}

void AlarmWindows::RelayoutAlarmWindows()
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

frmAlarm* AlarmWindows::AlarmWindow(int n) const
{
    return m_alarmWindows.at(std::size_t(n - 1));
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
