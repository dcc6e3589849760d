#pragma once

#include <QObject>

#include <functional>

// Takes the half of the main tick that normally changes nothing off the event loop. The main
// tick runs at .000 and .500 of every second of the wall clock; at .500 it shows the second it
// already shows and finds the minute it already handled, unless the clock was set meanwhile.
// A wake-up of the event loop costs a program several times what a plain thread's costs, so
// where the system allows it, the watch wakes at .500 on its own thread, asks `changed`
// whether the tick would find anything new, and only then emits Due() on the thread that
// owns the watch; the event loop's timer keeps the tick at .000.
class HalfTickWatch : public QObject
{
    Q_OBJECT
public:
    // Called on the watch's own thread with the wall clock's milliseconds since the epoch,
    // at or after .500 of a second: whether the tick would change anything now.
    using ChangedTest = std::function<bool(qint64 msecsSinceEpoch)>;

    ~HalfTickWatch() override = default;

    // Starts watching; false where there is no such watch (the event loop's timer then runs
    // both halves of the tick). Starting a watch that runs starts it anew with `changed`.
    virtual bool Start(ChangedTest changed) = 0;
    // Stops watching: once it returns, `changed` is not called again and Due() is not emitted.
    virtual void Stop() = 0;

signals:
    void Due();

protected:
    explicit HalfTickWatch(QObject* parent = nullptr) : QObject(parent) {}
};

// Where no thread of its own is to be had: never starts.
class NullHalfTickWatch final : public HalfTickWatch
{
    Q_OBJECT
public:
    explicit NullHalfTickWatch(QObject* parent = nullptr) : HalfTickWatch(parent) {}
    bool Start(ChangedTest) override { return false; }
    void Stop() override {}
};
