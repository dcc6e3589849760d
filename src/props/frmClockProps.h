#pragma once

#include <QDialog>

class QComboBox;

// The clock properties dialog. It is loaded unseen at start-up because its time-zone list
// `cboTimeZone` carries the hour offsets that the clock faces use.
class frmClockProps : public QDialog
{
    Q_OBJECT
public:
    explicit frmClockProps(QWidget* parent = nullptr);

    QComboBox* TimeZoneList() const { return m_cboTimeZone; }
    // The dialog's own fill of its list, with its "-4 hrs" label for Eastern.
    void FillOwnZoneList(int zone);

private:
    QComboBox* m_cboTimeZone;
};
