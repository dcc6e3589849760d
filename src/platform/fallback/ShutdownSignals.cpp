#include "platform/ShutdownSignals.h"

namespace {

// Systems without such signals end the program through the desktop session only.
class NoShutdownSignals final : public ShutdownSignals
{
public:
    using ShutdownSignals::ShutdownSignals;
};

} // namespace

std::unique_ptr<ShutdownSignals> ShutdownSignals::Create(QObject* parent)
{
    return std::make_unique<NoShutdownSignals>(parent);
}
