#include "alarms/AlarmSound.h"

#include "alarms/WavInfo.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace {

// Time allowed beyond the sound's own length before the watchdog ends a play: opening the
// file and the device, and the device's buffer draining.
constexpr qint64 WatchdogMarginMs = 500;
// No play lasts longer than this, whatever length a file's header claims.
constexpr qint64 LongestPlayMs = 60'000;

// Plays through QSoundEffect. With Qt 6.4 on Linux it decodes the WAV file itself and writes
// it to a QAudioSink on PulseAudio, with no media plugin between; QMediaPlayer depends on
// the GStreamer or FFmpeg plugin and, for GStreamer, on the elements installed on the
// computer (a WAV parser, an audio sink), which are often missing. An alarm sound is a
// short WAV file, which is what QSoundEffect is made for.
//
// Finished is raised exactly once for each Play that runs to its end: the sound ended, it
// could not be played, or the watchdog ran out. It is always raised from the event loop,
// never from within Play. A play cut short by Stop or by a new Play raises nothing, so no
// Finished of an earlier play ever arrives after a new Play.
class QtAlarmSound final : public AlarmSound
{
public:
    explicit QtAlarmSound(QObject* parent) : AlarmSound(parent)
    {
        m_end.setSingleShot(true);
        connect(&m_end, &QTimer::timeout, this, &QtAlarmSound::End);
    }

    ~QtAlarmSound() override { ReleaseEffect(); }

    void Play(const QString& path) override
    {
        Stop();
        m_playing = true;
        const std::optional<qint64> length = WavDurationMs(path);
        if (!length) {
            EndSoon();
            return;
        }
        // QSoundEffect never reports the end where no device plays the sound; the watchdog
        // ends every play at the latest after the sound's length and a margin.
        m_end.start(int(std::min(*length, LongestPlayMs) + WatchdogMarginMs));
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (device.isNull())
            return; // no audio device: the play goes on silently until the watchdog ends it
        m_effect = new QSoundEffect(device, this);
        connect(m_effect, &QSoundEffect::statusChanged, this, [this] {
            if (m_effect->status() == QSoundEffect::Error)
                EndSoon();
        });
        connect(m_effect, &QSoundEffect::playingChanged, this, [this] {
            if (!m_effect->isPlaying())
                EndSoon();
        });
        m_effect->setSource(QUrl::fromLocalFile(path));
        m_effect->play();
    }

    void Stop() override
    {
        m_end.stop();
        ReleaseEffect();
        m_playing = false;
    }

    bool IsPlaying() const override { return m_playing; }

private:
    // The play has ended: finish it from the event loop, so that Finished never reaches
    // the caller from within Play nor from within a signal of the QSoundEffect.
    void EndSoon() { m_end.start(0); }

    void End()
    {
        ReleaseEffect();
        m_playing = false;
        emit Finished();
    }

    void ReleaseEffect()
    {
        if (!m_effect)
            return;
        disconnect(m_effect, nullptr, this, nullptr);
        m_effect->stop();
        delete m_effect;
        m_effect = nullptr;
    }

    QTimer m_end; // the watchdog, and the moment a play that has ended is finished
    QSoundEffect* m_effect = nullptr;
    bool m_playing = false;
};

} // namespace

std::unique_ptr<AlarmSound> AlarmSound::Create(QObject* parent)
{
    return std::make_unique<QtAlarmSound>(parent);
}
