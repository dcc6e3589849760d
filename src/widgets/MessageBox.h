#pragma once

#include <QList>
#include <QString>

#include <functional>

class QWidget;

// The one helper for the program's message boxes and questions.
//
// Texts are composed with "\r" between lines and shown with a line break for each. A test
// turns on test mode: nothing is then shown, every request is recorded, and each question
// takes the next answer given in advance (or its default button when none is queued), so
// that window tests never block on a dialog.
class MessageBox
{
public:
    enum class Buttons
    {
        OkOnly,
        OkCancel,
        YesNo,
    };
    enum class Icon
    {
        None,
        Critical,
        Question,
        Exclamation,
        Information,
    };
    enum class Answer
    {
        Ok,
        Cancel,
        Yes,
        No,
    };

    struct Request
    {
        QString Text;
        QString Title;
        MessageBox::Buttons ButtonSet = MessageBox::Buttons::OkOnly;
        MessageBox::Icon IconKind = MessageBox::Icon::None;
        bool DefaultSecond = false; // the second button (No, Cancel) is the default
    };

    static Answer Show(QWidget* parent, const Request& request);
    // The same question without waiting for it: `then` gets the answer when it is given (in
    // test mode, before Ask returns). The box blocks its parent's window only and goes with
    // its parent; `then` is not called when the parent goes first.
    static void Ask(QWidget* parent, const Request& request, std::function<void(Answer)> then);

    // An OK-only message with the program's title.
    static void Notice(QWidget* parent, const QString& text);
    // The same message without waiting for it: it is shown and the caller goes on at once
    // (the clock and the alarms must not wait for an error to be read). A message that is
    // already on the screen is not shown a second time.
    static void NoticeLater(QWidget* parent, const QString& text);
    // Yes/No, exclamation icon, No the default.
    static Answer AskYesNo(QWidget* parent, const QString& text, const QString& title);

    // Questions and messages that wait block only their parent's window (and its parents),
    // never the alarm windows.
    // Closes any message box that is open (the program is being ended).
    static void DismissOpen();

    // Test hooks.
    static void SetTestMode(bool on);
    static void SetNextAnswer(Answer answer);
    static QList<Request> Shown();
    static void ClearShown();

    static QString Title();
};
