// bench_tick: measures how far after each true second the main window's seconds box
// changes.
//
// Usage: bench_tick [SECONDS]   (default 30; run under xvfb-run or QT_QPA_PLATFORM=offscreen)
//
// The main window is built exactly as the program builds it (a SystemClock, a settings
// store on a temporary INI file, a temporary log folder), loaded and shown. After one
// second of warm-up, every change of the seconds box during SECONDS seconds is recorded
// as the wall-clock milliseconds past the second at which it happened. A change just
// before a second (an early tick) counts as a negative lag. The figures are printed as
// "key=value" lines for scripts, and the program exits with status 0 when changes were
// seen and every change showed the right second.
#include "alarms/AlarmSound.h"
#include "alarms/SoundFile.h"
#include "clock/Clock.h"
#include "platform/PlatformServices.h"
#include "settings/SettingsStore.h"
#include "shell/frmMain.h"
#include "widgets/SecondsBox.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QLocale>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

constexpr int DefaultSeconds = 30;
constexpr int MaxSeconds = 24 * 60 * 60;
constexpr qint64 WarmUpMsec = 1000;
// Beyond the measured time, how long start-up may take before the run is given up (a
// modal notice would otherwise wait for a click that never comes).
constexpr int WatchdogSlackMsec = 20000;

QTextStream& Out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream& Err()
{
    static QTextStream stream(stderr);
    return stream;
}

// Nearest-rank percentile of sorted values.
int Percentile(const std::vector<int>& sorted, double percent)
{
    const auto n = static_cast<double>(sorted.size());
    auto rank = static_cast<std::size_t>(std::ceil(percent / 100.0 * n));
    rank = std::clamp<std::size_t>(rank, 1, sorted.size());
    return sorted[rank - 1];
}

// Milliseconds past the nearest true second: 0..499 after it, -500..-1 before it.
int SignedLag(const QTime& time)
{
    const int msec = time.msec();
    return msec < 500 ? msec : msec - 1000;
}

} // namespace

int main(int argc, char* argv[])
{
    // The argument is checked before a display is needed.
    int seconds = DefaultSeconds;
    if (argc > 2) {
        Err() << "usage: bench_tick [SECONDS]\n";
        return 2;
    }
    if (argc == 2) {
        const QString arg = QString::fromLocal8Bit(argv[1]);
        bool ok = false;
        seconds = arg.toInt(&ok);
        if (!ok || seconds < 1 || seconds > MaxSeconds) {
            Err() << "bench_tick: SECONDS must be a whole number from 1 to " << MaxSeconds << ", not \""
                  << arg << "\"\n";
            return 2;
        }
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("bench_tick"));

    QTemporaryDir work;
    if (!work.isValid()) {
        Err() << "bench_tick: cannot create a temporary folder: " << work.errorString() << '\n';
        return 1;
    }
    const QString logFolder = work.filePath(QStringLiteral("Logs"));
    if (!QDir().mkpath(logFolder)) {
        Err() << "bench_tick: cannot create the log folder " << logFolder << '\n';
        return 1;
    }

    const QStringList soundFolders{QCoreApplication::applicationDirPath(),
                                   QStringLiteral(TW_BENCH_SOUND_FOLDER)};
    if (ResolveSoundFile(QStringLiteral("DefaultAlarm.Wav"), soundFolders).isEmpty()) {
        Err() << "bench_tick: DefaultAlarm.Wav not found in " << soundFolders.join(QStringLiteral(", "))
              << "; build the target DefaultAlarmSound first\n";
        return 1;
    }

    // Never wait for ever, whatever happens at start-up.
    QTimer::singleShot(static_cast<int>(WarmUpMsec) + seconds * 1000 + WatchdogSlackMsec, Qt::CoarseTimer,
                       &app, [] {
                           Err() << "bench_tick: the run did not finish in time (a modal notice at "
                                    "start-up?)\n";
                           Err().flush();
                           std::_Exit(3);
                       });

    SystemClock clock;
    SettingsStore store(work.filePath(QStringLiteral("Tarrowind 2.ini")));
    PlatformServices platform = CreatePlatformServices();
    const MainServices services{clock,        store,
                                logFolder,    QLocale(),
                                soundFolders, [](QObject* owner) { return AlarmSound::Create(owner); },
                                platform};

    QElapsedTimer startUp;
    startUp.start();
    frmMain window(services);
    if (!window.Load()) {
        Err() << "bench_tick: the main window did not load\n";
        return 1;
    }
    window.show();
    const qint64 loadMsec = startUp.elapsed();

    auto* secondsBox = window.findChild<SecondsBox*>(QStringLiteral("txtSeconds"));
    if (secondsBox == nullptr) {
        Err() << "bench_tick: no SecondsBox named txtSeconds in the main window\n";
        return 1;
    }

    std::vector<int> lags;
    lags.reserve(static_cast<std::size_t>(seconds) + 2);
    int wrongSecond = 0;
    QElapsedTimer run;
    run.start();
    QObject::connect(secondsBox, &SecondsBox::textChanged, &app, [&](const QString& text) {
        const QTime now = QDateTime::currentDateTime().time();
        if (run.elapsed() < WarmUpMsec)
            return;
        const int lag = SignedLag(now);
        lags.push_back(lag);
        // The second the box should show: the one just begun, or the one about to begin.
        const int expected = lag >= 0 ? now.second() : now.addSecs(1).second();
        if (text.toInt() != expected)
            ++wrongSecond;
    });
    QTimer::singleShot(static_cast<int>(WarmUpMsec) + seconds * 1000, Qt::PreciseTimer, &app,
                       &QCoreApplication::quit);
    QApplication::exec();

    Out() << "qt_version=" << qVersion() << '\n';
    Out() << "platform=" << QGuiApplication::platformName() << '\n';
    Out() << "load_and_show_ms=" << loadMsec << '\n';
    Out() << "seconds=" << seconds << '\n';
    Out() << "count=" << lags.size() << '\n';
    Out() << "wrong_second=" << wrongSecond << '\n';
    if (lags.empty()) {
        Out().flush();
        Err() << "bench_tick: the seconds box never changed\n";
        return 1;
    }
    std::vector<int> sorted = lags;
    std::sort(sorted.begin(), sorted.end());
    Out() << "min_ms=" << sorted.front() << '\n';
    Out() << "median_ms=" << Percentile(sorted, 50.0) << '\n';
    Out() << "p95_ms=" << Percentile(sorted, 95.0) << '\n';
    Out() << "max_ms=" << sorted.back() << '\n';
    Out().flush();
    return wrongSecond == 0 ? 0 : 1;
}
