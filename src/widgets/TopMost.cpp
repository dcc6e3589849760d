#include "widgets/TopMost.h"

#include <QWidget>

void SetTopMost(QWidget* window, bool topMost)
{
    if (IsTopMost(window) == topMost)
        return;
    const bool visible = window->isVisible();
    const QPoint position = window->pos();
    // Changing a window flag re-creates the native window, which hides it.
    window->setWindowFlag(Qt::WindowStaysOnTopHint, topMost);
    if (visible) {
        window->move(position);
        window->show();
    }
}

bool IsTopMost(const QWidget* window)
{
    return window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
}
