#include "alarms/AlarmSound.h"

#include <QtTest>

class TestAlarmSound : public QObject
{
    Q_OBJECT
private slots:
    void placeholder() {}
};

QTEST_MAIN(TestAlarmSound)
#include "tst_alarmsound.moc"
