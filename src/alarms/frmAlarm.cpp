#include "alarms/frmAlarm.h"

#include "alarms/AlarmDesk.h"
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmSound.h"
#include "alarms/AlarmWindows.h"
#include "clock/TimeText.h"
#include "widgets/Icons.h"
#include "widgets/MessageBox.h"
#include "widgets/TopMost.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <exception>

frmAlarm::frmAlarm(AlarmDesk& desk, AlarmWindows& windows, int expirePtr, bool checkIn, QWidget* parent)
    : QWidget(parent,
              Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint),
      m_desk(desk), m_windows(windows), m_id(desk.Table().IdOf(expirePtr)),
      // The minute before: the check-in may open in its alarm's own minute before the tick
      // that would have rung it.
      m_checkInStarted(desk.WallMinuteNow().addSecs(-60)), m_checkIn(checkIn), m_lblCaption(new QLabel),
      m_lblMessage(new QLabel), m_lblExpired(new QLabel),
      m_lblLocation(new QLabel(QStringLiteral("Safety Check Location / Notes"))),
      m_txtLocation(new QLineEdit), m_cmdReset(new QPushButton(QStringLiteral("Reset to expire at 12:23"))),
      m_cmdStop(new QPushButton(QStringLiteral("Stop"))), m_image0(new QLabel), m_image1(new QLabel),
      m_mmcAlarm(windows.MakeSound(this))
{
    setObjectName(QStringLiteral("frmAlarm"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Tarrowind Alarm"));
    setWindowIcon(AlarmIcon());

    // Labels and buttons are read out by what they show; the rest carry a name.
    m_lblCaption->setObjectName(QStringLiteral("lblCaption"));
    m_lblMessage->setObjectName(QStringLiteral("lblMessage"));
    m_lblExpired->setObjectName(QStringLiteral("lblExpired"));
    m_lblLocation->setObjectName(QStringLiteral("lblLocation"));
    m_cmdReset->setObjectName(QStringLiteral("cmdReset"));
    m_cmdStop->setObjectName(QStringLiteral("cmdStop"));
    m_txtLocation->setObjectName(QStringLiteral("txtLocation"));
    m_txtLocation->setAccessibleName(QStringLiteral("Safety Check Location / Notes"));
    for (QLabel* picture : {m_image0, m_image1}) {
        picture->setAccessibleName(QStringLiteral("Alarm picture"));
        picture->setAccessibleDescription(QStringLiteral("A blinking bell: the alarm is ringing"));
    }
    m_image0->setObjectName(QStringLiteral("Image1_0"));
    m_image1->setObjectName(QStringLiteral("Image1_1"));
    m_image0->setPixmap(BellPicture(false));
    m_image1->setPixmap(BellPicture(true));
    m_image1->setVisible(false);

    QFont captionFont = m_lblCaption->font();
    captionFont.setPointSize(captionFont.pointSize() + 4);
    captionFont.setBold(true);
    m_lblCaption->setFont(captionFont);
    m_lblCaption->setAutoFillBackground(true);
    m_lblCaption->setAlignment(Qt::AlignCenter);
    m_lblCaption->setMargin(4);
    QFont messageFont = m_lblMessage->font();
    messageFont.setPointSize(messageFont.pointSize() + 2);
    m_lblMessage->setFont(messageFont);
    m_lblMessage->setWordWrap(true);
    m_txtLocation->setMinimumWidth(260);

    auto* pictures = new QHBoxLayout;
    pictures->addWidget(m_image0);
    pictures->addWidget(m_image1);
    auto* text = new QVBoxLayout;
    text->addWidget(m_lblMessage);
    text->addWidget(m_lblExpired);
    auto* middle = new QHBoxLayout;
    middle->addLayout(pictures);
    middle->addLayout(text, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdReset);
    buttons->addWidget(m_cmdStop);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_lblCaption);
    layout->addLayout(middle);
    layout->addWidget(m_lblLocation);
    layout->addWidget(m_txtLocation);
    layout->addLayout(buttons);

    m_timer1.setObjectName(QStringLiteral("Timer1"));
    m_timer1.setInterval(500);
    m_tmrFlash.setObjectName(QStringLiteral("tmrFlash"));
    m_tmrFlash.setInterval(2000);
    connect(&m_timer1, &QTimer::timeout, this, &frmAlarm::Timer1_Timer);
    connect(&m_tmrFlash, &QTimer::timeout, this, &frmAlarm::tmrFlash_Timer);
    connect(m_cmdReset, &QPushButton::clicked, this, &frmAlarm::cmdReset_Click);
    connect(m_cmdStop, &QPushButton::clicked, this, &frmAlarm::cmdStop_Click);
    // Enter in the location box answers with the default button.
    connect(m_txtLocation, &QLineEdit::returnPressed, this, [this] {
        if (m_cmdReset->isVisible())
            cmdReset_Click();
        else
            cmdStop_Click();
    });

    // Both timers run from the start; loading a check-in window stops the blinking.
    m_timer1.start();
    m_tmrFlash.start();
    LoadWindow();
}

frmAlarm::~frmAlarm() = default;

void frmAlarm::LoadWindow()
{
    const AlarmRecord& a = m_desk.Table().At(ExpirePtr());
    if (!m_checkIn) {
        QString expired = QStringLiteral("Expired on\r") + a.Expire;
        // An alarm whose minute passed while the program could not ring it says how late it is.
        if (a.LateMinutes > 0)
            expired += QStringLiteral("\r(") + LateText(a.LateMinutes) + u')';
        m_lblExpired->setText(expired.replace(u'\r', u'\n'));
    }
    m_txtLocation->setVisible(false);
    m_lblLocation->setVisible(false);
    m_lblCaption->setText(QStringLiteral("Expired Alarm"));
    m_lblMessage->setText(a.Message);
    if (a.Repeat != 1) {
        m_cmdReset->setVisible(false);
        m_cmdStop->setDefault(true);
        m_cmdStop->setText(QStringLiteral("Stop"));
    } else {
        m_cmdReset->setVisible(true);
        m_cmdReset->setDefault(true);
        m_cmdReset->setText(!a.TypeTimer ? QString(QStringLiteral("Reset to expire at ") + a.Expire)
                                         : QString(QStringLiteral("Reset to expire in ") + a.Interval +
                                                   QStringLiteral(" from now")));
        m_cmdStop->setText(QStringLiteral("Terminate"));
    }
    if (a.Safety == 1) {
        m_txtLocation->setEnabled(true);
        m_txtLocation->setVisible(true);
        m_lblLocation->setEnabled(true);
        m_lblLocation->setVisible(true);
        m_lblCaption->setText(QStringLiteral("Expired Safety Check Alarm"));
    }
    if (m_checkIn) {
        m_image0->setVisible(false);
        m_image1->setVisible(false);
        m_timer1.stop();
        m_lblCaption->setText(QStringLiteral("Safety Check In"));
    }
    SetTopMost(this, true);
}

AlarmRecord* frmAlarm::Record()
{
    const int n = ExpirePtr();
    return n > 0 ? &m_desk.Table().At(n) : nullptr;
}

int frmAlarm::ExpirePtr() const
{
    return m_desk.Table().SlotOf(m_id);
}

QString frmAlarm::LateText(int minutes)
{
    return minutes == 1 ? QStringLiteral("1 minute late")
                        : QString::number(minutes) + QStringLiteral(" minutes late");
}

void frmAlarm::Timer1_Timer()
{
    if (m_checkIn)
        return;
    m_blinkPhase = !m_blinkPhase;
    m_image1->setVisible(m_blinkPhase);
    m_image0->setVisible(!m_blinkPhase);
    const AlarmRecord* a = Record();
    if (!a || a->Safety != 1)
        return;
    QPalette palette = m_lblCaption->palette();
    if (m_blinkPhase) {
        palette.setColor(QPalette::WindowText, Qt::white);
        palette.setColor(QPalette::Window, QColor(255, 0, 0));
    } else {
        palette.setColor(QPalette::WindowText, Qt::black);
        palette.setColor(QPalette::Window, this->palette().color(QPalette::Button));
    }
    m_lblCaption->setPalette(palette);
}

void frmAlarm::tmrFlash_Timer()
{
    if (m_checkIn)
        return;
    PlaySound();
    m_windows.FlashMainWindow();
}

void frmAlarm::PlaySound()
{
    if (!m_windows.SoundOn())
        return;
    const AlarmRecord* a = Record();
    const QString file = a && !a->AudioPath.isEmpty() ? a->AudioPath : m_windows.DefaultSoundFile();
    // A sound is played to its end: a long one is not started again every two seconds.
    if (!m_mmcAlarm->IsPlaying())
        m_mmcAlarm->Play(file);
}

std::optional<QString> frmAlarm::ResetRefusal(const AlarmRecord& a)
{
    // A reset must arm a time that can come: a readable time, and for a timer at least a
    // minute, or the alarm would wait a day in silence.
    if (a.TypeTimer) {
        const auto minutes = IntervalMinutes(a.Interval);
        if (!minutes || *minutes == 0)
            return QStringLiteral("The alarm was not reset: its interval \"") + a.Interval +
                   QStringLiteral("\" cannot be used.\rType an interval from 00:01 to 23:59 in the alarm "
                                  "panel, then reset it.");
    } else if (!IntervalMinutes(a.Expire)) {
        return QStringLiteral("The alarm was not reset: its time \"") + a.Expire +
               QStringLiteral("\" cannot be read.\rType a time from 00:00 to 23:59 in the alarm panel, then "
                              "reset it.");
    }
    return std::nullopt;
}

void frmAlarm::cmdReset_Click()
{
    AlarmRecord* a = Record();
    if (!a) {
        Answered(); // the alarm is gone: nothing is left to reset
        return;
    }
    // A check-in resets from the expiry the alarm had (the list blanked it while withdrawn).
    if (a->CheckingIn && a->Expire.trimmed().isEmpty())
        a->Expire = a->PendingExpire;
    if (const auto refusal = ResetRefusal(*a)) {
        MessageBox::Notice(this, *refusal);
        return; // the window stays until the operator answers it
    }
    m_tmrFlash.stop();
    m_answeredAt = m_desk.PcNow();
    a->AlarmSet = true;
    a->Ringing = false;
    if (a->TypeTimer)
        m_desk.CalcExpire(a->Interval, ExpirePtr(), m_desk.InternetDateTimeAt(m_answeredAt));
    else
        a->DueAt = QDateTime(); // a clock time has no moment (one left from a timer it was)
    QString detail = AlarmLogText::ExpiresAt(a->Expire);
    if (a->Safety == 1)
        detail += QStringLiteral(", ") + m_txtLocation->text();
    m_desk.WriteLogEntryAt(m_answeredAt, QStringLiteral("SA"), SafetyFlag(*a),
                           QString::fromUtf16(AlarmLogText::Reset), a->Message, detail);
    Answered();
}

void frmAlarm::cmdStop_Click()
{
    m_tmrFlash.stop();
    m_answeredAt = m_desk.PcNow();
    if (AlarmRecord* a = Record()) {
        // The entry names this window's own alarm, whatever moves into its slot after it.
        const AlarmRecord stopped = *a;
        a->Ringing = false;
        if (a->Repeat == 1)
            a->AlarmSet = false;
        else
            m_desk.DeleteAlarm(ExpirePtr());
        m_desk.WriteLogEntryAt(m_answeredAt, QStringLiteral("SA"), SafetyFlag(stopped),
                               QString::fromUtf16(AlarmLogText::Terminated), stopped.Message,
                               stopped.Safety == 1 ? QString(QStringLiteral(", ") + m_txtLocation->text())
                                                   : QString());
    }
    Answered();
}

void frmAlarm::Answered()
{
    m_answered = true;
    if (AlarmRecord* a = Record())
        a->CheckingIn = false;
    m_desk.RefreshAlarmList();
    m_windows.RelayoutAlarmWindows();
    m_windows.AlarmAnswered();
    close();
}

void frmAlarm::CallOffCheckIn()
{
    AlarmRecord* a = Record();
    if (!a || !a->CheckingIn)
        return;
    a->AlarmSet = a->PendingSet;
    a->Expire = a->PendingExpire;
    a->CheckingIn = false;
    // The alarm's time may have come while the crew was reporting: it rings now, late.
    if (a->AlarmSet)
        m_desk.RingIfPassed(ExpirePtr(), m_checkInStarted);
}

void frmAlarm::closeEvent(QCloseEvent* event)
{
    if (event->spontaneous() && !m_closed && !m_answered) {
        // An expired alarm must be answered: the operator cannot dismiss it from its frame.
        if (!m_checkIn) {
            event->ignore();
            return;
        }
        // A check-in closed from its frame is called off: the alarm goes on as it was, and
        // nothing is recorded for a check-in that did not happen.
        m_closed = true;
        m_timer1.stop();
        m_tmrFlash.stop();
        m_mmcAlarm->Stop();
        m_windows.AlarmWindowClosed(this);
        CallOffCheckIn();
        m_desk.RefreshAlarmList();
        m_desk.SetSelectedAlarm();
        QWidget::closeEvent(event);
        return;
    }
    if (!m_closed) {
        m_closed = true;
        m_timer1.stop();
        m_tmrFlash.stop();
        // The window records the location typed in it; a window whose alarm was deleted
        // has no record left to write to.
        if (AlarmRecord* a = Record()) {
            if (a->Safety == 1)
                a->LastPosition =
                    m_desk.StampAt(m_answeredAt.isValid() ? m_answeredAt : m_desk.PcNow()).Time + u' ' +
                    m_txtLocation->text();
            // Closed unanswered (the program stops): still set, but no window rings for it.
            a->Ringing = false;
        }
        m_mmcAlarm->Stop();
        m_windows.AlarmWindowClosed(this);
        m_desk.RefreshAlarmList();
        // The editor shows the alarm's real state again: set or unset, no longer locked.
        m_desk.SetSelectedAlarm();
    }
    QWidget::closeEvent(event);
}
