#pragma once

class QString;

// Shows notices in the desktop's notification area. Each notice has a key: a later notice
// with the same key replaces it, and Withdraw takes it away.
class DesktopNotifier
{
public:
    virtual ~DesktopNotifier() = default;
    virtual void Notify(const QString& key, const QString& title, const QString& body) = 0;
    virtual void Withdraw(const QString& key) = 0;
};

// For desktops without a notification service: shows nothing.
class NullDesktopNotifier final : public DesktopNotifier
{
public:
    void Notify(const QString&, const QString&, const QString&) override {}
    void Withdraw(const QString&) override {}
};
