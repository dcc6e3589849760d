#include "platform/FileSync.h"

#include <QFile>

#include <unistd.h>

bool SyncFileToDisk(QFile& file)
{
    if (!file.flush())
        return false;
    return ::fdatasync(file.handle()) == 0;
}
