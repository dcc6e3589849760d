#include "widgets/TimeBox.h"

#include <QSignalSpy>
#include <QtTest>

class TestTimeBox : public QObject
{
    Q_OBJECT
private slots:
    void typedDigitsFillTheMask()
    {
        TimeBox box;
        box.setCursorPosition(0);
        QTest::keyClicks(&box, QStringLiteral("0730"));
        QCOMPARE(box.Text(), QStringLiteral("07:30"));
    }

    void untypedPlacesShowAsUnderscores()
    {
        TimeBox box;
        QCOMPARE(box.Text(), QStringLiteral("__:__"));
        box.setCursorPosition(0);
        QTest::keyClicks(&box, QStringLiteral("1"));
        QCOMPARE(box.Text(), QStringLiteral("1_:__"));
    }

    void hoursAboveTwentyThreeAndMinutesAboveFiftyNineCannotBeTyped()
    {
        TimeBox box;
        box.setCursorPosition(0);
        QTest::keyClicks(&box, QStringLiteral("2"));
        QTest::keyClicks(&box, QStringLiteral("7"));
        QCOMPARE(box.Text(), QStringLiteral("2_:__"));
        QTest::keyClicks(&box, QStringLiteral("3"));
        QTest::keyClicks(&box, QStringLiteral("7"));
        QTest::keyClicks(&box, QStringLiteral("5"));
        QCOMPARE(box.Text(), QStringLiteral("23:5_"));
    }

    void lettersAreRefused()
    {
        TimeBox box;
        box.setCursorPosition(0);
        QTest::keyClicks(&box, QStringLiteral("ab"));
        QCOMPARE(box.Text(), QStringLiteral("__:__"));
    }

    void keysAndChangesAreReported()
    {
        TimeBox box;
        QSignalSpy keys(&box, &TimeBox::KeyTyped);
        QSignalSpy changes(&box, &TimeBox::Change);
        box.setCursorPosition(0);
        QTest::keyClicks(&box, QStringLiteral("12"));
        QCOMPARE(keys.size(), 2);
        QVERIFY(changes.size() >= 2);
        box.SetText(QStringLiteral("08:15"));
        QCOMPARE(keys.size(), 2); // setting by code is not a key
        QCOMPARE(box.Text(), QStringLiteral("08:15"));
    }
};

QTEST_MAIN(TestTimeBox)
#include "tst_timebox.moc"
