#include "platform/PlatformServices.h"

#include "platform/linux/ClockSetter.h"
#include "platform/linux/DialUpState.h"
#include "platform/linux/StartAtLogin.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

// The window flash is X11's, the clock is set, a dial-up link found and the start at login
// arranged as Linux allows; the other services are not built for Linux yet.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    services.clockSetter = std::make_unique<LinuxClockSetter>();
    services.dialUp = std::make_unique<LinuxDialUpState>();
    // The autostart entry launches this very program, wherever it was started from.
    services.startAtLogin = std::make_unique<LinuxStartAtLogin>(
        QCoreApplication::applicationFilePath(),
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
            .filePath(QStringLiteral("autostart")));
    return services;
}
