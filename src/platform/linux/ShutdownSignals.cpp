#include "platform/ShutdownSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_signalFd[2] = {-1, -1};

void OnSignal(int signal)
{
    const char byte = char(signal);
    // Only async-signal-safe work here: wake the event loop.
    [[maybe_unused]] const auto written = ::write(g_signalFd[0], &byte, 1);
}

class LinuxShutdownSignals final : public ShutdownSignals
{
public:
    explicit LinuxShutdownSignals(QObject* parent) : ShutdownSignals(parent)
    {
        if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalFd) != 0)
            return;
        m_notifier = new QSocketNotifier(g_signalFd[1], QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, [this] {
            char byte = 0;
            [[maybe_unused]] const auto got = ::read(g_signalFd[1], &byte, 1);
            emit Requested();
        });
        struct sigaction action = {};
        action.sa_handler = OnSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        for (int signal : {SIGTERM, SIGINT, SIGHUP})
            ::sigaction(signal, &action, nullptr);
    }

private:
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace

std::unique_ptr<ShutdownSignals> ShutdownSignals::Create(QObject* parent)
{
    return std::make_unique<LinuxShutdownSignals>(parent);
}
