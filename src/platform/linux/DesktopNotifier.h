#pragma once

#include "platform/DesktopNotifier.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

// Notices through the desktop's notification service (org.freedesktop.Notifications on the
// session bus): critical, kept until withdrawn, with the program's icon. The calls do not
// wait; without the service nothing is shown and nothing goes wrong.
class LinuxDesktopNotifier final : public DesktopNotifier
{
public:
    LinuxDesktopNotifier();
    ~LinuxDesktopNotifier() override;
    void Notify(const QString& key, const QString& title, const QString& body) override;
    void Withdraw(const QString& key) override;
    // Whether a notice of `key` is shown or on its way.
    bool Holds(const QString& key) const { return m_ids.contains(key) || m_pending.contains(key); }

private:
    // The service's number of each notice shown, by key.
    QHash<QString, uint> m_ids;
    // Keys whose notice was asked for and not yet numbered, and of those the ones withdrawn
    // meanwhile.
    QHash<QString, int> m_pending;
    QSet<QString> m_withdrawnEarly;
    QObject m_calls;
};
