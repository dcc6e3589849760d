#include "platform/PlatformServices.h"

// Elsewhere only the window flash is the system's own; every other service does nothing.
PlatformServices CreatePlatformServices()
{
    PlatformServices services = NullPlatformServices();
    services.flash = WindowFlash::Create();
    return services;
}

void PrepareDisplay() {}
