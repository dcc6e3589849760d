#pragma once

#include "sync/frmAutoSync.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class DialUpState;
class QWidget;
class TimeQuery;

// Decides when a sync run starts: by hand ("sync now"), when the automatic schedule finds
// one due, or when the system's clock was changed by someone else. Before a run would use a
// dial-up link that is down it asks the operator. Runs are shown over `window`.
class SyncScheduler : public QObject
{
    Q_OBJECT
public:
    using MakeQuery = std::function<std::unique_ptr<TimeQuery>(QObject*)>;
    SyncScheduler(const SyncRunServices& services, const DialUpState& dialUp, MakeQuery makeQuery,
                  QWidget* window);
    ~SyncScheduler() override;

    // Starts a run, unless one is under way; `automatic` when the schedule asks for it. The
    // run (and the dial-up question) is shown over `over` when given (a dialog that started
    // it), otherwise over the main window.
    void StartSync(bool automatic, QWidget* over = nullptr);
    // The schedule's check: a run starts when Internet now has reached the next sync.
    void CheckSchedule();
    // The system's clock was changed: with automatic sync on, a run starts at once, unless
    // the change was the program's own.
    void ClockChanged();
    // The run under way, if any.
    frmAutoSync* Run() const { return m_run; }
    // The program stops: the run window goes without telling anything, no question is asked.
    void Stop();

signals:
    void RunEnded();

private:
    void AskToDial(bool automatic, QWidget* over);
    void OpenRun(bool automatic, QWidget* over);

    SyncRunServices m_services;
    const DialUpState& m_dialUp;
    MakeQuery m_makeQuery;
    QPointer<QWidget> m_window;
    QPointer<frmAutoSync> m_run;
    bool m_stopped = false;
};
