#pragma once

class QWidget;

// Places a top-level window above all non-topmost windows, or returns it to the normal
// order, without moving or resizing it.
void SetTopMost(QWidget* window, bool topMost);
bool IsTopMost(const QWidget* window);
