#pragma once

class QFile;

// Pushes what was written to `file` through the operating system's cache to the disk, so
// that a crash or power loss right after a write loses nothing. False when that failed.
bool SyncFileToDisk(QFile& file);
