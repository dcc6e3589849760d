// The main window's layout, faces, title, status bar and panels.
#include "shell/frmMain.h"

#include "alarms/AlarmDesk.h"
#include "alarms/AlarmPanel.h"
#include "alarms/AlarmSound.h"
#include "alarms/AlarmWindows.h"
#include "alarms/frmAlarm.h"
#include "calc/CalcPanel.h"
#include "clock/Clock.h"
#include "clock/ZoneClock.h"
#include "help/frmHelp.h"
#include "logbook/LogBook.h"
#include "logbook/LogPanel.h"
#include "logbook/LogViewer.h"
#include "platform/ClockChangeWatch.h"
#include "platform/ClockSetter.h"
#include "platform/DesktopNotifier.h"
#include "platform/PlatformServices.h"
#include "platform/SuspendWatch.h"
#include "platform/WindowFlash.h"
#include "props/frmClockProps.h"
#include "settings/Preferences.h"
#include "shell/ClockPanel.h"
#include "shell/frmMessage.h"
#include "sun/SolarEvents.h"
#include "sun/frmSSTables.h"
#include "sync/SntpClient.h"
#include "sync/SyncScheduler.h"
#include "sync/SyncState.h"
#include "widgets/Icons.h"
#include "widgets/KeyedStatusBar.h"
#include "widgets/MessageBox.h"
#include "widgets/SecondsBox.h"
#include "widgets/TopMost.h"
#include "widgets/WindowModal.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

frmMain::frmMain(const MainServices& services, QWidget* parent)
    : QWidget(parent), m_clock(services.clock), m_store(services.store), m_dataFolders(services.dataFolders),
      m_platform(services.platform), m_locale(services.locale),
      m_preferences(std::make_unique<Preferences>()),
      m_log(std::make_unique<LogBook>(services.logFolder, services.clock, services.locale)),
      m_viewer(std::make_unique<LogViewer>(*m_log, services.clock, services.locale)),
      m_alarms(std::make_unique<AlarmDesk>(services.store, *m_log, services.clock, *m_preferences)),
      m_alarmWindows(std::make_unique<AlarmWindows>(*m_alarms, *m_preferences, services.dataFolders,
                                                    services.makeSound, *services.platform.flash, this)),
      m_sync(std::make_unique<SyncState>(*m_preferences, services.clock))
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowIcon(AppIcon());
    // Entries carry the corrected time of day.
    m_log->SetTimeSource([this] { return m_alarms->StampNow(); });
    auto makeQuery = services.makeTimeQuery;
    if (!makeQuery)
        makeQuery = [&clock = services.clock](QObject* owner) -> std::unique_ptr<TimeQuery> {
            return std::make_unique<SntpClient>(clock, owner);
        };
    m_scheduler = std::make_unique<SyncScheduler>(
        SyncRunServices{*m_sync, *m_preferences, services.clock, *services.platform.clockSetter,
                        [this](const QString& text) { ShowSyncMessage(text); }},
        *services.platform.dialUp, std::move(makeQuery), this);
    BuildLayout();
    // The seconds change all day: shown through a layer the display keeps, where there is one.
    m_picMain->Seconds()->SetLayers(m_platform.pictureLayers.get());
    ConnectOwners();

    m_tmrMain.setObjectName(QStringLiteral("tmrMain"));
    m_tmrMain.setSingleShot(true);
    m_tmrMain.setTimerType(Qt::PreciseTimer);
    connect(&m_tmrMain, &QTimer::timeout, this, [this] {
        tmrMain_Timer();
        KeepTickInPhase();
    });
    // The .500 half of the tick, when the watch found something to do (the clock was set).
    connect(m_platform.halfTick.get(), &HalfTickWatch::Due, this, [this] {
        if (m_loaded && !m_stopped)
            tmrMain_Timer();
    });
}

frmMain::~frmMain()
{
    // The watch's thread asks this window; it ends before the window does.
    m_platform.halfTick->Stop();
    // The panels and windows refer to the owners: they go first.
    m_scheduler.reset();
    m_clockProps.reset();
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

void frmMain::BuildLayout()
{
    m_picMain = new ClockPanel(this);
    m_picCalc = new CalcPanel(this);
    m_picAlarm = new AlarmPanel(*m_alarms, *m_alarmWindows, *m_preferences, this);
    m_picLog = new LogPanel(*m_viewer, *m_log, this);
    m_stsBar = new KeyedStatusBar(this);
    m_stsBar->setObjectName(QStringLiteral("stsBar"));
    m_stsBar->AddPanel(QStringLiteral("Calc"), QStringLiteral("Calc"), QStringLiteral("Calculate Times"));
    m_stsBar->AddPanel(QStringLiteral("Alarm"), QStringLiteral("Alarm"), QStringLiteral("Alarm Set"));
    m_stsBar->AddPanel(QStringLiteral("Props"), QStringLiteral("Props"),
                       QStringLiteral("Set Clock Properties"));
    m_stsBar->AddPanel(QStringLiteral("Log"), QStringLiteral("Log"), QStringLiteral("Logbook"));
    m_stsBar->AddPanel(QStringLiteral("Status"), QString(), QString(), true);
    m_stsBar->AddPanel(QStringLiteral("Exit"), QStringLiteral("Exit"), QStringLiteral("Exit"));

    // The window is as tall as the clock panel, the open panel and the status bar: the
    // panel appears where the status bar was, and the status bar keeps to the bottom edge.
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    for (QWidget* w : {static_cast<QWidget*>(m_picMain), static_cast<QWidget*>(m_picCalc),
                       static_cast<QWidget*>(m_picAlarm), static_cast<QWidget*>(m_picLog),
                       static_cast<QWidget*>(m_stsBar)})
        layout->addWidget(w);

    connect(m_stsBar, &KeyedStatusBar::PanelClick, this, &frmMain::stsBar_PanelClick);
    connect(m_picMain->OnTopImage(), &QToolButton::clicked, this, &frmMain::imgOnTop_Click);
    connect(m_picMain->NotTopImage(), &QToolButton::clicked, this, &frmMain::imgNotTop_Click);
    connect(m_picMain->SyncButton(), &QPushButton::clicked, this, [this] { SyncCheck(2); });
    connect(m_picMain->HelpImage(), &QToolButton::clicked, this, &frmMain::Image3_Click);
    // F1 is the help picture; with Ctrl, the help document of the current folder.
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this,
            &frmMain::Image3_Click);
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F1), this), &QShortcut::activated, this,
            &frmMain::ShowLocalHelp);
    connect(m_picCalc->CloseButton(), &QPushButton::clicked, this, [this] { ClosePanel(m_picCalc); });
    connect(m_picCalc->TablesButton(), &QPushButton::clicked, this, &frmMain::cmdTables_Click);
    // The calculator fills its departure with the corrected time and works out its
    // second-zone boxes from the home zone of the properties dialog.
    m_picCalc->SetNowSource([this]() -> QString { return InternetNow(); });
    m_picCalc->SetHomeZoneSource([this]() -> CalcHomeZone {
        return {LocalZoneOffset(), m_preferences->Values().DayLight};
    });
    connect(m_picAlarm->CloseButton(), &QPushButton::clicked, this, [this] { ClosePanel(m_picAlarm); });
    connect(m_picLog->CloseButton(), &QPushButton::clicked, this, [this] { ClosePanel(m_picLog); });
}

void frmMain::ConnectOwners()
{
    // The list and the editor follow the table first (connected by the panel), then the
    // title and the status line.
    connect(m_alarms.get(), &AlarmDesk::TableChanged, this, [this] {
        ShowTitle();
        ShowStatus();
    });
    // Alarm events are logged: the view shows them.
    connect(m_alarms.get(), &AlarmDesk::AlarmsRang, m_viewer.get(), &LogViewer::RefreshLogView);
    connect(m_alarmWindows.get(), &AlarmWindows::Answered, m_viewer.get(), &LogViewer::RefreshLogView);
    connect(m_log.get(), &LogBook::SwitchesChanged, this, &frmMain::ShowStatus);
    // Failures of the owners are reported in the program's one message form.
    connect(m_alarms.get(), &AlarmDesk::Failed, this, &frmMain::Report);
    connect(m_log.get(), &LogBook::Failed, this, &frmMain::Report);
    connect(m_viewer.get(), &LogViewer::Failed, this, &frmMain::Report);
    // The operating system's notices: the clock was set, the machine sleeps and wakes.
    connect(m_platform.clockChange.get(), &ClockChangeWatch::ClockChanged, this,
            &frmMain::SysInfo1_TimeChanged);
    connect(m_platform.suspend.get(), &SuspendWatch::Suspending, this, [this] {
        // Saved before the machine sleeps (only a table that was loaded: a start that
        // failed leaves the store as it was); then it may sleep.
        m_asleep = true;
        if (m_loaded && !m_stopped)
            m_alarms->SaveAlarms();
        m_platform.suspend->SuspendHandled();
    });
    connect(m_platform.suspend.get(), &SuspendWatch::Resumed, this, [this] {
        m_asleep = false;
        m_sinceResume.start();
        if (!m_loaded || m_stopped)
            return;
        // What fell due while asleep rings now, not at the next whole minute.
        ForgetMinuteSeen();
        tmrMain_Timer();
        ArmTick();
    });
    // While alarms are set the machine is asked not to sleep, with their count as reason.
    connect(m_alarms.get(), &AlarmDesk::TableChanged, this,
            [this] { m_platform.suspend->SetAlarmsSet(m_alarms->Table().SetCount()); });
    // An alarm that goes off is also told to the desktop, until its window closes.
    connect(m_alarms.get(), &AlarmDesk::AlarmDue, this, [this](int n) {
        const AlarmRecord& a = m_alarms->Table().At(n);
        QString body = a.Message + QStringLiteral("\nExpired on ") + a.Expire;
        if (a.LateMinutes > 0)
            body += QStringLiteral(" (") + frmAlarm::LateText(a.LateMinutes) + u')';
        m_platform.notifier->Notify(QString::number(m_alarms->Table().IdOf(n)),
                                    a.Safety != 0 ? QStringLiteral("Expired Safety Check Alarm")
                                                  : QStringLiteral("Expired Alarm"),
                                    body);
    });
    connect(m_alarmWindows.get(), &AlarmWindows::WindowClosed, this,
            [this](quint64 id) { m_platform.notifier->Withdraw(QString::number(id)); });
    // A sync run (or its schedule) asks for the sync button to show the state.
    connect(m_sync.get(), &SyncState::RefreshDue, this, [this] { SyncCheck(0); });
    // Once running, a change of the preferences shows at once.
    connect(m_preferences.get(), &Preferences::Changed, this, [this] {
        if (!m_loaded || m_stopped)
            return;
        // A changed correction moves the minute at once: the next tick looks again.
        ForgetMinuteSeen();
        SetTimes();
        ShowTitle();
        ShowStatus();
        SyncCheck(0);
    });
}

void frmMain::Report(const QString& message)
{
    if (m_endingQuietly) {
        // Ending by a signal or with the session: nobody is there to answer a question.
        // The error goes to standard error, and to the log while it is open.
        std::fprintf(stderr, "tarrowind: %s\n", qUtf8Printable(QString(message).replace(u'\r', u' ')));
        std::fflush(stderr);
        if (m_log->IsTodaysLogOpen())
            m_log->WriteLogEntry(QStringLiteral("NT"), 1, QStringLiteral("Error at exit: "),
                                 message.section(u'\r', 0, 0), QString());
        return;
    }
    // While the program stops, the windows are about to close: it is told once they have.
    if (m_stopped) {
        m_exitErrors << message;
        return;
    }
    // Shown without waiting: the minute's work (the next due alarm's window) goes on.
    MessageBox::NoticeLater(this, message);
}

QFont frmMain::ClockFont() const
{
    const Settings& values = m_preferences->Values();
    QFont font;
    font.setFamily(values.FontName);
    font.setPointSizeF(values.FontSize);
    font.setItalic(values.FontItalic);
    font.setBold(values.FontBold);
    return font;
}

frmClockProps& frmMain::ClockProps()
{
    if (!m_clockProps) {
        m_clockProps = std::make_unique<frmClockProps>(
            ClockPropsServices{*m_preferences, *m_sync, *m_scheduler, *m_platform.startAtLogin, m_clock},
            this);
        // OK checks the coordinates: sunrise and sunset are shown by them, or not at all.
        connect(m_clockProps.get(), &frmClockProps::SunDisplayChanged, this, [this](bool on) {
            m_coordinatesValid = on;
            ShowSunLine();
        });
    }
    return *m_clockProps;
}

int frmMain::LocalZoneOffset() const
{
    // A zone outside the table reads as UTC.
    const qint32 zone = m_preferences->Values().Zone;
    return zone >= 0 && zone < ZoneCount ? Zones.at(std::size_t(zone)).Offset : 0;
}

QString frmMain::InternetNow() const
{
    return m_alarms->InternetNow();
}

void frmMain::FillZoneLists()
{
    FillZoneLists(m_preferences->Values().Zone);
}

void frmMain::FillZoneLists(int zone)
{
    QComboBox* zones = ClockProps().TimeZoneList();
    zones->clear();
    if (zones->count() > 0)
        return;
    for (int i = 0; i < ZoneCount; ++i)
        zones->addItem(ZoneLongName(i), Zones.at(std::size_t(i)).Offset);
    zones->setCurrentIndex(zone >= 0 && zone < ZoneCount ? zone : -1);

    // The calculator's list is filled once per run and starts on UTC.
    QComboBox* calcZones = m_picCalc->ZoneList();
    if (calcZones->count() > 0)
        return;
    for (int i = 0; i < ZoneCount; ++i)
        calcZones->addItem(ZoneTag(i), Zones.at(std::size_t(i)).Offset);
    calcZones->setCurrentIndex(calcZones->count() - 1);
}

void frmMain::ShowFaceStyle()
{
    const Settings& values = m_preferences->Values();
    const QFont clockFont = ClockFont();
    QFont secondsFont = m_picMain->Seconds()->font();
    secondsFont.setFamily(clockFont.family());
    secondsFont.setPointSizeF(clockFont.pointSizeF() * 0.9);
    m_picMain->Seconds()->setFont(secondsFont);
    const ColourValue fore = ParseInt32(values.ForeColor).value_or(White);
    for (int i = 0; i < ZoneCount; ++i) {
        m_picMain->Face(i)->setFont(clockFont);
        m_picMain->SetFaceColours(i, fore, values.BackColor);
    }
}

void frmMain::SetTimes()
{
    try {
        FillZoneLists();
        ShowFaceStyle();
        const Settings& values = m_preferences->Values();
        m_picMain->SetLocalZone(values.Zone);

        std::array<int, ZoneCount> offsets{};
        for (int i = 0; i < ZoneCount; ++i)
            offsets[std::size_t(i)] = Zones.at(std::size_t(i)).Offset;
        const QTime now = QTime::fromString(InternetNow(), QStringLiteral("HH:mm"));
        for (int i = 0; i < ZoneCount; ++i) {
            const auto text = ZoneFaceTime(now, i, values.Zone, offsets, values.DayLight != 0);
            if (!text)
                return; // a zone outside the table: the faces keep their text until next minute
            m_picMain->Face(i)->setText(*text);
        }
        ShowSyncColours();
    } catch (const std::exception&) {
        // The faces keep their previous text until the next minute.
    }
}

void frmMain::ShowSyncColours()
{
    const Settings& values = m_preferences->Values();
    const auto colour =
        UtcFaceRuleColour(values.UTCRule != 0, values.AutoSync != 0, m_picMain->SyncButtonBack(),
                          m_picMain->FaceBack(1), m_picMain->FaceBack(UtcZone));
    if (colour) {
        m_picMain->SetFaceColours(UtcZone, *colour, m_picMain->FaceBack(UtcZone));
        return;
    }
    // Synchronised again under the rule: the UTC face is readable at once, not at the next
    // minute's redraw.
    if (values.UTCRule != 0)
        m_picMain->SetFaceColours(UtcZone, ParseInt32(values.ForeColor).value_or(White),
                                  m_picMain->FaceBack(UtcZone));
}

void frmMain::SyncCheck(int mode)
{
    switch (mode) {
    case 0: {
        // The button shows the state and the time of the next sync.
        m_picMain->SetSyncButtonColour(SyncButtonColour(m_sync->Synchronised()));
        const Settings& values = m_preferences->Values();
        m_picMain->SyncButton()->setToolTip(NextSyncToolTip(values.LastSync, values.AutoSyncHrs));
        ShowSyncColours();
        break;
    }
    case 1:
        m_scheduler->CheckSchedule();
        break;
    case 2: {
        m_scheduler->StartSync(false);
        QPushButton* button = m_picMain->SyncButton();
        button->setDefault(false);
        if (button->hasFocus())
            focusNextChild();
        break;
    }
    default:
        break;
    }
}

frmMessage* frmMain::SyncMessage() const
{
    return m_message;
}

void frmMain::ShowSyncMessage(const QString& text)
{
    // One notice at a time: a later failure replaces the text of one still open. It does
    // not wait to be read, so the run ends and the schedule goes on meanwhile.
    if (!m_message) {
        m_message = new frmMessage(this);
        m_message->setAttribute(Qt::WA_DeleteOnClose);
        m_message->setWindowModality(Qt::WindowModal);
    }
    m_message->SetMessage(text);
    m_message->show();
    m_message->raise();
    m_message->activateWindow();
}

void frmMain::ShowTitle()
{
    const QString date = m_locale.toString(m_clock.Today(), QStringLiteral("dddd MMMM dd,yyyy "));
    const QString marker = m_preferences->Values().DayLight == 1 ? QStringLiteral("[Daylight Time]")
                                                                 : QStringLiteral("[Standard Time]");
    setWindowTitle(QStringLiteral("Tarrowind --") + date + marker);
}

void frmMain::ShowStatus()
{
    const AlarmTable& table = m_alarms->Table();
    const QString text =
        QString::number(table.AlarmCount) + QStringLiteral(" alarms, ") + QString::number(table.SetCount()) +
        (m_log->Switches().LogOn ? QStringLiteral(" set, Logging On") : QStringLiteral(" set, Logging Off")) +
        (m_preferences->Values().AutoSync != 0 ? QStringLiteral(", Internet Clock")
                                               : QStringLiteral(", System Clock"));
    m_stsBar->SetPanelText(QStringLiteral("Status"), text);
}

void frmMain::ShowSunLine()
{
    const Settings& values = m_preferences->Values();
    // Sunrise and sunset need valid coordinates; a latitude of 0 degrees counts as none.
    if (values.LatDeg.toDouble() == 0 || !m_coordinatesValid) {
        m_picCalc->SetSunLine(QStringLiteral("Sunrise/Sunset\r(no coordinates)"));
        return;
    }
    // Hours west of Greenwich of the local zone, one less in daylight time.
    const int zoneHours = std::abs(LocalZoneOffset()) - (values.DayLight != 0 ? 1 : 0);
    const SunTimes times =
        ComputeSunTimes(qint16(values.LatDeg.toInt()), qint16(values.LatMin.toInt()), QStringLiteral("N"),
                        qint16(values.LongDeg.toInt()), qint16(values.LongMin.toInt()), QStringLiteral("W"),
                        qint16(zoneHours), m_clock.Today());
    m_picCalc->SetSunLine(QStringLiteral("Sunrise: ") + times.Rise + QStringLiteral("\rSunset:  ") +
                          times.Set);
}

void frmMain::cmdTables_Click()
{
    try {
        frmSSTables tables(m_preferences->Values(), m_clock.Today().year(), this);
        ExecWindowModal(tables);
    } catch (const std::exception& error) {
        MessageBox::Notice(this, QStringLiteral("Unable to show the tables: ") +
                                     QString::fromLocal8Bit(error.what()));
    }
}

void frmMain::OpenPanel(QWidget* panel)
{
    CloseOpenPanel();
    panel->setVisible(true);
    m_openPanel = panel;
}

void frmMain::ClosePanel(QWidget* panel)
{
    panel->setVisible(false);
    if (m_openPanel == panel)
        m_openPanel = nullptr;
}

void frmMain::CloseOpenPanel()
{
    if (m_openPanel)
        ClosePanel(m_openPanel);
}

void frmMain::stsBar_PanelClick(const QString& key)
{
    try {
        if (key == u"Calc") {
            if (m_openPanel == m_picCalc) {
                ClosePanel(m_picCalc);
                return;
            }
            OpenPanel(m_picCalc);
            m_picCalc->InitBoxes();
            ShowSunLine();
        } else if (key == u"Alarm") {
            if (m_openPanel == m_picAlarm) {
                ClosePanel(m_picAlarm);
                return;
            }
            OpenPanel(m_picAlarm);
        } else if (key == u"Log") {
            if (m_openPanel == m_picLog) {
                ClosePanel(m_picLog);
                return;
            }
            m_viewer->RefreshLogView();
            OpenPanel(m_picLog);
            m_picLog->EnableChoicesFromLogCheck();
        } else if (key == u"Props") {
            frmClockProps& props = ClockProps();
            props.FillOwnZoneList(m_preferences->Values().Zone);
            props.Form_Load();
            SetTopMost(&props, true);
            ExecWindowModal(props);
            ShowStatus();
        } else if (key == u"Exit") {
            close();
            m_alarms->SaveAlarms();
        }
    } catch (const std::exception&) {
        // A failing click ends quietly.
    }
}

void frmMain::Image3_Click()
{
    // The user guide installed with the program, found wherever the program was started from.
    QString path;
    for (const QString& folder : std::as_const(m_dataFolders)) {
        const QString candidate = QDir(folder).filePath(QStringLiteral("Help.RTF"));
        if (QFileInfo(candidate).isFile()) {
            path = QDir::cleanPath(candidate);
            break;
        }
    }
    if (path.isEmpty()) {
        const QString expected =
            m_dataFolders.isEmpty()
                ? QStringLiteral("Help.RTF")
                : QDir::cleanPath(QDir(m_dataFolders.constFirst()).filePath(QStringLiteral("Help.RTF")));
        MessageBox::Notice(
            this, frmHelp::CannotOpen(expected, ENOENT, QString::fromLocal8Bit(std::strerror(ENOENT))));
        return;
    }
    ShowHelp(path);
}

void frmMain::ShowLocalHelp()
{
    ShowHelp(QStringLiteral("Help.RTF"));
}

void frmMain::ShowHelp(const QString& path)
{
    auto* help = new frmHelp(this);
    help->setAttribute(Qt::WA_DeleteOnClose);
    if (!help->Form_Load(path)) {
        delete help;
        return;
    }
    help->show();
}

void frmMain::imgOnTop_Click()
{
    SetTopMost(this, true);
    m_picMain->OnTopImage()->setVisible(false);
    m_picMain->OnTopImage()->setEnabled(false);
    m_picMain->NotTopImage()->setVisible(true);
    m_picMain->NotTopImage()->setEnabled(true);
}

void frmMain::imgNotTop_Click()
{
    SetTopMost(this, false);
    m_picMain->NotTopImage()->setVisible(false);
    m_picMain->NotTopImage()->setEnabled(false);
    m_picMain->OnTopImage()->setVisible(true);
    m_picMain->OnTopImage()->setEnabled(true);
}
