#pragma once

#include <QString>
#include <QStringList>

// The sound file a path names: an absolute path as it is; a relative one in the current
// directory first, then in each of `dataFolders` (where the program's own sounds are
// installed). Empty when no such file exists.
QString ResolveSoundFile(const QString& path, const QStringList& dataFolders);
