#include "logbook/LogFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

QString ChooseLogFolder(const QString& programFolder, const QString& userDataFolder)
{
    const QString logs = QStringLiteral("Logs");
    const QFileInfo existing(QDir(programFolder).filePath(logs));
    if (existing.isDir() ? existing.isWritable() : QFileInfo(programFolder).isWritable())
        return QDir(programFolder).filePath(logs);
    return QDir(userDataFolder).filePath(logs);
}

QString RememberedLogFolder(const QString& programFolder, const QString& userDataFolder)
{
    const QString note = QDir(userDataFolder).filePath(QStringLiteral("LogFolder"));
    QFile remembered(note);
    if (remembered.open(QIODevice::ReadOnly)) {
        const QString folder = QString::fromUtf8(remembered.readAll()).trimmed();
        if (!folder.isEmpty())
            return folder;
    }
    const QString chosen = ChooseLogFolder(programFolder, userDataFolder);
    // Written whole or not at all; when it cannot be written the choice is made again at the
    // next start, which gives the same folder unless the rights changed meanwhile.
    QDir().mkpath(userDataFolder);
    QSaveFile file(note);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(chosen.toUtf8() + '\n');
        file.commit();
    }
    return chosen;
}
