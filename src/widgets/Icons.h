#pragma once

#include <QIcon>

// The program's small pictures, drawn at run time so that no image files are needed.
QIcon PinIcon(bool pinned);
QIcon HelpIcon();
QIcon AppIcon();
// The alarm list's pictures: a safety check alarm and an ordinary alarm.
QIcon SafetyIcon();
QIcon AlarmIcon();
// The alarm window's two alternating pictures.
QPixmap BellPicture(bool swung);
