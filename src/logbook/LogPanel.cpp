#include "logbook/LogPanel.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

LogPanel::LogPanel(QWidget* parent)
    : QFrame(parent), m_chkLog(new QCheckBox(QStringLiteral("Enable Logging"))),
      m_optAll(new QRadioButton(QStringLiteral("All Events"))),
      m_optSafetyOnly(new QRadioButton(QStringLiteral("Safety  Events Only"))), m_txtDate(new QLabel),
      m_close(new QPushButton(QStringLiteral("Close")))
{
    setObjectName(QStringLiteral("picLog"));
    setAccessibleName(QStringLiteral("picLog"));
    setFrameShape(QFrame::StyledPanel);
    setMinimumHeight(220);

    m_chkLog->setObjectName(QStringLiteral("chkLog"));
    m_chkLog->setAccessibleName(QStringLiteral("Enable Logging"));
    m_optAll->setObjectName(QStringLiteral("optAll"));
    m_optAll->setAccessibleName(QStringLiteral("All Events"));
    m_optSafetyOnly->setObjectName(QStringLiteral("optSafetyOnly"));
    m_optSafetyOnly->setAccessibleName(QStringLiteral("Safety  Events Only"));
    m_txtDate->setObjectName(QStringLiteral("txtDate"));
    m_txtDate->setAccessibleName(QStringLiteral("txtDate"));
    m_close->setObjectName(QStringLiteral("cmdCloseLog"));
    m_close->setAccessibleName(QStringLiteral("Close"));
    m_close->setToolTip(QStringLiteral("Close log book"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(m_txtDate, 0, 0, 1, 3);
    grid->setRowStretch(1, 1);
    grid->addWidget(m_chkLog, 2, 0);
    grid->addWidget(m_optAll, 2, 1);
    grid->addWidget(m_optSafetyOnly, 2, 2);
    grid->addWidget(m_close, 2, 3, Qt::AlignRight);

    connect(m_chkLog, &QCheckBox::clicked, this, &LogPanel::LogCheckClicked);
}

void LogPanel::SetSwitches(qint16 logOn, bool safetyOnly)
{
    m_chkLog->setChecked(logOn == 1);
    m_optSafetyOnly->setChecked(safetyOnly);
    if (!m_optSafetyOnly->isChecked())
        m_optAll->setChecked(true);
}

LogSwitches LogPanel::Switches() const
{
    return {m_chkLog->isChecked(), m_optSafetyOnly->isChecked()};
}

qint16 LogPanel::LogOnValue() const
{
    return m_chkLog->isChecked() ? 1 : 0;
}

bool LogPanel::SafetyOnlyValue() const
{
    return m_optSafetyOnly->isChecked();
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
