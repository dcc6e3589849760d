#include "alarms/SoundFile.h"

#include <QDir>
#include <QFileInfo>

QString ResolveSoundFile(const QString& path, const QStringList& dataFolders)
{
    if (path.isEmpty())
        return {};
    const QFileInfo direct(path);
    if (direct.isFile())
        return direct.absoluteFilePath();
    if (direct.isAbsolute())
        return {};
    for (const QString& folder : dataFolders) {
        const QFileInfo candidate(QDir(folder).filePath(path));
        if (candidate.isFile())
            return candidate.absoluteFilePath();
    }
    return {};
}
