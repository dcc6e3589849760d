// The yearly sunrise/sunset table: the document compared byte for byte with documents made
// by an independent implementation (tools/make_sun_table_fixture.py), and the printed rows.
#include "TestEnvironment.h"
#include "sun/SunTable.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace {

QByteArray Fixture(const QString& name)
{
    QFile file(QStringLiteral(TW_TEST_DATA "/sun/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

SunTablePlace Chicago(const QString& year)
{
    return {QStringLiteral("Chicago"), 41, 52, 87, 38, 6, year};
}

QList<QByteArray> Lines(const QByteArray& doc)
{
    QList<QByteArray> lines = doc.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QList<QByteArray> RowLines(const QByteArray& doc)
{
    QList<QByteArray> rows;
    for (const QByteArray& line : Lines(doc))
        if (line.startsWith("\\par\\pard") || line.startsWith("\\par\\f2"))
            rows << line;
    return rows;
}

} // namespace

class TestSunTable : public QObject
{
    Q_OBJECT
private slots:
    void commonYearMatchesTheExpectedDocumentByteForByte()
    {
        const QByteArray expected = Fixture(QStringLiteral("TWTable-Chicago-2003.rtf"));
        QVERIFY(!expected.isEmpty());
        QCOMPARE(SunTableDocument(Chicago(QStringLiteral("2003"))), expected);
    }

    void leapYearMatchesTheExpectedDocumentByteForByte()
    {
        const QByteArray expected = Fixture(QStringLiteral("TWTable-Chicago-2004.rtf"));
        QVERIFY(!expected.isEmpty());
        QCOMPARE(SunTableDocument(Chicago(QStringLiteral("2004"))), expected);
    }

    void polarPlaceMatchesTheExpectedDocumentByteForByte()
    {
        const QByteArray expected = Fixture(QStringLiteral("TWTable-Alert-2005.rtf"));
        QVERIFY(!expected.isEmpty());
        const SunTablePlace alert{QStringLiteral("Alert"), 82, 30, 62, 20, 5, QStringLiteral("2005")};
        QCOMPARE(SunTableDocument(alert), expected);
    }

    void zoneWithoutAbbreviationMatchesTheExpectedDocumentByteForByte()
    {
        const QByteArray expected = Fixture(QStringLiteral("TWTable-Zone2-2006.rtf"));
        QVERIFY(!expected.isEmpty());
        const SunTablePlace azores{QStringLiteral("Azores"), 38, 40, 27, 10, 2, QStringLiteral("2006")};
        QCOMPARE(SunTableDocument(azores), expected);
    }

    void headerLinesAreExact()
    {
        const QList<QByteArray> lines =
            Lines(SunTableDocument({QStringLiteral("Home"), 40, 5, 75, 30, 5, QStringLiteral("2003")}));
        QVERIFY(lines.size() > 8);
        QCOMPARE(lines[0],
                 QByteArray("{\\rtf1\\ansi\\deff0\\deftab5000{\\fonttbl{\\f0\\fswiss MS Sans Serif;}"
                            "{\\f1\\froman\\fcharset2 Symbol;}{\\f2\\fswiss System;}}\r"));
        QCOMPARE(lines[1], QByteArray("{\\colortbl\\red0\\green0\\blue0;}\r"));
        QCOMPARE(lines[2], QByteArray("\\deftab5000\r"));
        QCOMPARE(lines[3],
                 QByteArray("\\deflang1033\\pard\\plain\\f2\\fs20 Sunrise/Sunset Table for: Home\r"));
        // The numbers in their print-list form: a blank for the sign, a blank after.
        QCOMPARE(lines[4], QByteArray("\\par Lat =  40 : 5 N   Long =  75 : 30 W\r"));
        QCOMPARE(lines[5], QByteArray("\\par Year = 2003   All times are: EST/CDT\r"));
        QCOMPARE(lines[6], QByteArray("\\par \r"));
        QCOMPARE(lines[7],
                 QByteArray("\\par \\ul Date     Rise     Set     Date     Rise      Set    \\ul0\\f1\r"));
        QCOMPARE(Lines(SunTableDocument(Chicago(QStringLiteral("2003")))).last(), QByteArray("\\par }\r"));
    }

    void printListFormOfNumbers()
    {
        QCOMPARE(PrintListNumber(40), QStringLiteral(" 40 "));
        QCOMPARE(PrintListNumber(0), QStringLiteral(" 0 "));
        QCOMPARE(PrintListNumber(-5), QStringLiteral("-5 "));
    }

    void zoneAbbreviations_data()
    {
        QTest::addColumn<int>("hours");
        QTest::addColumn<QString>("text");
        const QList<std::pair<int, const char*>> rows{
            {0, "GMT"},     {1, ""},        {2, ""},        {3, ""},        {4, "EDT"},
            {5, "EST/CDT"}, {6, "CST/MDT"}, {7, "MST/PDT"}, {8, "PST/ADT"}, {9, "AST/YST"},
            {10, "HST"},    {11, "BST"},    {12, ""},       {-5, ""}};
        for (const auto& [hours, text] : rows)
            QTest::addRow("%d", hours) << hours << QString::fromLatin1(text);
    }
    void zoneAbbreviations()
    {
        QFETCH(int, hours);
        QFETCH(QString, text);
        QCOMPARE(ZoneAbbreviation(hours), text);
    }

    void zoneOneTwoOrThreeWritesNothingAfterAllTimesAre()
    {
        for (const qint16 hours : {qint16(1), qint16(2), qint16(3)}) {
            SunTablePlace place = Chicago(QStringLiteral("2003"));
            place.ZoneHours = hours;
            QCOMPARE(Lines(SunTableDocument(place)).at(5),
                     QByteArray("\\par Year = 2003   All times are: \r"));
        }
    }

    void blocksOfFortyRowsWithTheLastBlockCutShort()
    {
        const QList<QByteArray> rows = RowLines(SunTableDocument(Chicago(QStringLiteral("2003"))));
        QCOMPARE(rows.size(), 4 * 40 + 5);
        QVERIFY(rows[0].startsWith("\\par\\pard\\plain\\f2\\fs10 1/1\\f0\\tab "));
        QVERIFY(rows[0].contains("\\f2\\tab 2/10\\f0\\tab "));
        QVERIFY(rows[39].startsWith("\\par\\pard\\plain\\f2\\fs10 2/9\\f0\\tab "));
        QVERIFY(rows[39].contains("\\f2\\tab 3/21\\f0\\tab "));
        // The second block starts where the right column stopped.
        QVERIFY(rows[40].startsWith("\\par\\pard\\plain\\f2\\fs10 3/22\\f0\\tab "));
        QVERIFY(rows[40].contains("\\f2\\tab 5/1\\f0\\tab "));
        // The fifth block: 17 to 21 November beside 27 to 31 December.
        QVERIFY(rows[160].startsWith("\\par\\pard\\plain\\f2\\fs10 11/17\\f0\\tab "));
        QVERIFY(rows[160].contains("\\f2\\tab 12/27\\f0\\tab "));
        QVERIFY(rows[164].startsWith("\\par\\pard\\plain\\f2\\fs10 11/21\\f0\\tab "));
        QVERIFY(rows[164].contains("\\f2\\tab 12/31\\f0\\tab "));
        const QByteArray doc = SunTableDocument(Chicago(QStringLiteral("2003")));
        QVERIFY(!doc.contains(" 11/22\\f0") && !doc.contains(" 12/26\\f0"));
    }

    void leapYearRightColumnPassesFebruaryTwentyNinthAndEndsOnDecemberThirtyFirst()
    {
        const QList<QByteArray> rows = RowLines(SunTableDocument(Chicago(QStringLiteral("2004"))));
        QCOMPARE(rows.size(), 4 * 40 + 6);
        QVERIFY(rows[19].contains("\\f2\\tab 2/29\\f0\\tab "));
        QVERIFY(rows[20].contains("\\f2\\tab 3/1\\f0\\tab "));
        QVERIFY(rows.last().contains("\\f2\\tab 12/31\\f0\\tab "));
        QVERIFY(rows.last().startsWith("\\par\\pard\\plain\\f2\\fs10 11/21\\f0\\tab "));
    }

    void downAllDayOnTheLeftGetsTheSmallRowWithoutTheSetColumn()
    {
        const SunTablePlace alert{QStringLiteral("Alert"), 82, 30, 62, 20, 5, QStringLiteral("2005")};
        const QList<QByteArray> rows = RowLines(SunTableDocument(alert));
        QCOMPARE(rows[0],
                 QByteArray("\\par\\f2\\fs8 1/1\\f0\\tab Down all day\\f2\\tab 2/10\\f0\\tab Down all "
                            "day\\tab \r"));
        // A summer row keeps the normal form, with the empty set text of "Up all day".
        bool upAllDay = false;
        for (const QByteArray& row : rows)
            upAllDay =
                upAllDay ||
                row.startsWith("\\par\\pard\\plain\\f2\\fs10 6/21\\f0\\tab Up all day\\tab \\f2\\tab ");
        QVERIFY(upAllDay);
    }

    void writeReplacesAnEarlierFile()
    {
        TestEnvironment env;
        const QString path = QDir::current().filePath(QStringLiteral("TWTable.rtf"));
        TestEnvironment::WriteFile(path, QByteArray(50000, 'x'));
        QCOMPARE(WriteSunTable(Chicago(QStringLiteral("2003")), path), QString());
        QCOMPARE(TestEnvironment::ReadFile(path), Fixture(QStringLiteral("TWTable-Chicago-2003.rtf")));
    }

    void writeIntoAFolderThatCannotHoldItReportsTheError()
    {
        TestEnvironment env;
        const QString path = QDir::current().filePath(QStringLiteral("missing/TWTable.rtf"));
        QVERIFY(!WriteSunTable(Chicago(QStringLiteral("2003")), path).isEmpty());
        QVERIFY(!WriteSunTable(Chicago(QStringLiteral("20x3")), QStringLiteral("TWTable.rtf")).isEmpty());
        QVERIFY(!QFile::exists(QStringLiteral("TWTable.rtf")));
    }

    void locationNameCannotBreakTheDocument()
    {
        const QList<QByteArray> lines = Lines(SunTableDocument(
            {QStringLiteral("Camp {North} \\ Ridge"), 40, 0, 80, 0, 5, QStringLiteral("2003")}));
        QCOMPARE(lines[3], QByteArray("\\deflang1033\\pard\\plain\\f2\\fs20 Sunrise/Sunset Table for: Camp "
                                      "\\{North\\} \\\\ Ridge\r"));
    }

    void locationNameOutsideAsciiIsWrittenAsAnsiOrUnicodeEscapes()
    {
        const QString name = QStringLiteral("Z\u00fcrich \u03a9 \u0080");
        const QList<QByteArray> lines =
            Lines(SunTableDocument({name, 40, 0, 80, 0, 5, QStringLiteral("2003")}));
        QCOMPARE(lines[3],
                 QByteArray("\\deflang1033\\pard\\plain\\f2\\fs20 Sunrise/Sunset Table for: Z\xfcrich "
                            "\\u937? \\u128?\r"));
    }

    void printedFormHasFiveColumnsOfSeventyThreeDays()
    {
        const SunTablePrintout out = SunTablePrintLines(Chicago(QStringLiteral("2003")));
        QCOMPARE(out.Heading,
                 QStringLiteral("Sunrise/Sunset Table for: Chicago  Lat = 41:52N   Long = 87:38W   "
                                "Year = 2003   All times are: CST/MDT"));
        QCOMPARE(out.ColumnHeading,
                 QStringLiteral("Date\tRise\tSet\t Date\tRise\tSet\t Date\tRise\tSet\t Date\tRise\tSet"
                                "\t Date\tRise\tSet"));
        QCOMPARE(out.Rows.size(), 73);
        QCOMPARE(out.Rows[0],
                 QStringLiteral("1/1\t07:18\t16:30\t| 3/15\t06:03\t17:57\t| 5/27\t04:21\t19:15\t| 8/8\t"
                                "04:51\t19:01\t| 10/20\t06:08\t17:02\t|  |"));
        QVERIFY(out.Rows[72].startsWith(QStringLiteral("3/14\t")));
        QVERIFY(out.Rows[72].contains(QStringLiteral("| 12/31\t")));
    }

    void printedLeapYearLeavesOutDecemberThirtyFirst()
    {
        const SunTablePrintout out = SunTablePrintLines(Chicago(QStringLiteral("2004")));
        QCOMPARE(out.Rows.size(), 73);
        QVERIFY(out.Rows[72].contains(QStringLiteral("| 12/30\t")));
        for (const QString& row : out.Rows)
            QVERIFY(!row.contains(QStringLiteral("12/31")));
    }

    void printedFirstColumnKeepsAnEmptySetFieldForUpAllDayOnlyThere()
    {
        // A negative latitude puts the place in the south, where January has the midnight sun.
        const SunTablePrintout south =
            SunTablePrintLines({QStringLiteral("Pole"), -80, 0, 62, 0, 5, QStringLiteral("2005")});
        QCOMPARE(south.Rows.size(), 73);
        QVERIFY2(south.Rows[0].startsWith(
                     QStringLiteral("1/1\tUp all day\t\t| 3/15\t04:11\t18:17\t| 5/27\tDown all "
                                    "day\t| 8/8\t")),
                 qPrintable(south.Rows[0]));
        // In the north: "Down all day" in the first column, "Up all day" in the third, both
        // without a set field.
        const SunTablePrintout north =
            SunTablePrintLines({QStringLiteral("Alert"), 82, 30, 62, 20, 5, QStringLiteral("2005")});
        QVERIFY2(north.Rows[0].startsWith(QStringLiteral("1/1\tDown all day\t| 3/15\t")),
                 qPrintable(north.Rows[0]));
        QVERIFY2(north.Rows[0].contains(QStringLiteral("| 5/27\tUp all day\t| 8/8\t")),
                 qPrintable(north.Rows[0]));
    }
};

QTEST_MAIN(TestSunTable)
#include "tst_suntable.moc"
