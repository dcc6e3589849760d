#include "alarms/WavInfo.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {

// Chunks looked at before giving up: a real file has a handful before its sound data.
constexpr int MaxChunks = 64;

constexpr int EncodingExtensible = 0xFFFE;
constexpr int EncodingPcm = 1;
constexpr int EncodingFloat = 3;

bool ReadExactly(QFile& file, char* out, qint64 count)
{
    return file.read(out, count) == count;
}

bool IsTag(const char* bytes, const char (&tag)[5])
{
    return std::memcmp(bytes, tag, 4) == 0;
}

} // namespace

std::optional<WavInfo> ReadWavInfo(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const qint64 fileSize = file.size();

    char riff[12];
    if (!ReadExactly(file, riff, sizeof riff) || !IsTag(riff, "RIFF") || !IsTag(riff + 8, "WAVE"))
        return std::nullopt;

    WavInfo info;
    bool haveFormat = false;
    bool haveData = false;
    qint64 position = sizeof riff;
    for (int chunk = 0; chunk < MaxChunks && !(haveFormat && haveData); ++chunk) {
        char header[8];
        if (!file.seek(position) || !ReadExactly(file, header, sizeof header))
            break;
        const qint64 size = qFromLittleEndian<quint32>(header + 4);
        const qint64 body = position + qint64(sizeof header);
        if (IsTag(header, "fmt ") && !haveFormat) {
            // WAVEFORMATEX: encoding, channels, samples per second, average bytes per
            // second, block align, bits per sample; then, for WAVE_FORMAT_EXTENSIBLE, the
            // size of the extension, valid bits, channel mask and the sub-format, whose
            // first two bytes are the real encoding.
            char format[40] = {};
            if (size < 16 || !ReadExactly(file, format, std::min<qint64>(size, sizeof format)))
                return std::nullopt;
            info.encoding = qFromLittleEndian<quint16>(format);
            info.channels = qFromLittleEndian<quint16>(format + 2);
            info.sampleRate = int(std::min<quint32>(qFromLittleEndian<quint32>(format + 4), 1u << 30));
            const quint32 average = qFromLittleEndian<quint32>(format + 8);
            info.blockAlign = qFromLittleEndian<quint16>(format + 12);
            info.bitsPerSample = qFromLittleEndian<quint16>(format + 14);
            if (info.encoding == EncodingExtensible)
                info.encoding = size >= 26 ? qFromLittleEndian<quint16>(format + 24) : 0;
            if (info.channels == 0 || info.sampleRate == 0)
                return std::nullopt;
            // Sampled sound plays rate times block bytes a second, whatever the header's
            // average says; compressed sound only has the average.
            const bool sampled = info.encoding == EncodingPcm || info.encoding == EncodingFloat;
            info.bytesPerSecond =
                sampled && info.blockAlign > 0 ? qint64(info.sampleRate) * info.blockAlign : qint64(average);
            if (info.bytesPerSecond <= 0)
                return std::nullopt;
            haveFormat = true;
        } else if (IsTag(header, "data") && !haveData) {
            // A header written before the length was known may claim more than is there.
            info.dataOffset = body;
            info.dataBytes = qBound<qint64>(0, size, fileSize - body);
            haveData = true;
        }
        // Chunks are padded to an even length.
        position = body + size + (size & 1);
    }
    if (!haveFormat || !haveData)
        return std::nullopt;
    return info;
}

std::optional<qint64> WavDurationMs(const QString& path)
{
    const std::optional<WavInfo> info = ReadWavInfo(path);
    if (!info)
        return std::nullopt;
    return info->DurationMs();
}
