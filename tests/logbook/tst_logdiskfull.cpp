#include "ManualClock.h"
#include "logbook/LogBook.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

#include <cerrno>
#include <cstring>

namespace {
const QLocale EnUs(QLocale::English, QLocale::UnitedStates);
} // namespace

// The log on a disk that fills up: run by small_disk.sh, which mounts a small private tmpfs
// and names it in TW_SMALL_DISK. Without it (no right to mount) the test is skipped.
class TestLogDiskFull : public QObject
{
    Q_OBJECT
private slots:
    void partialWriteIsTakenBackAndReportedOnce()
    {
        const QString disk = qEnvironmentVariable("TW_SMALL_DISK");
        if (disk.isEmpty())
            QSKIP("no small disk of our own (run through small_disk.sh)");
        ManualClock clock;
        LogBook log(QDir(disk).filePath(QStringLiteral("Logs")), clock, EnUs);
        log.SetSwitches({true, false});
        log.SetTimeSource([&clock] { return LogBook::Stamp{clock.Today(), QStringLiteral("10:15")}; });
        QSignalSpy failed(&log, &LogBook::Failed);
        QVERIFY(!log.OpenTodaysLog());
        const QString path = log.PathOf(clock.Today());

        // Entries up to a few bytes short of a page: the next one needs a page more.
        const auto entry = [&](const QString& text) {
            log.WriteLogEntry(QStringLiteral("NT"), 0, text, QString(), QString());
        };
        while (QFileInfo(path).size() < 4096 - 20)
            entry(QStringLiteral("filler"));
        const qint64 before = QFileInfo(path).size();
        QVERIFY(before % 4096 > 4096 - 80);
        // The rest of the disk is taken.
        QFile hog(QDir(disk).filePath(QStringLiteral("hog")));
        QVERIFY(hog.open(QIODevice::WriteOnly));
        const QByteArray block(1024, 'x');
        while (hog.write(block) == block.size() && hog.flush()) {
        }
        hog.close();

        entry(QStringLiteral("Alarm Expired for Crew 7, a long entry that needs the next page"));
        entry(QStringLiteral("another entry that cannot be written either"));
        QCOMPARE(failed.size(), 1); // reported once while it keeps failing
        QVERIFY(failed.at(0).at(0).toString().startsWith(QStringLiteral("Error writing to the logbook\r\r")));
        // The message says what went wrong, even for a write that was cut short.
        QVERIFY2(failed.at(0).at(0).toString().endsWith(QString::fromLocal8Bit(std::strerror(ENOSPC))),
                 qPrintable(failed.at(0).at(0).toString()));
        QCOMPARE(QFileInfo(path).size(), before); // nothing torn is left behind

        // Room again: the next entry is written whole, on a line of its own.
        QVERIFY(QFile::remove(hog.fileName()));
        entry(QStringLiteral("after the disk was freed"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray all = file.readAll();
        QVERIFY(all.endsWith("\"10:15\",\"NT\",0,\"after the disk was freed\",\"\",\"\"\r\n"));
        QCOMPARE(all.size(), before + FormatLogLine({clock.Today(),
                                                     QStringLiteral("10:15"),
                                                     QStringLiteral("NT"),
                                                     0,
                                                     QStringLiteral("after the disk was freed"),
                                                     {},
                                                     {}},
                                                    EnUs)
                                          .size());
        for (const QByteArray& line : all.split('\n'))
            QVERIFY2(line.isEmpty() || line.startsWith("\"11/16/2026\""), line.constData());
    }
};

QTEST_GUILESS_MAIN(TestLogDiskFull)
#include "tst_logdiskfull.moc"
