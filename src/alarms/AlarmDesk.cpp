#include "alarms/AlarmDesk.h"

#include "alarms/AlarmLogic.h"
#include "clock/Clock.h"
#include "clock/ZoneClock.h"
#include "logbook/LogBook.h"
#include "settings/Preferences.h"
#include "settings/SettingsStore.h"

AlarmDesk::AlarmDesk(SettingsStore& store, LogBook& log, const Clock& clock, const Preferences& preferences,
                     QObject* parent)
    : QObject(parent), m_store(store), m_log(log), m_clock(clock), m_preferences(preferences)
{}

QDateTime AlarmDesk::InternetDateTimeNow() const
{
    return InternetDateTime(m_clock.Now(), m_preferences.Values().InetMinOffset);
}

QString AlarmDesk::InternetNow() const
{
    return ::InternetNow(m_clock, m_preferences.Values().InetMinOffset);
}

void AlarmDesk::LoadAlarms()
{
    m_alarms.Load(m_store);
    RefreshAlarmList();
}

void AlarmDesk::SaveAlarms()
{
    m_alarms.Save(m_store);
    if (!m_store.Sync())
        emit Failed(QStringLiteral("Error saving the alarms to ") + m_store.FileName());
}

void AlarmDesk::RefreshAlarmList()
{
    m_alarms.BlankUnsetExpiries();
    emit TableChanged();
}

void AlarmDesk::SetSelectedAlarm()
{
    emit SelectionChanged();
}

void AlarmDesk::CalcExpire(const QString& etime, int ptr)
{
    if (const auto expire = ::CalcExpire(InternetDateTimeNow(), etime)) {
        m_alarms.At(ptr).Expire = *expire;
        emit ExpiryChanged(ptr);
    }
}

void AlarmDesk::DeleteAlarm(int ptr)
{
    if (ptr < 1 || ptr > m_alarms.AlarmCount)
        return;
    ::DeleteAlarm(m_alarms, ptr);
    emit AlarmDeleted(ptr);
    m_alarms.SelectedAlarm =
        qBound(1, m_alarms.SelectedAlarm > ptr ? m_alarms.SelectedAlarm - 1 : m_alarms.SelectedAlarm,
               qMax(1, m_alarms.AlarmCount));
    RefreshAlarmList();
    SetSelectedAlarm();
}

bool AlarmDesk::ScanExpiries(int hour, int minute)
{
    bool expired = false;
    for (int n = 1; n <= m_alarms.AlarmCount; ++n) {
        if (!ExpiresAt(m_alarms.At(n), hour, minute))
            continue;
        emit AlarmDue(n);
        if (m_stopped)
            return expired; // the program was ended while a message was open
        m_alarms.At(n).Ringing = true;
        expired = true;
        const AlarmRecord& a = m_alarms.At(n);
        m_log.WriteLogEntry(QStringLiteral("EA"), a.Safety, QString::fromUtf16(AlarmLogText::Expired),
                            a.Message, QString());
        if (m_stopped)
            return expired;
    }
    if (expired) {
        emit AlarmsRang();
        RefreshAlarmList();
        // The ringing alarm's buttons are locked in the editor.
        SetSelectedAlarm();
    }
    return expired;
}
