#include "settings/Preferences.h"

#include <QSignalSpy>
#include <QtTest>

class TestPreferences : public QObject
{
    Q_OBJECT
private slots:
    void replacingEveryValueIsAnnouncedOnce()
    {
        Preferences preferences;
        QSignalSpy changed(&preferences, &Preferences::Changed);
        Settings values;
        values.FontName = QStringLiteral("Liberation Mono");
        values.Zone = 4;
        preferences.Replace(values);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(preferences.Values().FontName, QStringLiteral("Liberation Mono"));
        QCOMPARE(preferences.Values().Zone, 4);
    }

    void severalChangesAtOnceAreAnnouncedOnce()
    {
        Preferences preferences;
        QSignalSpy changed(&preferences, &Preferences::Changed);
        preferences.Change([](Settings& values) {
            values.Audible = 1;
            values.DayLight = 1;
            values.DefaultInterval = QStringLiteral("00:20");
        });
        QCOMPARE(changed.size(), 1);
        QCOMPARE(preferences.Values().Audible, qint16(1));
        QCOMPARE(preferences.Values().DayLight, qint16(1));
        QCOMPARE(preferences.Values().DefaultInterval, QStringLiteral("00:20"));
    }

    void listenersSeeTheNewValuesWhenTold()
    {
        Preferences preferences;
        qint32 seen = -1;
        QObject::connect(&preferences, &Preferences::Changed, &preferences,
                         [&] { seen = preferences.Values().Zone; });
        preferences.Change([](Settings& values) { values.Zone = 2; });
        QCOMPARE(seen, 2);
    }
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "tst_preferences.moc"
