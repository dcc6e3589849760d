#pragma once

#include "DeskFiles.h"
#include "alarms/AlarmDesk.h"
#include "alarms/AlarmWindows.h"
#include "logbook/LogBook.h"
#include "logbook/LogViewer.h"
#include "settings/Preferences.h"
#include "settings/Settings.h"
#include "widgets/MessageBox.h"

#include <QVBoxLayout>
#include <QWidget>

// The owners of the program's state without the main window: preferences, the log with its
// viewer, the alarm desk and the alarm windows, over a fresh folder and a hand-set clock.
// A panel or window under test is placed in `host`, which stands in for the main window.
struct Owners : DeskFiles
{
    explicit Owners(const QByteArray& ini = {}, bool withSound = true)
        : DeskFiles(ini, withSound), log(env.LogFolder(), clock, EnUs), viewer(log, clock, EnUs),
          alarms(*store, log, clock, prefs),
          windows(alarms, prefs, SoundFolders(), SoundFactory(), flash, &host)
    {
        log.SetTimeSource([this] { return alarms.StampNow(); });
        QObject::connect(&alarms, &AlarmDesk::AlarmsRang, &viewer, &LogViewer::RefreshLogView);
        QObject::connect(&windows, &AlarmWindows::Answered, &viewer, &LogViewer::RefreshLogView);
        QObject::connect(&alarms, &AlarmDesk::Failed, &host,
                         [this](const QString& m) { MessageBox::Notice(&host, m); });
        QObject::connect(&log, &LogBook::Failed, &host,
                         [this](const QString& m) { MessageBox::Notice(&host, m); });
        QObject::connect(&viewer, &LogViewer::Failed, &host,
                         [this](const QString& m) { MessageBox::Notice(&host, m); });
        new QVBoxLayout(&host);
    }
    ~Owners()
    {
        // What is placed in the host refers to the owners: it goes first.
        qDeleteAll(host.findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
    }

    // Places a panel in the host, as the main window places it.
    template <typename T>
    T* Place(T* panel)
    {
        panel->setParent(&host);
        host.layout()->addWidget(panel);
        return panel;
    }

    // The owners' part of start-up: the settings read, the switches, the restored alarms with
    // the first selected, the days with logs, today's log opened with its "ST" entry.
    bool Start()
    {
        SettingsReadResult read = ReadSettings(*store, clock.Now());
        if (read.Error)
            return false;
        prefs.Replace(std::move(read.Values));
        viewer.SetLogBookDate(clock.Today());
        log.SetSwitches({prefs.Values().LogOn == 1, prefs.Values().LogSafetyOnly});
        alarms.LoadAlarms();
        alarms.Table().SelectedAlarm = 1;
        if (alarms.Table().AlarmCount > 0)
            alarms.SetSelectedAlarm();
        viewer.MarkAvailableLogs();
        log.OpenTodaysLog();
        log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(), QString());
        return true;
    }

    template <typename T>
    T* Find(const QString& name) const
    {
        T* child = host.findChild<T*>(name);
        if (!child)
            qWarning("no child named %s", qPrintable(name));
        return child;
    }
    // The owners, also from a fixture's const helpers (a test changes them at will).
    AlarmTable& Alarms() const { return const_cast<AlarmDesk&>(alarms).Table(); }
    AlarmWindows& Windows() const { return const_cast<AlarmWindows&>(windows); }
    LogViewer& Viewer() const { return const_cast<LogViewer&>(viewer); }

    QWidget host;
    FakeFlash flash;
    Preferences prefs;
    LogBook log;
    LogViewer viewer;
    AlarmDesk alarms;
    AlarmWindows windows;
};
