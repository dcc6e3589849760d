#pragma once

#include <QDateTime>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>

class AlarmSound;
struct AlarmRecord;
class QLabel;
class QLineEdit;
class QPushButton;
class AlarmDesk;
class AlarmWindows;

// The window an alarm raises: on top of every other window it blinks its pictures (and,
// for a safety alarm, its heading in red), plays the alarm sound every two seconds and
// flashes the main window, until the operator answers it. A check-in window for a safety
// alarm is silent and still.
class frmAlarm : public QWidget
{
    Q_OBJECT
public:
    frmAlarm(AlarmDesk& desk, AlarmWindows& windows, int expirePtr, bool checkIn, QWidget* parent = nullptr);
    ~frmAlarm() override;

    // The slot of this window's own alarm, wherever it moved; 0 once it was deleted.
    int ExpirePtr() const;
    bool CheckIn() const { return m_checkIn; }
    // The record id of this window's alarm.
    quint64 Id() const { return m_id; }
    // "70 minutes late"
    static QString LateText(int minutes);

    void Timer1_Timer();
    void tmrFlash_Timer();
    void cmdReset_Click();
    void cmdStop_Click();
    void PlaySound();
    QTimer& FlashTimer() { return m_tmrFlash; }
    QTimer& BlinkTimer() { return m_timer1; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void LoadWindow();
    void Answered();
    AlarmRecord* Record();
    // The check-in is called off: the alarm is as it was, and rings now if its time came.
    void CallOffCheckIn();
    // Why Reset may not re-arm the alarm, when it may not.
    static std::optional<QString> ResetRefusal(const AlarmRecord& a);

    AlarmDesk& m_desk;
    AlarmWindows& m_windows;
    quint64 m_id;
    // The wall-clock minute the check-in started.
    QDateTime m_checkInStarted;
    bool m_checkIn;
    bool m_answered = false;
    // The PC's clock when the operator answered, read once: the entry, the new expiry and
    // the position recorded when the window closes all go by it.
    QDateTime m_answeredAt;
    bool m_blinkPhase = false;
    bool m_closed = false;
    QLabel* m_lblCaption;
    QLabel* m_lblMessage;
    QLabel* m_lblExpired;
    QLabel* m_lblLocation;
    QLineEdit* m_txtLocation;
    QPushButton* m_cmdReset;
    QPushButton* m_cmdStop;
    QLabel* m_image0;
    QLabel* m_image1;
    QTimer m_timer1{this};
    QTimer m_tmrFlash{this};
    std::unique_ptr<AlarmSound> m_mmcAlarm;
};
