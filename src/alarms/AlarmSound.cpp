#include "alarms/AlarmSound.h"

#include "alarms/WavInfo.h"
#include "clock/Timers.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMediaDevices>
#include <QtEndian>

#include <algorithm>
#include <cstring>

// The player writes the WAV file's samples to a QAudioSink itself, rather than through
// QSoundEffect or QMediaPlayer:
// - QMediaPlayer (Qt 6.4 on Linux) goes through the GStreamer or FFmpeg media plugin and, for
//   GStreamer, needs elements (a WAV parser, an audio sink) that are often not installed.
// - QSoundEffect writes to a QAudioSink on PulseAudio with no plugin between, but stops that
//   sink as soon as it has handed over its last sample, which drops what the device still
//   holds: recorded from a PulseAudio null sink, the 1 s default chime lost its last 0.1 s.
// Here the sink is left to play what it holds (its buffer's length) before it is stopped,
// and the same QAudioSink that QSoundEffect would use plays the sound.
//
// Finished is raised exactly once for each Play that runs to its end: the sound ended, it
// could not be played, or the watchdog ran out. It is always raised from the event loop,
// never from within Play or Stop. A play cut short by Stop or by a new Play raises nothing,
// so no Finished of an earlier play ever arrives after a new Play.

namespace {

// Time allowed beyond the sound's own length before the watchdog ends a play: opening the
// device and its buffer draining.
constexpr qint64 WatchdogMarginMs = 500;
// No play lasts longer than this, whatever length a file's header claims.
constexpr qint64 LongestPlayMs = 60'000;
// Time allowed beyond the sound the device still holds when its last sample was handed over.
constexpr qint64 DrainMarginMs = 100;
// The most sound data read from one file.
constexpr qint64 MostSoundBytes = qint64(64) << 20;

// A sound ready for a QAudioSink.
struct Sound
{
    QAudioFormat format;
    QByteArray samples;
};

// 24-bit integers to 32-bit ones, and 64-bit floating point to 32-bit: QAudioFormat has
// neither.
QByteArray Widen24(const QByteArray& in)
{
    const qsizetype count = in.size() / 3;
    QByteArray out(count * 4, Qt::Uninitialized);
    const auto* from = reinterpret_cast<const uchar*>(in.constData());
    auto* to = reinterpret_cast<uchar*>(out.data());
    for (qsizetype i = 0; i < count; ++i) {
        to[4 * i] = 0;
        std::memcpy(to + 4 * i + 1, from + 3 * i, 3);
    }
    return out;
}

QByteArray Narrow64(const QByteArray& in)
{
    const qsizetype count = in.size() / 8;
    QByteArray out(count * 4, Qt::Uninitialized);
    for (qsizetype i = 0; i < count; ++i) {
        const double value = qFromLittleEndian<double>(in.constData() + 8 * i);
        qToLittleEndian<float>(float(std::clamp(value, -1.0, 1.0)), out.data() + 4 * i);
    }
    return out;
}

// The samples of a WAV file of integer PCM or floating point sound. Nothing for compressed
// sound, for a layout a sink cannot take, or when the file cannot be read.
std::optional<Sound> LoadSound(const QString& path, const WavInfo& info)
{
    if (info.channels < 1 || info.channels > 8 || info.sampleRate < 1000 || info.sampleRate > 384'000 ||
        info.blockAlign % info.channels != 0)
        return std::nullopt;
    const int width = info.blockAlign / info.channels; // bytes per sample of one channel
    QAudioFormat format;
    format.setSampleRate(info.sampleRate);
    format.setChannelCount(info.channels);
    if (info.encoding == 1 && width == 1)
        format.setSampleFormat(QAudioFormat::UInt8);
    else if (info.encoding == 1 && width == 2)
        format.setSampleFormat(QAudioFormat::Int16);
    else if (info.encoding == 1 && (width == 3 || width == 4))
        format.setSampleFormat(QAudioFormat::Int32);
    else if (info.encoding == 3 && (width == 4 || width == 8))
        format.setSampleFormat(QAudioFormat::Float);
    else
        return std::nullopt;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(info.dataOffset))
        return std::nullopt;
    const qint64 longest = qint64(info.sampleRate) * info.blockAlign * (LongestPlayMs / 1000);
    qint64 bytes = std::min({info.dataBytes, longest, MostSoundBytes});
    bytes -= bytes % info.blockAlign;
    QByteArray samples = file.read(bytes);
    samples.truncate(samples.size() - samples.size() % info.blockAlign);
    if (width == 3)
        samples = Widen24(samples);
    else if (info.encoding == 3 && width == 8)
        samples = Narrow64(samples);
    return Sound{format, samples};
}

class QtAlarmSound final : public AlarmSound
{
public:
    QtAlarmSound(Timers& timers, QObject* parent)
        : AlarmSound(parent), m_end(timers.MakeOneShot(true)) // a coarse one may end a play 5 % early
    {
        connect(m_end.get(), &OneShotTimer::Timeout, this, &QtAlarmSound::End);
    }

    ~QtAlarmSound() override { ReleaseSink(); }

    void Play(const QString& path) override
    {
        Stop();
        m_playing = true;
        const std::optional<WavInfo> info = ReadWavInfo(path);
        if (!info) {
            EndSoon(); // not a sound file
            return;
        }
        // Where no device plays the sound nothing reports its end: the watchdog ends every
        // play at the latest after the sound's length and a margin.
        m_end->Start(std::min(info->DurationMs(), LongestPlayMs) + WatchdogMarginMs);
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (device.isNull())
            return; // no audio device: the play goes on silently until the watchdog ends it
        const Sound* sound = Load(path, *info);
        if (!sound) {
            EndSoon(); // a sound this player cannot play
            return;
        }
        m_sink = new QAudioSink(device, sound->format);
        m_source = new QBuffer(m_sink);
        m_source->setData(sound->samples);
        m_source->open(QIODevice::ReadOnly);
        connect(m_sink, &QAudioSink::stateChanged, this, &QtAlarmSound::SinkStateChanged);
        m_sink->start(m_source);
    }

    void Stop() override
    {
        m_end->Stop();
        ReleaseSink();
        m_playing = false;
    }

    bool IsPlaying() const override { return m_playing; }

private:
    // The samples of a file, read again only when the file has changed since the last play:
    // an alarm window plays the same file every few seconds.
    const Sound* Load(const QString& path, const WavInfo& info)
    {
        const QFileInfo file(path);
        const QString key = file.absoluteFilePath() + QLatin1Char('\n') + QString::number(file.size()) +
                            QLatin1Char('\n') + QString::number(file.lastModified().toMSecsSinceEpoch());
        if (key != m_loadedKey || !m_loaded) {
            m_loaded = LoadSound(path, info);
            m_loadedKey = key;
        }
        return m_loaded ? &*m_loaded : nullptr;
    }

    void SinkStateChanged(QAudio::State state)
    {
        if (state == QAudio::StoppedState) {
            EndSoon(); // the device would not open, or went away
        } else if (state == QAudio::IdleState && m_source->atEnd()) {
            // Every sample is handed over: let the device play what it still holds. (Idle
            // before the end is an underrun; the sink goes on by itself.)
            const qint64 held = std::max<qint64>(0, m_sink->bufferSize() - m_sink->bytesFree());
            const qint64 drainMs =
                m_sink->format().durationForBytes(qint32(std::min<qint64>(held, 1 << 30))) / 1000 +
                DrainMarginMs;
            if (!m_end->IsActive() || drainMs < m_end->RemainingMsec())
                m_end->Start(drainMs);
        }
    }

    // The play has ended: finish it from the event loop, so that Finished never reaches
    // the caller from within Play nor from within a signal of the sink.
    void EndSoon() { m_end->Start(0); }

    void End()
    {
        ReleaseSink();
        m_playing = false;
        emit Finished();
    }

    // Stops the sink at once, which closes its stream and frees the device. Its destructor
    // processes events, so it is deleted from the event loop, never within a caller's call.
    void ReleaseSink()
    {
        if (!m_sink)
            return;
        disconnect(m_sink, nullptr, this, nullptr);
        m_sink->stop();
        m_sink->deleteLater();
        m_sink = nullptr;
        m_source = nullptr;
    }

    std::unique_ptr<OneShotTimer> m_end; // the watchdog, and the moment a play that has ended is finished
    QAudioSink* m_sink = nullptr;
    QBuffer* m_source = nullptr; // the sink's child
    QString m_loadedKey;
    std::optional<Sound> m_loaded;
    bool m_playing = false;
};

} // namespace

std::unique_ptr<AlarmSound> AlarmSound::Create(QObject* parent)
{
    QtTimers timers;
    return Create(timers, parent);
}

std::unique_ptr<AlarmSound> AlarmSound::Create(Timers& timers, QObject* parent)
{
    return std::make_unique<QtAlarmSound>(timers, parent);
}
