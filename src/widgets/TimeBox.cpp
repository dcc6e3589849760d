#include "widgets/TimeBox.h"

#include <QKeyEvent>
#include <QValidator>

namespace {

// Refuses an hour above 23 or a minute above 59 while leaving half-typed boxes alone.
class TimeValidator final : public QValidator
{
public:
    using QValidator::QValidator;
    State validate(QString& input, int&) const override
    {
        const auto value = [&](int at) {
            const QString part = input.mid(at, 2).remove(u'_').remove(u' ');
            return part.size() == 2 ? part.toInt() : (part.size() == 1 ? part.toInt() * 10 : 0);
        };
        if (input.size() >= 2 && value(0) > 23)
            return Invalid;
        if (input.size() >= 5 && value(3) > 59)
            return Invalid;
        return Acceptable;
    }
};

} // namespace

TimeBox::TimeBox(QWidget* parent) : QLineEdit(parent)
{
    setInputMask(QStringLiteral("99:99;_"));
    setValidator(new TimeValidator(this));
    setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("00:000")) + 16);
    connect(this, &QLineEdit::textChanged, this, &TimeBox::Change);
}

QString TimeBox::Text() const
{
    return displayText();
}

void TimeBox::SetText(const QString& text)
{
    setText(text);
}

void TimeBox::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!enter &&
        (!event->text().isEmpty() || event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete))
        emit KeyTyped();
    QLineEdit::keyPressEvent(event);
}

void TimeBox::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    emit GotFocus();
}

void TimeBox::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    emit LostFocus();
}
