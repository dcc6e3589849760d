#pragma once

#include <QTimer>
#include <QWidget>

#include <memory>

class AlarmSound;
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

    int ExpirePtr() const { return m_expirePtr; }
    // The alarm moved to another slot (an earlier alarm was deleted).
    void SetExpirePtr(int n) { m_expirePtr = n; }
    bool CheckIn() const { return m_checkIn; }
    QString Tag() const { return m_tag; }
    void SetTag(const QString& tag) { m_tag = tag; }

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

    AlarmDesk& m_desk;
    AlarmWindows& m_windows;
    int m_expirePtr;
    bool m_checkIn;
    bool m_blinkPhase = false;
    bool m_closed = false;
    QString m_tag;
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
