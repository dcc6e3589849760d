#include "widgets/KeyedStatusBar.h"

#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

class TestKeyedStatusBar : public QObject
{
    Q_OBJECT
private slots:
    void panelsAreNamedByTheirKeysAndReportClicks()
    {
        KeyedStatusBar bar;
        bar.AddPanel(QStringLiteral("Calc"), QStringLiteral("Calc"), QStringLiteral("Calculate Times"));
        bar.AddPanel(QStringLiteral("Status"), QString(), QString(), true);
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        QLabel* calc = bar.findChild<QLabel*>(QStringLiteral("Calc"));
        QVERIFY(calc);
        QCOMPARE(calc->toolTip(), QStringLiteral("Calculate Times"));
        QCOMPARE(calc->accessibleName(), QStringLiteral("Calc"));

        QSignalSpy clicks(&bar, &KeyedStatusBar::PanelClick);
        QTest::mouseClick(calc, Qt::LeftButton);
        QTest::mouseClick(bar.Panel(QStringLiteral("Status")), Qt::LeftButton);
        QCOMPARE(clicks.size(), 2);
        QCOMPARE(clicks.at(0).at(0).toString(), QStringLiteral("Calc"));
        QCOMPARE(clicks.at(1).at(0).toString(), QStringLiteral("Status"));
        QTest::mouseClick(calc, Qt::RightButton);
        QCOMPARE(clicks.size(), 2);
    }

    void panelTextCanBeSetByKey()
    {
        KeyedStatusBar bar;
        bar.AddPanel(QStringLiteral("Status"), QString(), QString(), true);
        bar.SetPanelText(QStringLiteral("Status"),
                         QStringLiteral("3 alarms, 1 set, Logging On, System Clock"));
        QCOMPARE(bar.PanelText(QStringLiteral("Status")),
                 QStringLiteral("3 alarms, 1 set, Logging On, System Clock"));
        QCOMPARE(bar.PanelText(QStringLiteral("Missing")), QString());
    }
};

QTEST_MAIN(TestKeyedStatusBar)
#include "tst_keyedstatusbar.moc"
