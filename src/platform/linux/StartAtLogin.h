#pragma once

#include "platform/StartAtLogin.h"

#include <QString>

// Starting at login through an XDG autostart entry: "tarrowind.desktop" in the user's
// autostart folder ($XDG_CONFIG_HOME/autostart), launching the program at `programPath`.
// The entry is written whole or not at all, and removed to turn starting off.
class LinuxStartAtLogin final : public StartAtLogin
{
public:
    LinuxStartAtLogin(QString programPath, QString autostartFolder);
    // On when the entry is there, launches this program, and is not switched off by the
    // desktop (Hidden, or X-GNOME-Autostart-enabled=false).
    bool IsEnabled() const override;
    std::optional<QString> SetEnabled(bool on) override;

    QString EntryPath() const;
    // The entry's text for a program at `programPath`.
    static QByteArray Entry(const QString& programPath);
    // `argument` as one argument of a desktop entry's Exec key, quoted where it must be.
    static QString ExecArgument(const QString& argument);

private:
    QString m_programPath;
    QString m_folder;
};
