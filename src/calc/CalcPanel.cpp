#include "calc/CalcPanel.h"

#include "clock/ZoneClock.h"
#include "widgets/Colours.h"
#include "widgets/Named.h"
#include "widgets/TimeBox.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace {

// The unknown box is yellow (red and green full), the boxes to type in are white.
constexpr ColourValue UnknownColour = 0x00FFFF;
constexpr ColourValue KnownColour = White;

void SetBoxColour(TimeBox* box, ColourValue value)
{
    QPalette palette = box->palette();
    palette.setColor(QPalette::Base, ToQColor(value));
    box->setPalette(palette);
}

// A time box has no caption: its tooltip says what it holds, and is its accessible name.
TimeBox* NamedBox(const QString& name, const QString& tip)
{
    TimeBox* box = Named(new TimeBox, name, tip);
    box->setToolTip(tip);
    return box;
}

} // namespace

CalcPanel::CalcPanel(QWidget* parent)
    : QFrame(parent), m_label1(Named(new QLabel(QStringLiteral("Solve for -->")), QStringLiteral("Label1"),
                                     QStringLiteral("Solve for -->"))),
      m_optETD(
          Named(new QRadioButton(QStringLiteral("ETD")), QStringLiteral("optETD"), QStringLiteral("ETD"))),
      m_optETA(
          Named(new QRadioButton(QStringLiteral("ETA")), QStringLiteral("optETA"), QStringLiteral("ETA"))),
      m_optElapsed(Named(new QRadioButton(QStringLiteral("Elapsed")), QStringLiteral("optElapsed"),
                         QStringLiteral("Elapsed"))),
      m_options(new QButtonGroup(this)),
      m_edtETD(NamedBox(QStringLiteral("edtETD"), QStringLiteral("Departure, local time"))),
      m_edtElapsed(NamedBox(QStringLiteral("edtElapsed"), QStringLiteral("Elapsed time"))),
      m_edtETA(NamedBox(QStringLiteral("edtETA"), QStringLiteral("Arrival, local time"))),
      m_edtETDUTC(NamedBox(QStringLiteral("edtETDUTC"), QStringLiteral("Departure, chosen zone"))),
      m_edtETAUTC(NamedBox(QStringLiteral("edtETAUTC"), QStringLiteral("Arrival, chosen zone"))),
      m_label4(
          Named(new QLabel(QStringLiteral("Elapsed")), QStringLiteral("Label4"), QStringLiteral("Elapsed"))),
      m_label5(Named(new QLabel(QStringLiteral("Local Time")), QStringLiteral("Label5"),
                     QStringLiteral("Local Time"))),
      m_cboZone(Named(new QComboBox, QStringLiteral("cboZone"), QStringLiteral("cboZone"))),
      m_lblSun(Named(new QLabel, QStringLiteral("lblSun"), QStringLiteral("lblSun"))),
      m_cmdTables(Named(new QPushButton(QStringLiteral("Tables")), QStringLiteral("cmdTables"),
                        QStringLiteral("Tables"))),
      m_close(Named(new QPushButton(QStringLiteral("Close")), QStringLiteral("cmdCloseCalc"),
                    QStringLiteral("Close")))
{
    setObjectName(QStringLiteral("picCalc"));
    setAccessibleName(QStringLiteral("picCalc"));
    setFrameShape(QFrame::StyledPanel);
    setMinimumHeight(160);
    m_close->setToolTip(QStringLiteral("Close Window"));

    for (QRadioButton* option : {m_optETD, m_optETA, m_optElapsed})
        m_options->addButton(option);
    // The panel opens solving for the arrival: the usual question at the desk is "leaving
    // now and travelling this long, when do we get there?", and the departure box is the
    // one InitBoxes fills with the current time.
    m_optETA->setChecked(true);

    for (const CalcUnknown which : {CalcUnknown::Elapsed, CalcUnknown::ETD, CalcUnknown::ETA})
        MarkBox(Box(which), which == Unknown());

    // The second-zone boxes are display only: every key typed into them is discarded.
    for (TimeBox* box : {m_edtETDUTC, m_edtETAUTC})
        box->setReadOnly(true);

    // The option buttons read as a sentence after "Solve for -->", ETD and ETA above their
    // columns; local times on the first row of boxes and the chosen zone's on the second.
    // The travel time is the same in every zone and has a row of its own.
    auto* grid = new QGridLayout(this);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(4);
    grid->addWidget(m_label1, 0, 0);
    grid->addWidget(m_optETD, 0, 1);
    grid->addWidget(m_optETA, 0, 2);
    grid->addWidget(m_optElapsed, 0, 3);
    grid->addWidget(m_label5, 1, 0);
    grid->addWidget(m_edtETD, 1, 1);
    grid->addWidget(m_edtETA, 1, 2);
    grid->addWidget(m_cboZone, 2, 0);
    grid->addWidget(m_edtETDUTC, 2, 1);
    grid->addWidget(m_edtETAUTC, 2, 2);
    grid->addWidget(m_label4, 3, 0);
    grid->addWidget(m_edtElapsed, 3, 1);
    grid->addWidget(m_cmdTables, 2, 4);
    grid->addWidget(m_close, 3, 4);
    grid->addWidget(m_lblSun, 4, 0, 1, 4);
    grid->setColumnStretch(3, 1);
    grid->setRowStretch(5, 1);

    // Tab order follows the time line: departure, travel time, arrival.
    setTabOrder(m_edtETD, m_edtElapsed);
    setTabOrder(m_edtElapsed, m_edtETA);

    // Option buttons act when they are chosen, also by code.
    for (QRadioButton* option : {m_optETD, m_optETA, m_optElapsed})
        connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (on)
                InitBoxes();
        });
    connect(m_edtETD, &TimeBox::Change, this, &CalcPanel::edtETD_Change);
    connect(m_edtETA, &TimeBox::Change, this, &CalcPanel::edtETA_Change);
    connect(m_edtElapsed, &TimeBox::Change, this, &CalcPanel::edtElapsed_Change);
    connect(m_cboZone, &QComboBox::activated, this, &CalcPanel::cboZone_Click);
    // Entering a local box selects the whole of it; leaving it drops the selection.
    for (TimeBox* box : {m_edtETD, m_edtElapsed, m_edtETA}) {
        connect(box, &TimeBox::GotFocus, this, [box] { LocalBox_GotFocus(box); });
        connect(box, &TimeBox::LostFocus, box, &TimeBox::deselect);
    }
}

void CalcPanel::LocalBox_GotFocus(TimeBox* box)
{
    SelectWhole(box);
    // A click that brings the focus goes on to place the cursor where it landed, which
    // drops the selection; select again once the click is done.
    if (QGuiApplication::mouseButtons() != Qt::NoButton)
        QTimer::singleShot(0, box, [box] {
            if (box->hasFocus())
                SelectWhole(box);
        });
}

void CalcPanel::SelectWhole(TimeBox* box)
{
    box->setSelection(0, int(box->Text().size()));
}

void CalcPanel::SetSunLine(const QString& text)
{
    m_lblSun->setText(QString(text).replace(u'\r', u'\n'));
}

CalcUnknown CalcPanel::Unknown() const
{
    if (m_optETD->isChecked())
        return CalcUnknown::ETD;
    if (m_optElapsed->isChecked())
        return CalcUnknown::Elapsed;
    return CalcUnknown::ETA;
}

TimeBox* CalcPanel::Box(CalcUnknown which) const
{
    switch (which) {
    case CalcUnknown::ETD:
        return m_edtETD;
    case CalcUnknown::Elapsed:
        return m_edtElapsed;
    case CalcUnknown::ETA:
        break;
    }
    return m_edtETA;
}

void CalcPanel::MarkBox(TimeBox* box, bool unknown)
{
    // The unknown is locked against typing and, though a click still reaches it to copy
    // the result, out of the tab order.
    box->setReadOnly(unknown);
    SetBoxColour(box, unknown ? UnknownColour : KnownColour);
    box->setFocusPolicy(unknown ? Qt::ClickFocus : Qt::StrongFocus);
    if (!unknown)
        box->setEnabled(true);
}

void CalcPanel::InitBoxes()
{
    const CalcUnknown unknown = Unknown();
    TimeBox* focusTarget = nullptr;
    for (const CalcUnknown which : {CalcUnknown::Elapsed, CalcUnknown::ETD, CalcUnknown::ETA}) {
        TimeBox* box = Box(which);
        MarkBox(box, which == unknown);
        if (which == unknown) {
            focusTarget = which == CalcUnknown::ETD ? m_edtETA : m_edtETD;
            focusTarget->setFocus(Qt::OtherFocusReason);
        } else if (which == CalcUnknown::ETD && m_now) {
            // The new text raises the box's change event, which solves again.
            box->SetText(m_now());
        }
    }
    // Filling the departure moved its cursor to the end; the box the focus went to starts
    // with its whole text selected, as when it is entered, so that typing replaces it.
    if (focusTarget && focusTarget->hasFocus())
        SelectWhole(focusTarget);
}

void CalcPanel::Solve()
{
    const CalcUnknown unknown = Unknown();
    // Writing the result raises the unknown box's change event: that refreshes its
    // second-zone box but does not solve again, the box being the unknown.
    Box(unknown)->SetText(SolveFor(unknown, m_edtETD->Text(), m_edtElapsed->Text(), m_edtETA->Text()));
}

void CalcPanel::ShowSecondZone(const TimeBox* local, TimeBox* secondZone)
{
    const CalcHomeZone home = m_homeZone ? m_homeZone() : CalcHomeZone{};
    // An empty list (not filled yet) reads as offset 0, the UTC entry.
    const int chosen = m_cboZone->currentData().toInt();
    if (const auto text = SecondZoneTime(local->Text(), SecondZoneShift(chosen, home.Offset, home.DayLight)))
        secondZone->SetText(*text);
}

void CalcPanel::edtETD_Change()
{
    if (Unknown() != CalcUnknown::ETD)
        Solve();
    ShowSecondZone(m_edtETD, m_edtETDUTC);
}

void CalcPanel::edtETA_Change()
{
    if (Unknown() != CalcUnknown::ETA)
        Solve();
    ShowSecondZone(m_edtETA, m_edtETAUTC);
}

void CalcPanel::edtElapsed_Change()
{
    if (Unknown() != CalcUnknown::Elapsed)
        Solve();
}

void CalcPanel::cboZone_Click()
{
    ShowSecondZone(m_edtETD, m_edtETDUTC);
    ShowSecondZone(m_edtETA, m_edtETAUTC);
}
