#include "alarms/frmAlarm.h"

#include "alarms/AlarmDesk.h"
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmSound.h"
#include "alarms/AlarmWindows.h"
#include "logbook/LogBook.h"
#include "widgets/Icons.h"
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
      m_desk(desk), m_windows(windows), m_expirePtr(expirePtr), m_checkIn(checkIn), m_lblCaption(new QLabel),
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

    const auto name = [](QWidget* w, const QString& objectName, const QString& accessible) {
        w->setObjectName(objectName);
        w->setAccessibleName(accessible);
    };
    name(m_lblCaption, QStringLiteral("lblCaption"), QStringLiteral("lblCaption"));
    name(m_lblMessage, QStringLiteral("lblMessage"), QStringLiteral("lblMessage"));
    name(m_lblExpired, QStringLiteral("lblExpired"), QStringLiteral("lblExpired"));
    name(m_lblLocation, QStringLiteral("lblLocation"), QStringLiteral("Safety Check Location / Notes"));
    name(m_txtLocation, QStringLiteral("txtLocation"), QStringLiteral("Safety Check Location / Notes"));
    name(m_cmdReset, QStringLiteral("cmdReset"), QStringLiteral("Reset"));
    name(m_cmdStop, QStringLiteral("cmdStop"), QStringLiteral("Stop"));
    name(m_image0, QStringLiteral("Image1_0"), QStringLiteral("Alarm picture"));
    name(m_image1, QStringLiteral("Image1_1"), QStringLiteral("Alarm picture"));
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
    const AlarmRecord& a = m_desk.Table().At(m_expirePtr);
    if (!m_checkIn)
        m_lblExpired->setText(QString(QStringLiteral("Expired on\r") + a.Expire).replace(u'\r', u'\n'));
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

void frmAlarm::Timer1_Timer()
{
    if (m_checkIn)
        return;
    m_blinkPhase = !m_blinkPhase;
    m_image1->setVisible(m_blinkPhase);
    m_image0->setVisible(!m_blinkPhase);
    try {
        if (m_desk.Table().At(m_expirePtr).Safety != 1)
            return;
    } catch (const std::exception&) {
        return;
    }
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
    try {
        const AlarmRecord& a = m_desk.Table().At(m_expirePtr);
        const QString file = a.AudioPath.isEmpty() ? m_windows.DefaultSoundFile() : a.AudioPath;
        // A sound is played to its end: a long one is not started again every two seconds.
        if (!m_mmcAlarm->IsPlaying())
            m_mmcAlarm->Play(file);
    } catch (const std::exception&) {
        // A sound that cannot be played is not reported here; start-up warns of a missing file.
    }
}

void frmAlarm::cmdReset_Click()
{
    try {
        m_tmrFlash.stop();
        AlarmTable& table = m_desk.Table();
        AlarmRecord& a = table.At(m_expirePtr);
        a.AlarmSet = true;
        a.Ringing = false;
        if (a.TypeTimer)
            m_desk.CalcExpire(a.Interval, m_expirePtr);
        QString detail = AlarmLogText::ExpiresAt(a.Expire);
        if (a.Safety == 1)
            detail += QStringLiteral(", ") + m_txtLocation->text();
        m_desk.Log().WriteLogEntry(QStringLiteral("SA"), a.Safety, QString::fromUtf16(AlarmLogText::Reset),
                                   a.Message, detail);
    } catch (const std::exception&) {
        // The window still closes.
    }
    Answered();
}

void frmAlarm::cmdStop_Click()
{
    try {
        m_tmrFlash.stop();
        AlarmTable& table = m_desk.Table();
        table.At(m_expirePtr).Ringing = false;
        if (table.At(m_expirePtr).Repeat == 1)
            table.At(m_expirePtr).AlarmSet = false;
        else
            m_desk.DeleteAlarm(m_expirePtr);
        // Logged after the delete: a stopped alarm that was removed is logged with the
        // record that moved into its slot.
        const AlarmRecord& now = table.At(m_expirePtr);
        m_desk.Log().WriteLogEntry(
            QStringLiteral("SA"), now.Safety, QString::fromUtf16(AlarmLogText::Terminated), now.Message,
            now.Safety == 1 ? QString(QStringLiteral(", ") + m_txtLocation->text()) : QString());
    } catch (const std::exception&) {
        // The window still closes.
    }
    Answered();
}

void frmAlarm::Answered()
{
    m_desk.RefreshAlarmList();
    m_windows.RelayoutAlarmWindows();
    m_windows.AlarmAnswered();
    close();
}

void frmAlarm::closeEvent(QCloseEvent* event)
{
    // An expired alarm must be answered: the operator cannot dismiss it from its frame.
    if (event->spontaneous() && !m_closed && !m_checkIn) {
        event->ignore();
        return;
    }
    if (!m_closed) {
        m_closed = true;
        m_timer1.stop();
        m_tmrFlash.stop();
        try {
            AlarmRecord& a = m_desk.Table().At(m_expirePtr);
            if (a.Safety == 1)
                a.LastPosition = m_desk.InternetNow() + u' ' + m_txtLocation->text();
            m_desk.RefreshAlarmList();
        } catch (const std::exception&) {
            // Closing never fails.
        }
        m_mmcAlarm->Stop();
        m_windows.AlarmWindowClosed(this);
    }
    QWidget::closeEvent(event);
}
