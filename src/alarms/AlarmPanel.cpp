#include "alarms/AlarmPanel.h"

#include "alarms/AlarmDesk.h"
#include "alarms/AlarmListView.h"
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmWindows.h"
#include "clock/TimeText.h"
#include "clock/ZoneClock.h"
#include "logbook/LogBook.h"
#include "logbook/frmNote.h"
#include "settings/Preferences.h"
#include "widgets/FileDialog.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"
#include "widgets/TimeBox.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <exception>
#include <optional>

namespace {

const QString RingingTip = QStringLiteral("This Alarm is ringing, acknowledge first");
const QString WindowOpenTip = QStringLiteral("This Alarm's window is open, answer it first");

} // namespace

AlarmPanel::AlarmPanel(AlarmDesk& desk, AlarmWindows& windows, const Preferences& preferences,
                       QWidget* parent)
    : QFrame(parent), m_desk(desk), m_windows(windows), m_preferences(preferences),
      m_lstAlarms(new AlarmListView),
      m_txtMessage(Named(new QLineEdit, QStringLiteral("txtMessage"), QStringLiteral("Alarm message"))),
      m_optClock(Named(new QRadioButton(QStringLiteral(" Clock Time ")), QStringLiteral("optClock"),
                       QStringLiteral(" Clock Time "))),
      m_optTimer(Named(new QRadioButton(QStringLiteral("Timer (Interval)")), QStringLiteral("optTimer"),
                       QStringLiteral("Timer (Interval)"))),
      m_edtExpire(Named(new TimeBox, QStringLiteral("edtExpire"), QStringLiteral("Expiry time or interval"))),
      m_chkRepeat(Named(new QCheckBox(QStringLiteral("Retain")), QStringLiteral("chkRepeat"),
                        QStringLiteral("Retain"))),
      m_chkSafety(Named(new QCheckBox(QStringLiteral("Safety Check")), QStringLiteral("chkSafety"),
                        QStringLiteral("Safety Check"))),
      m_cmdCheckIn(Named(new QPushButton(QStringLiteral("Check In")), QStringLiteral("cmdCheckIn"),
                         QStringLiteral("Check In"))),
      m_fmeSound(Named(new QGroupBox(QStringLiteral("Alarm Audio")), QStringLiteral("fmeSound"),
                       QStringLiteral("Alarm Audio"))),
      m_optDefault(Named(new QRadioButton(QStringLiteral("Default")), QStringLiteral("optDefault"),
                         QStringLiteral("Default"))),
      m_optNamed(Named(new QRadioButton(QStringLiteral("Named")), QStringLiteral("optNamed"),
                       QStringLiteral("Named"))),
      m_cmdSet(Named(new QPushButton(QStringLiteral("Set Alarm")), QStringLiteral("cmdSet"),
                     QStringLiteral("Set Alarm"))),
      m_cmdNew(
          Named(new QPushButton(QStringLiteral("New")), QStringLiteral("cmdNew"), QStringLiteral("New"))),
      m_cmdDelete(Named(new QPushButton(QStringLiteral("Delete")), QStringLiteral("cmdDelete"),
                        QStringLiteral("Delete"))),
      m_cmdView(Named(new QPushButton(QStringLiteral("Icons View")), QStringLiteral("cmdView"),
                      QStringLiteral("View"))),
      m_cmdNote(
          Named(new QPushButton(QStringLiteral("Note")), QStringLiteral("cmdNote"), QStringLiteral("Note"))),
      m_cmdCloseAlarm(Named(new QPushButton(QStringLiteral("Close")), QStringLiteral("cmdCloseAlarm"),
                            QStringLiteral("Close")))
{
    setObjectName(QStringLiteral("picAlarm"));
    setAccessibleName(QStringLiteral("picAlarm"));
    setFrameShape(QFrame::StyledPanel);

    m_cmdCheckIn->setToolTip(QStringLiteral("Acknowledge Check In and log location"));
    m_cmdCheckIn->setEnabled(false);
    m_optNamed->setToolTip(QStringLiteral("Default sound will be used"));
    m_optDefault->setChecked(true);
    m_optClock->setChecked(true);
    m_cmdSet->setToolTip(QStringLiteral("Set/Cancel alarm"));
    m_cmdDelete->setToolTip(QStringLiteral("Delete alarm"));
    m_cmdView->setToolTip(QStringLiteral("Change alarms view"));
    m_cmdNote->setToolTip(QStringLiteral("Write a note to the logbook for the selected alarm"));
    m_cmdCloseAlarm->setToolTip(QStringLiteral("Close alarms"));
    m_lstAlarms->setMinimumSize(380, 170);
    m_txtMessage->setMaxLength(255);

    auto* soundLayout = new QHBoxLayout(m_fmeSound);
    soundLayout->addWidget(m_optDefault);
    soundLayout->addWidget(m_optNamed);

    auto* editor = new QGridLayout;
    editor->addWidget(m_txtMessage, 0, 0, 1, 2);
    editor->addWidget(m_optClock, 1, 0);
    editor->addWidget(m_optTimer, 1, 1);
    editor->addWidget(m_edtExpire, 2, 0);
    editor->addWidget(m_cmdSet, 2, 1);
    editor->addWidget(m_chkRepeat, 3, 0);
    editor->addWidget(m_chkSafety, 3, 1);
    editor->addWidget(m_cmdCheckIn, 4, 1);
    editor->addWidget(m_fmeSound, 5, 0, 1, 2);
    editor->setRowStretch(6, 1);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {m_cmdNew, m_cmdDelete, m_cmdNote, m_cmdView})
        buttons->addWidget(b);
    buttons->addStretch(1);
    buttons->addWidget(m_cmdCloseAlarm);

    auto* top = new QHBoxLayout;
    top->addWidget(m_lstAlarms, 1);
    top->addLayout(editor);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(buttons);

    connect(m_cmdNew, &QPushButton::clicked, this, &AlarmPanel::cmdNew_Click);
    connect(m_cmdSet, &QPushButton::clicked, this, &AlarmPanel::cmdSet_Click);
    connect(m_cmdDelete, &QPushButton::clicked, this, &AlarmPanel::cmdDelete_Click);
    connect(m_cmdCheckIn, &QPushButton::clicked, this, &AlarmPanel::cmdCheckIn_Click);
    connect(m_cmdNote, &QPushButton::clicked, this, &AlarmPanel::cmdNote_Click);
    connect(m_cmdView, &QPushButton::clicked, this, &AlarmPanel::cmdView_Click);
    connect(m_lstAlarms, &AlarmListView::ItemClick, this, &AlarmPanel::lstAlarms_ItemClick);
    connect(m_lstAlarms, &AlarmListView::ItemDoubleClick, this, [this](const QString& tag) {
        lstAlarms_ItemClick(tag);
        if (m_cmdCheckIn->isEnabled()) // not while the alarm rings
            cmdCheckIn_Click();
    });
    connect(m_lstAlarms, &AlarmListView::ColumnClick, this, &AlarmPanel::lstAlarms_ColumnClick);
    connect(m_txtMessage, &QLineEdit::textChanged, this, &AlarmPanel::txtMessage_Change);
    // Option buttons and check boxes act when their value changes, also by code.
    connect(m_optClock, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            optClock_Click();
    });
    connect(m_optTimer, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            optTimer_Click();
    });
    connect(m_optDefault, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            optDefault_Click();
    });
    connect(m_chkRepeat, &QCheckBox::toggled, this, &AlarmPanel::chkRepeat_Click);
    connect(m_chkSafety, &QCheckBox::toggled, this, &AlarmPanel::chkSafety_Click);
    connect(m_edtExpire, &TimeBox::Change, this, &AlarmPanel::edtExpire_Change);
    connect(m_edtExpire, &TimeBox::GotFocus, this, &AlarmPanel::edtExpire_GotFocus);
    connect(m_edtExpire, &TimeBox::KeyTyped, this, &AlarmPanel::edtExpire_KeyPress);
    connect(m_edtExpire, &TimeBox::LostFocus, this, &AlarmPanel::edtExpire_LostFocus);
    // Enter in the time box sets the alarm.
    // Enter in the time box sets the alarm; it never cancels one that is set.
    connect(m_edtExpire, &QLineEdit::returnPressed, this, [this] {
        const AlarmTable& table = m_desk.Table();
        const int n = table.SelectedAlarm;
        if (m_cmdSet->isEnabled() && n >= 1 && n <= table.AlarmCount && !table.At(n).AlarmSet)
            cmdSet_Click();
    });
    m_optNamed->installEventFilter(this);

    connect(&m_desk, &AlarmDesk::TableChanged, this, &AlarmPanel::RefreshRows);
    connect(&m_desk, &AlarmDesk::SelectionChanged, this, &AlarmPanel::SetSelectedAlarm);
    connect(&m_desk, &AlarmDesk::ExpiryChanged, this,
            [this](int n) { m_lstAlarms->SetRowExpires(RowTag(n), m_desk.Table().At(n).Expire); });
    // The sound choices are usable only while alarm sound is on.
    connect(&m_preferences, &Preferences::Changed, this,
            [this] { SetSoundChoicesEnabled(m_preferences.Values().Audible == 1); });
}

void AlarmPanel::SetSoundChoicesEnabled(bool enabled)
{
    m_optDefault->setEnabled(enabled && !m_editorLocked);
    m_optNamed->setEnabled(enabled && !m_editorLocked);
}

void AlarmPanel::ShowNoAlarm()
{
    // No alarm left: an empty editor that offers nothing but New.
    m_loadingEditor = true;
    m_txtMessage->clear();
    m_edtExpire->SetText(QString());
    m_cmdSet->setText(QStringLiteral(" Set Alarm"));
    m_chkSafety->setChecked(false);
    m_chkRepeat->setChecked(false);
    m_cmdCheckIn->setEnabled(false);
    for (QWidget* editor : std::initializer_list<QWidget*>{m_txtMessage, m_optClock, m_optTimer, m_edtExpire,
                                                           m_chkRepeat, m_chkSafety, m_cmdSet, m_cmdDelete})
        editor->setEnabled(true);
    m_editorLocked = false;
    m_loadingEditor = false;
}

void AlarmPanel::OpenNote()
{
    // The note names the alarm selected when it is recorded, not when it opened.
    const auto subject = [this]() -> std::optional<NoteSubject> {
        const AlarmTable& table = m_desk.Table();
        if (table.SelectedAlarm < 1 || table.SelectedAlarm > MaxAlarms)
            return std::nullopt;
        const AlarmRecord& a = table.At(table.SelectedAlarm);
        return NoteSubject{a.Message, SafetyFlag(a)};
    };
    auto* note = new frmNote(m_desk.Log(), subject, m_desk.InternetNow(), window());
    note->show();
}

bool AlarmPanel::Editing() const
{
    const AlarmTable& table = m_desk.Table();
    return !m_loadingEditor && !m_editorLocked && table.SelectedAlarm >= 1 &&
           table.SelectedAlarm <= table.AlarmCount;
}

void AlarmPanel::RefreshRows()
{
    const AlarmTable& table = m_desk.Table();
    m_lstAlarms->Clear();
    for (int n = 1; n <= table.AlarmCount; ++n) {
        const AlarmRecord& a = table.At(n);
        m_lstAlarms->AddRow({RowText(a), a.Safety == 1, a.Expire, RowStatus(a), a.LastPosition, RowTag(n)});
    }
}

void AlarmPanel::SetSelectedAlarm()
{
    const AlarmTable& table = m_desk.Table();
    const int n = table.SelectedAlarm;
    if (table.AlarmCount == 0) {
        ShowNoAlarm();
        return;
    }
    if (n < 1 || n > table.AlarmCount)
        return;
    const AlarmRecord& a = table.At(n);
    m_loadingEditor = true;
    m_lstAlarms->SelectTag(RowTag(n));
    m_txtMessage->setText(a.Message);
    m_txtMessage->setEnabled(true);
    if (!a.TypeTimer) {
        m_optClock->setChecked(true);
        m_edtExpire->SetText(a.Expire);
    } else {
        m_edtExpire->SetText(a.Interval);
        m_optTimer->setChecked(true);
    }
    m_cmdSet->setText(a.AlarmSet ? QStringLiteral(" Cancel Alarm") : QStringLiteral(" Set Alarm"));
    m_chkRepeat->setChecked(a.Repeat == 1);
    m_chkSafety->setChecked(a.Safety == 1);
    if (a.AudioPath.isEmpty()) {
        m_optDefault->setChecked(true);
        m_optNamed->setToolTip(QStringLiteral("Default sound will be used"));
    } else {
        m_optNamed->setChecked(true);
        m_optNamed->setToolTip(a.AudioPath);
    }
    m_lstAlarms->setToolTip(ListToolTip(a));
    // While the alarm rings, or its window (a check-in) is open, the window answers for
    // it: the editor may not set, cancel, delete or check it in.
    const bool ringing = a.Ringing;
    const bool locked = ringing || m_windows.AlarmWindow(n) != nullptr;
    const QString lockTip = ringing ? RingingTip : WindowOpenTip;
    m_cmdDelete->setEnabled(!locked);
    m_cmdSet->setEnabled(!locked);
    m_cmdCheckIn->setEnabled(!locked && m_chkSafety->isChecked());
    m_cmdDelete->setToolTip(locked ? lockTip : QStringLiteral("Delete alarm"));
    m_cmdSet->setToolTip(locked ? lockTip : QStringLiteral("Set/Cancel alarm"));
    m_cmdCheckIn->setToolTip(locked ? lockTip : QStringLiteral("Safety check in"));
    // Nor can its record be edited under the window: the window acts on what it shows.
    for (QWidget* editor : std::initializer_list<QWidget*>{m_txtMessage, m_optClock, m_optTimer, m_edtExpire,
                                                           m_chkRepeat, m_chkSafety})
        editor->setEnabled(!locked);
    m_editorLocked = locked;
    SetSoundChoicesEnabled(m_preferences.Values().Audible == 1);
    m_loadingEditor = false;
}

void AlarmPanel::cmdNew_Click()
{
    AlarmTable& table = m_desk.Table();
    const auto n = NewAlarm(table);
    if (!n) {
        MessageBox::Notice(this, QStringLiteral("Maximum alarms exceeded, can't create new"));
        return;
    }
    table.SelectedAlarm = *n;
    m_desk.RefreshAlarmList();
    m_loadingEditor = true;
    m_optClock->setChecked(true);
    m_txtMessage->setText(QStringLiteral("<NEW>"));
    m_lstAlarms->SetRowText(RowTag(*n), QStringLiteral("<NEW>    "));
    m_chkRepeat->setChecked(false);
    m_edtExpire->SetText(QStringLiteral("00:00"));
    m_loadingEditor = false;
    m_desk.RefreshAlarmList();
    SetSelectedAlarm();
    m_txtMessage->setFocus();
    m_txtMessage->setSelection(0, 10);
}

void AlarmPanel::cmdSet_Click()
{
    AlarmTable& table = m_desk.Table();
    if (table.AlarmCount == 0)
        return;
    try {
        const int n = table.SelectedAlarm;
        AlarmRecord& a = table.At(n);
        if (a.AlarmSet) {
            a.Expire = QStringLiteral("00:00");
            m_lstAlarms->SetRowExpires(RowTag(n), a.Expire);
            m_cmdSet->setText(QStringLiteral(" Set Alarm"));
            m_desk.Log().WriteLogEntry(QStringLiteral("CA"), SafetyFlag(a),
                                       QString::fromUtf16(AlarmLogText::Cancelled), a.Message, QString());
            table.At(n).AlarmSet = false;
        } else {
            // One reading of the clock: the refusal, a timer's expiry and the entry all go by
            // the same minute.
            const QDateTime pcNow = m_desk.PcNow();
            const QDateTime setAt = m_desk.InternetDateTimeAt(pcNow);
            // An alarm that could never ring, or only a day late, is refused.
            if (const auto refusal = SetRefusal(a, m_edtExpire->Text(), setAt)) {
                MessageBox::Notice(this, *refusal);
                m_edtExpire->setFocus();
                return;
            }
            a.AlarmSet = true;
            a.RangFor = QDateTime(); // armed anew: it rings at this time even if it rang there before
            a.DueAt = QDateTime();   // a timer's moment is set below, a clock time has none
            if (!a.TypeTimer) {
                a.Expire = TimeText(m_edtExpire->Text());
                m_lstAlarms->SetRowExpires(RowTag(n), m_edtExpire->Text());
            } else {
                a.Interval = TimeText(m_edtExpire->Text());
                m_desk.CalcExpire(m_edtExpire->Text(), n, setAt);
            }
            m_cmdSet->setText(QStringLiteral(" Cancel Alarm"));
            m_desk.WriteLogEntryAt(pcNow, QStringLiteral("SA"), SafetyFlag(a),
                                   QString::fromUtf16(AlarmLogText::Set), a.Message,
                                   AlarmLogText::ExpiresAt(a.Expire));
        }
        m_desk.RefreshAlarmList();
        SetSelectedAlarm();
    } catch (const std::exception&) {
        // A failing click ends quietly.
    }
}

std::optional<QString> AlarmPanel::SetRefusal(const AlarmRecord& a, const QString& boxText,
                                              const QDateTime& internetNow) const
{
    const auto minutes = IntervalMinutes(boxText);
    if (!minutes)
        return QStringLiteral("The alarm was not set: type its ") +
               (a.TypeTimer ? QStringLiteral("interval") : QStringLiteral("time")) +
               QStringLiteral(" as hh:mm (00:00 to 23:59).");
    if (a.TypeTimer && *minutes == 0)
        return QStringLiteral("The alarm was not set: a timer of 00:00 would not ring until tomorrow.\r"
                              "Type an interval from 00:01 to 23:59.");
    // This minute has been handled already: set for it, the alarm would ring a day late.
    if (!a.TypeTimer && TimeText(boxText) == MinuteText(internetNow))
        return QStringLiteral("The alarm was not set: ") + TimeText(boxText) +
               QStringLiteral(" is the present minute, so it would not ring until tomorrow.\r"
                              "Type a later time.");
    return std::nullopt;
}

void AlarmPanel::cmdDelete_Click()
{
    AlarmTable& table = m_desk.Table();
    if (table.AlarmCount == 0)
        return;
    // An alarm whose window is open is answered there, not deleted under it.
    if (table.At(table.SelectedAlarm).Ringing || m_windows.AlarmWindow(table.SelectedAlarm))
        return;
    m_desk.DeleteAlarm(table.SelectedAlarm);
}

void AlarmPanel::cmdCheckIn_Click()
{
    if (m_desk.Table().AlarmCount < 1 || !m_chkSafety->isChecked())
        return;
    m_windows.StartCheckIn(m_desk.Table().SelectedAlarm);
}

void AlarmPanel::cmdNote_Click()
{
    if (m_lstAlarms->RowCount() > 0)
        OpenNote();
}

void AlarmPanel::cmdView_Click()
{
    const bool toIcons = m_cmdView->text() == u"Icons View";
    m_lstAlarms->SetIconView(toIcons);
    m_cmdView->setText(toIcons ? QStringLiteral("List View") : QStringLiteral("Icons View"));
}

void AlarmPanel::lstAlarms_ItemClick(const QString& tag)
{
    const int n = TagNumber(tag);
    if (n < 1 || n > m_desk.Table().AlarmCount)
        return;
    m_desk.Table().SelectedAlarm = n;
    SetSelectedAlarm();
    m_txtMessage->setFocus();
}

void AlarmPanel::lstAlarms_ColumnClick(int column)
{
    m_lstAlarms->SortByColumnFlipped(column);
    SetSelectedAlarm();
}

void AlarmPanel::txtMessage_Change()
{
    if (!Editing())
        return;
    const int n = m_desk.Table().SelectedAlarm;
    AlarmRecord& a = m_desk.Table().At(n);
    a.Message = m_txtMessage->text();
    m_lstAlarms->SetRowText(RowTag(n), RowText(a));
}

void AlarmPanel::optClock_Click()
{
    if (!Editing())
        return;
    m_desk.Table().At(m_desk.Table().SelectedAlarm).TypeTimer = false;
    m_edtExpire->setFocus();
}

void AlarmPanel::optTimer_Click()
{
    if (!Editing())
        return;
    m_desk.Table().At(m_desk.Table().SelectedAlarm).TypeTimer = true;
    m_edtExpire->setFocus();
}

void AlarmPanel::edtExpire_Change()
{
    if (!Editing())
        return;
    const int n = m_desk.Table().SelectedAlarm;
    AlarmRecord& a = m_desk.Table().At(n);
    if (!a.TypeTimer) {
        a.Expire = TimeText(m_edtExpire->Text());
        m_lstAlarms->SetRowExpires(RowTag(n), m_edtExpire->Text());
    } else {
        a.Interval = TimeText(m_edtExpire->Text());
        m_desk.CalcExpire(m_edtExpire->Text(), n);
    }
}

void AlarmPanel::edtExpire_GotFocus()
{
    m_cmdSet->setDefault(true);
}

void AlarmPanel::edtExpire_KeyPress()
{
    if (!Editing())
        return;
    const int n = m_desk.Table().SelectedAlarm;
    AlarmRecord& a = m_desk.Table().At(n);
    if (!a.AlarmSet)
        return;
    // A new time must be set again: the alarm is unset at once, without a log entry.
    a.AlarmSet = false;
    m_cmdSet->setText(QStringLiteral(" Set Alarm"));
    m_cmdSet->setDefault(true);
    m_lstAlarms->SetRowStatus(RowTag(n), QStringLiteral("   "));
}

void AlarmPanel::edtExpire_LostFocus()
{
    m_desk.SaveAlarms();
}

void AlarmPanel::chkRepeat_Click()
{
    if (!Editing())
        return;
    m_desk.Table().At(m_desk.Table().SelectedAlarm).Repeat = m_chkRepeat->isChecked() ? 1 : 0;
    if (!m_chkRepeat->isChecked())
        m_chkSafety->setChecked(false);
}

void AlarmPanel::chkSafety_Click()
{
    if (!Editing())
        return;
    AlarmRecord& a = m_desk.Table().At(m_desk.Table().SelectedAlarm);
    a.Safety = m_chkSafety->isChecked() ? 1 : 0;
    if (m_chkSafety->isChecked()) {
        m_cmdCheckIn->setEnabled(!m_editorLocked);
        m_chkRepeat->setChecked(true);
        m_optTimer->setChecked(true);
        m_edtExpire->SetText(m_preferences.Values().DefaultInterval);
    } else {
        m_cmdCheckIn->setEnabled(false);
    }
    m_desk.RefreshAlarmList();
}

void AlarmPanel::optDefault_Click()
{
    if (!Editing())
        return;
    m_desk.Table().At(m_desk.Table().SelectedAlarm).AudioPath.clear();
}

void AlarmPanel::optNamed_MouseDown()
{
    if (!Editing())
        return;
    AlarmTable& table = m_desk.Table();
    // The sound goes to the alarm the dialog was opened for, whatever happens meanwhile.
    const quint64 id = table.IdOf(table.SelectedAlarm);
    const QString path =
        FileDialog::GetOpenFileName(this, QStringLiteral("Alarm"), table.At(table.SelectedAlarm).AudioPath,
                                    QStringLiteral("Wave (*.Wav *.wav)"));
    const int n = table.SlotOf(id);
    if (n == 0)
        return; // the alarm was deleted while the dialog was open
    table.At(n).AudioPath = path;
    if (n == table.SelectedAlarm)
        SetNamedSound(path);
}

void AlarmPanel::SetNamedSound(const QString& path)
{
    if (path.isEmpty()) {
        m_optDefault->setChecked(true);
        m_optNamed->setToolTip(QStringLiteral("Default sound will be used"));
    } else {
        m_loadingEditor = true;
        m_optNamed->setChecked(true);
        m_loadingEditor = false;
        m_optNamed->setToolTip(path);
    }
}

bool AlarmPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_optNamed && event->type() == QEvent::MouseButtonPress && m_optNamed->isEnabled()) {
        optNamed_MouseDown();
        return true; // the choice is made by the dialog's answer
    }
    return QFrame::eventFilter(watched, event);
}
