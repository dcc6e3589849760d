#pragma once

#include "ManualClock.h"
#include "TestEnvironment.h"
#include "alarms/AlarmSound.h"
#include "platform/WindowFlash.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QSettings>
#include <QtTest>

#include <functional>
#include <memory>

// A sound player that records what it was asked to play.
class FakeSound final : public AlarmSound
{
public:
    explicit FakeSound(QStringList& plays, int& stops, QObject* parent)
        : AlarmSound(parent), m_plays(plays), m_stops(stops)
    {}
    void Play(const QString& path) override
    {
        m_plays.append(path);
        m_playing = true;
    }
    void Stop() override
    {
        ++m_stops;
        m_playing = false;
    }
    bool IsPlaying() const override { return m_playing; }

private:
    QStringList& m_plays;
    int& m_stops;
    bool m_playing = false;
};

// A window flash that counts the flashes asked for.
class FakeFlash final : public WindowFlash
{
public:
    void Flash(QWidget*) override { ++Flashes; }
    int Flashes = 0;
};

// What every desk of a test has: a fresh folder, a hand-set clock, a prepared settings
// file (and the default sound file, unless told otherwise), a fake sound player, and the
// helpers that read back what the program wrote.
struct DeskFiles
{
    static inline const QLocale EnUs{QLocale::English, QLocale::UnitedStates};
    static inline const QDate Monday{2026, 11, 16};

    explicit DeskFiles(const QByteArray& ini, bool withSound)
        : clock(QDateTime(Monday, QTime(10, 0, 17, 250)))
    {
        if (!ini.isEmpty())
            TestEnvironment::WriteFile(env.SettingsFile(), ini);
        if (withSound)
            TestEnvironment::WriteFile(QDir(env.ProgramFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")),
                                       "RIFF");
        store = std::make_unique<SettingsStore>(env.SettingsFile());
    }

    std::function<std::unique_ptr<AlarmSound>(QObject*)> SoundFactory()
    {
        return [this](QObject* parent) {
            return std::unique_ptr<AlarmSound>(new FakeSound(plays, stops, parent));
        };
    }
    QStringList SoundFolders() const { return {env.ProgramFolder()}; }

    QByteArray TodaysLog() const { return TestEnvironment::ReadFile(LogPath(clock.Today())); }
    QString LogPath(QDate day) const
    {
        return QDir(env.LogFolder())
            .filePath(day.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral(".log"));
    }
    QString Stored(const QString& key) const
    {
        return QSettings(env.SettingsFile(), QSettings::IniFormat).value(key).toString();
    }
    // One log line as the program writes it for today, ended by CR LF.
    static QByteArray Line(const char* time, const char* code, int safety, const char* text1,
                           const char* text2, const char* text3, const char* date = "11/16/2026")
    {
        return QByteArray("\"") + date + "\",\"" + time + "\",\"" + code + "\"," +
               QByteArray::number(safety) + ",\"" + text1 + "\",\"" + text2 + "\",\"" + text3 + "\"\r\n";
    }

    // A day's log of `count` notes, one a minute from 08:00: "08:00--Entry: 1 (x)" and so on.
    static QByteArray NotesFromEight(int count)
    {
        QByteArray log;
        for (int i = 0; i < count; ++i)
            log += Line(qPrintable(QTime(8, 0).addSecs(60 * i).toString(QStringLiteral("HH:mm"))), "NT", 0,
                        "Entry: ", qPrintable(QString::number(i + 1)), " (x)");
        return log;
    }

    TestEnvironment env;
    ManualClock clock;
    QStringList plays;
    int stops = 0;
    std::unique_ptr<SettingsStore> store;
};
