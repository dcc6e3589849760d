#pragma once

#include <QString>

#include <optional>

// Whether the program is started when the user logs in to the desktop.
class StartAtLogin
{
public:
    virtual ~StartAtLogin() = default;
    virtual bool IsEnabled() const = 0;
    // Turns starting at login on or off; the text of the error when that could not be done.
    virtual std::optional<QString> SetEnabled(bool on) = 0;
};

// For systems where the program cannot arrange its own start: never enabled, and turning
// it on says so.
class NullStartAtLogin final : public StartAtLogin
{
public:
    bool IsEnabled() const override { return false; }
    std::optional<QString> SetEnabled(bool on) override
    {
        if (on)
            return QStringLiteral("Starting at login is not available on this system");
        return std::nullopt;
    }
};
