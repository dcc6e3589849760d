#include "platform/WindowFlash.h"

#include <QApplication>
#include <QWidget>

namespace {

class QtWindowFlash final : public WindowFlash
{
public:
    void Flash(QWidget* window) override
    {
        if (window && window->isVisible())
            QApplication::alert(window, 0);
    }
};

} // namespace

std::unique_ptr<WindowFlash> WindowFlash::Create()
{
    return std::make_unique<QtWindowFlash>();
}
