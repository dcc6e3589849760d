#include "Version.h"
#include "shell/frmSplash.h"

#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

class TestFrmSplash : public QObject
{
    Q_OBJECT
private slots:
    void releaseLabelShowsTheVersion()
    {
        QCOMPARE(frmSplash::ReleaseText(2, 1, 10), QStringLiteral("Release 2.1.10"));
        frmSplash splash;
        QCOMPARE(splash.findChild<QLabel*>(QStringLiteral("lblRev"))->text(),
                 QStringLiteral("Release 2.0.0"));
        QCOMPARE(splash.findChild<QLabel*>(QStringLiteral("lblProductName"))->text(),
                 QStringLiteral("Tarrowind"));
        QCOMPARE(QStringLiteral(TW_VERSION_TEXT), QStringLiteral("2.0.0"));
    }

    void timerBringsUpTheMainWindowAfterTwoSeconds()
    {
        frmSplash splash;
        auto* timer = splash.findChild<QTimer*>(QStringLiteral("tmrSplash"));
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 2000);
        QVERIFY(timer->isActive());
        QSignalSpy finished(&splash, &frmSplash::Finished);
        splash.show();
        splash.tmrSplash_Timer();
        QCOMPARE(finished.size(), 1);
        QVERIFY(!splash.isVisible());
    }

    void keyPressClosesEarlyAndTheMainWindowStillAppears()
    {
        frmSplash splash;
        QSignalSpy finished(&splash, &frmSplash::Finished);
        splash.show();
        QVERIFY(QTest::qWaitForWindowExposed(&splash));
        QTest::keyClick(&splash, Qt::Key_Space);
        QCOMPARE(finished.size(), 1);
        QVERIFY(!splash.isVisible());
        // The timer does not bring the main window up a second time.
        QVERIFY(!splash.findChild<QTimer*>(QStringLiteral("tmrSplash"))->isActive());
        splash.tmrSplash_Timer();
        QCOMPARE(finished.size(), 1);
    }

    void closingTheSplashEarlyStillBringsUpTheMainWindow()
    {
        frmSplash splash;
        QSignalSpy finished(&splash, &frmSplash::Finished);
        splash.show();
        QVERIFY(QTest::qWaitForWindowExposed(&splash));
        splash.close();
        QCOMPARE(finished.size(), 1);
        QVERIFY(!splash.isVisible());
    }
};

QTEST_MAIN(TestFrmSplash)
#include "tst_frmsplash.moc"
