#pragma once

#include <QList>

#include <optional>

// The answers a test gives a dialog helper in advance, so that window tests never block on
// a dialog: with test mode on, the helper shows nothing and takes the next queued answer.
template <typename Answer>
class TestAnswers
{
public:
    bool On() const { return m_on; }
    // Turns test mode on or off, forgetting every queued answer and the count of questions.
    void Reset(bool on)
    {
        m_on = on;
        m_answers.clear();
        m_asked = 0;
    }
    void Queue(const Answer& answer) { m_answers.append(answer); }
    // Counts the question and takes the next queued answer; nothing when none is queued.
    std::optional<Answer> Take()
    {
        ++m_asked;
        if (m_answers.isEmpty())
            return std::nullopt;
        return m_answers.takeFirst();
    }
    int Asked() const { return m_asked; }

private:
    bool m_on = false;
    QList<Answer> m_answers;
    int m_asked = 0;
};
