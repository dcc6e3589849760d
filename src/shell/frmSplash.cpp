#include "shell/frmSplash.h"

#include "Version.h"
#include "widgets/Icons.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

frmSplash::frmSplash(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint),
      m_lblProductName(new QLabel(QStringLiteral("Tarrowind"))), m_lblRev(new QLabel)
{
    setObjectName(QStringLiteral("frmSplash"));
    setWindowTitle(QStringLiteral("Tarrowind"));
    setAttribute(Qt::WA_DeleteOnClose, false);

    m_lblProductName->setObjectName(QStringLiteral("lblProductName"));
    QFont nameFont = m_lblProductName->font();
    nameFont.setPointSize(26);
    nameFont.setBold(true);
    m_lblProductName->setFont(nameFont);
    m_lblRev->setObjectName(QStringLiteral("lblRev"));
    m_lblRev->setText(ReleaseText(TW_VERSION_MAJOR, TW_VERSION_MINOR, TW_VERSION_PATCH));

    auto* icon = new QLabel;
    icon->setPixmap(AppIcon().pixmap(64, 64));
    auto* text = new QVBoxLayout;
    text->addWidget(m_lblProductName);
    text->addWidget(new QLabel(QStringLiteral("Clock, alarms and logbook for the operations desk")));
    text->addWidget(m_lblRev);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(18);
    layout->addWidget(icon);
    layout->addLayout(text);
    setStyleSheet(QStringLiteral("frmSplash { background: #fdf6d8; border: 2px solid #555; }"));
    setAttribute(Qt::WA_StyledBackground, true);

    m_tmrSplash.setObjectName(QStringLiteral("tmrSplash"));
    m_tmrSplash.setSingleShot(true);
    m_tmrSplash.setTimerType(Qt::PreciseTimer); // a coarse timer may be 100 ms late
    m_tmrSplash.setInterval(2000);
    connect(&m_tmrSplash, &QTimer::timeout, this, &frmSplash::tmrSplash_Timer);
    m_tmrSplash.start();
}

QString frmSplash::ReleaseText(int major, int minor, int revision)
{
    return QStringLiteral("Release %1.%2.%3").arg(major).arg(minor).arg(revision);
}

void frmSplash::tmrSplash_Timer()
{
    Finish();
}

void frmSplash::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    Finish();
}

void frmSplash::closeEvent(QCloseEvent* event)
{
    // Closed early from the window frame: the main window still comes up.
    Finish();
    QWidget::closeEvent(event);
}

void frmSplash::Finish()
{
    m_tmrSplash.stop();
    if (m_finished)
        return;
    m_finished = true;
    // The main window comes up before the splash goes, so that the program always has a
    // window open.
    emit Finished();
    close();
}
