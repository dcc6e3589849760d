#pragma once

#include "calc/CalcMath.h"

#include <QFrame>

#include <functional>

class QButtonGroup;
class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;
class TimeBox;

// The home zone as the calculator needs it: the hour offset of the zone chosen in the
// properties dialog, and the daylight setting (1 while daylight time is in force).
struct CalcHomeZone
{
    int Offset = 0;
    int DayLight = 0;
};

// The calculator panel `picCalc`. Given two of departure (ETD), travel time (Elapsed) and
// arrival (ETA) it works out the third, and shows departure and arrival in UTC or in the
// zone chosen in `cboZone`. The panel also carries the sunrise/sunset line and the tables
// button. The main window supplies "now" and the home zone through two small sources.
class CalcPanel : public QFrame
{
    Q_OBJECT
public:
    using NowSource = std::function<QString()>;
    using HomeZoneSource = std::function<CalcHomeZone()>;

    explicit CalcPanel(QWidget* parent = nullptr);

    // The corrected time of day as "HH:mm", used to fill the departure box. Without one,
    // InitBoxes leaves the departure as it is.
    void SetNowSource(NowSource source) { m_now = std::move(source); }
    // The home zone the second-zone boxes are worked out from. Without one the home zone is
    // UTC in standard time.
    void SetHomeZoneSource(HomeZoneSource source) { m_homeZone = std::move(source); }

    QComboBox* ZoneList() const { return m_cboZone; }
    QPushButton* CloseButton() const { return m_close; }
    QPushButton* TablesButton() const { return m_cmdTables; }
    // The line is composed with "\r" between its two lines.
    void SetSunLine(const QString& text);

    // Which box the option buttons make the unknown.
    CalcUnknown Unknown() const;
    // Locks, colours and takes out of the tab order the unknown box, frees the two others,
    // and fills the departure with the current time when it is not the unknown.
    void InitBoxes();
    // Works out the unknown box from the two others.
    void Solve();

    // Events.
    void edtETD_Change();
    void edtETA_Change();
    void edtElapsed_Change();
    void cboZone_Click();

private:
    void ShowSecondZone(const TimeBox* local, TimeBox* secondZone);
    TimeBox* Box(CalcUnknown which) const;
    static void MarkBox(TimeBox* box, bool unknown);
    static void LocalBox_GotFocus(TimeBox* box);
    static void SelectWhole(TimeBox* box);

    NowSource m_now;
    HomeZoneSource m_homeZone;
    QLabel* m_label1;
    QRadioButton* m_optETD;
    QRadioButton* m_optETA;
    QRadioButton* m_optElapsed;
    QButtonGroup* m_options;
    TimeBox* m_edtETD;
    TimeBox* m_edtElapsed;
    TimeBox* m_edtETA;
    TimeBox* m_edtETDUTC;
    TimeBox* m_edtETAUTC;
    QLabel* m_label4;
    QLabel* m_label5;
    QComboBox* m_cboZone;
    QLabel* m_lblSun;
    QPushButton* m_cmdTables;
    QPushButton* m_close;
};
