#pragma once

#include "platform/HalfTickWatch.h"

#include <atomic>
#include <thread>

// The half-tick watch on a thread of its own, which waits for .500 of the wall clock in poll()
// on an eventfd that Stop() writes to. Each wake-up reads the wall clock again, so a clock set
// or slewed meanwhile only moves the next wake-up. Should poll() fail, the thread sleeps the
// same time instead, so the check is never lost.
class LinuxHalfTickWatch final : public HalfTickWatch
{
    Q_OBJECT
public:
    explicit LinuxHalfTickWatch(QObject* parent = nullptr);
    ~LinuxHalfTickWatch() override;

    bool Start(ChangedTest changed) override;
    void Stop() override;

private:
    void Run(const ChangedTest& changed, quint64 generation);

    std::thread m_thread;
    std::atomic<bool> m_stop{false};
    // A report is on its way to the owner's thread.
    std::atomic<bool> m_duePending{false};
    int m_stopFd = -1;
    // Which start a queued Due() belongs to; one queued before a Stop() is dropped.
    quint64 m_generation = 0;
};
