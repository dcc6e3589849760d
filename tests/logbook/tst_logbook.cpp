#include "ManualClock.h"
#include "TestEnvironment.h"
#include "logbook/LogBook.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

namespace {
const QLocale EnUs(QLocale::English, QLocale::UnitedStates);
const LogSwitches AllEvents{true, false};
const LogSwitches SafetyOnly{true, true};
const LogSwitches LoggingOff{false, false};

// A log on Monday's last second, writing every entry, stamped by its clock: the day has not
// been turned when the clock passes midnight.
struct LastSecondOfMonday
{
    LastSecondOfMonday()
    {
        log.SetSwitches(AllEvents);
        log.SetTimeSource([this] { return LogBook::Stamp{clock.Today(), clock.Now().toString(u"HH:mm")}; });
    }
    void Note(const char* text)
    {
        log.WriteLogEntry(QStringLiteral("NT"), 0, QString::fromUtf8(text), QString(), QString());
    }
    TestEnvironment env;
    ManualClock clock{QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59))};
    LogBook log{env.LogFolder(), clock, EnUs};
};
} // namespace

class TestLogBook : public QObject
{
    Q_OBJECT
private slots:
    void fileIsNamedByTheDayYearFirst()
    {
        QCOMPARE(LogFileName(QDate(2004, 2, 4)), QStringLiteral("20040204.log"));
        QCOMPARE(LogFileName(QDate(2026, 11, 16)), QStringLiteral("20261116.log"));
    }

    void dateIsTheLocalesShortDateWithAFourDigitYear()
    {
        QCOMPARE(FormatLogDate(QDate(2026, 11, 16), EnUs), QStringLiteral("11/16/2026"));
        QCOMPARE(FormatLogDate(QDate(2004, 2, 4), EnUs), QStringLiteral("2/4/2004"));
        QCOMPARE(FormatLogDate(QDate(2026, 11, 16), QLocale(QLocale::German, QLocale::Germany)),
                 QStringLiteral("16.11.2026"));
        QCOMPARE(FormatLogDate(QDate(2026, 11, 16), QLocale(QLocale::English, QLocale::UnitedKingdom)),
                 QStringLiteral("16/11/2026"));
        // The date reads back as the same day, not in the wrong century.
        QCOMPARE(ParseLogDate(QStringLiteral("11/16/2026"), EnUs), QDate(2026, 11, 16));
        QVERIFY(!ParseLogDate(QStringLiteral("not a date"), EnUs));
    }

    void lineHasSevenFieldsQuotedExceptTheSafetyFlag()
    {
        const LogEntry entry{QDate(2026, 11, 16),
                             QStringLiteral("14:05"),
                             QStringLiteral("SA"),
                             1,
                             QStringLiteral("Alarm set for "),
                             QStringLiteral("Crew 7"),
                             QStringLiteral(", expires at 14:20")};
        QCOMPARE(FormatLogLine(entry, EnUs), QByteArray("\"11/16/2026\",\"14:05\",\"SA\",1,\"Alarm set for "
                                                        "\",\"Crew 7\",\", expires at 14:20\"\r\n"));
    }

    void quotesInATextAreWrittenAsTheyAre()
    {
        const LogEntry entry{
            QDate(2026, 11, 16),      QStringLiteral("09:00"),         QStringLiteral("NT"),      0,
            QStringLiteral("Gate: "), QStringLiteral("say \"hello\""), QStringLiteral(" (09:00)")};
        QCOMPARE(
            FormatLogLine(entry, EnUs),
            QByteArray("\"11/16/2026\",\"09:00\",\"NT\",0,\"Gate: \",\"say \"hello\"\",\" (09:00)\"\r\n"));
    }

    void startEntryIsWrittenWithAllEvents()
    {
        TestEnvironment env;
        ManualClock clock(QDateTime(QDate(2026, 11, 16), QTime(8, 0, 30)));
        LogBook log(env.LogFolder(), clock, EnUs);
        QVERIFY(!log.OpenTodaysLog());
        QVERIFY(!log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(),
                                   QString(), QStringLiteral("08:00"), AllEvents));
        log.CloseTodaysLog();
        QCOMPARE(TestEnvironment::ReadFile(QDir(env.LogFolder()).filePath(QStringLiteral("20261116.log"))),
                 QByteArray("\"11/16/2026\",\"08:00\",\"ST\",0,\"Start program\",\"\",\"\"\r\n"));
    }

    void loggingOffWritesNothingButTodaysFileExists()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        QVERIFY(!log.OpenTodaysLog());
        for (const char* code : {"ST", "EX", "SA", "CA", "EA", "NT"}) {
            QVERIFY(!log.WriteLogEntry(QString::fromLatin1(code), 1, QStringLiteral("x"), QString(),
                                       QString(), QStringLiteral("10:00"), LoggingOff));
        }
        log.CloseTodaysLog();
        const QStringList files = QDir(env.LogFolder()).entryList(QDir::Files);
        QCOMPARE(files, QStringList{QStringLiteral("20261116.log")});
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(clock.Today())), QByteArray());
    }

    void safetyOnlyDropsOrdinaryEntriesAndKeepsSafetyOnes()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        QVERIFY(!log.OpenTodaysLog());
        QVERIFY(!log.WriteLogEntry(QStringLiteral("SA"), 0, QStringLiteral("Alarm set for "),
                                   QStringLiteral("Tea"), QStringLiteral(", expires at 10:30"),
                                   QStringLiteral("10:00"), SafetyOnly));
        QVERIFY(!log.WriteLogEntry(QStringLiteral("SA"), 1, QStringLiteral("Alarm set for "),
                                   QStringLiteral("Crew 7"), QStringLiteral(", expires at 10:15"),
                                   QStringLiteral("10:00"), SafetyOnly));
        log.CloseTodaysLog();
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(clock.Today())),
                 QByteArray("\"11/16/2026\",\"10:00\",\"SA\",1,\"Alarm set for \",\"Crew 7\",\", expires at "
                            "10:15\"\r\n"));
    }

    void shouldLogFollowsTheSwitches()
    {
        QVERIFY(!ShouldLog(1, LoggingOff));
        QVERIFY(!ShouldLog(0, SafetyOnly));
        QVERIFY(ShouldLog(1, SafetyOnly));
        QVERIFY(ShouldLog(0, AllEvents));
        // Only a safety flag of exactly 0 counts as ordinary.
        QVERIFY(ShouldLog(2, SafetyOnly));
    }

    void entryIsOnDiskBeforeTheFileIsClosed()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        QVERIFY(!log.OpenTodaysLog());
        QVERIFY(!log.WriteLogEntry(QStringLiteral("EA"), 1, QStringLiteral("Alarm Expired for "),
                                   QStringLiteral("Crew 7"), QString(), QStringLiteral("10:00"), AllEvents));
        QVERIFY(log.IsTodaysLogOpen());
        QVERIFY(TestEnvironment::ReadFile(log.PathOf(clock.Today())).endsWith("\"Crew 7\",\"\"\r\n"));
    }

    void entriesAreAppendedAcrossReopens()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        for (int i = 0; i < 3; ++i) {
            QVERIFY(!log.OpenTodaysLog());
            QVERIFY(!log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(),
                                       QString(), QStringLiteral("10:00"), AllEvents));
            log.CloseTodaysLog();
        }
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(clock.Today())).count("\r\n"), 3);
    }

    void writingWhileClosedReportsTheWriteError()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        const auto error = log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"),
                                             QString(), QString(), QStringLiteral("10:00"), AllEvents);
        QVERIFY(error);
        QCOMPARE(*error, QStringLiteral("Error writing to the logbook\r\r2 - The logbook file is not open"));
        // With logging off nothing is attempted, so nothing fails.
        QVERIFY(!log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(),
                                   QString(), QStringLiteral("10:00"), LoggingOff));
    }

    void openingFailsWhenTheFolderCannotBeMade()
    {
        TestEnvironment env;
        ManualClock clock;
        // A plain file stands where the folder should be.
        TestEnvironment::WriteFile(env.LogFolder(), "not a folder");
        LogBook log(env.LogFolder(), clock, EnUs);
        const auto error = log.OpenTodaysLog();
        QVERIFY(error);
        QVERIFY2(error->startsWith(QStringLiteral("Error opening today's logbook\r\r")), qPrintable(*error));
        QVERIFY(error->contains(QStringLiteral(" - ")));
        QVERIFY(!log.IsTodaysLogOpen());
    }

    void reopeningOnANewDayOpensTheNewDaysFile()
    {
        TestEnvironment env;
        ManualClock clock(QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59)));
        LogBook log(env.LogFolder(), clock, EnUs);
        QVERIFY(!log.OpenTodaysLog());
        clock.AdvanceSecs(1);
        QVERIFY(!log.OpenTodaysLog());
        QCOMPARE(log.OpenDay(), QDate(2026, 11, 17));
        QVERIFY(!log.WriteLogEntry(QStringLiteral("EA"), 1, QStringLiteral("Alarm Expired for "),
                                   QStringLiteral("Midnight"), QString(), QStringLiteral("00:00"),
                                   AllEvents));
        QVERIFY(TestEnvironment::ReadFile(log.PathOf(QDate(2026, 11, 17)))
                    .startsWith("\"11/17/2026\",\"00:00\""));
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(QDate(2026, 11, 16))), QByteArray());
    }

    void anEntryOfTheNextDayGoesIntoThatDaysFileBeforeTheDayIsTurned()
    {
        // Midnight has passed but the program has not yet turned the day (it does so at its
        // next tick): an entry stamped with the new day goes into the new day's file, not
        // into the file still open, and later entries follow it there.
        LastSecondOfMonday b;
        LogBook& log = b.log;
        QVERIFY(!log.OpenTodaysLog());
        b.Note("Last of Monday");
        b.clock.AdvanceSecs(1);
        log.WriteLogEntry(QStringLiteral("SA"), 1, QStringLiteral("Alarm acknowleged, reset for "),
                          QStringLiteral("Crew 7"), QStringLiteral(", expires at 00:15, Base"));
        QCOMPARE(log.OpenDay(), QDate(2026, 11, 17));
        b.Note("Second of Tuesday");
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(QDate(2026, 11, 16))),
                 QByteArray("\"11/16/2026\",\"23:59\",\"NT\",0,\"Last of Monday\",\"\",\"\"\r\n"));
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(QDate(2026, 11, 17))),
                 QByteArray("\"11/17/2026\",\"00:00\",\"SA\",1,\"Alarm acknowleged, reset for \",\"Crew 7\","
                            "\", expires at 00:15, Base\"\r\n"
                            "\"11/17/2026\",\"00:00\",\"NT\",0,\"Second of Tuesday\",\"\",\"\"\r\n"));
        // Turning the day afterwards reopens the same file, and the next entry follows the others.
        QVERIFY(!log.OpenTodaysLog());
        b.Note("Third of Tuesday");
        const QByteArray tuesday = TestEnvironment::ReadFile(log.PathOf(QDate(2026, 11, 17)));
        QCOMPARE(tuesday.count("\r\n"), 3);
        QVERIFY(tuesday.endsWith("\"Third of Tuesday\",\"\",\"\"\r\n"));
    }

    void anEntryWhoseDaysFileCannotBeOpenedGoesIntoTheOpenFile()
    {
        // Tuesday's file cannot be opened (a folder stands in its place): the failure is
        // told, naming the file, and the entry is kept in Monday's file rather than lost.
        LastSecondOfMonday b;
        LogBook& log = b.log;
        QVERIFY(!log.OpenTodaysLog());
        QVERIFY(QDir().mkpath(log.PathOf(QDate(2026, 11, 17))));
        QSignalSpy failed(&log, &LogBook::Failed);
        b.clock.AdvanceSecs(1);
        b.Note("Just after midnight");
        QCOMPARE(failed.size(), 1);
        QVERIFY2(failed.at(0).at(0).toString().startsWith(
                     QStringLiteral("Error opening logbook 20261117.log\r\r")),
                 qPrintable(failed.at(0).at(0).toString()));
        QCOMPARE(log.OpenDay(), QDate(2026, 11, 16));
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(QDate(2026, 11, 16))),
                 QByteArray("\"11/17/2026\",\"00:00\",\"NT\",0,\"Just after midnight\",\"\",\"\"\r\n"));
    }

    void dayWithoutAFileIsNotFoundAndNotAnError()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        bool found = true;
        QVERIFY(!log.OpenDayLog(QDate(2026, 11, 1), found));
        QVERIFY(!found);
        QVERIFY(!log.DayLog().isOpen());
        QVERIFY(QFileInfo(env.LogFolder()).isDir()); // the folder is made as for today's log
    }

    void dayWithAFileIsOpenedForReading()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        TestEnvironment::WriteFile(log.PathOf(QDate(2026, 11, 2)), "\"11/2/2026\",\"08:00\"\r\n");
        bool found = false;
        QVERIFY(!log.OpenDayLog(QDate(2026, 11, 2), found));
        QVERIFY(found);
        QCOMPARE(log.DayLog().readAll(), QByteArray("\"11/2/2026\",\"08:00\"\r\n"));
        log.CloseDayLog();
        QVERIFY(!log.DayLog().isOpen());
    }

    void unreadableDayFileIsReportedByName()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        // A folder with the day's file name exists but cannot be read as a file.
        QDir().mkpath(log.PathOf(QDate(2026, 11, 3)));
        bool found = false;
        const auto error = log.OpenDayLog(QDate(2026, 11, 3), found);
        QVERIFY(found);
        QVERIFY(error);
        QVERIFY2(error->startsWith(QStringLiteral("Error opening logbook 20261103.log\r\r")),
                 qPrintable(*error));
    }

    void writerStampsItsTimeAndFollowsItsOwnSwitches()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        log.SetTimeSource([&clock] { return LogBook::Stamp{clock.Today(), QStringLiteral("10:42")}; });
        QVERIFY(!log.OpenTodaysLog());
        // The switches start off: nothing is written.
        log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("a"), QString(), QString());
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(clock.Today())), QByteArray());
        QSignalSpy switches(&log, &LogBook::SwitchesChanged);
        log.SetSwitches(SafetyOnly);
        log.SetSwitches(SafetyOnly); // the same again is no change
        QCOMPARE(switches.size(), 1);
        log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("ordinary"), QString(), QString());
        log.WriteLogEntry(QStringLiteral("NT"), 1, QStringLiteral("safety"), QString(), QString());
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(clock.Today())),
                 QByteArray("\"11/16/2026\",\"10:42\",\"NT\",1,\"safety\",\"\",\"\"\r\n"));
    }

    void failureIsAnnouncedOnceUntilAnEntryIsWritten()
    {
        TestEnvironment env;
        ManualClock clock;
        TestEnvironment::WriteFile(env.LogFolder(), "not a folder");
        LogBook log(env.LogFolder(), clock, EnUs);
        log.SetSwitches(AllEvents);
        log.SetTimeSource([&clock] { return LogBook::Stamp{clock.Today(), QStringLiteral("10:00")}; });
        QSignalSpy failed(&log, &LogBook::Failed);
        QVERIFY(log.OpenTodaysLog());
        QCOMPARE(failed.size(), 1);
        QVERIFY(
            failed.at(0).at(0).toString().startsWith(QStringLiteral("Error opening today's logbook\r\r")));
        // Every entry is still tried, and fails, but the operator is not told again and again.
        log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(), QString());
        log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("x"), QString(), QString());
        QCOMPARE(failed.size(), 1);
        // The folder comes back: entries are written, and a later failure is told again.
        QVERIFY(QFile::remove(env.LogFolder()));
        QVERIFY(!log.OpenTodaysLog());
        log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("written"), QString(), QString());
        QVERIFY(TestEnvironment::ReadFile(log.PathOf(clock.Today())).contains("written"));
        log.CloseTodaysLog();
        log.WriteLogEntry(QStringLiteral("NT"), 0, QStringLiteral("y"), QString(), QString());
        QCOMPARE(failed.size(), 2);
        QCOMPARE(failed.at(1).at(0).toString(),
                 QStringLiteral("Error writing to the logbook\r\r2 - The logbook file is not open"));
    }

    void entryAfterALineCutShortStartsOnALineOfItsOwn()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        log.SetSwitches(AllEvents);
        log.SetTimeSource([&clock] { return LogBook::Stamp{clock.Today(), QStringLiteral("10:00")}; });
        // A crash left half a line at the end of the day's file.
        TestEnvironment::WriteFile(log.PathOf(clock.Today()), "\"11/16/2026\",\"09:59\",\"N");
        QVERIFY(!log.OpenTodaysLog());
        log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(), QString());
        QCOMPARE(TestEnvironment::ReadFile(log.PathOf(clock.Today())),
                 QByteArray("\"11/16/2026\",\"09:59\",\"N\r\n"
                            "\"11/16/2026\",\"10:00\",\"ST\",0,\"Start program\",\"\",\"\"\r\n"));
    }

    void readingTodayClosesAndReopensTodaysLog()
    {
        TestEnvironment env;
        ManualClock clock;
        LogBook log(env.LogFolder(), clock, EnUs);
        log.SetSwitches(AllEvents);
        log.SetTimeSource([&clock] { return LogBook::Stamp{clock.Today(), QStringLiteral("10:00")}; });
        QVERIFY(!log.OpenTodaysLog());
        log.WriteLogEntry(QStringLiteral("ST"), 0, QStringLiteral("Start program"), QString(), QString());
        const LogDay today = log.ReadDay(clock.Today(), false);
        QVERIFY(today.Found);
        QVERIFY(!today.OpenError);
        QCOMPARE(today.Entries.size(), 1);
        QCOMPARE(today.Entries.at(0).at(4), QStringLiteral("Start program"));
        QVERIFY(log.IsTodaysLogOpen());
        QVERIFY(!log.DayLog().isOpen());
        // Today without its file: reopened only when asked.
        QFile::remove(log.PathOf(clock.Today()));
        QVERIFY(!log.ReadDay(clock.Today(), false).Found);
        QVERIFY(!log.IsTodaysLogOpen());
        QVERIFY(!log.ReadDay(clock.Today(), true).Found);
        QVERIFY(log.IsTodaysLogOpen());
    }

    void availableDaysSkipNamesThatAreNotEightDigits()
    {
        TestEnvironment env;
        ManualClock clock;
        for (const char* name : {"20261115.log", "20261116.log", "notes.log", "2026111.log", "202611160.log",
                                 "20261340.log", "20261114.txt", "2026a116.log"})
            TestEnvironment::WriteFile(QDir(env.LogFolder()).filePath(QString::fromLatin1(name)), "");
        LogBook log(env.LogFolder(), clock, EnUs);
        QList<QDate> days = log.AvailableLogDates();
        std::sort(days.begin(), days.end());
        QCOMPARE(days, (QList<QDate>{QDate(2026, 11, 15), QDate(2026, 11, 16)}));
    }

    void availableDaysFollowTheLocalesDayOrder()
    {
        TestEnvironment env;
        ManualClock clock;
        TestEnvironment::WriteFile(QDir(env.LogFolder()).filePath(QStringLiteral("20040204.log")), "");
        TestEnvironment::WriteFile(QDir(env.LogFolder()).filePath(QStringLiteral("20041125.log")), "");
        // Month first: the right days.
        QList<QDate> us = LogBook(env.LogFolder(), clock, EnUs).AvailableLogDates();
        std::sort(us.begin(), us.end());
        QCOMPARE(us, (QList<QDate>{QDate(2004, 2, 4), QDate(2004, 11, 25)}));
        // Day first: the month/day text is read the other way round, so a wrong day or none.
        const QList<QDate> de =
            LogBook(env.LogFolder(), clock, QLocale(QLocale::German, QLocale::Germany)).AvailableLogDates();
        QCOMPARE(de, (QList<QDate>{QDate(2004, 4, 2)}));
    }

    void numericDatesFollowTheLocaleOrder()
    {
        QCOMPARE(ParseNumericDate(QStringLiteral("02/04/2004"), EnUs), QDate(2004, 2, 4));
        QCOMPARE(
            ParseNumericDate(QStringLiteral("02/04/2004"), QLocale(QLocale::English, QLocale::UnitedKingdom)),
            QDate(2004, 4, 2));
        QVERIFY(!ParseNumericDate(QStringLiteral("02/04/2004"), QLocale(QLocale::French, QLocale::Canada)));
        QVERIFY(!ParseNumericDate(QStringLiteral("13/40/2004"), EnUs));
        QVERIFY(!ParseNumericDate(QStringLiteral("garbage"), EnUs));
    }
};

QTEST_GUILESS_MAIN(TestLogBook)
#include "tst_logbook.moc"
