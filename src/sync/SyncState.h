#pragma once

#include <QDateTime>
#include <QElapsedTimer>
#include <QObject>

class Clock;
class Preferences;

// The state of the Internet time synchronisation for the whole run: the run flags, and the
// schedule kept in the preferences ("LastSync", "AutoSyncHrs", "InetMinOffset"). A run, the
// schedule and the main window change it here; the main window shows it on the sync button
// when RefreshDue is announced.
class SyncState : public QObject
{
    Q_OBJECT
public:
    SyncState(Preferences& preferences, const Clock& clock, QObject* parent = nullptr);

    // A run is under way (one at a time).
    bool InProgress() const { return m_inProgress; }
    void SetInProgress(bool on);
    // The last run succeeded (and none has failed since).
    bool Synchronised() const { return m_synchronised; }
    void SetSynchronised(bool on);
    // A run is moving the computer's clock: the main tick leaves the half-set clock alone.
    bool ClockBeingSet() const { return m_clockBeingSet; }
    void SetClockBeingSet(bool on);
    // The question about a dial-up link that is down is on the screen (or was left marked
    // so: see SyncScheduler).
    bool DialUpPromptOpen() const { return m_dialUpPromptOpen; }
    void SetDialUpPromptOpen(bool on);

    // Whether a clock change just noticed is likely the program's own: one made by a run
    // less than a few seconds ago (the notice may come after the run has ended).
    bool OwnClockChangeRecent() const;
    // How long after the program's own setting a change counts as its own (tests shorten it).
    void SetOwnChangeWindow(int msec) { m_ownChangeMsec = msec; }

    // The present date and time corrected by the Internet minute offset.
    QDateTime InternetNow() const;
    // "LastSync" plus "AutoSyncHrs" hours.
    QDateTime NextSync() const;
    // The automatic schedule wants a run: Internet now is at or after the next sync.
    bool Due() const;
    // The next sync moved to `minutes` from Internet now by back-dating "LastSync" (by
    // `minutes` - 60): the retry lands `minutes` from now only when "AutoSyncHrs" is 1, and
    // the extra hours later with a longer interval.
    void ScheduleRetry(int minutes);
    // A good run: the server's time as received becomes "LastSync", and the run counts as
    // synchronised.
    void RecordSuccess(const QDateTime& serverTime);
    // The whole minutes between the server's time and the computer's.
    void RecordOffset(int minutes);

    // Asks the main window to show the state on the sync button (its "refresh" mode).
    void Refresh() { emit RefreshDue(); }

signals:
    // A flag changed.
    void Changed();
    void RefreshDue();

private:
    Preferences& m_preferences;
    const Clock& m_clock;
    bool m_inProgress = false;
    bool m_synchronised = false;
    bool m_clockBeingSet = false;
    bool m_dialUpPromptOpen = false;
    QElapsedTimer m_sinceOwnChange;
    int m_ownChangeMsec = 5000;
};
