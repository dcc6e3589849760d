#include "widgets/MonthCalendar.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

class MonthCalendar::DotCalendar final : public QCalendarWidget
{
public:
    explicit DotCalendar(const QSet<QDate>& marked) : m_marked(marked) {}

protected:
    void paintCell(QPainter* painter, const QRect& rect, QDate date) const override
    {
        QCalendarWidget::paintCell(painter, rect, date);
        if (!m_marked.contains(date))
            return;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(220, 0, 0));
        const qreal r = qMax(2.0, rect.height() / 9.0);
        painter->drawEllipse(QPointF(rect.right() - r - 2, rect.top() + r + 2), r, r);
        painter->restore();
    }

private:
    const QSet<QDate>& m_marked;
};

MonthCalendar::MonthCalendar(const QString& caption, QWidget* parent)
    : QWidget(parent), m_caption(new QLabel(caption)), m_calendar(new DotCalendar(m_marked))
{
    m_calendar->setGridVisible(true);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_caption);
    layout->addWidget(m_calendar);
    setAutoFillBackground(true);
    connect(m_calendar, &QCalendarWidget::clicked, this, &MonthCalendar::DateClicked);
}

void MonthCalendar::MarkDate(QDate date)
{
    if (!date.isValid() || m_marked.contains(date))
        return;
    m_marked.insert(date);
    m_calendar->update();
}

void MonthCalendar::SetCurrentDay(QDate date)
{
    m_calendar->setSelectedDate(date);
}

QDate MonthCalendar::CurrentDay() const
{
    return m_calendar->selectedDate();
}
