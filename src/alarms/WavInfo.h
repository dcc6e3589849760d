#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

// What the header of a RIFF/WAVE file says about its sound.
struct WavInfo
{
    // The encoding: 1 for integer PCM, 3 for IEEE floating point, others for compressed
    // sound; for a WAVE_FORMAT_EXTENSIBLE file the encoding of its sub-format.
    int encoding = 0;
    int channels = 0;
    int sampleRate = 0;
    int bitsPerSample = 0;
    int blockAlign = 0; // bytes per frame, every channel of one sample
    qint64 bytesPerSecond = 0;
    qint64 dataOffset = 0; // where the sound data starts in the file
    qint64 dataBytes = 0;  // never more than the file holds

    qint64 DurationMs() const { return bytesPerSecond > 0 ? dataBytes * 1000 / bytesPerSecond : 0; }
};

// Reads the header of a RIFF/WAVE file: the "fmt " chunk and where the "data" chunk lies.
// Nothing when the file cannot be read or is not a WAV file this can make sense of (no
// RIFF/WAVE tags, no fmt or data chunk, no channels, a rate of zero). Reads only the
// headers of the chunks, never the sound itself.
std::optional<WavInfo> ReadWavInfo(const QString& path);

// The playing time of a RIFF/WAVE file in milliseconds, from its header alone: the sound
// bytes (as many as the file really holds) by the bytes per second. Nothing as above.
std::optional<qint64> WavDurationMs(const QString& path);
