#include "platform/PlatformServices.h"

#include "platform/linux/ClockChangeWatch.h"
#include "platform/linux/ClockSetter.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/DialUpState.h"
#include "platform/linux/HalfTickWatch.h"
#include "platform/linux/StartAtLogin.h"
#include "platform/linux/SuspendWatch.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

void PrepareDisplay()
{
    // On X11, Qt hands each repaint to the server through shared memory and then waits for the
    // server's reply before the next one; for the seconds box, repainted once a second all day,
    // that round trip wakes the program three or four more times a second. Sent as a plain
    // image instead, a repaint costs one write and no wake-up. Large repaints (the logbook
    // view) copy more bytes through the socket, which is still a few milliseconds at most on
    // a local display. Whoever sets the variable keeps their choice.
    if (!qEnvironmentVariableIsSet("QT_XCB_NO_MITSHM"))
        qputenv("QT_XCB_NO_MITSHM", "1");
    // Qt's own event loop rather than GLib's: each wake-up of the half-second tick costs
    // about a third less (GLib asks each of its sources before and after every poll). A
    // desktop theme's GTK dialogs would need GLib's loop, so the program's dialogs are always
    // Qt's own.
    if (!qEnvironmentVariableIsSet("QT_NO_GLIB"))
        qputenv("QT_NO_GLIB", "1");
}

// Every service as Linux gives it: the window flash and the seconds box's picture layer
// through X11, the clock set through clock_settime or timedated, its changes heard through a
// timerfd, sleep through logind, a dial-up link found through NetworkManager, notices through
// the desktop's notification service, the start at login through an XDG autostart entry, and
// the quiet half of the main tick on a thread of its own.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    services.pictureLayers = PictureLayers::Make();
    services.clockSetter = std::make_unique<LinuxClockSetter>();
    services.clockChange = std::make_unique<LinuxClockChangeWatch>();
    services.suspend = std::make_unique<LinuxSuspendWatch>();
    services.notifier = std::make_unique<LinuxDesktopNotifier>();
    services.dialUp = std::make_unique<LinuxDialUpState>();
    services.halfTick = std::make_unique<LinuxHalfTickWatch>();
    // The autostart entry launches this very program, wherever it was started from.
    services.startAtLogin = std::make_unique<LinuxStartAtLogin>(
        QCoreApplication::applicationFilePath(),
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
            .filePath(QStringLiteral("autostart")));
    return services;
}
