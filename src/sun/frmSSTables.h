#pragma once

#include "sun/SunTable.h"

#include <QDialog>

#include <functional>

struct Settings;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

// "Sunrise/Sunset Tables": a place, a year and a zone; "Calculate" writes the year's table
// and shows it in the viewer.
class frmSSTables : public QDialog
{
    Q_OBJECT
public:
    // Takes the daylight box and the zone from the settings, and the place's coordinates
    // as the settings hold them. The years offered run from 1998 to ten years past
    // `thisYear`.
    frmSSTables(const Settings& settings, int thisYear, QWidget* parent = nullptr);

    void cmdCalculate_Click();
    void cmdClose_Click();

    // The place, zone and year as the dialog holds them now.
    SunTablePlace Place() const;

    // How the written table is shown; by default the viewer, modally. Tests replace it.
    using ViewOpener = std::function<void(QWidget* parent, const SunTablePlace&)>;
    void SetViewOpener(ViewOpener opener) { m_openView = std::move(opener); }

    // Hours west of Greenwich for a zone list number, one less in daylight time (Greenwich
    // in daylight time gives 1).
    static int ZoneHoursFor(int storedNumber, bool dayLight);

private:
    void Calculate();

    QLineEdit* m_txtLabel;
    QLineEdit* m_edtLat;
    QLineEdit* m_edtLatMinutes;
    QLineEdit* m_edtLong;
    QLineEdit* m_edtLongMinutes;
    QComboBox* m_cboTimeZone;
    QCheckBox* m_chkDayLight;
    QComboBox* m_cboYear;
    ViewOpener m_openView;
};
