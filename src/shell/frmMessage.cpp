#include "shell/frmMessage.h"

#include "widgets/TopMost.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmMessage::frmMessage(QWidget* parent, Beeper beep)
    : QDialog(parent), m_lblMessage(new QLabel), m_cmdOk(new QPushButton(QStringLiteral("OK"))),
      m_beep(beep ? std::move(beep) : Beeper([] { QApplication::beep(); }))
{
    setObjectName(QStringLiteral("frmMessage"));
    setWindowTitle(QStringLiteral("Tarrowind"));

    auto* heading = new QLabel(QStringLiteral("Warning - Unable to Synchronize"));
    heading->setObjectName(QStringLiteral("Label1"));
    QFont headingFont = heading->font();
    headingFont.setBold(true);
    heading->setFont(headingFont);
    m_lblMessage->setObjectName(QStringLiteral("lblMessage"));
    m_lblMessage->setWordWrap(true);
    m_cmdOk->setObjectName(QStringLiteral("cmdOk"));
    m_cmdOk->setDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(m_lblMessage);
    layout->addWidget(m_cmdOk, 0, Qt::AlignRight);

    connect(m_cmdOk, &QPushButton::clicked, this, &QDialog::close);
    SetTopMost(this, true);
}

void frmMessage::SetMessage(const QString& text)
{
    m_text = text;
    m_lblMessage->setText(QString(text).replace(u'\r', u'\n'));
}

void frmMessage::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_beep();
    QDialog::changeEvent(event);
}
