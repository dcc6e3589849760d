#pragma once

#include <QString>

#include <optional>

// The playing time of a RIFF/WAVE file in milliseconds, read from its header alone: the
// "fmt " chunk gives the bytes per second, the "data" chunk the number of sound bytes (never
// more than the file really holds). Nothing when the file cannot be read or is not a WAV
// file this can make sense of (no RIFF/WAVE tags, no fmt or data chunk, a rate of zero).
std::optional<qint64> WavDurationMs(const QString& path);
