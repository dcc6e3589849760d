#include "platform/WindowFlash.h"

#include <QApplication>
#include <QWidget>

namespace {

// On X11 QApplication::alert sets the window's urgency hint until the window is activated.
class X11WindowFlash final : public WindowFlash
{
public:
    void Flash(QWidget* window) override
    {
        if (window && window->isVisible() && !window->isActiveWindow())
            QApplication::alert(window, 0);
    }
};

} // namespace

std::unique_ptr<WindowFlash> WindowFlash::Create()
{
    return std::make_unique<X11WindowFlash>();
}
