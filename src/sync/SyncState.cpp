#include "sync/SyncState.h"

#include "clock/Clock.h"
#include "clock/ZoneClock.h"
#include "settings/Preferences.h"

SyncState::SyncState(Preferences& preferences, const Clock& clock, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_clock(clock)
{}

void SyncState::SetInProgress(bool on)
{
    if (m_inProgress == on)
        return;
    m_inProgress = on;
    emit Changed();
}

void SyncState::SetSynchronised(bool on)
{
    if (m_synchronised == on)
        return;
    m_synchronised = on;
    emit Changed();
}

void SyncState::SetClockBeingSet(bool on)
{
    if (m_clockBeingSet == on)
        return;
    m_clockBeingSet = on;
    // The notice of the change the program made may come after this.
    m_sinceOwnChange.start();
    emit Changed();
}

void SyncState::SetDialUpPromptOpen(bool on)
{
    if (m_dialUpPromptOpen == on)
        return;
    m_dialUpPromptOpen = on;
    emit Changed();
}

bool SyncState::OwnClockChangeRecent() const
{
    return m_clockBeingSet || (m_sinceOwnChange.isValid() && m_sinceOwnChange.elapsed() < m_ownChangeMsec);
}

QDateTime SyncState::InternetNow() const
{
    return InternetDateTime(m_clock.Now(), m_preferences.Values().InetMinOffset);
}

QDateTime SyncState::NextSync() const
{
    const Settings& values = m_preferences.Values();
    return ::NextSync(values.LastSync, values.AutoSyncHrs);
}

bool SyncState::Due() const
{
    const QDateTime next = NextSync();
    return next.isValid() && InternetNow() >= next;
}

void SyncState::ScheduleRetry(int minutes)
{
    const QDateTime lastSync = InternetNow().addSecs(qint64(minutes - 60) * 60);
    m_preferences.Change([&lastSync](Settings& values) { values.LastSync = lastSync; });
}

void SyncState::RecordSuccess(const QDateTime& serverTime)
{
    SetSynchronised(true);
    // Kept as a local time, like every other time of the program.
    const QDateTime lastSync = serverTime.toLocalTime();
    m_preferences.Change([&lastSync](Settings& values) { values.LastSync = lastSync; });
}

void SyncState::RecordOffset(int minutes)
{
    m_preferences.Change([minutes](Settings& values) { values.InetMinOffset = minutes; });
}
