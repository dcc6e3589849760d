// Measures the logbook: redrawing a day of 10,000 entries in the viewer, and marking the
// days of ten years of log files (3,650) on the calendar. Prints the median and the worst
// of several runs. The redraw builds the view from the day's entries; its peer, timed in
// the same run with the runs taking turns, is the same redraw with the view read back from
// the written "LogBook.rtf" through the rich-text reader, as the viewer once did.
// Usage: bench_logbook [RUNS]   (run under a display or offscreen)
#include "Measure.h"
#include "alarms/AlarmSound.h"
#include "clock/Clock.h"
#include "logbook/LogBook.h"
#include "logbook/LogPanel.h"
#include "logbook/LogViewer.h"
#include "platform/PlatformServices.h"
#include "settings/SettingsStore.h"
#include "shell/frmMain.h"
#include "widgets/RtfReader.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

class FixedClock final : public Clock
{
public:
    QDateTime Now() const override { return QDateTime(QDate(2026, 11, 16), QTime(12, 0)); }
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    QTemporaryDir work;
    QDir::setCurrent(work.path());
    const QString logs = QDir(work.path()).filePath(QStringLiteral("Logs"));
    QDir().mkpath(logs);
    const QLocale locale(QLocale::English, QLocale::UnitedStates);

    // Ten years of day files, and one day with 10,000 entries (just under the 1 MiB the viewer
    // reads of a day, so that all of them are shown).
    const QDate first(2016, 11, 17);
    for (int d = 0; d < 3650; ++d) {
        QFile file(QDir(logs).filePath(LogFileName(first.addDays(d))));
        if (!file.open(QIODevice::WriteOnly))
            return 1;
    }
    const QDate busyDay(2026, 11, 15);
    QFile busy(QDir(logs).filePath(LogFileName(busyDay)));
    if (!busy.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 1;
    for (int i = 0; i < 10000; ++i) {
        const LogEntry entry{busyDay,
                             QTime(0, 0).addSecs(i * 8).toString(QStringLiteral("HH:mm")),
                             QStringLiteral("SA"),
                             1,
                             QStringLiteral("Alarm acknowleged, reset for "),
                             QStringLiteral("Crew %1 check").arg(i % 40),
                             QStringLiteral(", expires at 10:15, km %1").arg(i % 90)};
        busy.write(FormatLogLine(entry, locale));
    }
    busy.close();

    FixedClock clock;
    SettingsStore store(QDir(work.path()).filePath(QStringLiteral("bench.ini")));
    PlatformServices platform = CreatePlatformServices();
    const MainServices services{
        clock,
        store,
        logs,
        locale,
        {QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../src"))},
        [](QObject* owner) { return AlarmSound::Create(owner); },
        platform};
    frmMain window(services);
    if (!window.Load())
        return 1;
    window.Viewer().SetLogBookDate(busyDay);

    LogViewer& viewer = window.Viewer();
    auto* panel = window.findChild<LogPanel*>(QStringLiteral("picLog"));
    auto* view = window.findChild<QTextEdit*>(QStringLiteral("txtLog"));
    if (panel == nullptr || view == nullptr)
        return 1;
    // The peer: the panel's former way of showing the day, reading back the document just
    // written.
    const auto readBack = [view](const LogViewDay&) {
        QFont font = view->font();
        font.setFamily(QStringLiteral("Arial"));
        view->setFont(font);
        view->document()->setDefaultFont(font);
        LoadRtfFile(QStringLiteral("LogBook.rtf"), *view->document(), nullptr, LogPanel::DisplayFactor);
    };
    const auto redrawReadingBack = [&] {
        QObject::disconnect(&viewer, &LogViewer::DayShown, panel, &LogPanel::ShowDay);
        const QMetaObject::Connection peer = QObject::connect(&viewer, &LogViewer::DayShown, readBack);
        const double ms = TimeOnce([&] { viewer.RefreshLogView(); });
        QObject::disconnect(peer);
        QObject::connect(&viewer, &LogViewer::DayShown, panel, &LogPanel::ShowDay);
        return ms;
    };

    QList<double> built;
    QList<double> readBackMs;
    for (int i = 0; i < runs; ++i) {
        built << TimeOnce([&] { viewer.RefreshLogView(); });
        readBackMs << redrawReadingBack();
    }
    // Both ways show the same text: every entry, one paragraph each after the header's.
    const QString readText = view->toPlainText();
    viewer.RefreshLogView();
    const int shown = view->document()->blockCount() - 1;
    const bool sameText = view->toPlainText() == readText;
    const Figures redraw = Summarize(built);
    const Figures peer = Summarize(readBackMs);
    const Figures mark = Measure(runs, [&] { viewer.MarkAvailableLogs(); });
    std::printf("redraw_10000_entries_ms median=%.1f worst=%.1f\n", redraw.Median, redraw.Worst);
    std::printf("redraw_10000_entries_readback_ms median=%.1f worst=%.1f\n", peer.Median, peer.Worst);
    std::printf("redraw_built_to_readback_ratio median=%.2f\n", redraw.Median / peer.Median);
    std::printf("shown_entries=%d same_text=%d\n", shown, sameText ? 1 : 0);
    std::printf("mark_3650_days_ms median=%.1f worst=%.1f\n", mark.Median, mark.Worst);
    std::printf("marked_days=%lld\n", static_cast<long long>(window.Viewer().MarkedLogDays().size()));
    window.EndSession();
    return 0;
}
