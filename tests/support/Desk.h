#pragma once

#include "FakePlatform.h"
#include "ManualClock.h"
#include "TestEnvironment.h"
#include "alarms/AlarmDesk.h"
#include "alarms/AlarmSound.h"
#include "alarms/AlarmWindows.h"
#include "logbook/LogBook.h"
#include "logbook/LogViewer.h"
#include "platform/PlatformServices.h"
#include "platform/WindowFlash.h"
#include "settings/Preferences.h"
#include "settings/SettingsStore.h"
#include "shell/frmMain.h"

#include <QDir>
#include <QLabel>
#include <QSettings>
#include <QtTest>

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

// A main window over a fresh folder, a hand-set clock and a prepared settings file, with
// fake sound and operating-system services.
struct Desk
{
    static inline const QLocale EnUs{QLocale::English, QLocale::UnitedStates};
    static inline const QDate Monday{2026, 11, 16};

    explicit Desk(const QByteArray& ini = {}, bool withSound = true)
        : clock(QDateTime(Monday, QTime(10, 0, 17, 250))), platform(FakePlatform(flash))
    {
        if (!ini.isEmpty())
            TestEnvironment::WriteFile(env.SettingsFile(), ini);
        if (withSound)
            TestEnvironment::WriteFile(QDir(env.ProgramFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")),
                                       "RIFF");
        store = std::make_unique<SettingsStore>(env.SettingsFile());
        const MainServices services{clock,
                                    *store,
                                    env.LogFolder(),
                                    EnUs,
                                    QStringList{env.ProgramFolder()},
                                    [this](QObject* parent) {
                                        return std::unique_ptr<AlarmSound>(
                                            new FakeSound(plays, stops, parent));
                                    },
                                    platform};
        window = std::make_unique<frmMain>(services);
    }

    // The services of a test: fakes that record what they are asked; the window flash
    // stays reachable through `flash`.
    static PlatformServices FakePlatform(FakeFlash*& flash)
    {
        PlatformServices services;
        auto ownFlash = std::make_unique<FakeFlash>();
        flash = ownFlash.get();
        services.flash = std::move(ownFlash);
        services.clockSetter = std::make_unique<FakeClockSetter>();
        services.clockChange = std::make_unique<FakeClockChangeWatch>();
        services.suspend = std::make_unique<FakeSuspendWatch>();
        services.startAtLogin = std::make_unique<FakeStartAtLogin>();
        services.dialUp = std::make_unique<FakeDialUpState>();
        services.notifier = std::make_unique<FakeDesktopNotifier>();
        return services;
    }

    // The owners inside the main window.
    AlarmTable& Alarms() const { return window->Alarms().Table(); }
    AlarmWindows& Windows() const { return window->Windows(); }
    LogViewer& Viewer() const { return window->Viewer(); }

    template <typename T>
    T* Find(const QString& name) const
    {
        T* child = window->findChild<T*>(name);
        if (!child)
            qWarning("no child named %s", qPrintable(name));
        return child;
    }
    QString FaceText(int i) const { return Find<QLabel>(QStringLiteral("lblClock1_%1").arg(i))->text(); }
    QColor FaceFore(int i) const
    {
        return Find<QLabel>(QStringLiteral("lblClock1_%1").arg(i))->palette().color(QPalette::WindowText);
    }
    QString Status() const { return Find<QLabel>(QStringLiteral("Status"))->text(); }
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
    void ClickPanel(const QString& key) { QTest::mouseClick(Find<QLabel>(key), Qt::LeftButton); }
    void Tick(QTime time)
    {
        clock.Set(clock.Today(), time);
        window->tmrMain_Timer();
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
    FakeFlash* flash = nullptr;
    PlatformServices platform;
    QStringList plays;
    int stops = 0;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<frmMain> window;
};
