#include "ManualClock.h"
#include "TestEnvironment.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QSettings>
#include <QtTest>

class TestSettings : public QObject
{
    Q_OBJECT
private:
    const QDateTime m_now{QDate(2026, 11, 16), QTime(9, 30, 5)};

    static QString IniPath(const TestEnvironment& env) { return env.SettingsFile(); }

private slots:
    void firstRunGivesEveryDefault()
    {
        TestEnvironment env;
        SettingsStore store(IniPath(env));
        const auto read = ReadSettings(store, m_now);
        QVERIFY(!read.Error);
        const Settings& s = read.Values;
        QCOMPARE(s.FontName, QStringLiteral("Arial"));
        QCOMPARE(s.FontSize, 16.0);
        QCOMPARE(s.FontBold, true);
        QCOMPARE(s.FontItalic, false);
        QCOMPARE(s.ForeColor, QStringLiteral("65535")); // yellow
        QCOMPARE(s.BackColor, 1);                       // practically black
        QCOMPARE(s.Sound, QStringLiteral("DefaultAlarm.Wav"));
        QCOMPARE(s.Audible, qint16(1));
        QCOMPARE(s.AutoSync, qint16(0));
        QCOMPARE(s.AutoSyncHrs, qint16(24));
        QCOMPARE(s.UTCRule, qint16(1));
        QCOMPARE(s.InetMinOffset, 0);
        QCOMPARE(s.SyncSite, QStringLiteral("pool.ntp.org"));
        QCOMPARE(s.LastSync, m_now);
        QCOMPARE(s.DayLight, qint16(0));
        QCOMPARE(s.LatDeg, QStringLiteral("00"));
        QCOMPARE(s.LatMin, QStringLiteral("00"));
        QCOMPARE(s.LongDeg, QStringLiteral("000"));
        QCOMPARE(s.LongMin, QStringLiteral("00"));
        QCOMPARE(s.StartWithWindows, qint16(0));
        QCOMPARE(s.DefaultInterval, QStringLiteral("00:15"));
        QCOMPARE(s.LogOn, qint16(0));
        QCOMPARE(s.LogSafetyOnly, true);
        QCOMPARE(s.Connection, qint16(0));
        QCOMPARE(s.Zone, 1); // Pacific
    }

    void storedEmptyForeColorIsKeptEmptyButAbsentIsYellow()
    {
        TestEnvironment env;
        {
            SettingsStore store(IniPath(env));
            store.Write(QStringLiteral("Font"), QStringLiteral("ForeColor"), QString());
            store.Sync();
        }
        SettingsStore store(IniPath(env));
        QVERIFY(store.Contains(QStringLiteral("Font"), QStringLiteral("ForeColor")));
        QCOMPARE(ReadSettings(store, m_now).Values.ForeColor, QString());

        TestEnvironment other;
        SettingsStore empty(IniPath(other));
        QCOMPARE(ReadSettings(empty, m_now).Values.ForeColor, QStringLiteral("65535"));
    }

    void emptyFontNameKeepsArial()
    {
        TestEnvironment env;
        SettingsStore store(IniPath(env));
        store.Write(QStringLiteral("Font"), QStringLiteral("Name"), QString());
        QCOMPARE(ReadSettings(store, m_now).Values.FontName, QStringLiteral("Arial"));
    }

    void storedValuesAreReadWithTheirTypes()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(IniPath(env), "[General]\n"
                                                 "Audible=0\nAutoSync=-1\nAutoSyncHrs=3\nZone=4\nDayLight=1\n"
                                                 "InetMinOffset=-2\nLogOn=1\nLogSafetyOnly=False\n"
                                                 "LastSync=2026-11-15 08:10:00\nSound=/tmp/x.wav\n"
                                                 "[Font]\nName=Liberation Mono\nSize=20\nItalic=1\nBold=0\n"
                                                 "ForeColor=255\nBackColor=16777215\n"
                                                 "[Sun]\nLatDeg=45\nLatMin=30\nLongDeg=122\nLongMin=41\n");
        SettingsStore store(IniPath(env));
        const auto read = ReadSettings(store, m_now);
        QVERIFY(!read.Error);
        const Settings& s = read.Values;
        QCOMPARE(s.Audible, qint16(0));
        QCOMPARE(s.AutoSync, qint16(-1));
        QCOMPARE(s.AutoSyncHrs, qint16(3));
        QCOMPARE(s.Zone, 4);
        QCOMPARE(s.DayLight, qint16(1));
        QCOMPARE(s.InetMinOffset, -2);
        QCOMPARE(s.LogOn, qint16(1));
        QCOMPARE(s.LogSafetyOnly, false);
        QCOMPARE(s.LastSync, QDateTime(QDate(2026, 11, 15), QTime(8, 10)));
        QCOMPARE(s.Sound, QStringLiteral("/tmp/x.wav"));
        QCOMPARE(s.FontName, QStringLiteral("Liberation Mono"));
        QCOMPARE(s.FontSize, 20.0);
        QCOMPARE(s.FontItalic, true); // numbers are accepted for booleans
        QCOMPARE(s.FontBold, false);
        QCOMPARE(s.ForeColor, QStringLiteral("255"));
        QCOMPARE(s.BackColor, 16777215);
        QCOMPARE(s.LatDeg, QStringLiteral("45"));
        QCOMPARE(s.LongMin, QStringLiteral("41"));
    }

    void generalSectionIsTheFilesGeneralSection()
    {
        TestEnvironment env;
        {
            SettingsStore store(IniPath(env));
            store.Write(QStringLiteral("General"), QStringLiteral("Zone"), QStringLiteral("3"));
            QVERIFY(store.Sync());
        }
        const QByteArray text = TestEnvironment::ReadFile(IniPath(env));
        QVERIFY2(text.contains("[General]\nZone=3"), text.constData());
    }

    void valueThatIsNotANumberIsReportedByKey_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("Audible") << "General"
                                 << "Audible"
                                 << "loud";
        QTest::newRow("Zone") << "General"
                              << "Zone"
                              << "Pacific";
        QTest::newRow("16-bit overflow") << "General"
                                         << "AutoSyncHrs"
                                         << "70000";
        QTest::newRow("Size") << "Font"
                              << "Size"
                              << "big";
        QTest::newRow("Bold") << "Font"
                              << "Bold"
                              << "maybe";
        QTest::newRow("ForeColor") << "Font"
                                   << "ForeColor"
                                   << "yellow";
        QTest::newRow("BackColor") << "Font"
                                   << "BackColor"
                                   << "";
        QTest::newRow("InetMinOffset") << "General"
                                       << "InetMinOffset"
                                       << "two";
        QTest::newRow("LastSync") << "General"
                                  << "LastSync"
                                  << "yesterday";
        QTest::newRow("LogSafetyOnly") << "General"
                                       << "LogSafetyOnly"
                                       << "perhaps";
    }

    void valueThatIsNotANumberIsReportedByKey()
    {
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        TestEnvironment env;
        SettingsStore store(IniPath(env));
        store.Write(section, key, value);
        const auto read = ReadSettings(store, m_now);
        QVERIFY(read.Error);
        QCOMPARE(read.Error->Section, section);
        QCOMPARE(read.Error->Key, key);
        QCOMPARE(read.Error->Value, value);
        const QString message = SettingsErrorMessage(*read.Error);
        QVERIFY(message.contains(u'"' + section + u'"'));
        QVERIFY(message.contains(u'"' + key + u'"'));
        QVERIFY(message.contains(u'"' + value + u'"'));
    }

    void writeStoresEveryKeyOfTheTable()
    {
        TestEnvironment env;
        {
            SettingsStore store(IniPath(env));
            WriteSettings(store, ReadSettings(store, m_now).Values);
            QVERIFY(store.Sync());
        }
        QSettings ini(IniPath(env), QSettings::IniFormat);
        QCOMPARE(SettingKeys().size(), std::size_t(25));
        for (const SettingKey& key : SettingKeys()) {
            const QString section = QString::fromUtf16(key.Section);
            const QString name = QString::fromUtf16(key.Key);
            const QString full = section == u"General" ? name : section + u'/' + name;
            QVERIFY2(ini.contains(full), qPrintable(full));
        }
        QCOMPARE(ini.value(QStringLiteral("Font/Bold")).toString(), QStringLiteral("True"));
        QCOMPARE(ini.value(QStringLiteral("Font/ForeColor")).toString(), QStringLiteral("65535"));
        QCOMPARE(ini.value(QStringLiteral("LogSafetyOnly")).toString(), QStringLiteral("True"));
        QCOMPARE(ini.value(QStringLiteral("LastSync")).toString(), QStringLiteral("2026-11-16 09:30:05"));
    }

    void writeOrderIsTheShutdownOrder()
    {
        QStringList order;
        for (const SettingKey* key : SettingWriteOrder())
            order << QString::fromUtf16(key->Key);
        const QStringList expected{QStringLiteral("ForeColor"),
                                   QStringLiteral("BackColor"),
                                   QStringLiteral("Name"),
                                   QStringLiteral("Bold"),
                                   QStringLiteral("Size"),
                                   QStringLiteral("Italic"),
                                   QStringLiteral("Sound"),
                                   QStringLiteral("StartWithWindows"),
                                   QStringLiteral("Zone"),
                                   QStringLiteral("Audible"),
                                   QStringLiteral("AutoSync"),
                                   QStringLiteral("AutoSyncHrs"),
                                   QStringLiteral("SyncSite"),
                                   QStringLiteral("LastSync"),
                                   QStringLiteral("InetMinOffset"),
                                   QStringLiteral("DayLight"),
                                   QStringLiteral("LatDeg"),
                                   QStringLiteral("LatMin"),
                                   QStringLiteral("LongDeg"),
                                   QStringLiteral("LongMin"),
                                   QStringLiteral("DefaultInterval"),
                                   QStringLiteral("LogOn"),
                                   QStringLiteral("LogSafetyOnly"),
                                   QStringLiteral("Connection"),
                                   QStringLiteral("UTCRule")};
        QCOMPARE(order, expected);
    }

    void writtenValuesReadBackUnchanged()
    {
        TestEnvironment env;
        Settings s = ReadSettings(SettingsStore(IniPath(env)), m_now).Values;
        s.FontSize = 12.5;
        s.Zone = 5;
        s.InetMinOffset = -7;
        s.ForeColor = QStringLiteral("16777215");
        s.LastSync = QDateTime(QDate(2025, 1, 2), QTime(3, 4, 5));
        {
            SettingsStore store(IniPath(env));
            WriteSettings(store, s);
            QVERIFY(store.Sync());
        }
        const Settings back = ReadSettings(SettingsStore(IniPath(env)), m_now).Values;
        QCOMPARE(back.FontSize, 12.5);
        QCOMPARE(back.Zone, 5);
        QCOMPARE(back.InetMinOffset, -7);
        QCOMPARE(back.ForeColor, QStringLiteral("16777215"));
        QCOMPARE(back.LastSync, s.LastSync);
    }

    void lastSyncAcceptsIsoDates()
    {
        QCOMPARE(ParseStoredDateTime(QStringLiteral("2026-11-15T08:10:00")),
                 QDateTime(QDate(2026, 11, 15), QTime(8, 10)));
        QVERIFY(!ParseStoredDateTime(QStringLiteral("not a date")));
    }

    void lastSyncIsReadAsItIsWrittenBackToTheSecondInLocalTime()
    {
        const auto withMilliseconds = ParseStoredDateTime(QStringLiteral("2026-11-16T10:00:00.123"));
        QVERIFY(withMilliseconds);
        QCOMPARE(*withMilliseconds, QDateTime(QDate(2026, 11, 16), QTime(10, 0, 0)));
        const auto withOffset = ParseStoredDateTime(QStringLiteral("2026-11-16T10:00:00+05:00"));
        QVERIFY(withOffset);
        QCOMPARE(withOffset->timeSpec(), Qt::LocalTime);
        QCOMPARE(withOffset->toUTC(), QDateTime(QDate(2026, 11, 16), QTime(5, 0, 0), Qt::UTC));
        // Written back and read again, each is the same moment.
        Settings values;
        values.LastSync = *withOffset;
        for (const SettingKey& key : SettingKeys())
            if (QString::fromUtf16(key.Key) == u"LastSync")
                QCOMPARE(ParseStoredDateTime(key.Format(values)), withOffset);
    }

    void numbersRoundHalfToEvenAndCheckRange()
    {
        QCOMPARE(ParseInt16(QStringLiteral("2.5")), qint16(2));
        QCOMPARE(ParseInt16(QStringLiteral("3.5")), qint16(4));
        QCOMPARE(ParseInt16(QStringLiteral(" 7 ")), qint16(7));
        QVERIFY(!ParseInt16(QStringLiteral("32768")));
        QCOMPARE(ParseInt16(QStringLiteral("-32768")), qint16(-32768));
        QVERIFY(!ParseInt16(QString()));
        QVERIFY(!ParseInt32(QStringLiteral("1e12")));
        QCOMPARE(ParseBool(QStringLiteral("true")), true);
        QCOMPARE(ParseBool(QStringLiteral("0")), false);
        QCOMPARE(ParseBool(QStringLiteral("-1")), true);
        QVERIFY(!ParseBool(QStringLiteral("yes")));
    }

    void unreadableFileIsReported()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(IniPath(env), "[General]\nZone=1\n");
        QFile::setPermissions(IniPath(env), QFileDevice::Permissions());
        SettingsStore store(IniPath(env));
        if (QFile(IniPath(env)).open(QIODevice::ReadOnly))
            QSKIP("running with the right to read any file (root); an unreadable file cannot be made");
        QVERIFY(!store.IsReadable());
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
