#pragma once

#include "alarms/AlarmTable.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

class AlarmDesk;
class AlarmSound;
class Preferences;
class QWidget;
class WindowFlash;
class frmAlarm;

// The open alarm windows: one per alarm that rings or checks in, placed on the screen in
// the order they opened, each acting on its own alarm wherever its record moves. They are
// windows of their own, not children of the main window, so that a dialog that blocks the
// main window never blocks them; they flash the main window's (`owner`) taskbar entry.
class AlarmWindows : public QObject
{
    Q_OBJECT
public:
    using SoundFactory = std::function<std::unique_ptr<AlarmSound>(QObject*)>;

    AlarmWindows(AlarmDesk& desk, const Preferences& preferences, QStringList soundFolders,
                 SoundFactory makeSound, WindowFlash& flash, QWidget* owner);
    ~AlarmWindows() override;

    // Opens the window of alarm n, which goes off now. The editor keeps the alarm it shows.
    void ShowAlarmWindow(int n);
    // Opens the check-in window of safety alarm n; its pending expiry is withdrawn.
    void StartCheckIn(int n);
    // Places the open windows in a grid of two columns and three rows.
    void RelayoutAlarmWindows();

    // The open window of alarm n, if any.
    frmAlarm* AlarmWindow(int n) const;
    QList<frmAlarm*> OpenAlarmWindows() const;

    // Services of the windows.
    void AlarmWindowClosed(frmAlarm* window);
    // The operator answered an alarm window: what shows the log should redraw.
    void AlarmAnswered();
    void FlashMainWindow();
    std::unique_ptr<AlarmSound> MakeSound(QObject* parent) const;
    // The default sound file, found as at start-up (an empty text when there is none).
    QString DefaultSoundFile() const;
    bool SoundOn() const;

signals:
    void Answered();
    // The window of the alarm with this record id closed, answered or not.
    void WindowClosed(quint64 id);

private:
    void Track(frmAlarm* window);

    AlarmDesk& m_desk;
    const Preferences& m_preferences;
    QStringList m_soundFolders;
    SoundFactory m_makeSound;
    WindowFlash& m_flash;
    QWidget* m_owner;
    // Every open window, in the order they were opened.
    QList<QPointer<frmAlarm>> m_openAlarmWindows;
};
