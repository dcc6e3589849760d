#pragma once

#include <QDateTime>
#include <QFrame>

#include <optional>

class AlarmListView;
class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class TimeBox;
class AlarmDesk;
struct AlarmRecord;
class AlarmWindows;
class Preferences;

// The alarm panel `picAlarm`: the alarm list and, beside it, the editor of the selected
// alarm. Every change in the editor is written straight into that alarm's record in the
// alarm desk; the list and the editor follow the desk's announcements.
class AlarmPanel : public QFrame
{
    Q_OBJECT
public:
    AlarmPanel(AlarmDesk& desk, AlarmWindows& windows, const Preferences& preferences,
               QWidget* parent = nullptr);

    QPushButton* CloseButton() const { return m_cmdCloseAlarm; }

    // Rebuilds every row from the table.
    void RefreshRows();
    // Selects the row of the selected alarm and fills the editor from its record.
    void SetSelectedAlarm();

    // Editor events.
    void cmdNew_Click();
    void cmdSet_Click();
    void cmdDelete_Click();
    void cmdCheckIn_Click();
    void cmdNote_Click();
    // Opens the note window for the selected alarm.
    void OpenNote();
    void cmdView_Click();
    void lstAlarms_ItemClick(const QString& tag);
    void lstAlarms_ColumnClick(int column);
    void txtMessage_Change();
    void optClock_Click();
    void optTimer_Click();
    void edtExpire_Change();
    void edtExpire_GotFocus();
    void edtExpire_KeyPress();
    void edtExpire_LostFocus();
    void chkRepeat_Click();
    void chkSafety_Click();
    void optDefault_Click();
    void optNamed_MouseDown();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Enables or disables the two sound choices (the sound switch is off).
    void SetSoundChoicesEnabled(bool enabled);
    bool Editing() const;
    void ShowNoAlarm();
    // Why Set may not arm this alarm with the time box's text, when it may not.
    // `internetNow`: the moment of the corrected clock the Set was pressed.
    std::optional<QString> SetRefusal(const AlarmRecord& a, const QString& boxText,
                                      const QDateTime& internetNow) const;
    void SetNamedSound(const QString& path);

    AlarmDesk& m_desk;
    AlarmWindows& m_windows;
    const Preferences& m_preferences;
    bool m_loadingEditor = false;
    bool m_editorLocked = false;
    AlarmListView* m_lstAlarms;
    QLineEdit* m_txtMessage;
    QRadioButton* m_optClock;
    QRadioButton* m_optTimer;
    TimeBox* m_edtExpire;
    QCheckBox* m_chkRepeat;
    QCheckBox* m_chkSafety;
    QPushButton* m_cmdCheckIn;
    QGroupBox* m_fmeSound;
    QRadioButton* m_optDefault;
    QRadioButton* m_optNamed;
    QPushButton* m_cmdSet;
    QPushButton* m_cmdNew;
    QPushButton* m_cmdDelete;
    QPushButton* m_cmdView;
    QPushButton* m_cmdNote;
    QPushButton* m_cmdCloseAlarm;
};
