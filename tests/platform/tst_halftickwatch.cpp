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

} // namespace

class TestHalfTickWatch : public QObject
{
    Q_OBJECT
private slots:
    void asksOnceASecondAtTheHalfAndOnItsOwnThread()
    {
        LinuxHalfTickWatch watch;
        QMutex lock;
        QList<qint64> asked;
        QList<QThread*> threads;
        int dues = 0;
        connect(&watch, &HalfTickWatch::Due, this, [&] { ++dues; });
        QVERIFY(watch.Start([&](qint64 msecs) {
            QMutexLocker locked(&lock);
            asked.append(msecs);
            threads.append(QThread::currentThread());
            return false;
        }));
        QTest::qWait(3200);
        watch.Stop();
        QMutexLocker locked(&lock);
        QVERIFY2(asked.size() >= 2 && asked.size() <= 4, qPrintable(QString::number(asked.size())));
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
        LinuxHalfTickWatch watch;
        std::atomic<int> asked{0};
        int dues = 0;
        QThread* reportedOn = nullptr;
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
        LinuxHalfTickWatch watch;
        std::atomic<int> asked{0};
        int dues = 0;
        connect(&watch, &HalfTickWatch::Due, this, [&] { ++dues; });
        QVERIFY(watch.Start([&](qint64) {
            ++asked;
            return true;
        }));
        // The first check found work; its report waits in this thread's queue.
        QVERIFY(WaitFor([&] { return asked > 0; }, 3000));
        QElapsedTimer stopping;
        stopping.start();
        watch.Stop();
        // The thread was waiting for the next .500, most of a second away: Stop wakes it.
        QVERIFY2(stopping.elapsed() < 400, qPrintable(QString::number(stopping.elapsed())));
        const int askedAtStop = asked;
        QCoreApplication::processEvents();
        QCOMPARE(dues, 0);
        QTest::qWait(1100);
        QCOMPARE(asked.load(), askedAtStop);
        QCOMPARE(dues, 0);
    }

    void startingAgainAsksTheNewTestOnly()
    {
        LinuxHalfTickWatch watch;
        std::atomic<int> first{0};
        std::atomic<int> second{0};
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
