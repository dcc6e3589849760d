#pragma once

#include "clock/ZoneClock.h"

#include <QFrame>

#include <array>

class QLabel;
class QPushButton;
class QToolButton;
class SecondsBox;

// The clock panel `picMain`: six zone faces with their captions, the seconds box, the
// stay-on-top pictures, the help picture and the sync button.
class ClockPanel : public QFrame
{
    Q_OBJECT
public:
    explicit ClockPanel(QWidget* parent = nullptr);

    QLabel* Face(int index) const { return m_faces.at(std::size_t(index)); }
    SecondsBox* Seconds() const { return m_seconds; }
    QPushButton* SyncButton() const { return m_sync; }
    QToolButton* HelpImage() const { return m_help; }
    QToolButton* OnTopImage() const { return m_onTop; }
    QToolButton* NotTopImage() const { return m_notTop; }

    void SetFaceColours(int index, ColourValue fore, ColourValue back);
    ColourValue FaceFore(int index) const { return m_fore.at(std::size_t(index)); }
    ColourValue FaceBack(int index) const { return m_back.at(std::size_t(index)); }
    // Marks the caption of the local zone.
    void SetLocalZone(int zone);

    void SetSyncButtonColour(ColourValue back);
    ColourValue SyncButtonBack() const { return m_syncBack; }

private:
    std::array<QLabel*, ZoneCount> m_faces{};
    std::array<QLabel*, ZoneCount> m_captions{};
    std::array<ColourValue, ZoneCount> m_fore{};
    std::array<ColourValue, ZoneCount> m_back{};
    SecondsBox* m_seconds;
    QToolButton* m_onTop;
    QToolButton* m_notTop;
    QToolButton* m_help;
    QPushButton* m_sync;
    ColourValue m_syncBack = SyncNormalColour;
};
