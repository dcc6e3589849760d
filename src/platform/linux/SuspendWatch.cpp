#include "platform/linux/SuspendWatch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>

namespace {

const QString Service = QStringLiteral("org.freedesktop.login1");
const QString Path = QStringLiteral("/org/freedesktop/login1");
const QString Manager = QStringLiteral("org.freedesktop.login1.Manager");
// logind answers at once; a bus that hangs must not hold up the start or the minute.
constexpr int CallTimeoutMsec = 2000;
const QString DelayReason = QStringLiteral("Saving the alarms before the computer sleeps");

} // namespace

LinuxSuspendWatch::LinuxSuspendWatch(QObject* parent) : SuspendWatch(parent)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    bus.connect(Service, Path, Manager, QStringLiteral("PrepareForSleep"), this, SLOT(PrepareForSleep(bool)));
    m_delay = Inhibit(DelayReason, QStringLiteral("delay"));
}

QDBusUnixFileDescriptor LinuxSuspendWatch::Inhibit(const QString& why, const QString& mode) const
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return {};
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Manager, QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Tarrowind") << why << mode;
    const QDBusReply<QDBusUnixFileDescriptor> reply = bus.call(call, QDBus::Block, CallTimeoutMsec);
    return reply.isValid() ? reply.value() : QDBusUnixFileDescriptor();
}

void LinuxSuspendWatch::SetAlarmsSet(int count)
{
    if (count <= 0) {
        m_block = {}; // closing the descriptor lets go of the inhibitor
        m_blockCount = 0;
        return;
    }
    if (m_block.isValid() && count == m_blockCount)
        return;
    // The new reason is taken before the old one is let go: sleep is never left open between.
    const QDBusUnixFileDescriptor next =
        Inhibit(count == 1 ? QStringLiteral("1 alarm is set")
                           : QString::number(count) + QStringLiteral(" alarms are set"),
                QStringLiteral("block"));
    // A request that failed keeps what is held: sleep stays blocked with the older count.
    if (next.isValid()) {
        m_block = next;
        m_blockCount = count;
    }
}

void LinuxSuspendWatch::SuspendHandled()
{
    m_delay = {};
}

void LinuxSuspendWatch::PrepareForSleep(bool start)
{
    if (start) {
        emit Suspending();
        return;
    }
    // What fell due while asleep rings first; the delay for the next sleep is taken after.
    emit Resumed();
    if (!m_delay.isValid())
        m_delay = Inhibit(DelayReason, QStringLiteral("delay"));
}
