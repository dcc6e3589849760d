#pragma once

#include "platform/ClockChangeWatch.h"
#include "platform/ClockSetter.h"
#include "platform/DesktopNotifier.h"
#include "platform/DialUpState.h"
#include "platform/HalfTickWatch.h"
#include "platform/PictureLayer.h"
#include "platform/StartAtLogin.h"
#include "platform/SuspendWatch.h"
#include "platform/WindowFlash.h"

#include <memory>

// The operating-system services the program uses, created once at start-up and handed in.
struct PlatformServices
{
    std::unique_ptr<WindowFlash> flash;
    std::unique_ptr<ClockSetter> clockSetter;
    std::unique_ptr<ClockChangeWatch> clockChange;
    std::unique_ptr<SuspendWatch> suspend;
    std::unique_ptr<StartAtLogin> startAtLogin;
    std::unique_ptr<DialUpState> dialUp;
    std::unique_ptr<DesktopNotifier> notifier;
    std::unique_ptr<PictureLayers> pictureLayers;
    std::unique_ptr<HalfTickWatch> halfTick;
};

// Settings of the connection to the display that must be made before the application object
// exists (the program calls it first thing).
void PrepareDisplay();
// The services of this system; where a service is not built yet for this system, its Null one.
PlatformServices CreatePlatformServices();
// Every service's Null one (they do nothing): the base of each system's set.
PlatformServices NullPlatformServices();
