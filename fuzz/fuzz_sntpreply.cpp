// Fuzzes the time server reply check: any bytes, as a reply to a request, must neither crash
// the check nor pass it unless they are a well-formed server reply that answers the request.
#include "sync/SntpClient.h"

#include <QtEndian>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView packet(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    // The request's transmit timestamp is taken from the input itself when it is long enough,
    // so that replies which do echo it are explored too.
    const quint64 ours = size >= 32 ? qFromBigEndian<quint64>(data + 24) : 0x0123456789ABCDEFULL;
    SntpResult failure;
    const auto reply = ParseSntpReply(packet, ours, failure);
    if (reply) {
        // What passes is a server reply of a known version that answers our request.
        const auto first = std::uint8_t(data[0]);
        if (size < 48 || (first & 7) != 4 || (first >> 6) == 3 || reply->Stratum < 1 || reply->Stratum > 15 ||
            reply->Transmit == 0)
            std::abort();
        (void)FromNtpTime(reply->Transmit);
    } else if (failure.ErrorCode == SntpResult::Ok || failure.Error.isEmpty()) {
        std::abort(); // a refusal always says why
    }
    return 0;
}
