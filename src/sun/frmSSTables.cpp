#include "sun/frmSSTables.h"

#include "common/ErrorText.h"
#include "settings/Settings.h"
#include "sun/BuildSunTable.h"
#include "sun/SolarEvents.h"
#include "sun/frmView.h"
#include "widgets/MessageBox.h"
#include "widgets/Named.h"
#include "widgets/WindowModal.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>

namespace {

struct ZoneEntry
{
    const char16_t* Text;
    int Number;
};

// The Eastern entry reads "-4 hrs" while it carries -5: the number is what counts.
constexpr std::array<ZoneEntry, 6> ZoneEntries{{
    {u"(GMT -9 hrs) Alaska Time", -9},
    {u"(GMT -8 hrs) Pacific Time", -8},
    {u"(GMT -7 hrs) Mountain Time", -7},
    {u"(GMT -6 hrs) Central Time", -6},
    {u"(GMT -4 hrs) Eastern Time", -5},
    {u"(GMT) Greenwich Mean Time - UTC", 0},
}};

constexpr int FirstYear = 1998;
// At least the years the dialog always offered, and this year's table and the next ten.
constexpr int LastListedYear = 2010;
constexpr int YearsAhead = 10;

// A box for a few digits; the digits typed are its text.
QLineEdit* DigitsBox(const QString& name, const QString& accessible, int digits, const QString& text)
{
    auto* box = Named(new QLineEdit, name, accessible);
    box->setInputMask(QString(digits, u'9'));
    box->setText(text);
    box->setMaximumWidth(box->fontMetrics().horizontalAdvance(QString(digits + 2, u'0')) + 12);
    return box;
}

QLabel* Label(const QString& text)
{
    auto* label = new QLabel(text);
    label->setAccessibleName(text);
    return label;
}

} // namespace

frmSSTables::frmSSTables(const Settings& settings, int thisYear, QWidget* parent)
    : QDialog(parent), m_txtLabel(Named(new QLineEdit(QStringLiteral("Local")), QStringLiteral("txtLabel"),
                                        QStringLiteral("Location Name"))),
      m_edtLat(DigitsBox(QStringLiteral("edtLat"), QStringLiteral("Latitude degrees"), 2, settings.LatDeg)),
      m_edtLatMinutes(
          DigitsBox(QStringLiteral("edtLatMinutes"), QStringLiteral("Latitude minutes"), 2, settings.LatMin)),
      m_edtLong(
          DigitsBox(QStringLiteral("edtLong"), QStringLiteral("Longitude degrees"), 3, settings.LongDeg)),
      m_edtLongMinutes(DigitsBox(QStringLiteral("edtLongMinutes"), QStringLiteral("Longitude minutes"), 2,
                                 settings.LongMin)),
      m_cboTimeZone(Named(new QComboBox, QStringLiteral("cboTimeZone"), QStringLiteral("Time Zone"))),
      m_chkDayLight(Named(new QCheckBox(QStringLiteral("Daylight Time")), QStringLiteral("chkDayLight"),
                          QStringLiteral("Daylight Time"))),
      m_cboYear(Named(new QComboBox, QStringLiteral("cboYear"), QStringLiteral("Year"))),
      m_openView([](QWidget* owner, const SunTablePlace& place) {
          frmView view(place, owner);
          ExecWindowModal(view);
      })
{
    setObjectName(QStringLiteral("frmSSTables"));
    setWindowTitle(QStringLiteral("Sunrise/Sunset Tables"));
    m_edtLatMinutes->setToolTip(QStringLiteral("Enter minutes 0-59"));
    m_edtLongMinutes->setToolTip(QStringLiteral("Enter minutes 0-59"));

    for (const ZoneEntry& zone : ZoneEntries)
        m_cboTimeZone->addItem(QString::fromUtf16(zone.Text), zone.Number);
    m_cboTimeZone->setCurrentIndex(
        settings.Zone >= 0 && settings.Zone < int(ZoneEntries.size()) ? settings.Zone : -1);
    m_chkDayLight->setChecked(settings.DayLight != 0);
    for (int year = FirstYear; year <= std::max(LastListedYear, thisYear + YearsAhead); ++year)
        m_cboYear->addItem(QString::number(year), year);
    m_cboYear->setCurrentIndex(0);

    auto* calculate = Named(new QPushButton(QStringLiteral("Calculate")), QStringLiteral("cmdCalculate"),
                            QStringLiteral("Calculate"));
    calculate->setDefault(true);
    auto* close =
        Named(new QPushButton(QStringLiteral("Close")), QStringLiteral("cmdClose"), QStringLiteral("Close"));

    auto* coordinates = new QGroupBox(QStringLiteral("Location Coordinates "));
    coordinates->setObjectName(QStringLiteral("fraCoordinates"));
    auto* grid = new QGridLayout(coordinates);
    grid->addWidget(Label(QStringLiteral("Deg.")), 0, 1);
    grid->addWidget(Label(QStringLiteral("Min.")), 0, 2);
    grid->addWidget(Label(QStringLiteral("Lat.")), 1, 0);
    grid->addWidget(m_edtLat, 1, 1);
    grid->addWidget(m_edtLatMinutes, 1, 2);
    grid->addWidget(Label(QStringLiteral("Long.")), 2, 0);
    grid->addWidget(m_edtLong, 2, 1);
    grid->addWidget(m_edtLongMinutes, 2, 2);
    grid->setColumnStretch(3, 1);

    auto* form = new QGridLayout(this);
    form->addWidget(Label(QStringLiteral("Location Name")), 0, 0);
    form->addWidget(m_txtLabel, 0, 1, 1, 2);
    form->addWidget(coordinates, 1, 0, 1, 3);
    form->addWidget(Label(QStringLiteral("Time Zone")), 2, 0);
    form->addWidget(m_cboTimeZone, 2, 1, 1, 2);
    form->addWidget(m_chkDayLight, 3, 1, 1, 2);
    form->addWidget(Label(QStringLiteral("Year")), 4, 0);
    form->addWidget(m_cboYear, 4, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(calculate);
    buttons->addWidget(close);
    form->addLayout(buttons, 5, 0, 1, 3);

    connect(calculate, &QPushButton::clicked, this, &frmSSTables::cmdCalculate_Click);
    connect(close, &QPushButton::clicked, this, &frmSSTables::cmdClose_Click);
}

int frmSSTables::ZoneHoursFor(int storedNumber, bool dayLight)
{
    // Daylight time moves a zone west of Greenwich one hour east (Eastern: 5, or 4). The
    // hour is added before the sign is dropped, so Greenwich in daylight time gives 1.
    return std::abs(storedNumber + (dayLight ? 1 : 0));
}

SunTablePlace frmSSTables::Place() const
{
    SunTablePlace place;
    place.LocationName = m_txtLabel->text();
    place.LatDeg = qint16(m_edtLat->text().toInt());
    place.LatMin = qint16(m_edtLatMinutes->text().toInt());
    place.LongDeg = qint16(m_edtLong->text().toInt());
    place.LongMin = qint16(m_edtLongMinutes->text().toInt());
    place.ZoneHours = qint16(ZoneHoursFor(m_cboTimeZone->currentData().toInt(), m_chkDayLight->isChecked()));
    place.Year = m_cboYear->currentText();
    return place;
}

void frmSSTables::cmdCalculate_Click()
{
    try {
        Calculate();
    } catch (const std::exception& error) {
        MessageBox::Notice(this, QStringLiteral("Unable to make the table: ") +
                                     QString::fromLocal8Bit(error.what()));
    }
}

void frmSSTables::Calculate()
{
    const QString message = ValidateCoordinates(m_edtLat->text(), m_edtLatMinutes->text(), m_edtLong->text(),
                                                m_edtLongMinutes->text());
    if (!message.isEmpty()) {
        MessageBox::Notice(this, QStringLiteral("There is an error in the coordinates you entered: \r\r") +
                                     message);
        return;
    }
    if (m_cboTimeZone->currentIndex() < 0) {
        // A zone setting outside the list leaves none chosen: the table would be in no zone.
        MessageBox::Notice(this, QStringLiteral("Choose the time zone of the table."));
        return;
    }
    const SunTablePlace place = Place();
    const QString error = BuildSunTable(this, place, QStringLiteral("View"));
    if (!error.isEmpty()) {
        // A file that cannot be written, as a file-access error.
        MessageBox::Notice(this, ErrorText(QStringLiteral("Error writing ") + SunTableFile, 75, error));
        return;
    }
    m_openView(this, place);
}

void frmSSTables::cmdClose_Click()
{
    close();
}
