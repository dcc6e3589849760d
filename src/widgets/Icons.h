#pragma once

#include <QIcon>

// The program's small pictures, drawn at run time so that no image files are needed.
QIcon PinIcon(bool pinned);
QIcon HelpIcon();
QIcon AppIcon();
