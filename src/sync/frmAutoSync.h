#pragma once

#include "sync/SntpClient.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <memory>

class ClockSetter;
class Clock;
class Preferences;
class QLabel;
class QPushButton;
class SyncState;
struct ClockSetResult;

// What a sync run needs from outside: the state it changes, the preferences it reads
// ("SyncSite", "AutoSync", "Connection", ...), the clock, the setter of the computer's
// clock, and the notice window its failures are told in.
struct SyncRunServices
{
    SyncState& state;
    Preferences& preferences;
    const Clock& clock;
    ClockSetter& setter;
    std::function<void(const QString&)> showMessage;
};

// One attempt to read the time from the Internet time server and set the computer's clock
// from it, in a small window that shows what happens and closes itself when the attempt is
// over (set, failure, time-out or Cancel). The time comes from `Time1`, a time query.
//
// Nothing in a run waits in a nested loop: the time query, the five-minute question and the
// clock setter each answer later through the event loop, and the run goes on from there.
class frmAutoSync : public QDialog
{
    Q_OBJECT
public:
    frmAutoSync(const SyncRunServices& services, std::unique_ptr<TimeQuery> query, bool automatic,
                QWidget* parent = nullptr);
    ~frmAutoSync() override;

    // The run started by the automatic schedule.
    bool AutoUpdate() const { return m_autoUpdate; }

    // Starts the run (the window has just been shown).
    void Form_Activate();
    // The time query's answer.
    void Time1_Done(const SntpResult& result);
    // The time-out, once a minute while the run waits.
    void Timer1_Timer();
    void cmdCancel_Click();
    // Ends the run at once without telling anything (the program stops).
    void Dismiss();

    QTimer& Timer1() { return m_timer1; }

signals:
    // The run is over; the window closes.
    void Ended();

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    enum class Phase
    {
        NotStarted,
        Waiting, // for the server's answer or the time-out
        Asking,  // the five-minute question is open
        Setting, // the computer's clock is being moved
        Over,
    };
    void SetSecondsOnly(const SntpResult& result);
    void SetFull(const SntpResult& result);
    void SecondsSet(const SntpResult& result, qint64 movedMsec);
    void Succeeded(const QDateTime& serverTime);
    void FailWithError(const QString& error);
    void FailToSet(const ClockSetResult& result);
    void End();
    // The run stops waiting: no more ticks, no answer of the query.
    void Halt();
    // An automatic run with automatic sync on is tried again in 15 minutes; says whether it is.
    bool RetryIfAutomatic();
    // The run is over: the button shows it and the window closes.
    void Finish();
    // Over without a word (the frame, Escape, the program stopping).
    void EndQuietly();

    SyncRunServices m_services;
    std::unique_ptr<TimeQuery> m_time1;
    bool m_autoUpdate;
    Phase m_phase = Phase::NotStarted;
    int m_ticks = 0;
    QTimer m_timer1;
    QLabel* m_label1;
    QLabel* m_lblStatus;
    QLabel* m_image1;
    QPushButton* m_cmdCancel;
};
