#pragma once

#include <QCalendarWidget>
#include <QSet>

class QLabel;

// A month calendar that draws a red dot on marked days, reports a click with the clicked
// day, and takes a current day.
class MonthCalendar : public QWidget
{
    Q_OBJECT
public:
    explicit MonthCalendar(const QString& caption, QWidget* parent = nullptr);

    void MarkDate(QDate date);
    bool IsMarked(QDate date) const { return m_marked.contains(date); }
    const QSet<QDate>& Marked() const { return m_marked; }
    void SetCurrentDay(QDate date);
    QDate CurrentDay() const;

signals:
    void DateClicked(QDate clickedDate);

private:
    class DotCalendar;
    QLabel* m_caption;
    QCalendarWidget* m_calendar;
    QSet<QDate> m_marked;
};
