#pragma once

#include "platform/ClockChangeWatch.h"
#include "platform/ClockSetter.h"
#include "platform/DesktopNotifier.h"
#include "platform/DialUpState.h"
#include "platform/HalfTickWatch.h"
#include "platform/StartAtLogin.h"
#include "platform/SuspendWatch.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// Operating-system services for tests: each records what it is asked and answers what the
// test set. None of them touches the system.

// Records every amount it is asked to move the clock by and answers with Next (success
// unless a test says). A test may move its own clock on each request (Moves), and may hold
// the answers back (Hold) to give them later with Answer.
class FakeClockSetter final : public ClockSetter
{
public:
    void AdjustClock(qint64 byMsec, bool mayAsk, Done done) override
    {
        Requests.append(byMsec);
        MayAsk.append(mayAsk);
        if (Hold) {
            m_waiting.append(std::move(done));
            return;
        }
        Carry(byMsec, done);
    }
    // Gives the answer held back longest.
    void Answer()
    {
        if (m_waiting.isEmpty())
            return;
        const Done done = m_waiting.takeFirst();
        Carry(Requests.at(Requests.size() - m_waiting.size() - 1), done);
    }
    int Waiting() const { return int(m_waiting.size()); }

    ClockSetResult Next{true, {}};
    bool Hold = false;
    std::function<void(qint64)> Moves;
    QList<qint64> Requests;
    QList<bool> MayAsk;

private:
    void Carry(qint64 byMsec, const Done& done)
    {
        if (Next.Ok && Moves)
            Moves(byMsec);
        done(Next);
    }
    QList<Done> m_waiting;
};

// Signals a clock change when the test calls Emit.
class FakeClockChangeWatch final : public ClockChangeWatch
{
public:
    explicit FakeClockChangeWatch(QObject* parent = nullptr) : ClockChangeWatch(parent) {}
    void Emit() { emit ClockChanged(); }
};

// Keeps the test it is started with, for the test to ask as the watch's thread would, and
// emits Due() when the test calls Emit. Starts unless Startable is false.
class FakeHalfTickWatch final : public HalfTickWatch
{
public:
    explicit FakeHalfTickWatch(QObject* parent = nullptr) : HalfTickWatch(parent) {}
    bool Start(ChangedTest changed) override
    {
        if (!Startable)
            return false;
        Changed = std::move(changed);
        return true;
    }
    void Stop() override
    {
        Changed = nullptr;
        ++Stops;
    }
    void Emit() { emit Due(); }
    bool Startable = true;
    ChangedTest Changed;
    int Stops = 0;
};

// Records the alarm counts it is given and the SuspendHandled calls; signals sleep and wake
// when the test says.
class FakeSuspendWatch final : public SuspendWatch
{
public:
    explicit FakeSuspendWatch(QObject* parent = nullptr) : SuspendWatch(parent) {}
    void SetAlarmsSet(int count) override { AlarmsSetCounts.append(count); }
    void SuspendHandled() override { ++SuspendHandledCalls; }
    void EmitSuspending() { emit Suspending(); }
    void EmitResumed() { emit Resumed(); }
    QList<int> AlarmsSetCounts;
    int SuspendHandledCalls = 0;
};

// Keeps the setting in memory; with ForcedError set, every change fails with that text and
// leaves the setting as it was.
class FakeStartAtLogin final : public StartAtLogin
{
public:
    bool IsEnabled() const override { return Enabled; }
    std::optional<QString> SetEnabled(bool on) override
    {
        Requests.append(on);
        if (ForcedError)
            return ForcedError;
        Enabled = on;
        return std::nullopt;
    }
    bool Enabled = false;
    std::optional<QString> ForcedError;
    QList<bool> Requests;
};

// Answers whatever the test set, and counts the questions.
class FakeDialUpState final : public DialUpState
{
public:
    bool DialUpConnection() const override
    {
        ++Asked;
        return DialUp;
    }
    bool DialUp = false;
    mutable int Asked = 0;
};

// Records every notice shown and every key withdrawn.
class FakeDesktopNotifier final : public DesktopNotifier
{
public:
    struct Notice
    {
        QString Key;
        QString Title;
        QString Body;
    };
    void Notify(const QString& key, const QString& title, const QString& body) override
    {
        Notices.append({key, title, body});
    }
    void Withdraw(const QString& key) override { Withdrawn.append(key); }
    QList<Notice> Notices;
    QStringList Withdrawn;
};
