#include "platform/FileSync.h"

#include <QFile>

bool SyncFileToDisk(QFile& file)
{
    return file.flush();
}
