#include "sync/SyncScheduler.h"

#include "platform/DialUpState.h"
#include "settings/Preferences.h"
#include "sync/SyncState.h"
#include "widgets/MessageBox.h"

#include <QWidget>

SyncScheduler::SyncScheduler(const SyncRunServices& services, const DialUpState& dialUp, MakeQuery makeQuery,
                             QWidget* window)
    : m_services(services), m_dialUp(dialUp), m_makeQuery(std::move(makeQuery)), m_window(window)
{}

SyncScheduler::~SyncScheduler()
{
    Stop();
}

void SyncScheduler::CheckSchedule()
{
    if (m_services.state.Due())
        StartSync(true);
}

void SyncScheduler::ClockChanged()
{
    if (m_services.preferences.Values().AutoSync != 0 && !m_services.state.OwnClockChangeRecent())
        StartSync(true);
}

void SyncScheduler::StartSync(bool automatic, QWidget* over)
{
    SyncState& state = m_services.state;
    if (m_stopped || state.InProgress())
        return;
    if (m_services.preferences.Values().Connection == 1) {
        // While the question is open (or left marked so) nothing is started; asked first, so
        // that the look at the network is spared too.
        if (state.DialUpPromptOpen())
            return;
        if (!m_dialUp.DialUpConnection())
            AskToDial(automatic, over);
        else
            OpenRun(automatic, over);
        return;
    }
    OpenRun(automatic, over);
}

void SyncScheduler::AskToDial(bool automatic, QWidget* over)
{
    m_services.state.SetDialUpPromptOpen(true);
    const QPointer<SyncScheduler> self(this);
    const QPointer<QWidget> parent(over ? over : m_window.data());
    MessageBox::Ask(parent,
                    {QStringLiteral("Internet Dial-Up connection not active.\rProceed to connect?"),
                     QString(), MessageBox::Buttons::YesNo, MessageBox::Icon::Information, false},
                    [self, automatic, parent](MessageBox::Answer answer) {
                        if (!self || self->m_stopped)
                            return;
                        SyncState& state = self->m_services.state;
                        if (answer != MessageBox::Answer::Yes) {
                            // Without automatic sync the question stays marked open: it is not
                            // asked again until the program starts again.
                            if (self->m_services.preferences.Values().AutoSync == 0)
                                return;
                            state.SetSynchronised(false);
                            state.ScheduleRetry(15);
                            const QString text = QStringLiteral("Will try again at: ") +
                                                 state.NextSync().toString(QStringLiteral("HH:mm"));
                            state.SetDialUpPromptOpen(false);
                            self->m_services.showMessage(text);
                            state.Refresh();
                            return;
                        }
                        // Answered: the question is no longer on the screen.
                        state.SetDialUpPromptOpen(false);
                        self->OpenRun(automatic, parent);
                    });
}

void SyncScheduler::OpenRun(bool automatic, QWidget* over)
{
    if (m_stopped || m_services.state.InProgress() || m_run)
        return;
    auto* run = new frmAutoSync(m_services, m_makeQuery(nullptr), automatic, over ? over : m_window.data());
    m_run = run;
    // Over when it says so; the window itself goes a moment later.
    connect(run, &frmAutoSync::Ended, this, [this, run] {
        if (m_run == run)
            m_run = nullptr;
        emit RunEnded();
    });
    // The main window waits while the run is shown; the alarm windows, windows of their
    // own, do not.
    run->setWindowModality(Qt::WindowModal);
    run->show();
    run->Form_Activate();
}

void SyncScheduler::Stop()
{
    m_stopped = true;
    if (QPointer<frmAutoSync> run = m_run) {
        run->Dismiss();
        delete run.data();
    }
}
