#pragma once

#include "logbook/LogBook.h"

#include <QFrame>

class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

// The logbook panel `picLog`: the logging switches, the day caption and the close button.
// The writer reads the switches at every entry.
class LogPanel : public QFrame
{
    Q_OBJECT
public:
    explicit LogPanel(QWidget* parent = nullptr);

    QCheckBox* LogCheck() const { return m_chkLog; }
    QPushButton* CloseButton() const { return m_close; }

    // `chkLog` from "LogOn"; `optSafetyOnly` from "LogSafetyOnly", `optAll` otherwise.
    void SetSwitches(qint16 logOn, bool safetyOnly);
    LogSwitches Switches() const;
    qint16 LogOnValue() const;
    bool SafetyOnlyValue() const;
    // The logging choices are usable only while logging is on.
    void EnableChoicesFromLogCheck();
    void SetDateCaption(const QString& text);

signals:
    void LogCheckClicked();

private:
    QCheckBox* m_chkLog;
    QRadioButton* m_optAll;
    QRadioButton* m_optSafetyOnly;
    QLabel* m_txtDate;
    QPushButton* m_close;
};
