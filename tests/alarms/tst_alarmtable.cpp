#include "TestEnvironment.h"
#include "alarms/AlarmLogic.h"
#include "alarms/AlarmTable.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QSettings>
#include <QtTest>

#include <stdexcept>

namespace {
AlarmRecord Alarm(const QString& message, const QString& expire, bool set)
{
    AlarmRecord a;
    a.Message = message;
    a.Expire = expire;
    a.AlarmSet = set;
    return a;
}
} // namespace

class TestAlarmTable : public QObject
{
    Q_OBJECT
private slots:
    void keysAreFieldBlankNumber()
    {
        QCOMPARE(AlarmKey(u"Safety", 1), QStringLiteral("Safety 1"));
        QCOMPARE(AlarmKey(u"LastPosition", 30), QStringLiteral("LastPosition 30"));
    }

    void saveWritesCountAndNineKeysPerAlarm()
    {
        TestEnvironment env;
        AlarmTable table;
        table.AlarmCount = 2;
        table.At(1) = Alarm(QStringLiteral("Crew 7 check"), QStringLiteral("07:30"), true);
        table.At(1).Safety = 1;
        table.At(1).Repeat = 1;
        table.At(1).TypeTimer = true;
        table.At(1).Interval = QStringLiteral("00:15");
        table.At(1).LastPosition = QStringLiteral("07:15 Ridge road");
        table.At(1).AudioPath = QStringLiteral("/sounds/bell.wav");
        table.At(2) = Alarm(QStringLiteral("Shift change"), QStringLiteral(" "), false);
        {
            SettingsStore store(env.SettingsFile());
            table.Save(store);
            QVERIFY(store.Sync());
        }
        QSettings ini(env.SettingsFile(), QSettings::IniFormat);
        ini.beginGroup(QStringLiteral("Alarms"));
        QCOMPARE(ini.value(QStringLiteral("Count")).toString(), QStringLiteral("2"));
        QCOMPARE(ini.value(QStringLiteral("Message 1")).toString(), QStringLiteral("Crew 7 check"));
        QCOMPARE(ini.value(QStringLiteral("TypeTimer 1")).toString(), QStringLiteral("True"));
        QCOMPARE(ini.value(QStringLiteral("Expire 1")).toString(), QStringLiteral("07:30"));
        QCOMPARE(ini.value(QStringLiteral("Interval 1")).toString(), QStringLiteral("00:15"));
        QCOMPARE(ini.value(QStringLiteral("Repeat 1")).toString(), QStringLiteral("1"));
        QCOMPARE(ini.value(QStringLiteral("AlarmSet 1")).toString(), QStringLiteral("True"));
        QCOMPARE(ini.value(QStringLiteral("AudioPath 1")).toString(), QStringLiteral("/sounds/bell.wav"));
        QCOMPARE(ini.value(QStringLiteral("Safety 1")).toString(), QStringLiteral("1"));
        QCOMPARE(ini.value(QStringLiteral("LastPosition 1")).toString(), QStringLiteral("07:15 Ridge road"));
        QCOMPARE(ini.value(QStringLiteral("AlarmSet 2")).toString(), QStringLiteral("False"));
        QCOMPARE(ini.value(QStringLiteral("Expire 2")).toString(), QStringLiteral(" "));
        QVERIFY(!ini.contains(QStringLiteral("Message 3")));
        QVERIFY(!ini.contains(QStringLiteral("Count 1")));
        QCOMPARE(ini.childKeys().size(), 1 + 2 * 9);
    }

    void savingThreeAfterFiveLeavesOldKeysAndLoadsThree()
    {
        TestEnvironment env;
        SettingsStore store(env.SettingsFile());
        AlarmTable table;
        table.AlarmCount = 5;
        for (int n = 1; n <= 5; ++n)
            table.At(n) = Alarm(QStringLiteral("Alarm %1").arg(n), QStringLiteral("10:0%1").arg(n), true);
        table.Save(store);
        table.AlarmCount = 3;
        table.Save(store);
        QVERIFY(store.Sync());

        QCOMPARE(store.Read(QStringLiteral("Alarms"), QStringLiteral("Message 4"), QString()),
                 QStringLiteral("Alarm 4"));
        QCOMPARE(store.Read(QStringLiteral("Alarms"), QStringLiteral("Message 5"), QString()),
                 QStringLiteral("Alarm 5"));
        AlarmTable loaded;
        loaded.Load(store);
        QCOMPARE(loaded.AlarmCount, 3);
        QCOMPARE(loaded.At(3).Message, QStringLiteral("Alarm 3"));
        QCOMPARE(loaded.At(4).Message, QString()); // slots above the count hold cleared records
    }

    void setClockAlarmStaysSetAcrossARestart()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=1\nMessage%201=Wake crew\n"
                                                       "TypeTimer%201=False\nExpire%201=07:30\n"
                                                       "AlarmSet%201=True\n");
        AlarmTable table;
        table.Load(SettingsStore(env.SettingsFile()));
        QCOMPARE(table.AlarmCount, 1);
        QCOMPARE(table.At(1).Message, QStringLiteral("Wake crew"));
        QCOMPARE(table.At(1).Expire, QStringLiteral("07:30"));
        QCOMPARE(table.At(1).AlarmSet, true);
        QCOMPARE(table.At(1).TypeTimer, false);
        QCOMPARE(table.At(1).Ringing, false);
        QCOMPARE(table.SetCount(), 1);
    }

    void missingKeysTakeTheirDefaults()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=1\n");
        AlarmTable table;
        table.Load(SettingsStore(env.SettingsFile()));
        const AlarmRecord& a = table.At(1);
        QCOMPARE(a.Message, QString());
        QCOMPARE(a.Expire, QString());
        QCOMPARE(a.Interval, QString());
        QCOMPARE(a.AudioPath, QString());
        QCOMPARE(a.LastPosition, QString());
        QCOMPARE(a.TypeTimer, false);
        QCOMPARE(a.AlarmSet, false);
        QCOMPARE(a.Repeat, 0);
        QCOMPARE(a.Safety, 0);
    }

    void countAboveThirtyStopsAtThirty()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=45\nMessage%2030=Last\n");
        AlarmTable table;
        table.Load(SettingsStore(env.SettingsFile()));
        QCOMPARE(table.AlarmCount, 30);
        QCOMPARE(table.At(30).Message, QStringLiteral("Last"));
    }

    void countFarAboveThirtyStopsAtThirtyAndBelowZeroAtZero()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=40000\nMessage%2030=Last\n");
        AlarmTable table;
        QVERIFY(!table.Load(SettingsStore(env.SettingsFile())));
        QCOMPARE(table.AlarmCount, 30);
        QCOMPARE(table.At(30).Message, QStringLiteral("Last"));
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=99999999999999999999999\n");
        QVERIFY(!table.Load(SettingsStore(env.SettingsFile())));
        QCOMPARE(table.AlarmCount, 30);
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=-4\n");
        QVERIFY(!table.Load(SettingsStore(env.SettingsFile())));
        QCOMPARE(table.AlarmCount, 0);
    }

    void valueThatIsNotItsKindIsRefusedByKeyAndValue_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("set as a word") << QByteArray("Count=1\nAlarmSet%201=yes\n") << "AlarmSet 1"
                                       << "yes";
        QTest::newRow("timer as a word") << QByteArray("Count=1\nTypeTimer%201=perhaps\n") << "TypeTimer 1"
                                         << "perhaps";
        QTest::newRow("retain as a word") << QByteArray("Count=1\nRepeat%201=often\n") << "Repeat 1"
                                          << "often";
        QTest::newRow("safety as a letter") << QByteArray("Count=2\nSafety%202=x\n") << "Safety 2"
                                            << "x";
        QTest::newRow("count as a word") << QByteArray("Count=lots\n") << "Count"
                                         << "lots";
    }

    void valueThatIsNotItsKindIsRefusedByKeyAndValue()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, key);
        QFETCH(QString, value);
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\n" + ini);
        AlarmTable table;
        const auto error = table.Load(SettingsStore(env.SettingsFile()));
        QVERIFY(error);
        QCOMPARE(error->Section, QStringLiteral("Alarms"));
        QCOMPARE(error->Key, key);
        QCOMPARE(error->Value, value);
        QCOMPARE(table.AlarmCount, 0);
    }

    void numberOutsideTheCheckBoxValuesIsKeptAndCountsAsNotTicked()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(),
                                   "[Alarms]\nCount=1\nMessage%201=Odd\nSafety%201=99999\n"
                                   "Repeat%201=-2\n");
        AlarmTable table;
        QVERIFY(!table.Load(SettingsStore(env.SettingsFile())));
        QCOMPARE(table.At(1).Safety, 99999);
        QCOMPARE(SafetyFlag(table.At(1)), qint16(0));
        SettingsStore store(env.SettingsFile());
        table.Save(store);
        QVERIFY(store.Sync());
        QCOMPARE(QSettings(env.SettingsFile(), QSettings::IniFormat).value(QStringLiteral("Alarms/Safety 1")),
                 QVariant(QStringLiteral("99999")));
        QCOMPARE(QSettings(env.SettingsFile(), QSettings::IniFormat).value(QStringLiteral("Alarms/Repeat 1")),
                 QVariant(QStringLiteral("-2")));
    }

    void messageWrittenInLatin1ReadsBackAsWritten()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(),
                                   "[Alarms]\nCount=1\nMessage%201=Caf\xe9 on the ridge\n");
        AlarmTable table;
        QVERIFY(!table.Load(SettingsStore(env.SettingsFile())));
        QCOMPARE(table.At(1).Message, QStringLiteral("Caf\u00e9 on the ridge"));
    }

    void booleansAcceptNumbers()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(env.SettingsFile(), "[Alarms]\nCount=2\nAlarmSet%201=-1\nTypeTimer%201=0\n"
                                                       "AlarmSet%202=0\n");
        AlarmTable table;
        table.Load(SettingsStore(env.SettingsFile()));
        QCOMPARE(table.At(1).AlarmSet, true);
        QCOMPARE(table.At(1).TypeTimer, false);
        QCOMPARE(table.At(2).AlarmSet, false);
    }

    void unsetAlarmIsSavedWithABlankExpiryAfterTheListIsRebuilt()
    {
        TestEnvironment env;
        AlarmTable table;
        table.AlarmCount = 2;
        table.At(1) = Alarm(QStringLiteral("Unset"), QStringLiteral("00:00"), false);
        table.At(2) = Alarm(QStringLiteral("Set"), QStringLiteral("08:00"), true);
        table.BlankUnsetExpiries();
        SettingsStore store(env.SettingsFile());
        table.Save(store);
        QCOMPARE(store.Read(QStringLiteral("Alarms"), QStringLiteral("Expire 1"), QString()),
                 QStringLiteral(" "));
        QCOMPARE(store.Read(QStringLiteral("Alarms"), QStringLiteral("Expire 2"), QString()),
                 QStringLiteral("08:00"));
    }

    void textsWithCommasAndQuotesSurviveTheStore()
    {
        TestEnvironment env;
        AlarmTable table;
        table.AlarmCount = 1;
        table.At(1) = Alarm(QStringLiteral("Unit 4, \"north\" @gate; 50%"), QStringLiteral("09:00"), true);
        {
            SettingsStore store(env.SettingsFile());
            table.Save(store);
            QVERIFY(store.Sync());
        }
        AlarmTable loaded;
        loaded.Load(SettingsStore(env.SettingsFile()));
        QCOMPARE(loaded.At(1).Message, table.At(1).Message);
    }

    void numbersOutsideTheSlotsAreAFault()
    {
        AlarmTable table;
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, table.At(0));
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, table.At(31));
        table.At(30).Message = QStringLiteral("ok");
        QCOMPARE(table.At(30).Message, QStringLiteral("ok"));
    }

    void setCountCountsOnlyAlarmsInUse()
    {
        AlarmTable table;
        table.AlarmCount = 2;
        table.At(1).AlarmSet = true;
        table.At(3).AlarmSet = true; // above the count
        QCOMPARE(table.SetCount(), 1);
    }
};

QTEST_GUILESS_MAIN(TestAlarmTable)
#include "tst_alarmtable.moc"
