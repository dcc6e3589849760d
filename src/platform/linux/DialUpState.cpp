#include "platform/linux/DialUpState.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QNetworkInterface>

namespace {

const QString Service = QStringLiteral("org.freedesktop.NetworkManager");

// NetworkManager answers at once; a bus or service that hangs must not hold up the window.
constexpr int CallTimeoutMsec = 2000;

QVariant Property(const QString& path, const QString& interface, const QString& name)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return {};
    QDBusMessage get = QDBusMessage::createMethodCall(
        Service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << interface << name;
    const QDBusReply<QDBusVariant> reply = bus.call(get, QDBus::Block, CallTimeoutMsec);
    return reply.isValid() ? reply.value().variant() : QVariant();
}

bool NetworkManagerHasDialUp()
{
    const QVariant active = Property(QStringLiteral("/org/freedesktop/NetworkManager"), Service,
                                     QStringLiteral("ActiveConnections"));
    if (!active.isValid())
        return false;
    QList<QDBusObjectPath> paths;
    if (active.canConvert<QDBusArgument>())
        paths = qdbus_cast<QList<QDBusObjectPath>>(active.value<QDBusArgument>());
    else
        paths = active.value<QList<QDBusObjectPath>>();
    static const QStringList dialUpKinds{QStringLiteral("gsm"), QStringLiteral("cdma"),
                                         QStringLiteral("pppoe"), QStringLiteral("adsl"),
                                         QStringLiteral("bluetooth")};
    for (const QDBusObjectPath& path : paths) {
        const QString kind =
            Property(path.path(), QStringLiteral("org.freedesktop.NetworkManager.Connection.Active"),
                     QStringLiteral("Type"))
                .toString();
        if (dialUpKinds.contains(kind))
            return true;
    }
    return false;
}

bool PppInterfaceUp()
{
    for (const QNetworkInterface& link : QNetworkInterface::allInterfaces())
        if (link.name().startsWith(QStringLiteral("ppp")) && link.flags().testFlag(QNetworkInterface::IsUp))
            return true;
    return false;
}

} // namespace

bool LinuxDialUpState::DialUpConnection() const
{
    return NetworkManagerHasDialUp() || PppInterfaceUp();
}
