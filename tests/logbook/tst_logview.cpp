#include "logbook/LogBook.h"
#include "logbook/LogView.h"

#include <QBuffer>
#include <QFile>
#include <QtTest>

namespace {
const QLocale EnUs(QLocale::English, QLocale::UnitedStates);

QByteArray Fixture(const char* name)
{
    QFile file(QStringLiteral(TW_TEST_DATA "/logbook/") + QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A day read line by line, each line read up to the limit: the plain way ReadLogDay must
// agree with.
LogDayRead ReadLineByLine(QIODevice& file, QDate day, qint64 maxBytes)
{
    LogDayRead read;
    while (!file.atEnd()) {
        if (maxBytes >= 0 && file.pos() >= maxBytes) {
            read.Cut = true;
            break;
        }
        const QByteArray bytes = maxBytes >= 0 ? file.readLine(maxBytes - file.pos() + 1) : file.readLine();
        if (maxBytes >= 0 && !bytes.endsWith('\n') && !file.atEnd()) {
            read.Cut = true;
            break;
        }
        QString line = QString::fromUtf8(bytes);
        while (line.endsWith(u'\n') || line.endsWith(u'\r'))
            line.chop(1);
        const auto fields = SplitLogLine(line);
        if (!fields)
            continue;
        const std::optional<QDate> date = ParseLogDate((*fields)[0], EnUs);
        if (!date)
            continue;
        if (*date == day)
            read.Entries.append(*fields);
        read.SeenDates.append(*date);
    }
    return read;
}
} // namespace

class TestLogView : public QObject
{
    Q_OBJECT
private slots:
    void lineSplitsIntoSevenFields()
    {
        const auto f = SplitLogLine(
            u"\"11/16/2026\",\"08:05\",\"SA\",1,\"Alarm set for \",\"Crew 7\",\", expires at 08:20\"");
        QVERIFY(f);
        QCOMPARE((*f)[0], QStringLiteral("11/16/2026"));
        QCOMPARE((*f)[1], QStringLiteral("08:05"));
        QCOMPARE((*f)[2], QStringLiteral("SA"));
        QCOMPARE((*f)[3], QStringLiteral("1"));
        QCOMPARE((*f)[4], QStringLiteral("Alarm set for "));
        QCOMPARE((*f)[5], QStringLiteral("Crew 7"));
        QCOMPARE((*f)[6], QStringLiteral(", expires at 08:20"));
    }

    void quotationMarkInATextSplitsTheLineWrongly()
    {
        const auto f =
            SplitLogLine(u"\"11/16/2026\",\"09:00\",\"NT\",0,\"Gate: \",\"say \"hello\"\",\" (09:00)\"");
        QVERIFY(f);
        QCOMPARE((*f)[5], QStringLiteral("say "));
        QCOMPARE((*f)[6], QStringLiteral(" (09:00)"));
    }

    void lineWithFewerThanSevenFieldsIsNotAnEntry()
    {
        QVERIFY(!SplitLogLine(u"\"11/16/2026\",\"09:00\",\"NT\""));
        QVERIFY(!SplitLogLine(u""));
        QVERIFY(!SplitLogLine(u"garbage line without fields"));
        QVERIFY(!SplitLogLine(u"\"unclosed"));
    }

    void documentLinesAreExact()
    {
        QCOMPARE(LogViewHeader(),
                 QByteArray("{\\rtf1\\ansi\\deff0\\deftab5000{\\fonttbl{\\f0\\fswiss MS Sans Serif;}"
                            "{\\f1\\froman\\fcharset2 Symbol;}{\\f2\\fswiss System;}}\r\n"
                            "{\\colortbl\\red0\\green0\\blue0;}\r\n\\deftab5000\r\n"
                            "\\deflang1033\\pard\\plain\\f2\\fs20 \r\n"));
        const LogFields f{QStringLiteral("11/16/2026"),
                          QStringLiteral("14:05"),
                          QStringLiteral("SA"),
                          QStringLiteral("0"),
                          QStringLiteral("Alarm set for "),
                          QStringLiteral("Tea"),
                          QStringLiteral(", expires at 14:20")};
        QCOMPARE(LogViewEntry(f),
                 QByteArray("\\par\\pard\\plain\\f0\\fs10 14:05--Alarm set for \\f2 Tea\\f0 , expires "
                            "at 14:20\r\n"));
        QCOMPARE(LogViewFooter(), QByteArray("\\par }\r\n"));
        QCOMPARE(LogPrintLine(f), QStringLiteral("14:05--Alarm set for Tea, expires at 14:20"));
    }

    void dayShowsOnlyItsOwnEntriesAndMarksEveryDateItMeets()
    {
        QByteArray bytes = Fixture("20261116.log");
        QVERIFY(!bytes.isEmpty());
        QBuffer file(&bytes);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const LogDayRead read = ReadLogDay(file, QDate(2026, 11, 16), EnUs);
        QCOMPARE(read.Entries.size(), 5);
        QCOMPARE(read.Entries[0][1], QStringLiteral("08:00"));
        QVERIFY(read.SeenDates.contains(QDate(2026, 11, 15)));
        QCOMPARE(read.SeenDates.count(QDate(2026, 11, 16)), 5);
    }

    void dayIsReadUpToTheLimitAsLineByLine()
    {
        // The prepared day, lines without a date, an empty line, a line of LF alone, a last
        // line without its end; read with every limit from nothing to past the end.
        const QByteArray bytes = Fixture("20261116.log") +
                                 "\r\n\"11/16/2026\",\"09:00\",\"NT\",0,\"a\",\"b\",\"c\"\n" +
                                 "\"11/17/2026\",\"09:01\",\"NT\",0,\"Caf\xc3\xa9\",\"\",\"\"\r\n" +
                                 "\"11/16/2026\",\"09:02\",\"NT\",0,\"last\",\"\",\"\"";
        for (qint64 limit = -1; limit <= bytes.size() + 2; ++limit) {
            QByteArray copy = bytes;
            QBuffer first(&copy);
            QVERIFY(first.open(QIODevice::ReadOnly));
            const LogDayRead expected = ReadLineByLine(first, QDate(2026, 11, 16), limit);
            QBuffer second(&copy);
            QVERIFY(second.open(QIODevice::ReadOnly));
            const LogDayRead actual = ReadLogDay(second, QDate(2026, 11, 16), EnUs, limit);
            const QByteArray at = "limit " + QByteArray::number(limit);
            QVERIFY2(actual.Entries == expected.Entries, at.constData());
            QVERIFY2(actual.SeenDates == expected.SeenDates, at.constData());
            QVERIFY2(actual.Cut == expected.Cut, at.constData());
        }
    }

    void documentCarriesTheTextsInUtf8AsTheyAre()
    {
        const LogFields odd{QStringLiteral("11/16/2026"),
                            QStringLiteral("09:00"),
                            QStringLiteral("NT"),
                            QStringLiteral("0"),
                            QStringLiteral("{\\b x} Caf\u00e9 "),
                            QString(QChar(0xD800)) + QStringLiteral("\U0001F600"),
                            QStringLiteral("tail") + QChar(0xDC00)};
        const LogFields empty{QStringLiteral("11/16/2026"), {}, {}, {}, {}, {}, {}};
        const QString note = QStringLiteral("(note \u00e9)");
        QByteArray expected = LogViewHeader();
        for (const LogFields& f : {odd, empty})
            expected += "\\par\\pard\\plain\\f0\\fs10 " + f[1].toUtf8() + "--" + f[4].toUtf8() + "\\f2 " +
                        f[5].toUtf8() + "\\f0 " + f[6].toUtf8() + "\r\n";
        expected += "\\par\\pard\\plain\\f0\\fs10 " + note.toUtf8() + "\r\n" + LogViewFooter();
        QCOMPARE(LogViewDocument(LogViewDay{{odd, empty}, note}), expected);
        QCOMPARE(LogViewEntry(odd), LogViewDocument(LogViewDay{{odd}, {}})
                                        .mid(LogViewHeader().size())
                                        .chopped(LogViewFooter().size()));
    }

    void preparedDayGivesTheExpectedDocumentByteForByte()
    {
        QByteArray bytes = Fixture("20261116.log");
        QBuffer file(&bytes);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray document = LogViewHeader();
        for (const LogFields& entry : ReadLogDay(file, QDate(2026, 11, 16), EnUs).Entries)
            document += LogViewEntry(entry);
        document += LogViewFooter();
        QCOMPARE(document, Fixture("LogBook-20261116.rtf"));
    }
};

QTEST_GUILESS_MAIN(TestLogView)
#include "tst_logview.moc"
