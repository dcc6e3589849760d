#include "shell/frmMessage.h"
#include "widgets/TopMost.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

class TestFrmMessage : public QObject
{
    Q_OBJECT
private slots:
    void showsHeadingAndMessageOnTop()
    {
        frmMessage message(nullptr, [] {});
        message.SetMessage(
            QStringLiteral("Unable to connect to site.\rCheck site address or Intenet connection"));
        QCOMPARE(message.windowTitle(), QStringLiteral("Tarrowind"));
        QCOMPARE(message.findChild<QLabel*>(QStringLiteral("Label1"))->text(),
                 QStringLiteral("Warning - Unable to Synchronize"));
        QCOMPARE(message.findChild<QLabel*>(QStringLiteral("lblMessage"))->text(),
                 QStringLiteral("Unable to connect to site.\nCheck site address or Intenet connection"));
        QVERIFY(IsTopMost(&message));
    }

    void beepsOnceEachTimeItIsActivated()
    {
        int beeps = 0;
        frmMessage message(nullptr, [&beeps] { ++beeps; });
        message.show();
        QVERIFY(QTest::qWaitForWindowExposed(&message));
        QApplication::setActiveWindow(&message);
        QTRY_COMPARE(beeps, 1);

        QWidget other;
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        QApplication::setActiveWindow(&other);
        QTRY_VERIFY(!message.isActiveWindow());
        QCOMPARE(beeps, 1); // losing the focus does not beep
        QApplication::setActiveWindow(&message);
        QTRY_COMPARE(beeps, 2);
    }

    void okClosesTheWindow()
    {
        frmMessage message(nullptr, [] {});
        message.show();
        QVERIFY(QTest::qWaitForWindowExposed(&message));
        QTest::mouseClick(message.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
        QVERIFY(!message.isVisible());
    }
};

QTEST_MAIN(TestFrmMessage)
#include "tst_frmmessage.moc"
