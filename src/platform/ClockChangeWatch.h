#pragma once

#include <QObject>

// Tells when the wall clock was set, by this program or by anyone else, so that whatever was
// worked out from the old time (the next alarm, the log's day, the faces) is worked out again.
class ClockChangeWatch : public QObject
{
    Q_OBJECT
public:
    ~ClockChangeWatch() override = default;

signals:
    void ClockChanged();

protected:
    explicit ClockChangeWatch(QObject* parent = nullptr) : QObject(parent) {}
};

// For systems that give no notice of a clock change: never signals.
class NullClockChangeWatch final : public ClockChangeWatch
{
    Q_OBJECT
public:
    explicit NullClockChangeWatch(QObject* parent = nullptr) : ClockChangeWatch(parent) {}
};
