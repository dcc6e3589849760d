#pragma once

#include <QFrame>

class QComboBox;
class QLabel;
class QPushButton;

// The calculator panel `picCalc`: the second-zone list, the sunrise/sunset line and the
// close button; the time boxes join it with the calculator.
class CalcPanel : public QFrame
{
    Q_OBJECT
public:
    explicit CalcPanel(QWidget* parent = nullptr);

    QComboBox* ZoneList() const { return m_cboZone; }
    QPushButton* CloseButton() const { return m_close; }
    // The line is composed with "\r" between its two lines.
    void SetSunLine(const QString& text);
    QString SunLine() const { return m_sunText; }

private:
    QComboBox* m_cboZone;
    QLabel* m_lblSun;
    QPushButton* m_close;
    QString m_sunText;
};
