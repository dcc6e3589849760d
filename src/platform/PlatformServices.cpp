#include "platform/PlatformServices.h"

PlatformServices NullPlatformServices()
{
    PlatformServices services;
    services.flash = std::make_unique<NullWindowFlash>();
    services.clockSetter = std::make_unique<NullClockSetter>();
    services.clockChange = std::make_unique<NullClockChangeWatch>();
    services.suspend = std::make_unique<NullSuspendWatch>();
    services.startAtLogin = std::make_unique<NullStartAtLogin>();
    services.dialUp = std::make_unique<NullDialUpState>();
    services.notifier = std::make_unique<NullDesktopNotifier>();
    services.pictureLayers = std::make_unique<NullPictureLayers>();
    services.halfTick = std::make_unique<NullHalfTickWatch>();
    return services;
}
