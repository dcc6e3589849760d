#pragma once

#include <QString>

// The folder of the daily log files: "Logs" under the program's folder when that folder
// is writable (a portable install, the build tree), otherwise "Logs" under the per-user
// data folder.
QString ChooseLogFolder(const QString& programFolder, const QString& userDataFolder);

// The log folder for good: chosen as above the first time, then remembered in the file
// "LogFolder" of the user's data folder, so that the logbook never splits between two
// folders when the rights on the program's folder change.
QString RememberedLogFolder(const QString& programFolder, const QString& userDataFolder);
