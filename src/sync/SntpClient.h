#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

class Clock;
class QUdpSocket;

// How one query of a time server ended. Code 0 is success; every other code has its own
// text, which names what was wrong with the server's answer (or its absence).
struct SntpResult
{
    enum Code
    {
        Ok = 0,
        HostNotFound,
        NoReply,
        ShortReply,
        NotAServerReply,
        BadVersion,
        KissOfDeath,
        BadStratum,
        ServerNotSynchronised,
        NotOurRequest,
        NoTransmitTime,
        WrongSender,
        NetworkError,
    };
    int ErrorCode = Ok;
    QString Error;
    // The time now by the server: the local clock at the reply plus the offset.
    QDateTime ServerTime;
    qint64 OffsetMs = 0; // server minus local clock
    qint64 DelayMs = 0;  // round trip, less the server's own time
};

// The fields of a server's reply that the client uses, checked.
struct SntpReply
{
    int Stratum = 0;
    quint64 Receive = 0;  // T2, the server's receive time (NTP 64-bit form)
    quint64 Transmit = 0; // T3, the server's transmit time
};

// Checks a reply as a client of a time server must (RFC 4330 and 5905 client practice):
// at least 48 bytes, mode 4 (server), version 1 to 4, leap indicator not 3 (clock not
// synchronised), stratum 1 to 15 (0 is a "kiss of death", whose four-letter code the error
// names), an originate timestamp equal to the transmit timestamp of our request, and a
// transmit timestamp that is not zero. Returns the reply or the failure.
std::optional<SntpReply> ParseSntpReply(QByteArrayView packet, quint64 ourTransmit, SntpResult& failure);

// NTP timestamps: seconds since 1 January 1900 in the upper 32 bits, the fraction below.
quint64 ToNtpTime(const QDateTime& time);
QDateTime FromNtpTime(quint64 ntp);

// One query of a time server over UDP, without blocking the window: the host name is
// looked up, one client request goes out with a random transmit timestamp (so that a
// forged answer cannot guess it), and the first acceptable reply from the address and
// port asked ends the query. The answer comes through Done, once.
class SntpClient : public QObject
{
    Q_OBJECT
public:
    explicit SntpClient(const Clock& clock, QObject* parent = nullptr);
    ~SntpClient() override;

    // `site` is a host name, or host:port (the port of time servers, 123, otherwise).
    void Start(const QString& site, int timeoutMsec = 10000);
    // Ends a query under way without a Done.
    void Cancel();
    bool IsRunning() const { return m_running; }

signals:
    void Done(const SntpResult& result);

private:
    void Send(const QHostAddress& address);
    void ReadReplies();
    void Finish(SntpResult result);

    const Clock& m_clock;
    QUdpSocket* m_socket = nullptr;
    QTimer m_timeout;
    QHostAddress m_address;
    quint16 m_port = 123;
    quint64 m_transmit = 0;
    QDateTime m_sentAt;
    int m_lookup = -1;
    bool m_running = false;
    bool m_wrongSender = false;
};
