#pragma once

#include <QString>

class QWidget;

// The one helper for the system's printer dialog, offered without a page-range choice. A
// test gives it the next answer in advance, so that window tests never block on a dialog.
class PrintDialog
{
public:
    // True and the chosen printer's name when the user chose one; false when cancelled.
    static bool Ask(QWidget* parent, QString& printerName);

    // Test hooks: with test mode on, no dialog is shown and each call takes the next queued
    // answer (a printer name; an empty text for "Cancel", also when none is queued).
    static void SetTestMode(bool on);
    static void SetNextAnswer(const QString& printerOrEmptyForCancel);
    static int Asked();
};
