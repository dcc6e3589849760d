#include "logbook/LogPanel.h"

#include "logbook/LogPrinter.h"
#include "logbook/LogViewDocument.h"
#include "logbook/LogViewer.h"
#include "widgets/MonthCalendar.h"
#include "widgets/Named.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTextEdit>

LogPanel::LogPanel(LogViewer& viewer, LogBook& log, QWidget* parent)
    : QFrame(parent), m_viewer(viewer), m_log(log),
      m_calDate(Named(new MonthCalendar(QStringLiteral("Red Dots: available logs  ")),
                      QStringLiteral("calDate"), QStringLiteral("Red Dots: available logs  "))),
      m_chkLog(Named(new QCheckBox(QStringLiteral("Enable Logging")), QStringLiteral("chkLog"),
                     QStringLiteral("Enable Logging"))),
      m_optAll(Named(new QRadioButton(QStringLiteral("All Events")), QStringLiteral("optAll"),
                     QStringLiteral("All Events"))),
      m_optSafetyOnly(Named(new QRadioButton(QStringLiteral("Safety  Events Only")),
                            QStringLiteral("optSafetyOnly"), QStringLiteral("Safety  Events Only"))),
      m_cmdReset(Named(new QPushButton(QStringLiteral("Today")), QStringLiteral("cmdReset"),
                       QStringLiteral("Today"))),
      m_txtLog(Named(new QTextEdit, QStringLiteral("txtLog"), QStringLiteral("Logbook entries"))),
      m_cmdPrint(Named(new QPushButton(QStringLiteral("Print")), QStringLiteral("cmdPrint"),
                       QStringLiteral("Print"))),
      m_hscDate(Named(new QScrollBar(Qt::Horizontal), QStringLiteral("hscDate"), QStringLiteral("Day"))),
      m_cmdCalendar(Named(new QPushButton(QStringLiteral("Calendar...")), QStringLiteral("cmdCalendar"),
                          QStringLiteral("Calendar"))),
      m_cmdCloseLog(Named(new QPushButton(QStringLiteral("Close")), QStringLiteral("cmdCloseLog"),
                          QStringLiteral("Close"))),
      m_txtDate(Named(new QLabel, QStringLiteral("txtDate"), QStringLiteral("txtDate")))
{
    setObjectName(QStringLiteral("picLog"));
    setAccessibleName(QStringLiteral("picLog"));
    setFrameShape(QFrame::StyledPanel);

    m_calDate->setToolTip(QStringLiteral("Available Logs in Red"));
    m_cmdReset->setToolTip(QStringLiteral("View Today's Log"));
    m_cmdPrint->setToolTip(QStringLiteral("Print the above day's log"));
    m_cmdCloseLog->setToolTip(QStringLiteral("Close log book"));
    m_txtLog->setReadOnly(true);
    m_txtLog->setMinimumHeight(170);
    m_hscDate->setRange(-365, 365);
    m_hscDate->setSingleStep(1);
    m_hscDate->setPageStep(1);
    m_hscDate->setValue(0);
    QFont dateFont = m_txtDate->font();
    dateFont.setBold(true);
    m_txtDate->setFont(dateFont);
    m_txtDate->setAlignment(Qt::AlignCenter);

    auto* grid = new QGridLayout(this);
    grid->addWidget(m_txtDate, 0, 0, 1, 4);
    grid->addWidget(m_hscDate, 1, 0, 1, 4);
    grid->addWidget(m_txtLog, 2, 0, 1, 4);
    auto* switches = new QHBoxLayout;
    switches->addWidget(m_chkLog);
    switches->addWidget(m_optAll);
    switches->addWidget(m_optSafetyOnly);
    switches->addStretch(1);
    grid->addLayout(switches, 3, 0, 1, 4);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_cmdReset);
    buttons->addWidget(m_cmdCalendar);
    buttons->addWidget(m_cmdPrint);
    buttons->addStretch(1);
    buttons->addWidget(m_cmdCloseLog);
    grid->addLayout(buttons, 4, 0, 1, 4);
    // The calendar floats over the text when asked for.
    m_calDate->setParent(this);
    m_calDate->setVisible(false);

    // The switches are the writer's: a change made here, by any means, is handed to it.
    connect(m_chkLog, &QCheckBox::toggled, this, &LogPanel::TakeSwitches);
    connect(m_optSafetyOnly, &QRadioButton::toggled, this, &LogPanel::TakeSwitches);
    // However the switch is changed (mouse, keyboard, a screen reader's action), the
    // choices follow it.
    connect(m_chkLog, &QCheckBox::toggled, this, &LogPanel::EnableChoicesFromLogCheck);
    connect(&m_log, &LogBook::SwitchesChanged, this, &LogPanel::ShowSwitches);
    connect(&m_viewer, &LogViewer::LogBookDateChanged, this,
            [this](QDate day) { SetDateCaption(m_viewer.FormatDateLong(day)); });
    connect(&m_viewer, &LogViewer::PlainTextShown, this, &LogPanel::ShowPlainText);
    connect(&m_viewer, &LogViewer::DayShown, this, &LogPanel::ShowDay);
    connect(&m_viewer, &LogViewer::PrintAvailable, this, &LogPanel::SetPrintEnabled);
    connect(&m_viewer, &LogViewer::DaysMarked, this, &LogPanel::ShowMarkedDays);
    connect(m_hscDate, &QScrollBar::valueChanged, this, &LogPanel::hscDate_Change);
    connect(m_cmdReset, &QPushButton::clicked, this, &LogPanel::cmdReset_Click);
    connect(m_cmdCalendar, &QPushButton::clicked, this, &LogPanel::cmdCalendar_Click);
    connect(m_calDate, &MonthCalendar::DateClicked, this, &LogPanel::calDate_Click);
    connect(m_cmdPrint, &QPushButton::clicked, this, &LogPanel::cmdPrint_Click);
    ShowSwitches();
    ShowMarkedDays();
}

void LogPanel::ShowSwitches()
{
    const LogSwitches& switches = m_log.Switches();
    m_showingSwitches = true;
    m_chkLog->setChecked(switches.LogOn);
    // One of the two options is always on: switching the other on is what turns it off.
    (switches.SafetyOnly ? m_optSafetyOnly : m_optAll)->setChecked(true);
    m_showingSwitches = false;
}

void LogPanel::TakeSwitches()
{
    if (!m_showingSwitches)
        m_log.SetSwitches({m_chkLog->isChecked(), m_optSafetyOnly->isChecked()});
}

void LogPanel::ShowMarkedDays()
{
    for (const QDate& day : m_viewer.MarkedLogDays())
        if (!m_calDate->IsMarked(day))
            m_calDate->MarkDate(day);
}

void LogPanel::EnableChoicesFromLogCheck()
{
    m_optAll->setEnabled(m_chkLog->isChecked());
    m_optSafetyOnly->setEnabled(m_chkLog->isChecked());
}

void LogPanel::SetDateCaption(const QString& text)
{
    m_txtDate->setText(text);
}

void LogPanel::ShowPlainText(const QString& text)
{
    m_txtLog->setPlainText(text);
}

void LogPanel::ShowDay(const LogViewDay& day)
{
    QFont font = m_txtLog->font();
    font.setFamily(QStringLiteral("Arial"));
    m_txtLog->setFont(font);
    // The viewer keeps its one document: building replaces its content.
    QTextDocument* document = m_txtLog->document();
    document->setDefaultFont(font);
    BuildLogView(*document, day, DisplayFactor);
}

void LogPanel::SetPrintEnabled(bool enabled)
{
    m_cmdPrint->setEnabled(enabled);
}

void LogPanel::hscDate_Change(int value)
{
    // Putting the bar back to 0 raises this once more with 0, which redraws the same day
    // a second time.
    m_viewer.SetLogBookDate(m_viewer.LogBookDate().addDays(value));
    m_hscDate->setValue(0);
    m_viewer.RefreshLogView();
}

void LogPanel::cmdReset_Click()
{
    m_viewer.SetLogBookDate(m_viewer.Today());
    m_viewer.RefreshLogView();
}

void LogPanel::cmdCalendar_Click()
{
    m_calDate->move(m_calDate->x(), m_txtLog->y());
    m_calDate->adjustSize();
    m_calDate->setVisible(true);
    m_calDate->raise();
    if (m_cmdCalendar->text() == u"Calendar...") {
        m_cmdCalendar->setText(QStringLiteral("Close Calendar"));
        m_calDate->setVisible(true);
        m_calDate->SetCurrentDay(m_viewer.LogBookDate());
    } else {
        m_cmdCalendar->setText(QStringLiteral("Calendar..."));
        m_calDate->setVisible(false);
    }
}

void LogPanel::calDate_Click(QDate clickedDate)
{
    if (!clickedDate.isValid())
        return;
    m_viewer.SetLogBookDate(clickedDate);
    m_viewer.RefreshLogView();
    cmdCalendar_Click();
}

void LogPanel::cmdPrint_Click()
{
    PrintLog(this, m_viewer, m_viewer.LogBookDate());
}
