#include "props/frmClockProps.h"

#include "clock/Clock.h"
#include "clock/ZoneClock.h"
#include "platform/StartAtLogin.h"
#include "settings/Preferences.h"
#include "settings/TimeServers.h"
#include "sun/SolarEvents.h"
#include "sync/SyncScheduler.h"
#include "sync/SyncState.h"
#include "widgets/ColourDialog.h"
#include "widgets/Colours.h"
#include "widgets/FileDialog.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"
#include "widgets/TimeBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

// The interval list: whole hours from 1.
constexpr int SyncHourChoices = 24;

QLineEdit* CoordinateBox(const QString& name, const QString& accessible, int digits, QWidget* parent)
{
    auto* box = Named(new QLineEdit(parent), name, accessible);
    box->setMaxLength(digits);
    box->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,%1}").arg(digits)), box));
    box->setFixedWidth(44);
    return box;
}

QLineEdit* Swatch(const QString& name, const QString& accessible, QWidget* parent)
{
    auto* swatch = Named(new QLineEdit(parent), name, accessible);
    swatch->setReadOnly(true);
    swatch->setToolTip(QStringLiteral("Click here to change color"));
    swatch->setFixedSize(44, 22);
    swatch->setCursor(Qt::PointingHandCursor);
    return swatch;
}

void Paint(QLineEdit* swatch, ColourValue colour)
{
    QPalette palette = swatch->palette();
    palette.setColor(QPalette::Base, ToQColor(colour));
    swatch->setPalette(palette);
}

} // namespace

frmClockProps::frmClockProps(const ClockPropsServices& services, QWidget* parent)
    : QDialog(parent), m_services(services),
      m_cboTimeZone(
          Named(new QComboBox(this), QStringLiteral("cboTimeZone"), QStringLiteral("Local Time Zone"))),
      m_chkDayLight(
          Named(new QCheckBox(QStringLiteral("Daylight Time"), this), QStringLiteral("chkDayLight"), {})),
      m_lblSet(Named(new QLabel(this), QStringLiteral("lblSet"), {})),
      m_check1(Named(new QCheckBox(QStringLiteral("Audible Alarm"), this), QStringLiteral("Check1"), {})),
      m_chkWinStart(new QCheckBox(this)),
      m_text1(Named(new QLineEdit(this), QStringLiteral("Text1"), QStringLiteral("Default Sound Clip"))),
      m_cmdBrowse(Named(new QPushButton(QStringLiteral("Browse..."), this), QStringLiteral("cmdBrowse"), {})),
      m_edtLat(CoordinateBox(QStringLiteral("edtLat"), QStringLiteral("Latitude degrees"), 2, this)),
      m_edtLatMinutes(
          CoordinateBox(QStringLiteral("edtLatMinutes"), QStringLiteral("Latitude minutes"), 2, this)),
      m_edtLong(CoordinateBox(QStringLiteral("edtLong"), QStringLiteral("Longitude degrees"), 3, this)),
      m_edtLongMinutes(
          CoordinateBox(QStringLiteral("edtLongMinutes"), QStringLiteral("Longitude minutes"), 2, this)),
      m_edtDefault(Named(new TimeBox(this), QStringLiteral("edtDefault"),
                         QStringLiteral("Default Safety Check Interval"))),
      m_chkUTCRule(Named(
          new QCheckBox(QStringLiteral("Turn off UTC clock if not synchronized to an Internet clock "), this),
          QStringLiteral("chkUTCRule"), {})),
      m_txtBack(Swatch(QStringLiteral("txtBack"), QStringLiteral("Background Color"), this)),
      m_txtFore(Swatch(QStringLiteral("txtFore"), QStringLiteral("Font Color"), this)),
      m_cmdFont(Named(new QPushButton(QStringLiteral("Clock Font"), this), QStringLiteral("cmdFont"), {})),
      m_optPC(
          Named(new QRadioButton(QStringLiteral("Use Computer's Clock"), this), QStringLiteral("optPC"), {})),
      m_optInternet(Named(new QRadioButton(QStringLiteral("Use Internet Clock"), this),
                          QStringLiteral("optInternet"), {})),
      m_cboSyncSite(Named(new QComboBox(this), QStringLiteral("cboSyncSite"), QStringLiteral("Clock Site"))),
      m_cboSyncHours(
          Named(new QComboBox(this), QStringLiteral("cboSyncHours"), QStringLiteral("Interval (hrs)"))),
      m_cboConnection(
          Named(new QComboBox(this), QStringLiteral("cboConnection"), QStringLiteral("Connection"))),
      m_cmdSetInet(
          Named(new QPushButton(QStringLiteral("Sync Now"), this), QStringLiteral("cmdSetInet"), {})),
      m_cmdSync(Named(new QPushButton(QStringLiteral("Set Computer's Clock to Internet Clock"), this),
                      QStringLiteral("cmdSync"), {})),
      m_lblOffset(Named(new QLabel(this), QStringLiteral("lblOffset"), {})),
      m_cmdOK(Named(new QPushButton(QStringLiteral("OK"), this), QStringLiteral("cmdOK"), {})),
      m_cmdCancel(Named(new QPushButton(QStringLiteral("Cancel"), this), QStringLiteral("cmdCancel"), {}))
{
    setObjectName(QStringLiteral("frmClockProps"));
    setWindowTitle(QStringLiteral("Clock Properties"));
    m_chkWinStart->setObjectName(QStringLiteral("chkWinStart"));
    // A box without a caption is read out by the label beside it.
    m_chkWinStart->setAccessibleName(QStringLiteral("Start with Windows"));
    m_chkWinStart->setToolTip(QStringLiteral("Check if you want Tarrowind to start automatically"));
    m_chkDayLight->setToolTip(QStringLiteral("Check if you are currently under daylight time"));
    m_edtLatMinutes->setToolTip(QStringLiteral("Enter minutes 0-59"));
    m_optInternet->setToolTip(QStringLiteral("Requires Internet Connection"));
    m_cboConnection->setToolTip(QStringLiteral("Select a connection"));
    m_cmdSync->setToolTip(QStringLiteral("Set your computer clock to a master Internet clock"));
    m_cboSyncSite->setEditable(true);
    m_cboSyncSite->addItems(TimeServers());
    for (int hours = 1; hours <= SyncHourChoices; ++hours)
        m_cboSyncHours->addItem(QString::number(hours));
    m_cboConnection->addItems({QStringLiteral("Direct Connection"), QStringLiteral("Dial-up Connection")});
    m_cmdOK->setDefault(true);
    BuildLayout();
    FillOwnZoneList(1);
    // Filled again when the dialog opens; never shown empty.
    m_lblSet->setText(m_services.clock.Now().toString(QStringLiteral("HH:mm")));
    m_lblOffset->setText(QStringLiteral("Time Difference:  ") +
                         QString::number(m_services.preferences.Values().InetMinOffset) +
                         QStringLiteral(" minutes"));

    // Only what the operator does counts: a list refilled by the program changes nothing.
    connect(m_check1, &QCheckBox::clicked, this, &frmClockProps::Check1_Click);
    connect(m_chkDayLight, &QCheckBox::clicked, this, &frmClockProps::chkDayLight_Click);
    connect(m_chkUTCRule, &QCheckBox::clicked, this, &frmClockProps::chkUTCRule_Click);
    connect(m_chkWinStart, &QCheckBox::clicked, this, &frmClockProps::chkWinStart_Click);
    connect(m_cboTimeZone, &QComboBox::activated, this, &frmClockProps::cboTimeZone_Click);
    connect(m_cboSyncHours, &QComboBox::activated, this, &frmClockProps::cboSyncHours_Click);
    connect(m_cboConnection, &QComboBox::activated, this, &frmClockProps::cboConnection_Click);
    connect(m_cmdBrowse, &QPushButton::clicked, this, &frmClockProps::cmdBrowse_Click);
    connect(m_cmdFont, &QPushButton::clicked, this, &frmClockProps::cmdFont_Click);
    connect(m_optPC, &QRadioButton::clicked, this, &frmClockProps::optSource_Click);
    connect(m_optInternet, &QRadioButton::clicked, this, &frmClockProps::optSource_Click);
    connect(m_cmdSetInet, &QPushButton::clicked, this, &frmClockProps::cmdSync_Click);
    connect(m_cmdSync, &QPushButton::clicked, this, &frmClockProps::cmdSync_Click);
    connect(m_cmdOK, &QPushButton::clicked, this, &frmClockProps::cmdOK_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &frmClockProps::cmdCancel_Click);
    m_txtBack->installEventFilter(this);
    m_txtFore->installEventFilter(this);

    // The boxes change their preference as they are typed in.
    const auto onEdit = [this](QLineEdit* box, QString Settings::*field) {
        connect(box, &QLineEdit::textChanged, this, [this, field](const QString& text) {
            if (!m_filling)
                m_services.preferences.Change([&](Settings& values) { values.*field = text; });
        });
    };
    onEdit(m_text1, &Settings::Sound);
    onEdit(m_edtLat, &Settings::LatDeg);
    onEdit(m_edtLatMinutes, &Settings::LatMin);
    onEdit(m_edtLong, &Settings::LongDeg);
    onEdit(m_edtLongMinutes, &Settings::LongMin);
    connect(m_edtDefault, &TimeBox::Change, this, [this] {
        // Only a whole "hh:mm" becomes the default: a half-typed box is no interval.
        const QString text = m_edtDefault->Text();
        if (!m_filling && !text.contains(u'_'))
            m_services.preferences.Change([&text](Settings& values) { values.DefaultInterval = text; });
    });
    // A sync started here: the time shown and the time source follow its outcome.
    connect(&m_services.scheduler, &SyncScheduler::RunEnded, this, [this] {
        if (!isVisible())
            return;
        ShowSetTime();
        SetState();
    });
}

void frmClockProps::BuildLayout()
{
    const auto label = [this](const QString& text) { return new QLabel(text, this); };

    auto* frame2 = Named(new QGroupBox(QStringLiteral("General"), this), QStringLiteral("Frame2"),
                         QStringLiteral("General"));
    auto* general = new QGridLayout(frame2);
    general->addWidget(m_check1, 0, 0, 1, 2);
    general->addWidget(label(QStringLiteral("Start with Windows")), 0, 2);
    general->addWidget(m_chkWinStart, 0, 3);
    general->addWidget(label(QStringLiteral("Default Sound Clip")), 1, 0);
    general->addWidget(m_text1, 1, 1, 1, 2);
    general->addWidget(m_cmdBrowse, 1, 3);
    general->addWidget(label(QStringLiteral("Location Coordinates for Sunrise/Sunset   ")), 2, 0, 1, 4);
    auto* coordinates = new QGridLayout;
    coordinates->addWidget(label(QStringLiteral("Deg.")), 0, 1);
    coordinates->addWidget(label(QStringLiteral("Min.")), 0, 2);
    coordinates->addWidget(label(QStringLiteral("Lat.")), 1, 0);
    coordinates->addWidget(m_edtLat, 1, 1);
    coordinates->addWidget(m_edtLatMinutes, 1, 2);
    coordinates->addWidget(label(QStringLiteral("Long.")), 2, 0);
    coordinates->addWidget(m_edtLong, 2, 1);
    coordinates->addWidget(m_edtLongMinutes, 2, 2);
    coordinates->setColumnStretch(3, 1);
    general->addLayout(coordinates, 3, 0, 1, 2);
    general->addWidget(label(QStringLiteral("Default Safety Check Interval")), 3, 2, Qt::AlignTop);
    general->addWidget(m_edtDefault, 3, 3, Qt::AlignTop);

    auto* frame1 = Named(new QGroupBox(QStringLiteral("Clock"), this), QStringLiteral("Frame1"),
                         QStringLiteral("Clock"));
    auto* clock = new QGridLayout(frame1);
    clock->addWidget(label(QStringLiteral("Local Time Zone")), 0, 0);
    clock->addWidget(m_cboTimeZone, 0, 1, 1, 2);
    clock->addWidget(m_chkDayLight, 0, 3);
    clock->addWidget(label(QStringLiteral("Current Local Time")), 1, 0);
    clock->addWidget(m_lblSet, 1, 1);
    clock->addWidget(label(QStringLiteral("Font Color")), 2, 0);
    clock->addWidget(m_txtFore, 2, 1);
    clock->addWidget(label(QStringLiteral("Background Color")), 2, 2);
    clock->addWidget(m_txtBack, 2, 3);
    clock->addWidget(m_cmdFont, 3, 0);
    clock->addWidget(m_chkUTCRule, 3, 1, 1, 3);

    auto* frame3 = Named(new QGroupBox(QStringLiteral("Time Source"), this), QStringLiteral("Frame3"),
                         QStringLiteral("Time Source"));
    auto* source = new QGridLayout(frame3);
    source->addWidget(m_optPC, 0, 0);
    source->addWidget(m_optInternet, 0, 1);
    source->addWidget(label(QStringLiteral("Clock Site")), 1, 0);
    source->addWidget(m_cboSyncSite, 1, 1, 1, 2);
    source->addWidget(label(QStringLiteral("Interval (hrs)")), 2, 0);
    source->addWidget(m_cboSyncHours, 2, 1);
    source->addWidget(label(QStringLiteral("Connection")), 3, 0);
    source->addWidget(m_cboConnection, 3, 1);
    source->addWidget(m_cmdSetInet, 2, 2);
    source->addWidget(m_cmdSync, 4, 0, 1, 2);
    source->addWidget(m_lblOffset, 4, 2);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdOK);
    buttons->addWidget(m_cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame1);
    layout->addWidget(frame2);
    layout->addWidget(frame3);
    layout->addLayout(buttons);
}

void frmClockProps::FillOwnZoneList(int zone)
{
    const QSignalBlocker quiet(m_cboTimeZone);
    m_cboTimeZone->clear();
    for (int i = 0; i < ZoneCount; ++i)
        m_cboTimeZone->addItem(DialogZoneLabel(i), Zones.at(std::size_t(i)).Offset);
    m_cboTimeZone->setCurrentIndex(zone >= 0 && zone < ZoneCount ? zone : -1);
}

void frmClockProps::Form_Load()
{
    m_filling = true;
    const Settings& values = m_services.preferences.Values();
    m_cboTimeZone->setCurrentIndex(values.Zone >= 0 && values.Zone < m_cboTimeZone->count() ? values.Zone
                                                                                            : -1);
    m_font.setFamily(values.FontName);
    if (values.FontSize > 0)
        m_font.setPointSizeF(values.FontSize);
    m_font.setBold(values.FontBold);
    m_font.setItalic(values.FontItalic);
    ShowSwatches();
    m_text1->setText(values.Sound);
    m_check1->setChecked(values.Audible == 1);
    m_chkDayLight->setChecked(values.DayLight != 0);
    m_chkUTCRule->setChecked(values.UTCRule != 0);
    m_edtLat->setText(values.LatDeg);
    m_edtLatMinutes->setText(values.LatMin);
    m_edtLong->setText(values.LongDeg);
    m_edtLongMinutes->setText(values.LongMin);
    // The box says whether the program really starts at login, whatever was stored.
    const bool startsAtLogin = m_services.startAtLogin.IsEnabled();
    m_chkWinStart->setChecked(startsAtLogin);
    if ((values.StartWithWindows != 0) != startsAtLogin)
        m_services.preferences.Change(
            [startsAtLogin](Settings& v) { v.StartWithWindows = startsAtLogin ? 1 : 0; });
    m_edtDefault->SetText(values.DefaultInterval);
    (values.AutoSync != 0 ? m_optInternet : m_optPC)->setChecked(true);
    m_cboConnection->setCurrentIndex(values.Connection == 1 ? 1 : 0);
    m_cboSyncSite->setCurrentText(values.SyncSite);
    m_cboSyncHours->setCurrentIndex(
        values.AutoSyncHrs >= 1 && values.AutoSyncHrs <= SyncHourChoices ? values.AutoSyncHrs - 1 : -1);
    m_lblSet->setText(m_services.clock.Now().toString(QStringLiteral("HH:mm")));
    m_filling = false;
    SetState();
}

void frmClockProps::ShowSwatches()
{
    const Settings& values = m_services.preferences.Values();
    Paint(m_txtBack, values.BackColor);
    Paint(m_txtFore, ParseInt32(values.ForeColor).value_or(White));
}

void frmClockProps::ShowSetTime()
{
    // The clock's time in the chosen zone.
    const int hours = m_cboTimeZone->currentData().toInt();
    m_lblSet->setText(
        m_services.clock.Now().toUTC().addSecs(qint64(hours) * 3600).toString(QStringLiteral("HH:mm")));
}

void frmClockProps::Check1_Click()
{
    const qint16 audible = m_check1->isChecked() ? 1 : 0;
    m_services.preferences.Change([audible](Settings& v) { v.Audible = audible; });
}

void frmClockProps::chkDayLight_Click()
{
    const qint16 dayLight = m_chkDayLight->isChecked() ? 1 : 0;
    m_services.preferences.Change([dayLight](Settings& v) { v.DayLight = dayLight; });
}

void frmClockProps::chkUTCRule_Click()
{
    const qint16 rule = m_chkUTCRule->isChecked() ? 1 : 0;
    m_services.preferences.Change([rule](Settings& v) { v.UTCRule = rule; });
}

void frmClockProps::chkWinStart_Click()
{
    if (const auto error = m_services.startAtLogin.SetEnabled(m_chkWinStart->isChecked()))
        MessageBox::Notice(this, *error);
    // The box and the preference say what is so, done or not.
    const bool on = m_services.startAtLogin.IsEnabled();
    m_chkWinStart->setChecked(on);
    m_services.preferences.Change([on](Settings& v) { v.StartWithWindows = on ? 1 : 0; });
}

void frmClockProps::cboTimeZone_Click(int index)
{
    m_services.preferences.Change([index](Settings& v) { v.Zone = index; });
}

void frmClockProps::cboSyncHours_Click(int index)
{
    m_services.preferences.Change([index](Settings& v) { v.AutoSyncHrs = qint16(index + 1); });
}

void frmClockProps::cboConnection_Click(int index)
{
    m_services.preferences.Change([index](Settings& v) { v.Connection = qint16(index); });
}

void frmClockProps::cmdBrowse_Click()
{
    const QString path = FileDialog::GetOpenFileName(this, QStringLiteral("Alarm"), m_text1->text(),
                                                     QStringLiteral("Wave (*.Wav)"));
    if (!path.isEmpty())
        m_text1->setText(path);
}

void frmClockProps::txtBack_Click()
{
    if (const auto colour = ColourDialog::GetColour(this, m_services.preferences.Values().BackColor)) {
        m_services.preferences.Change([&colour](Settings& v) { v.BackColor = *colour; });
        ShowSwatches();
    }
}

void frmClockProps::txtFore_Click()
{
    const ColourValue now = ParseInt32(m_services.preferences.Values().ForeColor).value_or(White);
    if (const auto colour = ColourDialog::GetColour(this, now)) {
        m_services.preferences.Change([&colour](Settings& v) { v.ForeColor = QString::number(*colour); });
        ShowSwatches();
    }
}

void frmClockProps::cmdFont_Click()
{
    if (const auto font = FontDialog::GetFont(this, m_font))
        m_font = *font;
}

void frmClockProps::optSource_Click()
{
    SetState();
}

void frmClockProps::SetState()
{
    const bool internet = m_optInternet->isChecked();
    const Settings& values = m_services.preferences.Values();
    // Changed only where it differs: an unchanged source redraws nothing.
    if ((values.AutoSync != 0) != internet || (!internet && values.InetMinOffset != 0))
        m_services.preferences.Change([internet](Settings& v) {
            v.AutoSync = internet ? -1 : 0;
            if (!internet)
                v.InetMinOffset = 0; // the computer's clock is the clock
        });
    for (QWidget* w : {static_cast<QWidget*>(m_cboSyncSite), static_cast<QWidget*>(m_cboSyncHours),
                       static_cast<QWidget*>(m_cboConnection), static_cast<QWidget*>(m_cmdSync),
                       static_cast<QWidget*>(m_cmdSetInet)})
        w->setEnabled(internet);
    m_lblOffset->setVisible(internet);
    if (internet) {
        Reschedule();
        m_lblOffset->setText(QStringLiteral("Time Difference:  ") +
                             QString::number(m_services.preferences.Values().InetMinOffset) +
                             QStringLiteral(" minutes"));
    }
}

void frmClockProps::cmdSync_Click()
{
    TakeSite();
    m_services.scheduler.StartSync(false, this);
}

void frmClockProps::TakeSite()
{
    QString site = m_cboSyncSite->currentText().trimmed();
    if (site.isEmpty()) {
        site = TimeServers().constFirst();
        m_cboSyncSite->setCurrentText(site);
    }
    m_services.preferences.Change([&site](Settings& v) { v.SyncSite = site; });
}

void frmClockProps::Reschedule()
{
    // The sync button shows the next sync by the interval now chosen.
    m_services.sync.Refresh();
}

void frmClockProps::cmdOK_Click()
{
    TakeSite();
    const Settings& values = m_services.preferences.Values();
    const QString problems = CoordinateProblems();
    if (!problems.isEmpty()) {
        MessageBox::Notice(this, QStringLiteral("There is an error in the coordinates you entered: \r\r") +
                                     problems);
        emit SunDisplayChanged(false);
        return;
    }
    const QFont font = m_font;
    // A font measured in pixels has no point size: the size the clock has is kept.
    const double size =
        font.pointSizeF() > 0 && font.pointSizeF() <= 1000 ? font.pointSizeF() : values.FontSize;
    m_services.preferences.Change([&font, size](Settings& v) {
        v.FontName = font.family();
        v.FontSize = size;
        v.FontBold = font.bold();
        v.FontItalic = font.italic();
    });
    ShowSunByCoordinates();
    Reschedule();
    accept();
}

QString frmClockProps::CoordinateProblems() const
{
    const Settings& values = m_services.preferences.Values();
    return ValidateCoordinates(values.LatDeg, values.LatMin, values.LongDeg, values.LongMin);
}

void frmClockProps::ShowSunByCoordinates()
{
    // Sunrise and sunset are shown for right coordinates with a latitude other than 0.
    emit SunDisplayChanged(CoordinateProblems().isEmpty() &&
                           m_services.preferences.Values().LatDeg.toDouble() != 0);
}

void frmClockProps::cmdCancel_Click()
{
    TakeSite();
    // The coordinates typed stay, as every other change does; sunrise and sunset are shown
    // only when they are right.
    ShowSunByCoordinates();
    Reschedule();
    QDialog::reject();
}

void frmClockProps::reject()
{
    // Escape and the frame are Cancel.
    cmdCancel_Click();
}

bool frmClockProps::eventFilter(QObject* watched, QEvent* event)
{
    const bool mouse = event->type() == QEvent::MouseButtonPress;
    const bool key =
        event->type() == QEvent::KeyPress && (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space ||
                                              static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return);
    if (mouse || key) {
        if (watched == m_txtBack) {
            txtBack_Click();
            return true;
        }
        if (watched == m_txtFore) {
            txtFore_Click();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}
