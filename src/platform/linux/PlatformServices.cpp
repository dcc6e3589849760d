#include "platform/PlatformServices.h"

#include "platform/linux/ClockSetter.h"

// The window flash is X11's and the clock is set as Linux allows; the other services are
// not built for Linux yet.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    services.clockSetter = std::make_unique<LinuxClockSetter>();
    return services;
}
