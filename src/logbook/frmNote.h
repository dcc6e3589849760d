#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class TimeBox;
class frmMain;

// A short note to today's log, tied to the alarm selected in the alarm list. The alarm is
// looked up again when the note is recorded, not when the window opened.
class frmNote : public QWidget
{
    Q_OBJECT
public:
    explicit frmNote(frmMain& main, QWidget* parent = nullptr);

    void cmdOK_Click();
    void cmdCancel_Click();

private:
    frmMain& m_main;
    QLabel* m_lblAlarm;
    QLineEdit* m_txtNote;
    TimeBox* m_edtTime;
    QPushButton* m_cmdOK;
    QPushButton* m_cmdCancel;
};
