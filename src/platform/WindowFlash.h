#pragma once

#include <memory>

class QWidget;

// Asks the desktop to draw the user's attention to a window once (on X11 the window's
// urgency hint: its taskbar entry flashes), without raising or activating it.
class WindowFlash
{
public:
    virtual ~WindowFlash() = default;
    virtual void Flash(QWidget* window) = 0;

    static std::unique_ptr<WindowFlash> Create();
};

// Draws no attention: for a system without a way to, and for tests.
class NullWindowFlash final : public WindowFlash
{
public:
    void Flash(QWidget*) override {}
};
