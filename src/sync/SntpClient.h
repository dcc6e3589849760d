#pragma once

#include "clock/Timers.h"

#include <QByteArray>
#include <QDateTime>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>
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
        // Not a failure: what a socket layer says when a request is under way and its answer
        // will come later (its "would block" status). A start that reports it has started.
        UnderWay = 10035,
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

// A query of the time of a named host. A window's sync run drives one; tests drive a fake.
class TimeQuery : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    // Starts a query of `site`. Returns Ok (or UnderWay) when the query is under way and its
    // answer will come through Done, otherwise the error that kept it from starting (no
    // Done follows then).
    virtual SntpResult Start(const QString& site, int timeoutMsec) = 0;
    // Ends a query under way without a Done.
    virtual void Cancel() = 0;

signals:
    void Done(const SntpResult& result);
};

// One query of a time server over UDP, without blocking the window: the host name is
// looked up, one client request goes out with a random transmit timestamp (so that a
// forged answer cannot guess it), and the first acceptable reply from the address and
// port asked ends the query. A request that gets no answer is sent again, each time after
// twice the wait, so that one lost packet costs seconds and not the whole query; a reply
// to any of them is taken with its own sending time. A packet that answers none of them (a
// forgery, a stray, one too short to tell) is set aside and does not end the query; when
// nothing better comes, the query ends with what was wrong with it. The answer comes
// through Done, once.
class SntpClient : public TimeQuery
{
    Q_OBJECT
public:
    // Timed by the event loop's timers.
    explicit SntpClient(const Clock& clock, QObject* parent = nullptr);
    // Its time-out and its resending timed by `timers` (tests hand in timers they advance).
    SntpClient(const Clock& clock, Timers& timers, QObject* parent = nullptr);
    ~SntpClient() override;

    // `site` is a host name, or host:port (the port of time servers, 123, otherwise).
    SntpResult Start(const QString& site, int timeoutMsec = 10000) override;
    void Cancel() override;
    bool IsRunning() const { return m_running; }
    // The wait before the first request is sent again (tests shorten it).
    void SetResendAfter(int msec) { m_firstResendMsec = msec; }
    // How many packets the running (or last) query has read, accepted or not.
    int PacketsRead() const { return m_packetsRead; }

private:
    struct Request
    {
        quint64 Transmit = 0;
        QDateTime SentAt;
    };
    void MakeTimers(Timers& timers);
    void Send(const QHostAddress& address);
    void SendRequest();
    void ReadReplies();
    void Finish(SntpResult result);

    const Clock& m_clock;
    QUdpSocket* m_socket = nullptr;
    std::unique_ptr<OneShotTimer> m_timeout;
    std::unique_ptr<OneShotTimer> m_resend;
    int m_packetsRead = 0;
    QHostAddress m_address;
    quint16 m_port = 123;
    QList<Request> m_sent;
    int m_firstResendMsec = 2000;
    int m_lookup = -1;
    bool m_running = false;
    bool m_wrongSender = false;
    std::optional<SntpResult> m_setAside;
};
