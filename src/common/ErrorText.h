#pragma once

#include <QString>

// The program's one form of error message: the fixed text, two carriage returns, the
// error number, " - " and the description.
inline QString ErrorText(const QString& fixedText, int number, const QString& description)
{
    return fixedText + QStringLiteral("\r\r") + QString::number(number) + QStringLiteral(" - ") + description;
}
