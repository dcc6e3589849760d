#pragma once

#include <QLineEdit>

// A masked time box "##:##". Text() is the box as it stands, with "_" in the places not
// yet typed ("1_:3_"). Hours above 23 and minutes above 59 cannot be typed.
class TimeBox : public QLineEdit
{
    Q_OBJECT
public:
    explicit TimeBox(QWidget* parent = nullptr);

    QString Text() const;
    // Sets the box's text; an empty or partial text leaves the untyped places blank.
    void SetText(const QString& text);

signals:
    void Change();
    void KeyTyped();
    void GotFocus();
    void LostFocus();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};
