#pragma once

#include <QDialog>
#include <QFont>

class Clock;
class Preferences;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class StartAtLogin;
class SyncScheduler;
class SyncState;
class TimeBox;

// What the properties dialog works on: the preferences it changes, the sync it runs and
// reschedules, the start at login, and the clock.
struct ClockPropsServices
{
    Preferences& preferences;
    SyncState& sync;
    SyncScheduler& scheduler;
    StartAtLogin& startAtLogin;
    const Clock& clock;
};

// "Clock Properties": the clock's look, the zone and daylight time, the alarm sound, the
// default safety check interval, the coordinates for sunrise and sunset, the start at
// login and the time source. Most controls change their preference the moment they are
// used (Cancel does not undo them); the font waits for OK. It is loaded unseen at start-up
// because its time-zone list `cboTimeZone` carries the hour offsets that the clock faces use.
class frmClockProps : public QDialog
{
    Q_OBJECT
public:
    explicit frmClockProps(const ClockPropsServices& services, QWidget* parent = nullptr);

    QComboBox* TimeZoneList() const { return m_cboTimeZone; }
    // The dialog's own fill of its list, with its "-4 hrs" label for Eastern.
    void FillOwnZoneList(int zone);

    // Fills every control from the present values (the dialog is about to be shown).
    void Form_Load();

    // The handlers of the controls.
    void Check1_Click();
    void chkDayLight_Click();
    void chkUTCRule_Click();
    void chkWinStart_Click();
    void cboTimeZone_Click(int index);
    void cboSyncHours_Click(int index);
    void cboConnection_Click(int index);
    void cmdBrowse_Click();
    void txtBack_Click();
    void txtFore_Click();
    void cmdFont_Click();
    void optSource_Click();
    void cmdSync_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    // Applies the time source chosen (Internet or the computer's clock).
    void SetState();

signals:
    // Sunrise and sunset are to be shown (or not) with the coordinates as they now are.
    void SunDisplayChanged(bool on);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void reject() override;

private:
    void BuildLayout();
    void TakeSite();
    void Reschedule();
    void ShowSwatches();
    void ShowSetTime();
    // The faults of the coordinates as they now are; empty when they are right.
    QString CoordinateProblems() const;
    void ShowSunByCoordinates();

    ClockPropsServices m_services;
    QFont m_font; // chosen in the font dialog; copied to the clock by OK
    bool m_filling = false;

    QComboBox* m_cboTimeZone;
    QCheckBox* m_chkDayLight;
    QLabel* m_lblSet;
    QCheckBox* m_check1;
    QCheckBox* m_chkWinStart;
    QLineEdit* m_text1;
    QPushButton* m_cmdBrowse;
    QLineEdit* m_edtLat;
    QLineEdit* m_edtLatMinutes;
    QLineEdit* m_edtLong;
    QLineEdit* m_edtLongMinutes;
    TimeBox* m_edtDefault;
    QCheckBox* m_chkUTCRule;
    QLineEdit* m_txtBack;
    QLineEdit* m_txtFore;
    QPushButton* m_cmdFont;
    QRadioButton* m_optPC;
    QRadioButton* m_optInternet;
    QComboBox* m_cboSyncSite;
    QComboBox* m_cboSyncHours;
    QComboBox* m_cboConnection;
    QPushButton* m_cmdSetInet;
    QPushButton* m_cmdSync;
    QLabel* m_lblOffset;
    QPushButton* m_cmdOK;
    QPushButton* m_cmdCancel;
};
