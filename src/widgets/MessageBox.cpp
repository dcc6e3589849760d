#include "widgets/MessageBox.h"

#include "widgets/TestAnswers.h"
#include "widgets/WindowModal.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace {

TestAnswers<MessageBox::Answer>& Test()
{
    static TestAnswers<MessageBox::Answer> answers;
    return answers;
}

// Every message asked for in test mode, in order.
QList<MessageBox::Request>& ShownInTest()
{
    static QList<MessageBox::Request> shown;
    return shown;
}

QList<QPointer<QMessageBox>>& OpenBoxes()
{
    static QList<QPointer<QMessageBox>> boxes;
    return boxes;
}

MessageBox::Answer DefaultAnswer(const MessageBox::Request& r)
{
    switch (r.ButtonSet) {
    case MessageBox::Buttons::OkOnly:
        return MessageBox::Answer::Ok;
    case MessageBox::Buttons::OkCancel:
        return r.DefaultSecond ? MessageBox::Answer::Cancel : MessageBox::Answer::Ok;
    case MessageBox::Buttons::YesNo:
        return r.DefaultSecond ? MessageBox::Answer::No : MessageBox::Answer::Yes;
    }
    return MessageBox::Answer::Ok;
}

QMessageBox::Icon ToQt(MessageBox::Icon icon)
{
    switch (icon) {
    case MessageBox::Icon::None:
        return QMessageBox::NoIcon;
    case MessageBox::Icon::Critical:
        return QMessageBox::Critical;
    case MessageBox::Icon::Question:
        return QMessageBox::Question;
    case MessageBox::Icon::Exclamation:
        return QMessageBox::Warning;
    case MessageBox::Icon::Information:
        return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

} // namespace

QString MessageBox::Title()
{
    return QStringLiteral("Tarrowind");
}

namespace {

// A box for `request` with its buttons; `first` and `second` are its buttons in order
// (`second` null for OK only).
struct BuiltBox
{
    QMessageBox* Box;
    QPushButton* First;
    QPushButton* Second;
};

BuiltBox BuildBox(QWidget* parent, const MessageBox::Request& request)
{
    auto* box =
        new QMessageBox(ToQt(request.IconKind), request.Title.isEmpty() ? MessageBox::Title() : request.Title,
                        QString(request.Text).replace(u'\r', u'\n'), QMessageBox::NoButton, parent);
    box->setObjectName(QStringLiteral("MessageBox"));
    QPushButton* first = nullptr;
    QPushButton* second = nullptr;
    switch (request.ButtonSet) {
    case MessageBox::Buttons::OkOnly:
        first = box->addButton(QMessageBox::Ok);
        break;
    case MessageBox::Buttons::OkCancel:
        first = box->addButton(QMessageBox::Ok);
        second = box->addButton(QMessageBox::Cancel);
        break;
    case MessageBox::Buttons::YesNo:
        first = box->addButton(QMessageBox::Yes);
        second = box->addButton(QMessageBox::No);
        break;
    }
    box->setDefaultButton(request.DefaultSecond && second ? second : first);
    box->setEscapeButton(second ? second : first);
    return {box, first, second};
}

MessageBox::Answer AnswerOf(const MessageBox::Request& request, bool firstChosen)
{
    switch (request.ButtonSet) {
    case MessageBox::Buttons::OkOnly:
        return MessageBox::Answer::Ok;
    case MessageBox::Buttons::OkCancel:
        return firstChosen ? MessageBox::Answer::Ok : MessageBox::Answer::Cancel;
    case MessageBox::Buttons::YesNo:
        return firstChosen ? MessageBox::Answer::Yes : MessageBox::Answer::No;
    }
    return MessageBox::Answer::Ok;
}

} // namespace

MessageBox::Answer MessageBox::Show(QWidget* parent, const Request& request)
{
    if (Test().On()) {
        ShownInTest().append(request);
        return Test().Take().value_or(DefaultAnswer(request));
    }

    const BuiltBox built = BuildBox(parent, request);
    // The parent may go while the box waits (the program is ended): the box goes with it.
    const QPointer<QMessageBox> box(built.Box);
    OpenBoxes().append(box);
    ExecWindowModal(*box);
    OpenBoxes().removeAll(box);
    const bool firstChosen = box && box->clickedButton() == built.First;
    delete box.data();
    return AnswerOf(request, firstChosen);
}

void MessageBox::Ask(QWidget* parent, const Request& request, std::function<void(Answer)> then)
{
    if (Test().On()) {
        ShownInTest().append(request);
        then(Test().Take().value_or(DefaultAnswer(request)));
        return;
    }
    const BuiltBox built = BuildBox(parent, request);
    QMessageBox* box = built.Box;
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    OpenBoxes().append(box);
    QObject::connect(box, &QMessageBox::finished, box,
                     [box, first = built.First, request, then = std::move(then)](int) {
                         then(AnswerOf(request, box->clickedButton() == first));
                     });
    box->show();
}

void MessageBox::Notice(QWidget* parent, const QString& text)
{
    Show(parent, {text, Title(), Buttons::OkOnly, Icon::None, false});
}

void MessageBox::NoticeLater(QWidget* parent, const QString& text)
{
    const Request request{text, Title(), Buttons::OkOnly, Icon::None, false};
    if (Test().On()) {
        ShownInTest().append(request);
        return;
    }
    const QString shown = QString(text).replace(u'\r', u'\n');
    OpenBoxes().removeAll(nullptr);
    for (const auto& open : OpenBoxes())
        if (open && open->text() == shown)
            return;
    auto* box = new QMessageBox(QMessageBox::NoIcon, Title(), shown, QMessageBox::Ok, parent);
    box->setObjectName(QStringLiteral("MessageBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::NonModal);
    OpenBoxes().append(box);
    box->show();
}

MessageBox::Answer MessageBox::AskYesNo(QWidget* parent, const QString& text, const QString& title)
{
    return Show(parent, {text, title, Buttons::YesNo, Icon::Exclamation, true});
}

void MessageBox::DismissOpen()
{
    const auto boxes = OpenBoxes();
    for (const auto& box : boxes)
        if (box)
            box->reject();
}

void MessageBox::SetTestMode(bool on)
{
    Test().Reset(on);
    ShownInTest().clear();
}

void MessageBox::SetNextAnswer(Answer answer)
{
    Test().Queue(answer);
}

QList<MessageBox::Request> MessageBox::Shown()
{
    return ShownInTest();
}

void MessageBox::ClearShown()
{
    ShownInTest().clear();
}
