#include "ManualClock.h"
#include "ManualTimers.h"
#include "clock/Clock.h"
#include "sync/SntpClient.h"

#include <QSignalSpy>
#include <QUdpSocket>
#include <QtEndian>
#include <QtTest>

#include <functional>

namespace {

const QDateTime Local(QDate(2026, 11, 16), QTime(10, 0, 0), Qt::UTC);

// A time server on 127.0.0.1 that answers each request with what `answer` makes of it
// (nothing when it returns an empty packet), from its own port or from a second socket.
class FakeServer : public QObject
{
public:
    using Answer = std::function<QByteArray(const QByteArray& request)>;
    explicit FakeServer(Answer answer, bool fromAnotherPort = false)
        : m_answer(std::move(answer)), m_fromAnotherPort(fromAnotherPort)
    {
        QVERIFY(m_socket.bind(QHostAddress::LocalHost, 0));
        QVERIFY(m_other.bind(QHostAddress::LocalHost, 0));
        connect(&m_socket, &QUdpSocket::readyRead, this, [this] {
            while (m_socket.hasPendingDatagrams()) {
                QByteArray request(int(m_socket.pendingDatagramSize()), '\0');
                QHostAddress from;
                quint16 port = 0;
                m_socket.readDatagram(request.data(), request.size(), &from, &port);
                ++Requests;
                LastRequest = request;
                m_client = from;
                m_clientPort = port;
                const QByteArray reply = m_answer(request);
                if (!reply.isEmpty()) {
                    (m_fromAnotherPort ? m_other : m_socket).writeDatagram(reply, from, port);
                    ++Replies;
                }
            }
        });
    }
    // Sends `packet` from the server's port to the client that asked last.
    void AnswerNow(const QByteArray& packet)
    {
        m_socket.writeDatagram(packet, m_client, m_clientPort);
        ++Replies;
    }
    QString Site() const { return QStringLiteral("127.0.0.1:") + QString::number(m_socket.localPort()); }
    int Requests = 0;
    int Replies = 0; // packets sent to the client
    QByteArray LastRequest;

private:
    Answer m_answer;
    bool m_fromAnotherPort;
    QUdpSocket m_socket;
    QUdpSocket m_other;
    QHostAddress m_client;
    quint16 m_clientPort = 0;
};

// A good reply to `request`: the server's clock `ahead` of the local one, taking `hold` ms.
QByteArray Reply(const QByteArray& request, qint64 aheadMs, int leap = 0, int version = 4, int mode = 4,
                 int stratum = 2, qint64 holdMs = 0)
{
    QByteArray reply(48, '\0');
    reply[0] = char((leap << 6) | (version << 3) | mode);
    reply[1] = char(stratum);
    const quint64 receive = ToNtpTime(Local.addMSecs(aheadMs));
    const quint64 transmit = ToNtpTime(Local.addMSecs(aheadMs + holdMs));
    std::memcpy(reply.data() + 24, request.constData() + 40, 8); // originate = our transmit
    qToBigEndian(receive, reply.data() + 32);
    qToBigEndian(transmit, reply.data() + 40);
    return reply;
}

// One query of `server`, with the client's timers in the test's hands. The request and the
// answers travel through the loopback on the event loop; once the client has read every
// answer without ending the query, the query's time runs out (`timedOut` tells whether it
// had to) without anyone waiting for it.
SntpResult Ask(FakeServer& server, ManualClock& clock, int timeoutMsec = 3000, bool* timedOut = nullptr)
{
    ManualTimers timers;
    SntpClient client(clock, timers);
    QSignalSpy done(&client, &SntpClient::Done);
    client.Start(server.Site(), timeoutMsec);
    const bool answered = QTest::qWaitFor(
        [&] { return !done.isEmpty() || (server.Requests >= 1 && client.PacketsRead() >= server.Replies); },
        5000);
    if (!answered)
        return {};
    if (timedOut)
        *timedOut = done.isEmpty();
    if (done.isEmpty())
        timers.Advance(timeoutMsec);
    if (done.size() != 1)
        return {};
    return done.at(0).at(0).value<SntpResult>();
}

} // namespace

Q_DECLARE_METATYPE(SntpResult)

// The client against a server of its own on this machine: good replies give the offset to
// the millisecond, and every malformed or hostile one is refused with its own text.
class TestSntpClient : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { qRegisterMetaType<SntpResult>(); }

    void realTimeServerGivesItsTime()
    {
        const QString site = qEnvironmentVariable("TW_NTP_SITE");
        if (site.isEmpty())
            QSKIP("no time server of our own (run through chrony.sh)");
        SystemClock clock;
        SntpClient client(clock);
        QSignalSpy done(&client, &SntpClient::Done);
        client.Start(site, 5000);
        QVERIFY(done.wait(8000));
        const SntpResult result = done.at(0).at(0).value<SntpResult>();
        QVERIFY2(result.ErrorCode == SntpResult::Ok, qPrintable(result.Error));
        // The server keeps this machine's own clock: the offset is that of the loopback.
        QVERIFY2(qAbs(result.OffsetMs) < 1000, qPrintable(QString::number(result.OffsetMs)));
        QVERIFY(result.DelayMs >= 0 && result.DelayMs < 1000);
        QVERIFY(qAbs(result.ServerTime.msecsTo(QDateTime::currentDateTime())) < 2000);
    }

    void ntpTimesConvertBothWays()
    {
        const QDateTime t(QDate(2026, 11, 16), QTime(10, 15, 30, 250), Qt::UTC);
        QCOMPARE(FromNtpTime(ToNtpTime(t)), t);
        QCOMPARE(ToNtpTime(QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC)) >> 32, quint64(2208988800U));
    }

    void goodReplyGivesTheOffsetToTheMillisecond()
    {
        ManualClock clock(Local);
        FakeServer server([](const QByteArray& request) { return Reply(request, 7 * 60 * 1000 + 250); });
        const SntpResult result = Ask(server, clock);
        QCOMPARE(result.ErrorCode, int(SntpResult::Ok));
        QCOMPARE(result.OffsetMs, qint64(7 * 60 * 1000 + 250));
        QCOMPARE(result.ServerTime, Local.addMSecs(7 * 60 * 1000 + 250));
        QCOMPARE(result.DelayMs, qint64(0));
        // One client-mode request, version 4, with a transmit timestamp that is not the time.
        QCOMPARE(server.Requests, 1);
        QCOMPARE(server.LastRequest.size(), 48);
        QCOMPARE(quint8(server.LastRequest[0]) & 7, 3);
        QCOMPARE((quint8(server.LastRequest[0]) >> 3) & 7, 4);
        QVERIFY(qFromBigEndian<quint64>(server.LastRequest.constData() + 40) != ToNtpTime(Local));
    }

    void hostileRepliesAreRefusedEachWithItsOwnText_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        QTest::newRow("wrong mode") << 0 << int(SntpResult::NotAServerReply)
                                    << "The answer is not a time server's reply (mode 3).";
        QTest::newRow("stratum 0 RATE") << 1 << int(SntpResult::KissOfDeath)
                                        << "The time server refused to give the time (kiss code RATE).";
        QTest::newRow("leap 3") << 2 << int(SntpResult::ServerNotSynchronised)
                                << "The time server's own clock is not synchronised.";
        QTest::newRow("wrong originate")
            << 3 << int(SntpResult::NotOurRequest) << "The reply does not answer our request.";
        QTest::newRow("zero transmit")
            << 4 << int(SntpResult::NoTransmitTime) << "The time server's reply carries no time.";
        QTest::newRow("short packet")
            << 5 << int(SntpResult::ShortReply) << "The time server's reply is too short (47 bytes).";
        QTest::newRow("version 5") << 6 << int(SntpResult::BadVersion)
                                   << "The time server answered in an unknown version (5).";
        QTest::newRow("stratum 16") << 7 << int(SntpResult::BadStratum)
                                    << "The time server's stratum is out of range (16).";
    }

    void hostileRepliesAreRefusedEachWithItsOwnText()
    {
        QFETCH(int, kind);
        QFETCH(int, code);
        QFETCH(QString, text);
        ManualClock clock(Local);
        FakeServer server([kind](const QByteArray& request) {
            QByteArray reply = Reply(request, 60000);
            switch (kind) {
            case 0:
                return Reply(request, 60000, 0, 4, 3);
            case 1:
                reply[1] = 0;
                std::memcpy(reply.data() + 12, "RATE", 4);
                return reply;
            case 2:
                return Reply(request, 60000, 3);
            case 3:
                reply[24] = char(reply[24] ^ 1);
                return reply;
            case 4:
                std::memset(reply.data() + 40, 0, 8);
                return reply;
            case 5:
                return reply.left(47);
            case 6:
                return Reply(request, 60000, 0, 5);
            default:
                return Reply(request, 60000, 0, 4, 4, 16);
            }
        });
        // A packet that cannot be shown to answer our request (wrong originate, too short) is
        // set aside until the query's time is up; the others end it at once.
        bool timedOut = false;
        const SntpResult result = Ask(server, clock, 3000, &timedOut);
        QCOMPARE(timedOut, kind == 3 || kind == 5);
        QCOMPARE(result.ErrorCode, code);
        QCOMPARE(result.Error, text);
        QVERIFY(!result.ServerTime.isValid());
    }

    void forgedReplyDoesNotEndTheQuery()
    {
        // A stray answer with the wrong originate comes first; the server's own follows.
        ManualClock clock(Local);
        FakeServer server([](const QByteArray&) { return QByteArray(); });
        ManualTimers timers;
        SntpClient client(clock, timers);
        QSignalSpy done(&client, &SntpClient::Done);
        QCOMPARE(client.Start(server.Site(), 3000).ErrorCode, int(SntpResult::Ok));
        QTRY_COMPARE(server.Requests, 1);
        QByteArray forged = Reply(server.LastRequest, -3600000);
        forged[24] = char(forged[24] ^ 0x55);
        server.AnswerNow(forged);
        QTRY_COMPARE(client.PacketsRead(), 1);
        QCOMPARE(done.size(), 0);
        server.AnswerNow(Reply(server.LastRequest, 90000));
        QVERIFY(done.wait(5000));
        const SntpResult result = done.at(0).at(0).value<SntpResult>();
        QCOMPARE(result.ErrorCode, int(SntpResult::Ok));
        QCOMPARE(result.OffsetMs, qint64(90000));
    }

    void lostRequestIsSentAgainAndItsAnswerTaken()
    {
        // The first request is lost; the second, sent 100 ms later by the client's own
        // clock, is answered. T1 is the second request's sending time.
        ManualClock clock(Local);
        int seen = 0;
        FakeServer server([&seen, &clock](const QByteArray& request) {
            if (++seen == 1) {
                clock.AdvanceMSecs(100);
                return QByteArray();
            }
            return Reply(request, 42000);
        });
        ManualTimers timers;
        SntpClient client(clock, timers);
        client.SetResendAfter(100);
        QSignalSpy done(&client, &SntpClient::Done);
        QCOMPARE(client.Start(server.Site(), 3000).ErrorCode, int(SntpResult::Ok));
        QTRY_COMPARE(server.Requests, 1);
        timers.Advance(99);
        QTest::qWait(20);
        QCOMPARE(server.Requests, 1); // not sent again before its time
        timers.Advance(1);
        QVERIFY(done.wait(5000));
        const SntpResult result = done.at(0).at(0).value<SntpResult>();
        QVERIFY2(result.ErrorCode == SntpResult::Ok, qPrintable(result.Error));
        QCOMPARE(server.Requests, 2);
        // Sent and received at Local + 100 ms; the server stamps Local + 42 s.
        QCOMPARE(result.OffsetMs, qint64(42000 - 100));
    }

    void lateAnswerToAnEarlierRequestIsTakenWithItsOwnSendingTime()
    {
        // The server answers only the first request, but late: after the client sent again.
        ManualClock clock(Local);
        QByteArray first;
        FakeServer server([&first](const QByteArray& request) {
            if (first.isEmpty())
                first = request;
            return QByteArray();
        });
        ManualTimers timers;
        SntpClient client(clock, timers);
        client.SetResendAfter(50);
        QSignalSpy done(&client, &SntpClient::Done);
        QCOMPARE(client.Start(server.Site(), 3000).ErrorCode, int(SntpResult::Ok));
        QTRY_COMPARE(server.Requests, 1);
        timers.Advance(50);
        QTRY_COMPARE(server.Requests, 2);
        QVERIFY(!first.isEmpty());
        server.AnswerNow(Reply(first, 30000));
        QVERIFY(done.wait(5000));
        const SntpResult result = done.at(0).at(0).value<SntpResult>();
        QVERIFY2(result.ErrorCode == SntpResult::Ok, qPrintable(result.Error));
        QCOMPARE(result.OffsetMs, qint64(30000));
    }

    void emptySiteIsAStartError()
    {
        ManualClock clock(Local);
        SntpClient client(clock);
        QSignalSpy done(&client, &SntpClient::Done);
        const SntpResult started = client.Start(QStringLiteral("  "), 1000);
        QCOMPARE(started.ErrorCode, int(SntpResult::HostNotFound));
        QCOMPARE(started.Error, QStringLiteral("No time server is given."));
        QVERIFY(!client.IsRunning());
        QTest::qWait(100);
        QCOMPARE(done.size(), 0);
    }

    void replyFromAnotherPortIsNotTaken()
    {
        ManualClock clock(Local);
        FakeServer server([](const QByteArray& request) { return Reply(request, 60000); }, true);
        bool timedOut = false;
        const SntpResult result = Ask(server, clock, 800, &timedOut);
        QVERIFY(timedOut);
        QCOMPARE(result.ErrorCode, int(SntpResult::WrongSender));
        QCOMPARE(result.Error,
                 QStringLiteral("The only answer came from another address or port than the time server's."));
    }

    void noReplyEndsWithItsOwnText()
    {
        ManualClock clock(Local);
        FakeServer server([](const QByteArray&) { return QByteArray(); });
        bool timedOut = false;
        const SntpResult result = Ask(server, clock, 500, &timedOut);
        QVERIFY(timedOut);
        QCOMPARE(result.ErrorCode, int(SntpResult::NoReply));
        QCOMPARE(result.Error, QStringLiteral("The time server did not answer."));
        QCOMPARE(server.Requests, 1);
    }

    void unknownHostEndsWithItsOwnText()
    {
        ManualClock clock(Local);
        SntpClient client(clock);
        QSignalSpy done(&client, &SntpClient::Done);
        client.Start(QStringLiteral("no-such-host.invalid"), 5000);
        QVERIFY(done.wait(10000));
        const SntpResult result = done.at(0).at(0).value<SntpResult>();
        QCOMPARE(result.ErrorCode, int(SntpResult::HostNotFound));
        QCOMPARE(result.Error,
                 QStringLiteral("The time server's name could not be found: no-such-host.invalid"));
    }

    void cancelledQueryEndsWithoutAnAnswer()
    {
        ManualClock clock(Local);
        FakeServer server([](const QByteArray& request) { return Reply(request, 60000); });
        ManualTimers timers;
        SntpClient client(clock, timers);
        QSignalSpy done(&client, &SntpClient::Done);
        client.Start(server.Site(), 2000);
        client.Cancel();
        QVERIFY(!client.IsRunning());
        QTest::qWait(100);     // nothing is sent from the event loop...
        timers.Advance(10000); // ...and neither the time-out nor a resend comes
        QCOMPARE(timers.Running(), 0);
        QCOMPARE(done.size(), 0);
        QCOMPARE(server.Requests, 0);
    }
};

QTEST_GUILESS_MAIN(TestSntpClient)
#include "tst_sntpclient.moc"
