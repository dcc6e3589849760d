#pragma once

#include "ManualClock.h"
#include "sync/SntpClient.h"

#include <QList>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

// A time query that answers when the test says: it records the sites asked and whether it
// was cancelled, and returns StartAnswer from Start.
class FakeTimeQuery final : public TimeQuery
{
public:
    SntpResult Start(const QString& site, int) override
    {
        Sites.append(site);
        Running = StartAnswer.ErrorCode == SntpResult::Ok || StartAnswer.ErrorCode == SntpResult::UnderWay;
        return StartAnswer;
    }
    void Cancel() override
    {
        Running = false;
        ++Cancels;
    }
    // The server's answer arrives.
    void Finish(const SntpResult& result)
    {
        Running = false;
        emit Done(result);
    }
    SntpResult StartAnswer;
    QStringList Sites;
    bool Running = false;
    int Cancels = 0;
};

// Makes the time queries of a window under test and keeps hold of each one made.
struct FakeTimeQueries
{
    std::function<std::unique_ptr<TimeQuery>(QObject*)> Factory()
    {
        return [this](QObject* parent) -> std::unique_ptr<TimeQuery> {
            auto query = std::make_unique<FakeTimeQuery>();
            query->setParent(parent);
            query->StartAnswer = NextStart;
            Made.append(query.get());
            return query;
        };
    }
    // The query made last (null when none is left).
    FakeTimeQuery* Last() const { return Made.isEmpty() ? nullptr : Made.constLast().data(); }
    SntpResult NextStart;
    QList<QPointer<FakeTimeQuery>> Made;
};

// A good answer from a server whose clock is `offsetMs` ahead of `clock`.
inline SntpResult ServerAnswer(const ManualClock& clock, qint64 offsetMs)
{
    SntpResult result;
    result.OffsetMs = offsetMs;
    result.DelayMs = 1;
    result.ServerTime = clock.Now().addMSecs(offsetMs);
    return result;
}

// A failed query with its code and text.
inline SntpResult QueryError(int code, const QString& text)
{
    SntpResult result;
    result.ErrorCode = code;
    result.Error = text;
    return result;
}
