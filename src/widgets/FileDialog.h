#pragma once

#include <QList>
#include <QString>

class QWidget;

// The one helper for choosing a file to open. A test gives it the next answer in advance,
// so that window tests never block on a dialog.
class FileDialog
{
public:
    // The chosen path, or an empty text when the user cancelled.
    static QString GetOpenFileName(QWidget* parent, const QString& title, const QString& start,
                                   const QString& filter);

    // Test hooks: with test mode on, no dialog is shown and each call takes the next queued
    // answer (empty when none is queued).
    static void SetTestMode(bool on);
    static void SetNextAnswer(const QString& path);
    static int Asked();
};
