#include "ManualTimers.h"
#include "alarms/AlarmSound.h"
#include "alarms/WavInfo.h"
#include "clock/Timers.h"

#include <QAudioDevice>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMediaDevices>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <cmath>
#include <numbers>

// The player's watchdog allows this much beyond a sound's length (AlarmSound.cpp).
static constexpr qint64 WatchdogMarginMs = 500;
// Slack for a loaded computer or a sanitizer build on top of any expected moment.
static constexpr qint64 SlackMs = 1000;

namespace {

// The parts of a RIFF/WAVE file, so that tests can write broken ones.
struct WavParts
{
    int encoding = 1;
    int channels = 1;
    int sampleRate = 22050;
    int bitsPerSample = 16;
    QByteArray samples;
    // Chunks written between the fmt and the data chunk (whole chunks, header included).
    QByteArray extraChunks;
    // When set, the length the data chunk's header claims instead of the real one.
    std::optional<quint32> claimedDataBytes;
};

void Put16(QByteArray& out, quint16 value)
{
    char bytes[2];
    qToLittleEndian(value, bytes);
    out.append(bytes, 2);
}

void Put32(QByteArray& out, quint32 value)
{
    char bytes[4];
    qToLittleEndian(value, bytes);
    out.append(bytes, 4);
}

QByteArray Chunk(const char* tag, const QByteArray& body)
{
    QByteArray out(tag, 4);
    Put32(out, quint32(body.size()));
    out += body;
    if (body.size() % 2 != 0)
        out += '\0';
    return out;
}

QByteArray FormatBody(const WavParts& parts)
{
    const qint64 blockAlign = qint64(parts.channels) * parts.bitsPerSample / 8;
    QByteArray body;
    Put16(body, quint16(parts.encoding));
    Put16(body, quint16(parts.channels));
    Put32(body, quint32(parts.sampleRate));
    Put32(body, quint32(parts.sampleRate * blockAlign));
    Put16(body, quint16(blockAlign));
    Put16(body, quint16(parts.bitsPerSample));
    return body;
}

QByteArray WavBytes(const WavParts& parts)
{
    QByteArray data("data", 4);
    Put32(data, parts.claimedDataBytes.value_or(quint32(parts.samples.size())));
    data += parts.samples;
    const QByteArray content =
        QByteArray("WAVE", 4) + Chunk("fmt ", FormatBody(parts)) + parts.extraChunks + data;
    QByteArray out("RIFF", 4);
    Put32(out, quint32(content.size()));
    return out + content;
}

// `ms` of a 1 kHz tone, 16-bit, at the given rate and channel count.
QByteArray Tone(int ms, int sampleRate = 22050, int channels = 1)
{
    QByteArray out;
    const int frames = int(qint64(sampleRate) * ms / 1000);
    for (int i = 0; i < frames; ++i) {
        const double value = std::sin(2 * std::numbers::pi * 1000.0 * i / sampleRate) * 0.3;
        for (int c = 0; c < channels; ++c)
            Put16(out, quint16(qint16(std::lround(value * 32767))));
    }
    return out;
}

QString WriteFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

QString WriteTone(const QTemporaryDir& dir, const QString& name, int ms)
{
    WavParts parts;
    parts.samples = Tone(ms);
    return WriteFile(dir, name, WavBytes(parts));
}

constexpr qint64 operator""_ms(unsigned long long ms)
{
    return qint64(ms);
}

// The length WavDurationMs gives, -1 for nothing.
qint64 Duration(const QString& path)
{
    return WavDurationMs(path).value_or(-1);
}

// The time the playing tests let pass. Without an audio device a play is timed by the
// player's own timers alone: the players are given ManualTimers, which the test advances
// itself, and nothing waits. With the computer's own device (TW_TEST_AUDIO=1) the sound plays
// in real time on the event loop's timers, and the test waits for it.
class PlayTime
{
public:
    explicit PlayTime(bool manual) : m_manual(manual) { Restart(); }

    std::unique_ptr<AlarmSound> Player()
    {
        return m_manual ? AlarmSound::Create(m_timers) : AlarmSound::Create();
    }

    void Restart()
    {
        m_start = m_timers.Now();
        m_real.start();
    }
    qint64 Elapsed() const { return m_manual ? m_timers.Now() - m_start : m_real.elapsed(); }

    void Pass(qint64 msec)
    {
        if (m_manual) {
            QCoreApplication::processEvents();
            m_timers.Advance(msec);
        } else {
            QTest::qWait(int(msec));
        }
    }

    // Lets time pass, a millisecond at a time, until `spy` has seen `count` signals or
    // `most` milliseconds have passed; whether it has.
    bool PassUntil(const QSignalSpy& spy, int count, qint64 most)
    {
        const qint64 from = Elapsed();
        while (spy.count() < count && Elapsed() - from < most)
            Pass(m_manual ? 1 : 10);
        return spy.count() >= count;
    }

private:
    bool m_manual;
    ManualTimers m_timers;
    qint64 m_start = 0;
    QElapsedTimer m_real;
};

} // namespace

// Unless TW_TEST_AUDIO=1, the tests run with no audio device at all (an audio server that
// does not exist), so that they never sound on a developer's computer and always take the
// path a computer without sound takes. With TW_TEST_AUDIO=1 they use the computer's own
// device, and must pass as well.
class TestAlarmSound : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    bool m_silent = true;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_silent = qEnvironmentVariable("TW_TEST_AUDIO") != QStringLiteral("1");
        if (m_silent) {
            qputenv("PULSE_SERVER", QDir(m_dir.path()).filePath(QStringLiteral("no-such-server")).toUtf8());
            QVERIFY(QMediaDevices::defaultAudioOutput().isNull());
        }
    }

    // --- The length of a WAV file, from its header -------------------------------------

    void durationOfAGeneratedWavIsItsSoundLength()
    {
        QCOMPARE(Duration(WriteTone(m_dir, QStringLiteral("a.wav"), 200)), 200_ms);

        WavParts stereo;
        stereo.sampleRate = 44100;
        stereo.channels = 2;
        stereo.samples = Tone(1500, 44100, 2);
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("stereo.wav"), WavBytes(stereo))), 1500_ms);

        WavParts eightBit;
        eightBit.sampleRate = 8000;
        eightBit.bitsPerSample = 8;
        eightBit.samples = QByteArray(4000, char(0x80));
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("8bit.wav"), WavBytes(eightBit))), 500_ms);
    }

    void chunksBeforeTheDataAreSkippedWithTheirPadding()
    {
        WavParts parts;
        parts.samples = Tone(300);
        // An odd-sized chunk is padded to an even length; a reader that forgets the padding
        // byte misses the data chunk.
        parts.extraChunks =
            Chunk("LIST", QByteArray("INFOISFT\x03\0\0\0ab", 15)) + Chunk("fact", "\x01\x02\x03\x04");
        const QString path = WriteFile(m_dir, QStringLiteral("list.wav"), WavBytes(parts));
        const std::optional<WavInfo> info = ReadWavInfo(path);
        QVERIFY(info);
        QCOMPARE(info->DurationMs(), 300_ms);
        QCOMPARE(info->dataBytes, qint64(parts.samples.size()));
        QCOMPARE(info->dataOffset, QFile(path).size() - qint64(parts.samples.size()));
        QCOMPARE(info->channels, 1);
        QCOMPARE(info->sampleRate, 22050);
        QCOMPARE(info->bitsPerSample, 16);
        QCOMPARE(info->encoding, 1);
    }

    void extensibleFormatGivesItsSubFormat()
    {
        WavParts parts;
        parts.encoding = 0xFFFE;
        parts.channels = 2;
        parts.sampleRate = 48000;
        parts.bitsPerSample = 32;
        parts.samples = QByteArray(48000 * 8 / 4, '\0');
        QByteArray extension;
        Put16(extension, 22);                // size of the extension
        Put16(extension, 32);                // valid bits
        Put32(extension, 3);                 // front left and right
        Put16(extension, 3);                 // sub-format: IEEE float...
        extension += QByteArray(14, '\x01'); // ...and the rest of its GUID
        QByteArray bytes = WavBytes(parts);
        // Rewrite the fmt chunk with the extension.
        const QByteArray plainFmt = Chunk("fmt ", FormatBody(parts));
        const QByteArray extendedFmt = Chunk("fmt ", FormatBody(parts) + extension);
        bytes.replace(12, plainFmt.size(), extendedFmt);
        qToLittleEndian(quint32(bytes.size() - 8), bytes.data() + 4);
        const std::optional<WavInfo> info = ReadWavInfo(WriteFile(m_dir, QStringLiteral("ext.wav"), bytes));
        QVERIFY(info);
        QCOMPARE(info->encoding, 3);
        QCOMPARE(info->DurationMs(), 250_ms);
    }

    void dataLongerThanTheFileCountsOnlyWhatIsThere()
    {
        WavParts parts;
        parts.samples = Tone(400);
        parts.claimedDataBytes = 0xFFFFFFFFu; // a header written before the length was known
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("long.wav"), WavBytes(parts))), 400_ms);

        parts.claimedDataBytes = quint32(22050 * 2 * 10); // claims 10 s
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("long2.wav"), WavBytes(parts))), 400_ms);
    }

    void truncatedHeaderGivesNothing()
    {
        const QByteArray whole = WavBytes(WavParts{});
        QCOMPARE(whole.size(), 44);
        // Every cut before the data chunk's header is complete leaves no sound to time.
        for (int size = 0; size < 44; ++size) {
            const QString path = WriteFile(m_dir, QStringLiteral("cut.wav"), whole.left(size));
            QVERIFY2(!WavDurationMs(path), qPrintable(QString::number(size)));
        }
        // With its headers whole and no sound, a file lasts nothing.
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("empty-data.wav"), whole)), 0_ms);
    }

    void garbageGivesNothing()
    {
        QCOMPARE(Duration(m_dir.filePath(QStringLiteral("missing.wav"))), -1_ms);
        QCOMPARE(Duration(m_dir.path()), -1_ms); // a folder
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("text.wav"), "This is not a sound at all.\n")),
                 -1_ms);
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("zero.wav"), QByteArray(4096, '\0'))), -1_ms);
        QByteArray noise(4096, Qt::Uninitialized);
        for (int i = 0; i < noise.size(); ++i)
            noise[i] = char((i * 7919 + 13) % 251);
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("noise.wav"), noise)), -1_ms);
        // RIFF but not WAVE (an AVI), and WAVE without chunks.
        QByteArray avi = WavBytes(WavParts{});
        avi.replace(8, 4, "AVI ");
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("avi.wav"), avi)), -1_ms);
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("bare.wav"), QByteArray("RIFF\x04\0\0\0WAVE", 12))),
                 -1_ms);
        // A fmt chunk too short to hold a format.
        QByteArray shortFmt = QByteArray("RIFF\0\0\0\0WAVE", 12) + Chunk("fmt ", QByteArray(8, '\x01')) +
                              Chunk("data", QByteArray(100, '\0'));
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("shortfmt.wav"), shortFmt)), -1_ms);
        // Data without a format.
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("nofmt.wav"),
                                    QByteArray("RIFF\0\0\0\0WAVE", 12) + Chunk("data", Tone(100)))),
                 -1_ms);
    }

    void zeroRateOrChannelsGivesNothing()
    {
        WavParts parts;
        parts.samples = Tone(100);
        parts.sampleRate = 0;
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("rate0.wav"), WavBytes(parts))), -1_ms);
        parts.sampleRate = 22050;
        parts.channels = 0;
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("mono0.wav"), WavBytes(parts))), -1_ms);
    }

    void hugeChunkSizesEndTheSearch()
    {
        // A chunk claiming 4 GB before the data: the data cannot be reached.
        WavParts parts;
        parts.samples = Tone(100);
        QByteArray huge("junk", 4);
        Put32(huge, 0xFFFFFFF0u);
        parts.extraChunks = huge + QByteArray(16, '\0');
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("huge.wav"), WavBytes(parts))), -1_ms);

        // A fmt chunk claiming 4 GB is read for its format only.
        QByteArray bigFmt = QByteArray("RIFF\0\0\0\0WAVE", 12) + QByteArray("fmt ", 4);
        Put32(bigFmt, 0xFFFFFFFFu);
        bigFmt += FormatBody(WavParts{});
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("bigfmt.wav"), bigFmt)), -1_ms);

        // Tens of thousands of empty chunks: the search gives up long before their end.
        QByteArray many;
        for (int i = 0; i < 50'000; ++i)
            many += Chunk("pad ", {});
        parts.extraChunks = many;
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("many.wav"), WavBytes(parts))), -1_ms);
        QVERIFY(timer.elapsed() < 1000);
    }

    void extremeRatesGiveFiniteLengths()
    {
        // One byte a second: four megabytes would last more than a month.
        WavParts slow;
        slow.sampleRate = 1;
        slow.bitsPerSample = 8;
        slow.samples = QByteArray(4 << 20, char(0x80));
        QCOMPARE(Duration(WriteFile(m_dir, QStringLiteral("slow.wav"), WavBytes(slow))),
                 qint64(4 << 20) * 1000);
        WavParts fast;
        fast.sampleRate = int(0x7FFFFFFF);
        fast.channels = 0xFFFF;
        fast.samples = Tone(10);
        QVERIFY(Duration(WriteFile(m_dir, QStringLiteral("fast.wav"), WavBytes(fast))) >= 0);
    }

    // --- Playing ------------------------------------------------------------------------
    // Play returns at once whatever happens, so the moments it returns are measured on the
    // computer's clock; the moments a play ends are measured on the players' timers (PlayTime).

    void missingFileFinishesPromptly()
    {
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        time.Restart();
        sound->Play(m_dir.filePath(QStringLiteral("no-such-sound.wav")));
        // Never from within Play: the caller sees Finished from the event loop.
        QCOMPARE(finished.count(), 0);
        QVERIFY(sound->IsPlaying());
        QVERIFY(time.PassUntil(finished, 1, 2000));
        QVERIFY2(time.Elapsed() < 300, qPrintable(QString::number(time.Elapsed())));
        QVERIFY(!sound->IsPlaying());
        time.Pass(300);
        QCOMPARE(finished.count(), 1);
    }

    void fileThatIsNoSoundFinishesPromptly()
    {
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        const QString text = WriteFile(m_dir, QStringLiteral("notes.wav"), "not a sound\n");
        time.Restart();
        sound->Play(text);
        QCOMPARE(finished.count(), 0);
        QVERIFY(time.PassUntil(finished, 1, 2000));
        QVERIFY2(time.Elapsed() < 300, qPrintable(QString::number(time.Elapsed())));
        QCOMPARE(finished.count(), 1);
        // A folder is no sound either.
        sound->Play(m_dir.path());
        QVERIFY(time.PassUntil(finished, 2, 2000));
        QCOMPARE(finished.count(), 2);
    }

    void playFinishesAfterTheSoundsLengthWithinItsMargin()
    {
        const QString path = WriteTone(m_dir, QStringLiteral("short.wav"), 200);
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        QElapsedTimer call;
        call.start();
        time.Restart();
        sound->Play(path);
        // Play returns at once: it never waits for the sound, with or without a device.
        QVERIFY2(call.elapsed() < 150, qPrintable(QString::number(call.elapsed())));
        QCOMPARE(finished.count(), 0);
        QVERIFY(sound->IsPlaying());
        QVERIFY(time.PassUntil(finished, 1, 200 + WatchdogMarginMs + SlackMs));
        const qint64 elapsed = time.Elapsed();
        // The play lasted the sound (silently, where there is no device), and ended by
        // itself within the watchdog's time.
        QVERIFY2(elapsed >= 190, qPrintable(QString::number(elapsed)));
        QVERIFY2(elapsed <= 200 + WatchdogMarginMs + SlackMs, qPrintable(QString::number(elapsed)));
        if (m_silent) // without a device only the watchdog ends it: the sound and the margin
            QCOMPARE(elapsed, 200 + WatchdogMarginMs);
        QVERIFY(!sound->IsPlaying());
        time.Pass(WatchdogMarginMs + 200);
        QCOMPARE(finished.count(), 1);
    }

    void stopEndsThePlayWithoutFinished()
    {
        const QString path = WriteTone(m_dir, QStringLiteral("second.wav"), 1000);
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        sound->Play(path);
        time.Pass(100);
        QVERIFY(sound->IsPlaying());
        sound->Stop();
        QVERIFY(!sound->IsPlaying());
        // Neither the sound's end nor the watchdog report a play that was stopped.
        QVERIFY(!time.PassUntil(finished, 1, 1000 + WatchdogMarginMs + 300));
        QCOMPARE(finished.count(), 0);
        // Stopping twice, or with nothing playing, does nothing.
        sound->Stop();
        QVERIFY(!sound->IsPlaying());
        // And the player plays again after a Stop.
        sound->Play(WriteTone(m_dir, QStringLiteral("again.wav"), 100));
        QVERIFY(time.PassUntil(finished, 1, 100 + WatchdogMarginMs + SlackMs));
        QCOMPARE(finished.count(), 1);
    }

    void stopOfAFailedPlaySwallowsItsFinished()
    {
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        sound->Play(m_dir.filePath(QStringLiteral("no-such-sound.wav")));
        sound->Stop(); // before the event loop could report the failure
        time.Pass(300);
        QCOMPARE(finished.count(), 0);
        QVERIFY(!sound->IsPlaying());
    }

    void playWhilePlayingRestartsWithOneFinished()
    {
        const QString path = WriteTone(m_dir, QStringLiteral("restart.wav"), 1000);
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        sound->Play(path);
        time.Pass(600);
        QCOMPARE(finished.count(), 0);
        time.Restart();
        sound->Play(path);
        QVERIFY(sound->IsPlaying());
        QVERIFY(time.PassUntil(finished, 1, 1000 + WatchdogMarginMs + SlackMs));
        // The first play would have ended (or its watchdog run out) at the latest 900 ms
        // after the second began; this Finished is the second play's, a whole sound later.
        QVERIFY2(time.Elapsed() >= 950, qPrintable(QString::number(time.Elapsed())));
        time.Pass(WatchdogMarginMs + 300);
        QCOMPARE(finished.count(), 1);
    }

    void newPlayAfterAFailureGetsNoStaleFinished()
    {
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        sound->Play(m_dir.filePath(QStringLiteral("no-such-sound.wav")));
        // Replaced before the failure was reported: only the new play's end counts.
        const QString path = WriteTone(m_dir, QStringLiteral("after-failure.wav"), 400);
        time.Restart();
        sound->Play(path);
        QVERIFY(time.PassUntil(finished, 1, 400 + WatchdogMarginMs + SlackMs));
        QVERIFY2(time.Elapsed() >= 390, qPrintable(QString::number(time.Elapsed())));
        time.Pass(300);
        QCOMPARE(finished.count(), 1);
    }

    void finishedMayStartTheNextPlay()
    {
        // What an alarm window does: play again when a play has ended.
        const QString path = WriteTone(m_dir, QStringLiteral("repeat.wav"), 100);
        PlayTime time(m_silent);
        auto sound = time.Player();
        int plays = 1;
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        connect(sound.get(), &AlarmSound::Finished, this, [&] {
            if (plays < 3) {
                ++plays;
                sound->Play(path);
            }
        });
        time.Restart();
        sound->Play(path);
        QVERIFY(time.PassUntil(finished, 3, 3 * (100 + WatchdogMarginMs) + SlackMs));
        if (m_silent) // three whole plays, each ended by the watchdog
            QCOMPARE(time.Elapsed(), 3 * (100 + WatchdogMarginMs));
        time.Pass(100 + WatchdogMarginMs + 200);
        QCOMPARE(finished.count(), 3);
        QCOMPARE(plays, 3);
        QVERIFY(!sound->IsPlaying());
    }

    void playerMayBeDeletedWhileOrWhenPlaying()
    {
        const QString path = WriteTone(m_dir, QStringLiteral("delete.wav"), 300);
        PlayTime time(m_silent);
        {
            auto sound = time.Player();
            sound->Play(path);
            time.Pass(50);
        } // destroyed while playing
        time.Pass(100);

        // Deleted from within its own Finished.
        auto* sound = time.Player().release();
        QPointer<AlarmSound> watch(sound);
        QSignalSpy finished(sound, &AlarmSound::Finished);
        connect(sound, &AlarmSound::Finished, this, [sound] { delete sound; });
        sound->Play(path);
        QVERIFY(time.PassUntil(finished, 1, 300 + WatchdogMarginMs + SlackMs));
        QVERIFY(watch.isNull());
    }

    void hostileFileNeverBlocksAndStops()
    {
        // Claims an hour of sound at one byte a second; the file holds four kilobytes.
        WavParts parts;
        parts.sampleRate = 1;
        parts.bitsPerSample = 8;
        parts.samples = QByteArray(4096, char(0x80));
        parts.claimedDataBytes = 3600;
        const QString path = WriteFile(m_dir, QStringLiteral("hostile.wav"), WavBytes(parts));
        PlayTime time(m_silent);
        auto sound = time.Player();
        QSignalSpy finished(sound.get(), &AlarmSound::Finished);
        QElapsedTimer call;
        call.start();
        sound->Play(path);
        QVERIFY(call.elapsed() < 150);
        time.Pass(200);
        // Either it could not be played and finished, or it plays on until Stop.
        QVERIFY(finished.count() == 1 || sound->IsPlaying());
        sound->Stop();
        QVERIFY(!sound->IsPlaying());

        // A header that makes no sense at all, with a broken sound after it.
        WavParts absurd;
        absurd.sampleRate = int(0x7FFFFFFF);
        absurd.channels = 0xFFFF;
        absurd.bitsPerSample = 0xFFFF;
        absurd.samples = QByteArray(1000, '\x7F');
        sound->Play(WriteFile(m_dir, QStringLiteral("absurd.wav"), WavBytes(absurd)));
        finished.clear();
        QVERIFY(time.PassUntil(finished, 1, WatchdogMarginMs + SlackMs));
        time.Pass(200);
        QCOMPARE(finished.count(), 1);
    }
};

QTEST_MAIN(TestAlarmSound)
#include "tst_alarmsound.moc"
