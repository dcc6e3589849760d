#pragma once

#include "logbook/LogBook.h"
#include "logbook/LogView.h"

#include <QFrame>

class MonthCalendar;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QScrollBar;
class QTextEdit;
class LogViewer;

// The logbook panel `picLog`: one day's log as formatted text, the day navigation (scroll
// bar, "Today", the calendar whose days with logs carry a red dot), the logging switches
// of the log writer, and "Print". It shows what the viewer and the writer announce.
class LogPanel : public QFrame
{
    Q_OBJECT
public:
    LogPanel(LogViewer& viewer, LogBook& log, QWidget* parent = nullptr);

    QPushButton* CloseButton() const { return m_cmdCloseLog; }

    // The logging choices are usable only while logging is on.
    void EnableChoicesFromLogCheck();
    void SetDateCaption(const QString& text);

    // The viewer's text: plain text, or a day as its rich-text document "LogBook.rtf" reads
    // (shown at DisplayFactor times its size: the entries are written at 5 points).
    static constexpr double DisplayFactor = 2.0;
    void ShowPlainText(const QString& text);
    void ShowDay(const LogViewDay& day);
    void SetPrintEnabled(bool enabled);

    void hscDate_Change(int value);
    void cmdReset_Click();
    void cmdCalendar_Click();
    void calDate_Click(QDate clickedDate);
    void cmdPrint_Click();

private:
    // `chkLog` from the writer's "Enable Logging"; `optSafetyOnly` from its safety-only
    // switch, `optAll` otherwise.
    void ShowSwitches();
    void TakeSwitches();
    void ShowMarkedDays();

    LogViewer& m_viewer;
    LogBook& m_log;
    bool m_showingSwitches = false;
    MonthCalendar* m_calDate;
    QCheckBox* m_chkLog;
    QRadioButton* m_optAll;
    QRadioButton* m_optSafetyOnly;
    QPushButton* m_cmdReset;
    QTextEdit* m_txtLog;
    QPushButton* m_cmdPrint;
    QScrollBar* m_hscDate;
    QPushButton* m_cmdCalendar;
    QPushButton* m_cmdCloseLog;
    QLabel* m_txtDate;
};
