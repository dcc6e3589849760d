#pragma once

#include "DeskFiles.h"
#include "FakePlatform.h"
#include "FakeTimeQuery.h"
#include "alarms/AlarmDesk.h"
#include "alarms/AlarmWindows.h"
#include "logbook/LogBook.h"
#include "logbook/LogViewer.h"
#include "platform/PlatformServices.h"
#include "settings/Preferences.h"
#include "shell/frmMain.h"

#include <QLabel>

// A main window over a fresh folder, a hand-set clock and a prepared settings file, with
// fake sound and operating-system services.
struct Desk : DeskFiles
{
    // `adjust` may replace some of the fake services (with a system's real ones) before the
    // main window is made.
    explicit Desk(const QByteArray& ini = {}, bool withSound = true,
                  const std::function<void(PlatformServices&)>& adjust = {})
        : DeskFiles(ini, withSound), platform(FakePlatform(flash))
    {
        if (adjust)
            adjust(platform);
        // The fake setter moves the test's clock as the real one moves the computer's.
        Setter().Moves = [this](qint64 byMsec) { clock.AdvanceMSecs(byMsec); };
        const MainServices services{clock,          *store,         env.LogFolder(), EnUs,
                                    SoundFolders(), SoundFactory(), platform,        queries.Factory()};
        window = std::make_unique<frmMain>(services);
    }

    // The services of a test: fakes that record what they are asked; the window flash
    // stays reachable through `flash`.
    static PlatformServices FakePlatform(FakeFlash*& flash)
    {
        PlatformServices services;
        auto ownFlash = std::make_unique<FakeFlash>();
        flash = ownFlash.get();
        services.flash = std::move(ownFlash);
        services.clockSetter = std::make_unique<FakeClockSetter>();
        services.clockChange = std::make_unique<FakeClockChangeWatch>();
        services.suspend = std::make_unique<FakeSuspendWatch>();
        services.startAtLogin = std::make_unique<FakeStartAtLogin>();
        services.dialUp = std::make_unique<FakeDialUpState>();
        services.notifier = std::make_unique<FakeDesktopNotifier>();
        services.halfTick = std::make_unique<FakeHalfTickWatch>();
        return services;
    }

    FakeClockSetter& Setter() const { return static_cast<FakeClockSetter&>(*platform.clockSetter); }
    FakeDialUpState& DialUp() const { return static_cast<FakeDialUpState&>(*platform.dialUp); }
    FakeHalfTickWatch& HalfTick() const { return static_cast<FakeHalfTickWatch&>(*platform.halfTick); }

    // The owners inside the main window.
    AlarmTable& Alarms() const { return window->Alarms().Table(); }
    AlarmWindows& Windows() const { return window->Windows(); }
    LogViewer& Viewer() const { return window->Viewer(); }

    template <typename T>
    T* Find(const QString& name) const
    {
        T* child = window->findChild<T*>(name);
        if (!child)
            qWarning("no child named %s", qPrintable(name));
        return child;
    }
    QString FaceText(int i) const { return Find<QLabel>(QStringLiteral("lblClock1_%1").arg(i))->text(); }
    QColor FaceFore(int i) const
    {
        return Find<QLabel>(QStringLiteral("lblClock1_%1").arg(i))->palette().color(QPalette::WindowText);
    }
    QString Status() const { return Find<QLabel>(QStringLiteral("Status"))->text(); }
    void ClickPanel(const QString& key) { QTest::mouseClick(Find<QLabel>(key), Qt::LeftButton); }
    void Tick(QTime time)
    {
        clock.Set(clock.Today(), time);
        window->tmrMain_Timer();
    }

    FakeFlash* flash = nullptr;
    PlatformServices platform;
    FakeTimeQueries queries;
    std::unique_ptr<frmMain> window;
};
