#include "alarms/AlarmDesk.h"

#include "alarms/AlarmLogic.h"
#include "clock/Clock.h"
#include "clock/ZoneClock.h"
#include "common/FloorDiv.h"
#include "logbook/LogBook.h"
#include "settings/Preferences.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QRegularExpression>

#include <optional>

AlarmDesk::AlarmDesk(SettingsStore& store, LogBook& log, const Clock& clock, const Preferences& preferences,
                     QObject* parent)
    : QObject(parent), m_store(store), m_log(log), m_clock(clock), m_preferences(preferences)
{}

QDateTime AlarmDesk::PcNow() const
{
    return m_clock.Now();
}

QDateTime AlarmDesk::InternetDateTimeNow() const
{
    return InternetDateTimeAt(m_clock.Now());
}

QDateTime AlarmDesk::InternetDateTimeAt(const QDateTime& pcNow) const
{
    return InternetDateTime(pcNow, m_preferences.Values().InetMinOffset);
}

LogBook::Stamp AlarmDesk::StampAt(const QDateTime& pcNow) const
{
    return {pcNow.date(), MinuteText(InternetDateTimeAt(pcNow))};
}

LogBook::Stamp AlarmDesk::StampNow() const
{
    return StampAt(m_clock.Now());
}

QString AlarmDesk::InternetNow() const
{
    return ::InternetNow(m_clock, m_preferences.Values().InetMinOffset);
}

std::optional<SettingsError> AlarmDesk::LoadAlarms()
{
    auto error = m_alarms.Load(m_store);
    RefreshAlarmList();
    return error;
}

void AlarmDesk::SaveAlarms()
{
    // After the last save of the program nothing is stored: what the closing windows write
    // into the table (a location nobody sent) must not reach the store.
    if (m_sealed)
        return;
    m_alarms.Save(m_store);
    // A store that keeps failing is announced once, until a save succeeds again.
    if (m_store.Sync()) {
        m_saveFailing = false;
    } else if (!m_saveFailing) {
        m_saveFailing = true;
        emit Failed(QStringLiteral("Error saving the alarms to ") + m_store.FileName());
    }
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
    CalcExpire(etime, ptr, InternetDateTimeNow());
}

void AlarmDesk::CalcExpire(const QString& etime, int ptr, const QDateTime& internetNow)
{
    if (const auto expire = ::CalcExpire(internetNow, etime)) {
        m_alarms.At(ptr).Expire = *expire;
        // A new expiry: whatever the alarm rang for before does not hold it back.
        m_alarms.At(ptr).RangFor = QDateTime();
        if (const auto minutes = IntervalMinutes(etime))
            m_alarms.At(ptr).DueAt = internetNow.addSecs(qint64(*minutes) * 60).toUTC();
        emit ExpiryChanged(ptr);
    }
}

void AlarmDesk::WriteLogEntryAt(const QDateTime& pcNow, const QString& code, qint16 safety,
                                const QString& text1, const QString& text2, const QString& text3)
{
    const LogBook::Stamp stamp = StampAt(pcNow);
    m_log.WriteLogEntryAt(stamp.Day, stamp.Time, code, safety, text1, text2, text3);
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

QDateTime AlarmDesk::WallMinuteNow() const
{
    return WallMinute(InternetDateTimeNow());
}

bool AlarmDesk::ScanExpiries(int hour, int minute)
{
    const QDateTime to(WallMinuteNow().date(), QTime(hour, minute), Qt::UTC);
    return ScanSpan(to.addSecs(-60), to);
}

namespace {

// The last time at `expire` ("hh:mm") after `from` and up to `to`, if there is one.
std::optional<QDateTime> LastInstance(const QString& expire, const QDateTime& from, const QDateTime& to)
{
    // An expiry that is not two digits, a colon and two digits never matches.
    static const QRegularExpression form(QStringLiteral("^\\d\\d:\\d\\d$"));
    const QTime time =
        form.match(expire).hasMatch() ? QTime::fromString(expire, QStringLiteral("HH:mm")) : QTime();
    if (!time.isValid())
        return std::nullopt;
    QDateTime at(to.date(), time, Qt::UTC);
    if (at > to)
        at = at.addDays(-1);
    if (at <= from)
        return std::nullopt;
    return at;
}

} // namespace

AlarmDesk::Step AlarmDesk::RingIfDue(int& n, const QDateTime& from, const QDateTime& to)
{
    AlarmRecord& due = m_alarms.At(n);
    if (!due.AlarmSet || due.Ringing)
        return Step::Quiet;
    std::optional<QDateTime> at;
    int lateMinutes = 0;
    if (due.TypeTimer && due.DueAt.isValid()) {
        // A timer set in this run goes by its moment, not by the wall. The wall can show its
        // "hh:mm" an hour before the moment (the first pass of a repeated hour, the zone moved
        // east), an hour after it (the zone moved west), or not at all in the minutes scanned
        // (the machine slept across the autumn change). It rings in the minute of its moment,
        // or at the first scan after it, late by the minutes that have passed since.
        // The corrected minute comes from the clock's milliseconds alone: a timer that is not
        // due yet costs no reading of the local time.
        const qint64 dueMinute = FloorDiv(due.DueAt.toSecsSinceEpoch(), 60);
        const qint64 nowMinute =
            FloorDiv(m_clock.MSecsSinceEpoch(), 60 * 1000) + m_preferences.Values().InetMinOffset;
        if (dueMinute > nowMinute)
            return Step::Quiet;
        const QDateTime internetNow = InternetDateTimeNow();
        at = WallMinute(internetNow.addSecs(internetNow.secsTo(due.DueAt)));
        lateMinutes = int(nowMinute - dueMinute);
        // Its window, the list and the settings show the moment on the wall as it reads now,
        // which differs from the expiry worked out at setting after a change of the zone.
        due.Expire = MinuteText(*at);
        // The moment is spent: from here on the timer is an expiry on the wall like any other,
        // until it is set again.
        due.DueAt = QDateTime();
    } else {
        at = LastInstance(due.Expire, from, to);
        // The same expiry (the same date and minute on the wall) rings once.
        if (!at || due.RangFor == *at)
            return Step::Quiet;
        lateMinutes = int(at->secsTo(to) / 60);
    }
    due.RangFor = *at;
    due.LateMinutes = lateMinutes;
    const quint64 id = m_alarms.IdOf(n);
    emit AlarmDue(n);
    if (m_stopped)
        return Step::Stopped; // the program was ended while a message was open
    // A window may have moved the table meanwhile: go on from this alarm's own slot.
    if (const int moved = m_alarms.SlotOf(id); moved != 0) {
        n = moved;
    } else {
        --n; // it was deleted: the next alarm moved into its slot
        return Step::Quiet;
    }
    m_alarms.At(n).Ringing = true;
    const AlarmRecord& a = m_alarms.At(n);
    const QString late = a.LateMinutes > 0 ? QStringLiteral(", rang ") + QString::number(a.LateMinutes) +
                                                 (a.LateMinutes == 1 ? QStringLiteral(" minute late")
                                                                     : QStringLiteral(" minutes late"))
                                           : QString();
    m_log.WriteLogEntry(QStringLiteral("EA"), SafetyFlag(a), QString::fromUtf16(AlarmLogText::Expired),
                        a.Message, late);
    return m_stopped ? Step::Stopped : Step::Rang;
}

bool AlarmDesk::RingIfPassed(int n, const QDateTime& since)
{
    int slot = n;
    const Step step = RingIfDue(slot, since, WallMinuteNow());
    if (step == Step::Rang)
        Rang(slot == m_alarms.SelectedAlarm);
    return step == Step::Rang;
}

void AlarmDesk::Rang(bool selectedRang)
{
    RefreshAlarmList();
    // The windows are placed and the log view redrawn once the list shows the ringing.
    emit AlarmsRang();
    // The editor keeps its alarm, and what the operator is typing in it; only when that
    // alarm rang is the editor shown anew, with its buttons locked.
    if (selectedRang)
        SetSelectedAlarm();
}

bool AlarmDesk::ScanSpan(const QDateTime& from, const QDateTime& to)
{
    bool expired = false;
    bool selectedRang = false;
    for (int n = 1; n <= m_alarms.AlarmCount; ++n) {
        const Step step = RingIfDue(n, from, to);
        if (step == Step::Stopped)
            return expired;
        if (step == Step::Rang) {
            expired = true;
            selectedRang = selectedRang || n == m_alarms.SelectedAlarm;
        }
    }
    if (expired)
        Rang(selectedRang);
    return expired;
}
