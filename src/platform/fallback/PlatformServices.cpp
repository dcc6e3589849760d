#include "platform/PlatformServices.h"

// Elsewhere only the window flash is the system's own; every other service does nothing.
PlatformServices CreatePlatformServices()
{
    PlatformServices services;
    services.flash = WindowFlash::Create();
    services.clockSetter = std::make_unique<NullClockSetter>();
    services.clockChange = std::make_unique<NullClockChangeWatch>();
    services.suspend = std::make_unique<NullSuspendWatch>();
    services.startAtLogin = std::make_unique<NullStartAtLogin>();
    services.dialUp = std::make_unique<NullDialUpState>();
    services.notifier = std::make_unique<NullDesktopNotifier>();
    return services;
}
