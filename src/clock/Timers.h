#pragma once

#include <QObject>

#include <memory>

// A single-shot timer of a class's own timing (a watchdog, a time-out, a pause between two
// steps). Timeout always comes from the event loop, never from within Start or Stop; a timer
// stopped or started again before it ran out raises nothing for that run.
class OneShotTimer : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // Runs out after `msec` milliseconds (0: at the next turn of the event loop); starting a
    // running timer starts it anew.
    virtual void Start(qint64 msec) = 0;
    virtual void Stop() = 0;
    virtual bool IsActive() const = 0;
    // The milliseconds left until it runs out; -1 when it is not running.
    virtual qint64 RemainingMsec() const = 0;

signals:
    void Timeout();
};

// Makes the timers of the classes that are handed it. The program hands in QtTimers (timers of
// the event loop); a test hands in one it advances itself, so that it fires the timers without
// waiting for them.
class Timers
{
public:
    virtual ~Timers() = default;
    // `precise`: to the millisecond (Qt::PreciseTimer) rather than within the 5 % a coarse
    // timer may be early or late.
    virtual std::unique_ptr<OneShotTimer> MakeOneShot(bool precise = false) = 0;
};

// The event loop's timers (QTimer).
class QtTimers final : public Timers
{
public:
    std::unique_ptr<OneShotTimer> MakeOneShot(bool precise = false) override;
};
