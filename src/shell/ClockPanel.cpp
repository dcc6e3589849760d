#include "shell/ClockPanel.h"

#include "widgets/Colours.h"
#include "widgets/Icons.h"
#include "widgets/SecondsBox.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

ClockPanel::ClockPanel(QWidget* parent)
    : QFrame(parent), m_seconds(new SecondsBox(this)), m_onTop(new QToolButton(this)),
      m_notTop(new QToolButton(this)), m_help(new QToolButton(this)),
      m_sync(new QPushButton(QStringLiteral("Clock Sync"), this))
{
    setObjectName(QStringLiteral("picMain"));
    setAccessibleName(QStringLiteral("picMain"));
    setFrameShape(QFrame::NoFrame);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(6, 4, 6, 4);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(2);

    for (int i = 0; i < ZoneCount; ++i) {
        auto* caption = new QLabel(ZoneTag(i), this);
        caption->setObjectName(QStringLiteral("lblClock_%1").arg(i));
        caption->setAlignment(Qt::AlignCenter);
        m_captions[std::size_t(i)] = caption;

        auto* face = new QLabel(QStringLiteral("00:00"), this);
        face->setObjectName(QStringLiteral("lblClock1_%1").arg(i));
        // Read out by the time it shows; the zone says which face it is.
        face->setAccessibleDescription(ZoneTag(i) + QStringLiteral(" time"));
        face->setProperty("Tag", ZoneTag(i));
        face->setAlignment(Qt::AlignCenter);
        face->setAutoFillBackground(true);
        face->setMinimumWidth(84);
        face->setFrameShape(QFrame::Panel);
        face->setFrameShadow(QFrame::Sunken);
        m_faces[std::size_t(i)] = face;

        grid->addWidget(caption, 0, i);
        grid->addWidget(face, 1, i);
    }

    m_seconds->setObjectName(QStringLiteral("txtSeconds"));
    // Read out as "Seconds" with the seconds shown as its value.
    m_seconds->setAccessibleName(QStringLiteral("Seconds"));
    m_seconds->setFixedWidth(44);
    m_seconds->setText(QStringLiteral("00"));
    auto* secondsCaption = new QLabel(QStringLiteral("Sec"), this);
    secondsCaption->setAlignment(Qt::AlignCenter);
    grid->addWidget(secondsCaption, 0, ZoneCount);
    grid->addWidget(m_seconds, 1, ZoneCount);

    const auto setUpImage = [](QToolButton* button, const QString& name, const QString& tip,
                               const QIcon& icon) {
        button->setObjectName(name);
        button->setAccessibleName(tip);
        button->setToolTip(tip);
        button->setIcon(icon);
        button->setAutoRaise(true);
    };
    setUpImage(m_onTop, QStringLiteral("imgOnTop"), QStringLiteral("Stay on Top"), PinIcon(false));
    setUpImage(m_notTop, QStringLiteral("imgNotTop"), QStringLiteral("Don't stay on top"), PinIcon(true));
    setUpImage(m_help, QStringLiteral("Image3"), QStringLiteral("Help"), HelpIcon());
    m_notTop->setVisible(false);
    m_notTop->setEnabled(false);

    m_sync->setObjectName(QStringLiteral("cmdSync"));

    auto* side = new QHBoxLayout;
    side->setSpacing(0);
    side->addWidget(m_onTop);
    side->addWidget(m_notTop);
    side->addWidget(m_help);
    grid->addLayout(side, 0, ZoneCount + 1);
    grid->addWidget(m_sync, 1, ZoneCount + 1);

    SetSyncButtonColour(SyncNormalColour);
}

void ClockPanel::SetFaceColours(int index, ColourValue fore, ColourValue back)
{
    m_fore.at(std::size_t(index)) = fore;
    m_back.at(std::size_t(index)) = back;
    QLabel* face = Face(index);
    QPalette palette = face->palette();
    palette.setColor(QPalette::WindowText, ToQColor(fore));
    palette.setColor(QPalette::Window, ToQColor(back));
    face->setPalette(palette);
}

void ClockPanel::SetLocalZone(int zone)
{
    for (int i = 0; i < ZoneCount; ++i) {
        QFont font = m_captions[std::size_t(i)]->font();
        font.setBold(i == zone);
        font.setUnderline(i == zone);
        m_captions[std::size_t(i)]->setFont(font);
    }
}

void ClockPanel::SetSyncButtonColour(ColourValue back)
{
    m_syncBack = back;
    QPalette palette = m_sync->palette();
    palette.setColor(QPalette::Button, ToQColor(back));
    m_sync->setPalette(palette);
}
