#pragma once

#include <QFrame>

class QPushButton;
class QRadioButton;

// The alarm panel `picAlarm`. It holds the sound choices of the alarm editor and its close
// button; the list and the rest of the editor join it with the alarm editor.
class AlarmPanel : public QFrame
{
    Q_OBJECT
public:
    explicit AlarmPanel(QWidget* parent = nullptr);

    QPushButton* CloseButton() const { return m_close; }
    // Enables or disables the two sound choices (the sound switch is off).
    void SetSoundChoicesEnabled(bool enabled);

private:
    QRadioButton* m_optDefault;
    QRadioButton* m_optNamed;
    QPushButton* m_close;
};
