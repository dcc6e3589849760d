#include "alarms/WavInfo.h"

#include <QFile>
#include <QtEndian>

#include <cstring>

namespace {

// Chunks looked at before giving up: a real file has a handful before its sound data.
constexpr int MaxChunks = 64;

bool ReadExactly(QFile& file, char* out, qint64 count)
{
    return file.read(out, count) == count;
}

} // namespace

std::optional<qint64> WavDurationMs(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const qint64 fileSize = file.size();

    char riff[12];
    if (!ReadExactly(file, riff, sizeof riff) || std::memcmp(riff, "RIFF", 4) != 0 ||
        std::memcmp(riff + 8, "WAVE", 4) != 0)
        return std::nullopt;

    qint64 bytesPerSecond = 0;
    bool haveFormat = false;
    std::optional<qint64> dataBytes;
    qint64 position = sizeof riff;
    for (int chunk = 0; chunk < MaxChunks && !(haveFormat && dataBytes); ++chunk) {
        char header[8];
        if (!file.seek(position) || !ReadExactly(file, header, sizeof header))
            break;
        const qint64 size = qFromLittleEndian<quint32>(header + 4);
        const qint64 body = position + qint64(sizeof header);
        if (std::memcmp(header, "fmt ", 4) == 0) {
            // WAVEFORMAT: format tag, channels, samples per second, average bytes per
            // second, block align, bits per sample.
            char format[16];
            if (size < qint64(sizeof format) || !ReadExactly(file, format, sizeof format))
                return std::nullopt;
            const quint16 channels = qFromLittleEndian<quint16>(format + 2);
            const quint32 rate = qFromLittleEndian<quint32>(format + 4);
            const quint32 average = qFromLittleEndian<quint32>(format + 8);
            const quint16 blockAlign = qFromLittleEndian<quint16>(format + 12);
            if (channels == 0 || rate == 0)
                return std::nullopt;
            bytesPerSecond = average != 0 ? qint64(average) : qint64(rate) * blockAlign;
            if (bytesPerSecond <= 0)
                return std::nullopt;
            haveFormat = true;
        } else if (std::memcmp(header, "data", 4) == 0) {
            // A header written before the length was known may claim more than is there.
            dataBytes = qBound<qint64>(0, size, fileSize - body);
        }
        // Chunks are padded to an even length.
        position = body + size + (size & 1);
    }
    if (!haveFormat || !dataBytes)
        return std::nullopt;
    return *dataBytes * 1000 / bytesPerSecond;
}
