#pragma once

#include "alarms/AlarmTable.h"
#include "logbook/LogBook.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <optional>

class Clock;
class Preferences;
class SettingsStore;
struct SettingsError;

// The alarm table for the whole run, with its persistence, its shared routines and the
// expiry scan of each minute. The alarm panel, the alarm windows and the note window
// change alarms through it and hear of changes through its signals.
class AlarmDesk : public QObject
{
    Q_OBJECT
public:
    AlarmDesk(SettingsStore& store, LogBook& log, const Clock& clock, const Preferences& preferences,
              QObject* parent = nullptr);

    AlarmTable& Table() { return m_alarms; }
    // The log that alarm events are written to.
    LogBook& Log() { return m_log; }
    const AlarmTable& Table() const { return m_alarms; }

    // One reading of the PC's clock. Work that must agree on the moment (an answer's new
    // expiry, its log entry and its position) reads it once and derives the rest from it.
    QDateTime PcNow() const;
    // The corrected clock that alarms are set and compared by, now or at `pcNow`.
    QDateTime InternetDateTimeNow() const;
    QDateTime InternetDateTimeAt(const QDateTime& pcNow) const;
    QString InternetNow() const;
    // The stamp of a log entry made at `pcNow`: the PC's date and the corrected minute.
    LogBook::Stamp StampAt(const QDateTime& pcNow) const;
    // The stamp of a log entry made now, from one reading of the clock.
    LogBook::Stamp StampNow() const;
    // The wall-clock minute of the corrected clock (see WallMinute).
    QDateTime WallMinuteNow() const;

    // Reads the table from the store; a stored value that cannot be read is returned, and
    // the table is then empty.
    std::optional<SettingsError> LoadAlarms();
    // Writes the table to the store at once; a failure is announced through Failed().
    void SaveAlarms();
    // Blanks the expiry of every unset alarm and announces the table as changed.
    void RefreshAlarmList();
    // Announces that the editor should show the selected alarm (Table().SelectedAlarm).
    void SetSelectedAlarm();
    // A timer's expiry: the corrected time plus `etime`. A time that cannot be read leaves
    // the expiry as it was.
    void CalcExpire(const QString& etime, int ptr);
    // The same, counted from `internetNow`, a moment of the corrected clock read before.
    void CalcExpire(const QString& etime, int ptr, const QDateTime& internetNow);
    // Writes a log entry stamped as StampAt(pcNow), a reading of the PC's clock made before.
    // An answer reads the clock once and uses that moment for the new expiry, the entry and
    // the position, so the entry never says "reset at 16:51, expires at 17:00" for a
    // ten-minute check when the answer came at the last instant of 16:50.
    void WriteLogEntryAt(const QDateTime& pcNow, const QString& code, qint16 safety, const QString& text1,
                         const QString& text2, const QString& text3);
    // Removes alarm `ptr`; the later alarms move down one slot.
    void DeleteAlarm(int ptr);

    // Every set alarm whose time falls after `from` and up to `to` (wall-clock minutes of
    // the corrected clock, see WallMinute; at most a day apart) goes off once, lower numbers first: each is
    // announced through AlarmDue (which opens its window), marked ringing and logged, with
    // how late it is when its minute passed unseen. An alarm already ringing, or that rang
    // for the same expiry before (the clock was set back), does not ring again. The count is
    // read again at each step, since a window may change the table. True when any rang.
    bool ScanSpan(const QDateTime& from, const QDateTime& to);
    // The scan of one minute of today: ScanSpan over that minute alone.
    bool ScanExpiries(int hour, int minute);
    // Alarm n alone rings when its expiry fell after `since` and up to now (a check-in was
    // called off after the alarm's time had come).
    bool RingIfPassed(int n, const QDateTime& since);

    // The program is stopping: a scan under way ends at its next step, and a failure of the
    // last save is told even when earlier ones were.
    void Stop()
    {
        m_stopped = true;
        m_saveFailing = m_storeKnownUnwritable;
    }
    // The operator was told at start-up that the store cannot be written: saves that fail
    // are not told again.
    void StoreKnownUnwritable()
    {
        m_storeKnownUnwritable = true;
        m_saveFailing = true;
    }
    // The last save was made: no later save reaches the store.
    void Seal() { m_sealed = true; }
    bool IsStopped() const { return m_stopped; }

signals:
    // Rows, counts or states of the table changed.
    void TableChanged();
    // The selected alarm is to be shown in the editor.
    void SelectionChanged();
    // Alarm n has a new expiry.
    void ExpiryChanged(int n);
    // Alarm `ptr` was removed and the later ones moved down one slot.
    void AlarmDeleted(int ptr);
    // Alarm n goes off now.
    void AlarmDue(int n);
    // The scan of a minute set off at least one alarm.
    void AlarmsRang();
    void Failed(const QString& message);

private:
    enum class Step
    {
        Quiet,
        Rang,
        Stopped,
    };
    Step RingIfDue(int& n, const QDateTime& from, const QDateTime& to);
    void Rang(bool selectedRang);

    SettingsStore& m_store;
    LogBook& m_log;
    const Clock& m_clock;
    const Preferences& m_preferences;
    AlarmTable m_alarms;
    bool m_stopped = false;
    bool m_saveFailing = false;
    bool m_sealed = false;
    bool m_storeKnownUnwritable = false;
};
