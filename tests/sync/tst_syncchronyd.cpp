#include "FakePlatform.h"
#include "clock/Clock.h"
#include "settings/Preferences.h"
#include "sync/SntpClient.h"
#include "sync/SyncState.h"
#include "sync/frmAutoSync.h"
#include "widgets/MessageBox.h"

#include <QLabel>
#include <QPointer>
#include <QtTest>

namespace {

// The computer's clock, put back by a fixed amount: a computer whose clock runs behind.
class BehindClock final : public Clock
{
public:
    explicit BehindClock(qint64 behindMsec) : m_behind(behindMsec) {}
    QDateTime Now() const override { return QDateTime::currentDateTime().addMSecs(-m_behind); }

private:
    qint64 m_behind;
};

// One run of the sync window against the real time server of chrony.sh, with a fake
// setter that records what it is asked and sets nothing.
struct RealRun
{
    RealRun(bool autoSync, qint64 behindMsec) : clock(behindMsec)
    {
        prefs.Change([&](Settings& v) {
            v.SyncSite = qEnvironmentVariable("TW_NTP_SITE");
            v.AutoSync = autoSync ? -1 : 0;
            v.AutoSyncHrs = 24;
        });
        window = new frmAutoSync({state, prefs, clock, setter, [this](const QString& m) { messages << m; }},
                                 std::make_unique<SntpClient>(clock), false);
    }
    ~RealRun() { delete window.data(); }
    // Runs it to its end; false when it does not end within `msec`.
    bool Go(int msec = 10000)
    {
        QSignalSpy ended(window.data(), &frmAutoSync::Ended);
        window->show();
        window->Form_Activate();
        return ended.wait(msec) || ended.size() > 0;
    }

    BehindClock clock;
    Preferences prefs;
    SyncState state{prefs, clock};
    FakeClockSetter setter;
    QPointer<frmAutoSync> window;
    QStringList messages;
};

} // namespace

// The sync window against a real time server (chronyd, serving this machine's own clock).
class TestSyncChronyd : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (qEnvironmentVariable("TW_NTP_SITE").isEmpty())
            QSKIP("no time server of our own (run through chrony.sh)");
        MessageBox::SetTestMode(true);
    }

    void runSetsTheClockByTheServersTime()
    {
        RealRun run(false, 0);
        QVERIFY(run.Go());
        QVERIFY2(run.messages.isEmpty(), qPrintable(run.messages.join(u'|')));
        QCOMPARE(MessageBox::Shown().size(), 0);
        QCOMPARE(run.setter.Requests.size(), 1);
        // The server keeps this machine's own clock: the move is that of the loopback.
        QVERIFY2(qAbs(run.setter.Requests.at(0)) < 50,
                 qPrintable(QString::number(run.setter.Requests.at(0))));
        QVERIFY(run.state.Synchronised());
        QVERIFY(qAbs(run.prefs.Values().LastSync.msecsTo(QDateTime::currentDateTime())) < 2000);
    }

    void clockSevenMinutesBehindWithAutoSyncRecordsSevenAndMovesOnlySeconds()
    {
        RealRun run(true, 7 * 60000);
        QVERIFY(run.Go());
        QVERIFY2(run.messages.isEmpty(), qPrintable(run.messages.join(u'|')));
        QCOMPARE(MessageBox::Shown().size(), 0);
        QCOMPARE(run.setter.Requests.size(), 1);
        const qint64 moved = run.setter.Requests.at(0);
        const int minutes = run.prefs.Values().InetMinOffset;
        // The seconds were already right: nothing moves but the loopback's milliseconds, and
        // the minutes are 7 (one more with a move of a minute back, when the server's
        // second zero fell between the two clocks).
        QVERIFY2(qAbs(moved) < 50 || qAbs(moved + 60000) < 50, qPrintable(QString::number(moved)));
        QVERIFY2(qAbs(moved + qint64(minutes) * 60000 - 7 * 60000) < 50,
                 qPrintable(QString::number(minutes)));
        QVERIFY(run.state.Synchronised());
        QVERIFY(!run.state.ClockBeingSet());
    }
};

QTEST_MAIN(TestSyncChronyd)
#include "tst_syncchronyd.moc"
