#pragma once

#include <QObject>

// Tells when the computer is about to sleep and when it has woken, and keeps the system from
// sleeping while alarms are set.
//
// SetAlarmsSet gives the number of alarms now set; while it is above zero the system is asked
// not to sleep, with the count named as the reason. On Suspending the program saves what it
// holds and then calls SuspendHandled, which lets go of any delay held for the save.
class SuspendWatch : public QObject
{
    Q_OBJECT
public:
    ~SuspendWatch() override = default;

    virtual void SetAlarmsSet(int count) = 0;
    virtual void SuspendHandled() = 0;

signals:
    void Suspending();
    void Resumed();

protected:
    explicit SuspendWatch(QObject* parent = nullptr) : QObject(parent) {}
};

// For systems without such notices: holds nothing back and never signals.
class NullSuspendWatch final : public SuspendWatch
{
    Q_OBJECT
public:
    explicit NullSuspendWatch(QObject* parent = nullptr) : SuspendWatch(parent) {}
    void SetAlarmsSet(int) override {}
    void SuspendHandled() override {}
};
