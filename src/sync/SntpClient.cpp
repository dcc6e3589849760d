#include "sync/SntpClient.h"

#include "clock/Clock.h"

#include <QHostInfo>
#include <QRandomGenerator>
#include <QTimer>
#include <QUdpSocket>
#include <QtEndian>

namespace {

constexpr qint64 NtpEpochToUnixSecs = 2208988800LL; // 1900-01-01 to 1970-01-01
constexpr int PacketSize = 48;

quint64 Read64(QByteArrayView packet, int at)
{
    return qFromBigEndian<quint64>(packet.data() + at);
}

// Milliseconds between two NTP timestamps (b - a), exact to the millisecond.
qint64 DiffMs(quint64 a, quint64 b)
{
    const qint64 diff = qint64(b - a); // wraps correctly for times less than 68 years apart
    const qint64 seconds = diff >> 32; // rounded down, also below zero
    const qint64 fraction = diff & 0xFFFFFFFFLL;
    return seconds * 1000 + ((fraction * 1000) >> 32);
}

SntpResult Failure(int code, const QString& text)
{
    SntpResult result;
    result.ErrorCode = code;
    result.Error = text;
    return result;
}

} // namespace

quint64 ToNtpTime(const QDateTime& time)
{
    const qint64 msecs = time.toMSecsSinceEpoch() + NtpEpochToUnixSecs * 1000;
    const quint64 seconds = quint64(msecs / 1000);
    const quint64 fraction = (quint64(msecs % 1000) << 32) / 1000;
    return (seconds << 32) | fraction;
}

QDateTime FromNtpTime(quint64 ntp)
{
    const qint64 seconds = qint64(ntp >> 32) - NtpEpochToUnixSecs;
    const qint64 msecs = qint64(((ntp & 0xFFFFFFFFULL) * 1000) >> 32);
    return QDateTime::fromMSecsSinceEpoch(seconds * 1000 + msecs, Qt::UTC);
}

std::optional<SntpReply> ParseSntpReply(QByteArrayView packet, quint64 ourTransmit, SntpResult& failure)
{
    if (packet.size() < PacketSize) {
        failure =
            Failure(SntpResult::ShortReply, QStringLiteral("The time server's reply is too short (") +
                                                QString::number(packet.size()) + QStringLiteral(" bytes)."));
        return std::nullopt;
    }
    const auto first = quint8(packet[0]);
    const int leap = first >> 6;
    const int version = (first >> 3) & 7;
    const int mode = first & 7;
    const int stratum = quint8(packet[1]);
    if (mode != 4) {
        failure = Failure(SntpResult::NotAServerReply,
                          QStringLiteral("The answer is not a time server's reply (mode ") +
                              QString::number(mode) + QStringLiteral(")."));
        return std::nullopt;
    }
    if (version < 1 || version > 4) {
        failure = Failure(SntpResult::BadVersion,
                          QStringLiteral("The time server answered in an unknown version (") +
                              QString::number(version) + QStringLiteral(")."));
        return std::nullopt;
    }
    if (stratum == 0) {
        // A kiss of death: the reference identifier holds the server's reason in four letters.
        QString code;
        for (int i = 12; i < 16; ++i) {
            const auto c = char(packet[i]);
            code += c >= 0x20 && c < 0x7f ? QChar::fromLatin1(c) : QChar(u'?');
        }
        failure = Failure(SntpResult::KissOfDeath,
                          QStringLiteral("The time server refused to give the time (kiss code ") + code +
                              QStringLiteral(")."));
        return std::nullopt;
    }
    if (stratum > 15) {
        failure =
            Failure(SntpResult::BadStratum, QStringLiteral("The time server's stratum is out of range (") +
                                                QString::number(stratum) + QStringLiteral(")."));
        return std::nullopt;
    }
    if (leap == 3) {
        failure = Failure(SntpResult::ServerNotSynchronised,
                          QStringLiteral("The time server's own clock is not synchronised."));
        return std::nullopt;
    }
    const quint64 originate = Read64(packet, 24);
    if (originate != ourTransmit) {
        failure =
            Failure(SntpResult::NotOurRequest, QStringLiteral("The reply does not answer our request."));
        return std::nullopt;
    }
    const quint64 transmit = Read64(packet, 40);
    if (transmit == 0) {
        failure =
            Failure(SntpResult::NoTransmitTime, QStringLiteral("The time server's reply carries no time."));
        return std::nullopt;
    }
    return SntpReply{stratum, Read64(packet, 32), transmit};
}

SntpClient::SntpClient(const Clock& clock, QObject* parent) : TimeQuery(parent), m_clock(clock)
{
    QtTimers timers;
    MakeTimers(timers);
}

SntpClient::SntpClient(const Clock& clock, Timers& timers, QObject* parent)
    : TimeQuery(parent), m_clock(clock)
{
    MakeTimers(timers);
}

void SntpClient::MakeTimers(Timers& timers)
{
    m_timeout = timers.MakeOneShot();
    connect(m_timeout.get(), &OneShotTimer::Timeout, this, [this] {
        if (m_setAside) {
            Finish(*m_setAside);
            return;
        }
        Finish(m_wrongSender
                   ? Failure(SntpResult::WrongSender,
                             QStringLiteral("The only answer came from another address or port than "
                                            "the time server's."))
                   : Failure(SntpResult::NoReply, QStringLiteral("The time server did not answer.")));
    });
    m_resend = timers.MakeOneShot();
    connect(m_resend.get(), &OneShotTimer::Timeout, this, &SntpClient::SendRequest);
}

SntpClient::~SntpClient()
{
    Cancel();
}

SntpResult SntpClient::Start(const QString& site, int timeoutMsec)
{
    Cancel();
    QString host = site.trimmed();
    if (host.isEmpty())
        return Failure(SntpResult::HostNotFound, QStringLiteral("No time server is given."));
    m_running = true;
    m_wrongSender = false;
    m_setAside.reset();
    m_sent.clear();
    m_packetsRead = 0;
    m_timeout->Start(timeoutMsec);
    m_port = 123;
    // host:port, but not an IPv6 address's colons.
    if (const qsizetype colon = host.lastIndexOf(u':'); colon > 0 && host.count(u':') == 1) {
        bool ok = false;
        const uint port = host.mid(colon + 1).toUInt(&ok);
        if (ok && port > 0 && port < 65536) {
            m_port = quint16(port);
            host.truncate(colon);
        }
    }
    const QHostAddress literal(host);
    if (!literal.isNull()) {
        // Sent from the event loop, like an answer of the name lookup: Start returns first.
        QTimer::singleShot(0, this, [this, literal] {
            if (m_running && !m_socket)
                Send(literal);
        });
        return {};
    }
    // The name is looked up without blocking the window.
    m_lookup = QHostInfo::lookupHost(host, this, [this, host](const QHostInfo& info) {
        m_lookup = -1;
        if (!m_running)
            return;
        if (info.error() != QHostInfo::NoError || info.addresses().isEmpty()) {
            Finish(Failure(SntpResult::HostNotFound,
                           QStringLiteral("The time server's name could not be found: ") + host));
            return;
        }
        Send(info.addresses().constFirst());
    });
    return {};
}

void SntpClient::Cancel()
{
    if (m_lookup >= 0) {
        QHostInfo::abortHostLookup(m_lookup);
        m_lookup = -1;
    }
    m_timeout->Stop();
    m_resend->Stop();
    if (m_socket) {
        m_socket->disconnect(this);
        m_socket->deleteLater();
        m_socket = nullptr;
    }
    m_running = false;
}

void SntpClient::Send(const QHostAddress& address)
{
    m_address = address;
    m_socket = new QUdpSocket(this);
    connect(m_socket, &QUdpSocket::readyRead, this, &SntpClient::ReadReplies);
    SendRequest();
}

void SntpClient::SendRequest()
{
    if (!m_running || !m_socket)
        return;
    QByteArray request(PacketSize, '\0');
    request[0] = char((0 << 6) | (4 << 3) | 3); // no leap warning, version 4, client
    // A random transmit timestamp: the reply must echo it, which a forger cannot guess.
    Request sent{QRandomGenerator::system()->generate64(), m_clock.Now()};
    qToBigEndian(sent.Transmit, request.data() + 40);
    m_sent.append(sent);
    if (m_socket->writeDatagram(request, m_address, m_port) != request.size()) {
        Finish(Failure(SntpResult::NetworkError,
                       QStringLiteral("The request could not be sent: ") + m_socket->errorString()));
        return;
    }
    // Sent again after 2, 4, 8 ... seconds while no answer comes.
    m_resend->Start(qint64(m_firstResendMsec) << qMin(int(m_sent.size()) - 1, 5));
}

void SntpClient::ReadReplies()
{
    while (m_running && m_socket && m_socket->hasPendingDatagrams()) {
        QHostAddress from;
        quint16 port = 0;
        QByteArray packet(int(qMax<qint64>(m_socket->pendingDatagramSize(), 0)), '\0');
        const qint64 got = m_socket->readDatagram(packet.data(), packet.size(), &from, &port);
        const QDateTime receivedAt = m_clock.Now();
        if (got < 0)
            continue;
        ++m_packetsRead;
        packet.truncate(int(got));
        // Only the server asked may answer; anything else is noted and set aside.
        if (port != m_port || !from.isEqual(m_address, QHostAddress::TolerantConversion)) {
            m_wrongSender = true;
            continue;
        }
        // The request this answers, by the originate timestamp it echoes. A packet that does
        // not answer one of ours (too short to tell, or echoing none of our timestamps) says
        // nothing about the server, whatever else it holds: it is set aside, and the query
        // waits on for the server's own answer.
        const Request* answered = nullptr;
        if (packet.size() >= PacketSize) {
            const quint64 originate = Read64(packet, 24);
            for (const Request& sent : std::as_const(m_sent))
                if (sent.Transmit == originate)
                    answered = &sent;
        }
        SntpResult failure;
        if (!answered) {
            if (packet.size() < PacketSize)
                ParseSntpReply(packet, 0, failure); // says how short it is
            else
                failure = Failure(SntpResult::NotOurRequest,
                                  QStringLiteral("The reply does not answer our request."));
            m_setAside = failure;
            continue;
        }
        const auto reply = ParseSntpReply(packet, answered->Transmit, failure);
        if (!reply) {
            Finish(failure);
            return;
        }
        // T1 and T4 are the local clock's; T2 and T3 the server's.
        const quint64 t1 = ToNtpTime(answered->SentAt);
        const quint64 t4 = ToNtpTime(receivedAt);
        SntpResult result;
        result.OffsetMs = (DiffMs(t1, reply->Receive) + DiffMs(t4, reply->Transmit)) / 2;
        result.DelayMs = DiffMs(t1, t4) - DiffMs(reply->Receive, reply->Transmit);
        result.ServerTime = receivedAt.addMSecs(result.OffsetMs);
        Finish(result);
        return;
    }
}

void SntpClient::Finish(SntpResult result)
{
    if (!m_running)
        return;
    Cancel();
    emit Done(result);
}
