#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QPushButton;

// A stay-on-top notice used when the clock could not be synchronised. It beeps once each
// time it is activated.
class frmMessage : public QDialog
{
    Q_OBJECT
public:
    using Beeper = std::function<void()>;
    explicit frmMessage(QWidget* parent = nullptr, Beeper beep = {});

    void SetMessage(const QString& text);
    QString Message() const { return m_text; }

protected:
    void changeEvent(QEvent* event) override;

private:
    QLabel* m_lblMessage;
    QPushButton* m_cmdOk;
    Beeper m_beep;
    QString m_text;
};
