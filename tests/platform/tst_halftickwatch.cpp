#include "platform/linux/HalfTickWatch.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>

namespace {

qint64 Phase(qint64 msecs)
{
    return ((msecs % 1000) + 1000) % 1000;
}

// Waits without running the event loop, so that nothing queued for this thread is delivered.
bool WaitFor(const std::function<bool()>& done, int msec)
{
    QElapsedTimer waited;
    waited.start();
    while (!done()) {
        if (waited.elapsed() > msec)
            return false;
        QThread::msleep(2);
    }
    return true;
}

// A watch whose every check finds work, with the count of its checks (made on its thread)
// and of its reports (on this one). The watch is made after the counts, so that it ends, and
// joins its thread, before they go.
struct EveryCheckFindsWork
{
    explicit EveryCheckFindsWork(QObject* receiver)
    {
        QObject::connect(&watch, &HalfTickWatch::Due, receiver, [this] { ++dues; });
    }
    bool Start()
    {
        return watch.Start([this](qint64) {
            ++asked;
            return true;
        });
    }
    std::atomic<int> asked{0};
    int dues = 0;
    LinuxHalfTickWatch watch;
};

} // namespace

class TestHalfTickWatch : public QObject
{
    Q_OBJECT
private slots:
    void asksOnceASecondAtTheHalfAndOnItsOwnThread()
    {
        // The watch is made after what its thread writes to, and so ends (and joins its
        // thread) before that goes, even when a check fails and the test returns early.
        QMutex lock;
        QList<qint64> asked;
        QList<QThread*> threads;
        int dues = 0;
        LinuxHalfTickWatch watch;
        connect(&watch, &HalfTickWatch::Due, this, [&] { ++dues; });
        QVERIFY(watch.Start([&](qint64 msecs) {
            QMutexLocker locked(&lock);
            asked.append(msecs);
            threads.append(QThread::currentThread());
            return false;
        }));
        QElapsedTimer waited;
        waited.start();
        QTest::qWait(3200);
        watch.Stop();
        const qint64 seconds = waited.elapsed() / 1000;
        QMutexLocker locked(&lock);
        // One check in each second the wait spanned (the first may fall before the start).
        QVERIFY2(asked.size() >= seconds - 1 && asked.size() <= seconds + 1,
                 qPrintable(QStringLiteral("%1 checks in %2 s").arg(asked.size()).arg(seconds)));
        for (int i = 0; i < asked.size(); ++i) {
            // Never before .500: before it, the second shown is still the current one.
            QVERIFY2(Phase(asked[i]) >= 500, qPrintable(QString::number(asked[i])));
            QVERIFY(threads[i] != QThread::currentThread());
            // Once a second: each check falls in a second of its own.
            if (i > 0)
                QVERIFY(asked[i] / 1000 > asked[i - 1] / 1000);
        }
        // Nothing was found to do: the main thread was not woken for it.
        QCOMPARE(dues, 0);
    }

    void aChangeFoundIsReportedOnTheOwnersThread()
    {
        std::atomic<int> asked{0};
        int dues = 0;
        QThread* reportedOn = nullptr;
        LinuxHalfTickWatch watch;
        connect(&watch, &HalfTickWatch::Due, this, [&] {
            ++dues;
            reportedOn = QThread::currentThread();
        });
        // Only the first check finds work (the clock was set, say).
        QVERIFY(watch.Start([&](qint64) { return ++asked == 1; }));
        QTRY_COMPARE_WITH_TIMEOUT(dues, 1, 3000);
        QCOMPARE(reportedOn, QThread::currentThread());
        QTRY_VERIFY_WITH_TIMEOUT(asked >= 2, 3000);
        QTest::qWait(20);
        QCOMPARE(dues, 1);
        watch.Stop();
    }

    void stopEndsTheWaitAtOnceAndDropsAReportStillQueued()
    {
        EveryCheckFindsWork w(this);
        QVERIFY(w.Start());
        // The first check found work; its report waits in this thread's queue.
        QVERIFY(WaitFor([&] { return w.asked > 0; }, 3000));
        QElapsedTimer stopping;
        stopping.start();
        w.watch.Stop();
        // The thread was waiting for the next .500, most of a second away: Stop wakes it.
        QVERIFY2(stopping.elapsed() < 400, qPrintable(QString::number(stopping.elapsed())));
        const int askedAtStop = w.asked;
        QCoreApplication::processEvents();
        QCOMPARE(w.dues, 0);
        QTest::qWait(1100);
        QCOMPARE(w.asked.load(), askedAtStop);
        QCOMPARE(w.dues, 0);
    }

    void reportsDoNotPileUpWhileTheOwnerIsBusy()
    {
        EveryCheckFindsWork w(this);
        QVERIFY(w.Start());
        // Every check finds work, but this thread runs no events for three of them.
        QVERIFY(WaitFor([&] { return w.asked >= 3; }, 5000));
        QCoreApplication::processEvents();
        QCOMPARE(w.dues, 1);
        // Once the report is taken, the next check may report again.
        const int askedThen = w.asked;
        QTRY_VERIFY_WITH_TIMEOUT(w.asked > askedThen, 3000);
        QTRY_COMPARE_WITH_TIMEOUT(w.dues, 2, 1000);
        w.watch.Stop();
    }

    void startingAgainAsksTheNewTestOnly()
    {
        std::atomic<int> first{0};
        std::atomic<int> second{0};
        LinuxHalfTickWatch watch;
        QVERIFY(watch.Start([&](qint64) {
            ++first;
            return false;
        }));
        QVERIFY(watch.Start([&](qint64) {
            ++second;
            return false;
        }));
        const int firstAtRestart = first;
        QVERIFY(WaitFor([&] { return second > 0; }, 3000));
        QCOMPARE(first.load(), firstAtRestart);
        watch.Stop();
        watch.Stop(); // stopping a stopped watch does nothing
    }

    void destroyedWhileRunningEndsItsThreadFirst()
    {
        auto watch = std::make_unique<LinuxHalfTickWatch>();
        auto asked = std::make_shared<std::atomic<int>>(0);
        QVERIFY(watch->Start([asked](qint64) {
            ++*asked;
            return true;
        }));
        QVERIFY(WaitFor([&] { return *asked > 0; }, 3000));
        watch.reset();
        const int atEnd = *asked;
        QTest::qWait(1100); // the queued report, if any, goes with the watch
        QCOMPARE(asked->load(), atEnd);
    }

    void anEmptyTestIsRefused()
    {
        LinuxHalfTickWatch watch;
        QVERIFY(!watch.Start({}));
    }
};

QTEST_GUILESS_MAIN(TestHalfTickWatch)
#include "tst_halftickwatch.moc"
