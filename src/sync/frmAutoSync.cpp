#include "sync/frmAutoSync.h"

#include "clock/Clock.h"
#include "platform/ClockSetter.h"
#include "settings/Preferences.h"
#include "sync/SyncState.h"
#include "widgets/Icons.h"
#include "widgets/MessageBox.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include <cmath>

namespace {

// The time-out timer ticks once a minute.
constexpr int Timer1Interval = 60000;
// The time query itself gives up only after the run's own time-out would have.
constexpr int QueryTimeoutMsec = 5 * 60000;

// Minutes of `msec`, to the nearest whole minute.
int WholeMinutes(qint64 msec)
{
    return int(std::llround(double(msec) / 60000.0));
}

} // namespace

frmAutoSync::frmAutoSync(const SyncRunServices& services, std::unique_ptr<TimeQuery> query, bool automatic,
                         QWidget* parent)
    : QDialog(parent), m_services(services), m_time1(std::move(query)), m_autoUpdate(automatic),
      m_label1(new QLabel(this)), m_lblStatus(new QLabel(this)), m_image1(new QLabel(this)),
      m_cmdCancel(new QPushButton(QStringLiteral("Cancel"), this))
{
    setObjectName(QStringLiteral("frmAutoSync"));
    setWindowTitle(QStringLiteral("Tarrowind"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_label1->setWordWrap(true);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_image1->setObjectName(QStringLiteral("Image1"));
    m_image1->setPixmap(AppIcon().pixmap(32, 32));
    m_image1->setAccessibleName(QStringLiteral("Image1"));
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    // Enter in the window never cancels the run by accident.
    m_cmdCancel->setAutoDefault(false);

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_image1, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(m_label1, 0, 1);
    layout->addWidget(m_lblStatus, 1, 1);
    layout->addWidget(m_cmdCancel, 2, 1, Qt::AlignRight);
    setMinimumWidth(380);

    m_timer1.setObjectName(QStringLiteral("Timer1"));
    connect(&m_timer1, &QTimer::timeout, this, &frmAutoSync::Timer1_Timer);
    connect(m_time1.get(), &TimeQuery::Done, this, &frmAutoSync::Time1_Done);
    connect(m_cmdCancel, &QPushButton::clicked, this, &frmAutoSync::cmdCancel_Click);
}

frmAutoSync::~frmAutoSync()
{
    // Closed in any way, the run is over: the next one may start.
    if (m_phase != Phase::Over && m_phase != Phase::NotStarted)
        m_services.state.SetInProgress(false);
    if (m_phase == Phase::Setting)
        m_services.state.SetClockBeingSet(false);
}

void frmAutoSync::Form_Activate()
{
    if (m_phase != Phase::NotStarted)
        return;
    const QString site = m_services.preferences.Values().SyncSite;
    m_label1->setText(QStringLiteral("Tarrowind - now synchronizing clock with: ") + site);
    m_lblStatus->setText(QStringLiteral("Connecting ..."));
    adjustSize(); // room for the site's name
    m_services.state.SetSynchronised(false);
    m_services.state.SetInProgress(true);
    m_timer1.start(Timer1Interval);
    m_ticks = 0;
    m_phase = Phase::Waiting;

    const SntpResult started = m_time1->Start(site, QueryTimeoutMsec);
    // "Under way" only says that the answer comes later.
    if (started.ErrorCode != SntpResult::Ok && started.ErrorCode != SntpResult::UnderWay)
        FailWithError(started.Error);
}

void frmAutoSync::Time1_Done(const SntpResult& result)
{
    if (m_phase != Phase::Waiting)
        return;
    if (result.ErrorCode != SntpResult::Ok) {
        // The server could not be reached or its answer was refused: told as an error of the
        // request, with the reason.
        FailWithError(result.Error);
        return;
    }
    // An answer without a time sets nothing.
    if (!result.ServerTime.isValid()) {
        End();
        return;
    }
    if (m_services.preferences.Values().AutoSync != 0)
        SetSecondsOnly(result);
    else
        SetFull(result);
}

void frmAutoSync::SetSecondsOnly(const SntpResult& result)
{
    // Only the seconds of the computer's clock are set from the server's; its hours and
    // minutes are kept, and the whole minutes between the two become the Internet minute
    // offset. The main tick leaves the clock alone meanwhile.
    m_phase = Phase::Setting;
    m_cmdCancel->setEnabled(false);
    m_services.state.SetClockBeingSet(true);
    // Counted on the time line, not on the wall clock: the hour a daylight-time change
    // repeats cannot confuse it.
    const qint64 now = m_services.clock.Now().toMSecsSinceEpoch();
    const auto withinMinute = [](qint64 msec) { return ((msec % 60000) + 60000) % 60000; };
    const qint64 by = withinMinute(now + result.OffsetMs) - withinMinute(now);
    const QPointer<frmAutoSync> self(this);
    // Passed over when it fails, so the operator is not asked for the right: the main tick
    // waits for the answer, which then comes at once.
    m_services.setter.AdjustClock(by, false, [self, result, by](const ClockSetResult& set) {
        // Any error in setting the seconds is passed over: the offset still gives the time.
        if (self)
            self->SecondsSet(result, set.Ok ? by : 0);
    });
}

void frmAutoSync::SecondsSet(const SntpResult& result, qint64 movedMsec)
{
    // The whole minutes from the computer's clock, as it is now, to the server's. After a
    // good setting this is exact; when the seconds could not be set it is the nearest minute.
    m_services.state.RecordOffset(WholeMinutes(result.OffsetMs - movedMsec));
    m_services.state.SetClockBeingSet(false);
    Succeeded(result.ServerTime);
}

void frmAutoSync::SetFull(const SntpResult& result)
{
    const auto set = [this, result] {
        m_phase = Phase::Setting;
        m_cmdCancel->setEnabled(false);
        // Moved by the offset, so that a question answered late still sets the right time.
        const QPointer<frmAutoSync> self(this);
        m_services.setter.AdjustClock(result.OffsetMs, true, [self, result](const ClockSetResult& done) {
            if (!self)
                return;
            if (done.Ok)
                self->Succeeded(result.ServerTime);
            else
                self->FailToSet(done);
        });
    };
    if (std::abs(WholeMinutes(result.OffsetMs)) <= 5) {
        set();
        return;
    }
    m_phase = Phase::Asking;
    const QPointer<frmAutoSync> self(this);
    MessageBox::Ask(this,
                    {QStringLiteral("Time difference is greater than 5 minutes.\r"
                                    "Press OK to accept. If you are connected to\r"
                                    "network press Cancel to avoid potential connection\r"
                                    "problems."),
                     QString(), MessageBox::Buttons::OkCancel, MessageBox::Icon::Exclamation, false},
                    [self, set](MessageBox::Answer answer) {
                        if (!self || self->m_phase != Phase::Asking)
                            return;
                        if (answer != MessageBox::Answer::Ok) {
                            // The clock stays as it is; the window, its flags and its timer
                            // too, until the time-out ends the run.
                            self->m_phase = Phase::Waiting;
                            return;
                        }
                        set();
                    });
}

void frmAutoSync::Succeeded(const QDateTime& serverTime)
{
    m_lblStatus->setText(QStringLiteral("Time set"));
    m_services.state.RecordSuccess(serverTime);
    End();
}

void frmAutoSync::FailWithError(const QString& error)
{
    Halt();
    m_services.showMessage(
        QStringLiteral("Syncronization not completed because of the following error: \r\r") + error +
        QStringLiteral("\r\rPlease check your Internet connection or clock site"));
    RetryIfAutomatic();
    Finish();
}

void frmAutoSync::FailToSet(const ClockSetResult& result)
{
    // The reason is told; the run is not synchronised ("Time set" is not shown).
    Halt();
    m_services.showMessage(result.Reason);
    RetryIfAutomatic();
    m_services.state.SetSynchronised(false);
    Finish();
}

void frmAutoSync::End()
{
    Halt();
    Finish();
}

void frmAutoSync::Halt()
{
    m_phase = Phase::Over;
    m_timer1.stop();
    m_time1->Cancel();
}

bool frmAutoSync::RetryIfAutomatic()
{
    if (m_services.preferences.Values().AutoSync == 0 || !m_autoUpdate)
        return false;
    m_services.state.ScheduleRetry(15);
    return true;
}

void frmAutoSync::Finish()
{
    m_services.state.SetInProgress(false);
    m_services.state.Refresh();
    emit Ended();
    close();
}

void frmAutoSync::EndQuietly()
{
    if (m_phase == Phase::Over)
        return;
    const bool started = m_phase != Phase::NotStarted;
    if (m_phase == Phase::Setting)
        m_services.state.SetClockBeingSet(false);
    Halt();
    if (started) {
        m_services.state.SetInProgress(false);
        m_services.state.Refresh();
    }
    emit Ended();
}

void frmAutoSync::Timer1_Timer()
{
    ++m_ticks;
    // The question and the setting of the clock are answered first; their ticks still count.
    if (m_phase != Phase::Waiting)
        return;
    const bool timedOut = m_services.preferences.Values().Connection == 0 ? m_ticks >= 1 : m_ticks >= 4;
    if (!timedOut)
        return;
    Halt();
    QString message = QStringLiteral("Unable to connect to site.\rCheck site address or Intenet connection");
    if (RetryIfAutomatic())
        message += QStringLiteral("\rWill try again at: ") +
                   m_services.state.NextSync().toString(QStringLiteral("HH:mm"));
    m_services.showMessage(message);
    m_services.state.SetSynchronised(false);
    Finish();
}

void frmAutoSync::cmdCancel_Click()
{
    if (m_phase == Phase::Setting || m_phase == Phase::Over)
        return;
    Halt();
    m_services.state.ScheduleRetry(15);
    Finish();
}

void frmAutoSync::Dismiss()
{
    EndQuietly();
    close();
}

void frmAutoSync::closeEvent(QCloseEvent* event)
{
    // While the computer's clock is being moved the run cannot be left: its end must be seen.
    if (m_phase == Phase::Setting) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event); // through reject()
}

void frmAutoSync::reject()
{
    if (m_phase == Phase::Setting)
        return;
    // Closed by its frame (or Escape): the run ends quietly, without a message or a retry.
    EndQuietly();
    QDialog::reject();
}
