#pragma once

#include "sun/SunTable.h"

#include <QString>

class QWidget;

// The document the tables dialog writes and the viewer shows, in the current folder.
inline const QString SunTableFile = QStringLiteral("TWTable.rtf");

// Mode "View" writes the year's table to "TWTable.rtf" and returns an empty text, or the
// file error for the caller to report. Any other mode asks for a printer (`preselect`
// chosen first) and prints the table on it; nothing is printed when no printer is chosen,
// and a printer failure is reported here as "Printer Error - Check Printer".
QString BuildSunTable(QWidget* parent, const SunTablePlace& place, const QString& mode,
                      const QString& preselect = {});
