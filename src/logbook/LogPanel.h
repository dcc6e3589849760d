#pragma once

#include "logbook/LogBook.h"

#include <QFrame>

class MonthCalendar;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QScrollBar;
class QTextEdit;
class frmMain;

// The logbook panel `picLog`: one day's log as formatted text, the day navigation (scroll
// bar, "Today", the calendar whose days with logs carry a red dot), the logging switches,
// which the writer reads at every entry, and "Print".
class LogPanel : public QFrame
{
    Q_OBJECT
public:
    explicit LogPanel(frmMain& main, QWidget* parent = nullptr);

    QCheckBox* LogCheck() const { return m_chkLog; }
    QPushButton* CloseButton() const { return m_cmdCloseLog; }
    MonthCalendar* Calendar() const { return m_calDate; }
    QTextEdit* LogText() const { return m_txtLog; }

    // `chkLog` from "LogOn"; `optSafetyOnly` from "LogSafetyOnly", `optAll` otherwise.
    void SetSwitches(qint16 logOn, bool safetyOnly);
    LogSwitches Switches() const;
    qint16 LogOnValue() const;
    bool SafetyOnlyValue() const;
    // The logging choices are usable only while logging is on.
    void EnableChoicesFromLogCheck();
    void SetDateCaption(const QString& text);

    // The viewer's text: plain text, or a rich-text document (shown at twice its size: the
    // entries are written at 5 points).
    void ShowPlainText(const QString& text);
    void ShowDocument(const QByteArray& rtf);
    void SetPrintEnabled(bool enabled);

    void hscDate_Change(int value);
    void cmdReset_Click();
    void cmdCalendar_Click();
    void calDate_Click(QDate clickedDate);

signals:
    void LogCheckClicked();
    void PrintClicked();

private:
    frmMain& m_main;
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
