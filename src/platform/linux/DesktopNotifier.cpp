#include "platform/linux/DesktopNotifier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

namespace {

const QString Service = QStringLiteral("org.freedesktop.Notifications");
const QString Path = QStringLiteral("/org/freedesktop/Notifications");
constexpr int CallTimeoutMsec = 5000;

QDBusMessage CloseCall(uint id)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(Service, Path, Service, QStringLiteral("CloseNotification"));
    call << id;
    return call;
}

void Close(uint id)
{
    QDBusConnection::sessionBus().asyncCall(CloseCall(id), CallTimeoutMsec);
}

} // namespace

LinuxDesktopNotifier::LinuxDesktopNotifier() = default;

LinuxDesktopNotifier::~LinuxDesktopNotifier()
{
    qDeleteAll(m_calls.children());
    // Notices still shown go with the program: they are critical and would stay for good.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    for (const uint id : std::as_const(m_ids))
        bus.call(CloseCall(id), QDBus::Block, 500);
}

void LinuxDesktopNotifier::Notify(const QString& key, const QString& title, const QString& body)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Service, QStringLiteral("Notify"));
    QVariantMap hints;
    hints.insert(QStringLiteral("urgency"), QVariant::fromValue(uchar(2))); // critical
    hints.insert(QStringLiteral("desktop-entry"), QStringLiteral("org.tarrowind.Tarrowind"));
    call << QStringLiteral("Tarrowind") << m_ids.value(key, 0u) << QStringLiteral("org.tarrowind.Tarrowind")
         << title << body << QStringList() << hints << 0;
    m_withdrawnEarly.remove(key);
    m_pending[key] += 1;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, CallTimeoutMsec), &m_calls);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [this, key](QDBusPendingCallWatcher* w) {
                         w->deleteLater();
                         if (--m_pending[key] <= 0)
                             m_pending.remove(key);
                         const QDBusPendingReply<uint> reply = *w;
                         if (reply.isError()) {
                             m_withdrawnEarly.remove(key);
                             return; // no service: nothing shown
                         }
                         const uint id = reply.value();
                         // Answered before the service said its number: withdrawn at once.
                         if (m_withdrawnEarly.remove(key)) {
                             Close(id);
                             return;
                         }
                         m_ids.insert(key, id);
                     });
}

void LinuxDesktopNotifier::Withdraw(const QString& key)
{
    if (!QDBusConnection::sessionBus().isConnected())
        return;
    const auto it = m_ids.constFind(key);
    if (it == m_ids.constEnd()) {
        // Only a notice still to be numbered is withdrawn when it is; a key never notified
        // (a check-in window) leaves nothing behind.
        if (m_pending.contains(key))
            m_withdrawnEarly.insert(key);
        return;
    }
    Close(it.value());
    m_ids.remove(key);
}
