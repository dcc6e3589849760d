#pragma once

#include <QString>

// The folder of the daily log files: "Logs" under the program's folder when that folder
// is writable (a portable install, the build tree), otherwise "Logs" under the per-user
// data folder.
QString ChooseLogFolder(const QString& programFolder, const QString& userDataFolder);
