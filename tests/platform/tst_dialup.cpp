#include "platform/linux/DialUpState.h"

#include <QDir>
#include <QtTest>

// The dial-up test against a mocked NetworkManager on a private bus (networkmanager.sh starts
// it and says in TW_DIALUP_EXPECT what the link is in this run).
class TestDialUp : public QObject
{
    Q_OBJECT
private slots:
    void dialUpLinkIsFoundAsNetworkManagerReportsIt()
    {
        const QString expect = qEnvironmentVariable("TW_DIALUP_EXPECT");
        if (expect.isEmpty())
            QSKIP("no mocked NetworkManager (run through networkmanager.sh)");
        // A ppp link of this machine would make every answer "yes": nothing to learn here then.
        if (!QDir(QStringLiteral("/sys/class/net"))
                 .entryList({QStringLiteral("ppp*")}, QDir::AllEntries)
                 .isEmpty())
            QSKIP("this machine has a ppp interface of its own");
        LinuxDialUpState state;
        QCOMPARE(state.DialUpConnection(), expect == u"1");
    }
};

QTEST_GUILESS_MAIN(TestDialUp)
#include "tst_dialup.moc"
