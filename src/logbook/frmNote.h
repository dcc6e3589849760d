#pragma once

#include <QWidget>

#include <functional>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;
class TimeBox;
class LogBook;

// What a note is written about: the alarm selected in the alarm list.
struct NoteSubject
{
    QString Message;
    qint16 Safety = 0;
};

// A short note to today's log, tied to the alarm selected in the alarm list. The alarm is
// looked up again when the note is recorded, not when the window opened.
class frmNote : public QWidget
{
    Q_OBJECT
public:
    // `subject` gives the selected alarm, or nothing when there is none; `now` is the
    // corrected time of day the note's time box starts with.
    using SubjectSource = std::function<std::optional<NoteSubject>()>;
    frmNote(LogBook& log, SubjectSource subject, const QString& now, QWidget* parent = nullptr);

    void cmdOK_Click();
    void cmdCancel_Click();

private:
    LogBook& m_log;
    SubjectSource m_subject;
    QLabel* m_lblAlarm;
    QLineEdit* m_txtNote;
    TimeBox* m_edtTime;
    QPushButton* m_cmdOK;
    QPushButton* m_cmdCancel;
};
