#include "platform/PlatformServices.h"

#include "platform/linux/ClockSetter.h"
#include "platform/linux/DialUpState.h"

// The window flash is X11's, the clock is set and a dial-up link found as Linux allows; the
// other services are not built for Linux yet.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    services.clockSetter = std::make_unique<LinuxClockSetter>();
    services.dialUp = std::make_unique<LinuxDialUpState>();
    return services;
}
