#include "platform/PlatformServices.h"

#include "platform/linux/ClockChangeWatch.h"
#include "platform/linux/ClockSetter.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/DialUpState.h"
#include "platform/linux/StartAtLogin.h"
#include "platform/linux/SuspendWatch.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

// Every service as Linux gives it: the window flash through X11, the clock set through
// clock_settime or timedated, its changes heard through a timerfd, sleep through logind,
// a dial-up link found through NetworkManager, notices through the desktop's notification
// service, and the start at login through an XDG autostart entry.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    services.clockSetter = std::make_unique<LinuxClockSetter>();
    services.clockChange = std::make_unique<LinuxClockChangeWatch>();
    services.suspend = std::make_unique<LinuxSuspendWatch>();
    services.notifier = std::make_unique<LinuxDesktopNotifier>();
    services.dialUp = std::make_unique<LinuxDialUpState>();
    // The autostart entry launches this very program, wherever it was started from.
    services.startAtLogin = std::make_unique<LinuxStartAtLogin>(
        QCoreApplication::applicationFilePath(),
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
            .filePath(QStringLiteral("autostart")));
    return services;
}
