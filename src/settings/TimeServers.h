#pragma once

#include <QStringList>

// The public time servers offered for the Internet clock; the first is the default.
inline QStringList TimeServers()
{
    return {QStringLiteral("pool.ntp.org"),     QStringLiteral("time.nist.gov"),
            QStringLiteral("time.google.com"),  QStringLiteral("time.cloudflare.com"),
            QStringLiteral("time.windows.com"), QStringLiteral("ntp.ubuntu.com")};
}
