// Measures the Internet time sync against a time server on this machine (bench/sync.sh
// starts chronyd and gives its address in TW_NTP_SITE): the offset the SNTP client finds
// (chronyd serves this machine's own clock, so the truth is 0), the time of one query, and
// the time of a whole sync run from its start to "Time set" (with a setter that sets
// nothing). Prints "key=value" lines: medians and worsts in milliseconds.
#include "clock/Clock.h"
#include "platform/ClockSetter.h"
#include "settings/Preferences.h"
#include "sync/SntpClient.h"
#include "sync/SyncState.h"
#include "sync/frmAutoSync.h"
#include "widgets/MessageBox.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QList>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// Accepts every request and moves nothing.
class NoMoveSetter final : public ClockSetter
{
public:
    void AdjustClock(qint64, bool, Done done) override { done({true, {}}); }
};

void Print(const char* key, QList<double> values)
{
    std::sort(values.begin(), values.end());
    std::printf("%s_median=%.3f\n%s_worst=%.3f\n", key, values[values.size() / 2], key, values.last());
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const QString site = qEnvironmentVariable("TW_NTP_SITE");
    if (site.isEmpty()) {
        std::fprintf(stderr, "bench_sync: TW_NTP_SITE is not set (run bench/sync.sh)\n");
        return 2;
    }
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 50;
    SystemClock clock;

    // One query at a time: its offset and its time.
    QList<double> offsets;
    QList<double> queries;
    for (int i = 0; i < runs; ++i) {
        SntpClient client(clock);
        QEventLoop loop;
        SntpResult result;
        QObject::connect(&client, &SntpClient::Done, &loop, [&](const SntpResult& r) {
            result = r;
            loop.quit();
        });
        QElapsedTimer timer;
        timer.start();
        client.Start(site, 5000);
        loop.exec();
        queries << double(timer.nsecsElapsed()) / 1e6;
        if (result.ErrorCode != SntpResult::Ok) {
            std::fprintf(stderr, "bench_sync: %s\n", qPrintable(result.Error));
            return 1;
        }
        offsets << std::fabs(double(result.OffsetMs));
    }
    Print("offset_abs_ms", offsets);
    Print("query_ms", queries);

    // Whole runs of the sync window, from its start to "Time set".
    MessageBox::SetTestMode(true);
    Preferences prefs;
    prefs.Change([&site](Settings& v) {
        v.SyncSite = site;
        v.AutoSync = 0;
        v.AutoSyncHrs = 24;
    });
    SyncState state(prefs, clock);
    NoMoveSetter setter;
    QList<double> runTimes;
    for (int i = 0; i < runs; ++i) {
        auto* run = new frmAutoSync(
            {state, prefs, clock, setter,
             [](const QString& m) { std::fprintf(stderr, "bench_sync: %s\n", qPrintable(m)); }},
            std::make_unique<SntpClient>(clock), false);
        QEventLoop loop;
        bool set = false;
        QObject::connect(run, &frmAutoSync::Ended, &loop, [&] {
            set = run->findChild<QLabel*>(QStringLiteral("lblStatus"))->text() == u"Time set";
            loop.quit();
        });
        run->show();
        QElapsedTimer timer;
        timer.start();
        run->Form_Activate();
        loop.exec();
        runTimes << double(timer.nsecsElapsed()) / 1e6;
        if (!set)
            return 1;
        QApplication::processEvents(); // the closed window goes
    }
    Print("run_ms", runTimes);
    return 0;
}
