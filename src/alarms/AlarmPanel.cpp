#include "alarms/AlarmPanel.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

AlarmPanel::AlarmPanel(QWidget* parent)
    : QFrame(parent), m_optDefault(new QRadioButton(QStringLiteral("Default"))),
      m_optNamed(new QRadioButton(QStringLiteral("Named"))), m_close(new QPushButton(QStringLiteral("Close")))
{
    setObjectName(QStringLiteral("picAlarm"));
    setAccessibleName(QStringLiteral("picAlarm"));
    setFrameShape(QFrame::StyledPanel);
    setMinimumHeight(220);

    auto* sound = new QGroupBox(QStringLiteral("Alarm Audio"));
    sound->setObjectName(QStringLiteral("fmeSound"));
    m_optDefault->setObjectName(QStringLiteral("optDefault"));
    m_optDefault->setAccessibleName(QStringLiteral("Default"));
    m_optDefault->setChecked(true);
    m_optNamed->setObjectName(QStringLiteral("optNamed"));
    m_optNamed->setAccessibleName(QStringLiteral("Named"));
    m_optNamed->setToolTip(QStringLiteral("Default sound will be used"));
    auto* soundLayout = new QHBoxLayout(sound);
    soundLayout->addWidget(m_optDefault);
    soundLayout->addWidget(m_optNamed);

    m_close->setObjectName(QStringLiteral("cmdCloseAlarm"));
    m_close->setAccessibleName(QStringLiteral("Close"));
    m_close->setToolTip(QStringLiteral("Close alarms"));

    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(sound);
    bottom->addStretch(1);
    bottom->addWidget(m_close, 0, Qt::AlignBottom);
    layout->addLayout(bottom);
}

void AlarmPanel::SetSoundChoicesEnabled(bool enabled)
{
    m_optDefault->setEnabled(enabled);
    m_optNamed->setEnabled(enabled);
}
