#include "calc/CalcPanel.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

CalcPanel::CalcPanel(QWidget* parent)
    : QFrame(parent), m_cboZone(new QComboBox), m_lblSun(new QLabel),
      m_close(new QPushButton(QStringLiteral("Close")))
{
    setObjectName(QStringLiteral("picCalc"));
    setAccessibleName(QStringLiteral("picCalc"));
    setFrameShape(QFrame::StyledPanel);
    setMinimumHeight(160);

    m_cboZone->setObjectName(QStringLiteral("cboZone"));
    m_cboZone->setAccessibleName(QStringLiteral("cboZone"));
    m_lblSun->setObjectName(QStringLiteral("lblSun"));
    m_lblSun->setAccessibleName(QStringLiteral("lblSun"));
    m_close->setObjectName(QStringLiteral("cmdCloseCalc"));
    m_close->setAccessibleName(QStringLiteral("Close"));
    m_close->setToolTip(QStringLiteral("Close Window"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(m_cboZone, 0, 0);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_lblSun, 2, 0);
    grid->addWidget(m_close, 2, 2, Qt::AlignRight | Qt::AlignBottom);
}

void CalcPanel::SetSunLine(const QString& text)
{
    m_sunText = text;
    m_lblSun->setText(QString(text).replace(u'\r', u'\n'));
}
