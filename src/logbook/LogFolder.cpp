#include "logbook/LogFolder.h"

#include <QDir>
#include <QFileInfo>

QString ChooseLogFolder(const QString& programFolder, const QString& userDataFolder)
{
    const QString logs = QStringLiteral("Logs");
    const QFileInfo existing(QDir(programFolder).filePath(logs));
    if (existing.isDir() ? existing.isWritable() : QFileInfo(programFolder).isWritable())
        return QDir(programFolder).filePath(logs);
    return QDir(userDataFolder).filePath(logs);
}
