#pragma once

#include "clock/ZoneClock.h"

#include <QFont>

#include <optional>

class QWidget;

// The one helper for choosing a colour. A test gives it the next answer in advance, so that
// window tests never block on a dialog.
class ColourDialog
{
public:
    // The chosen colour, or nothing when the user cancelled.
    static std::optional<ColourValue> GetColour(QWidget* parent, ColourValue start);

    // Test hooks: with test mode on, no dialog is shown and each call takes the next queued
    // answer (a cancel when none is queued).
    static void SetTestMode(bool on);
    static void SetNextAnswer(std::optional<ColourValue> colour);
    static int Asked();
};

// The one helper for choosing a font, with the same test hooks.
class FontDialog
{
public:
    // The chosen font, or nothing when the user cancelled.
    static std::optional<QFont> GetFont(QWidget* parent, const QFont& start);

    static void SetTestMode(bool on);
    static void SetNextAnswer(std::optional<QFont> font);
    static int Asked();
};
