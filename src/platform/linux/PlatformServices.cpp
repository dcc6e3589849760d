#include "platform/PlatformServices.h"

// The window flash is X11's; the other services are not built for Linux yet.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    return services;
}
