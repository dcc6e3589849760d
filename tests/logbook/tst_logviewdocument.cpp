#include "DocumentDiff.h"
#include "alarms/AlarmLogic.h"
#include "logbook/LogView.h"
#include "logbook/LogViewDocument.h"
#include "widgets/RtfReader.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QtTest>

namespace {

// The text of one entry, as the log writers put it together.
LogFields Entry(const QString& time, const char* code, int safety, const QString& text1, const QString& text2,
                const QString& text3)
{
    return {QStringLiteral("11/16/2026"),
            time,
            QString::fromLatin1(code),
            QString::number(safety),
            text1,
            text2,
            text3};
}

QString S(const char16_t* text)
{
    return QString::fromUtf16(text);
}

// Every kind of line the log has, with texts that go into the document as they are.
QList<LogFields> PlainKinds()
{
    const QString expires = AlarmLogText::ExpiresAt(QStringLiteral("08:20"));
    return {
        Entry(QStringLiteral("08:00"), "ST", 0, QStringLiteral("Start program"), {}, {}),
        Entry(QStringLiteral("08:05"), "SA", 1, S(AlarmLogText::Set), QStringLiteral("Crew 7"), expires),
        Entry(QStringLiteral("08:06"), "SA", 0, S(AlarmLogText::Set), QStringLiteral("Tea"), expires),
        Entry(QStringLiteral("08:07"), "CA", 0, S(AlarmLogText::Cancelled), QStringLiteral("Tea"), {}),
        Entry(QStringLiteral("08:20"), "EA", 1, S(AlarmLogText::Expired), QStringLiteral("Crew 7"), {}),
        Entry(QStringLiteral("08:21"), "SA", 1, S(AlarmLogText::Reset), QStringLiteral("Crew 7"),
              AlarmLogText::ExpiresAt(QStringLiteral("08:36"))),
        Entry(QStringLiteral("08:37"), "SA", 1, S(AlarmLogText::Terminated), QStringLiteral("Crew 7"), {}),
        Entry(QStringLiteral("08:40"), "NT", 1, QStringLiteral("Crew 7: "),
              QStringLiteral("radio check done"), QStringLiteral(" (08:40)")),
        Entry(QStringLiteral("08:41"), "NT", 0, QStringLiteral("Note: "), {}, QStringLiteral(" (08:41)")),
        Entry(QStringLiteral("08:42"), "NT", 0, {}, {}, {}), // an empty note
        Entry({}, "NT", 0, {}, QStringLiteral("only the name"), {}),
        Entry(QStringLiteral("17:00"), "NT", 1, QStringLiteral("Error at exit: "),
              QStringLiteral("disk full"), {}),
        Entry(QStringLiteral("17:01"), "EX", 0, QStringLiteral("Exit program"), {}, {}),
        // Characters of every sort: accents, other scripts, a character beyond the basic plane,
        // tabs, control characters, line and paragraph separators, characters a document keeps
        // for itself, an unpaired surrogate, non-breaking and leading spaces, digits right after
        // a control word's space.
        Entry(QStringLiteral("09:00"), "NT", 0, S(u"Caf\u00e9 Gr\u00f6\u00dfe: "),
              S(u"\u65e5\u672c\u8a9e \U0001F600 \u0416"), S(u" \u00a0(09:00)\u2026")),
        Entry(QStringLiteral("09:01"), "NT", 0, S(u"tab\there\x01\x1f\x7f\u0085 "), S(u"cr\rin\u2028line"),
              S(u"para\u2029graph \ufffe \ufdd0 \ufffc end")),
        Entry(QStringLiteral("09:02"), "NT", 0, QStringLiteral("   leading "), QStringLiteral("123"),
              QStringLiteral("456 ")),
        Entry(QStringLiteral("09:03"), "NT", 0, QString(QChar(0xD800)) + QStringLiteral(" lone"),
              QStringLiteral("x") + QChar(0xDC00), {}),
        Entry(QStringLiteral("09:04"), "NT", 0, QStringLiteral("quote \" and ; semicolon, comma "),
              QStringLiteral("-minus"), QStringLiteral("'apostrophe'")),
        Entry(QStringLiteral("09:05"), "NT", 0, QStringLiteral("Long: "),
              QStringLiteral("word ").repeated(2000), QStringLiteral("x").repeated(5000)),
    };
}

// Texts the reader takes for rich-text syntax: the document carries them unescaped.
QList<LogFields> SyntaxEntries()
{
    return {
        Entry(QStringLiteral("10:00"), "SA", 1, S(AlarmLogText::Reset), QStringLiteral("Crew 7"),
              QStringLiteral(", expires at 08:36, Ridge {km 4} C:\\road")),
        Entry(QStringLiteral("10:01"), "NT", 0, QStringLiteral("\\b bold\\b0  plain "),
              QStringLiteral("\\i it"), QStringLiteral("\\ul under\\ulnone ")),
        Entry(QStringLiteral("10:02"), "NT", 0, QStringLiteral("\\qc\\li720 centred "),
              QStringLiteral("\\fs40 big"), QStringLiteral("\\cf0 black")),
        Entry(QStringLiteral("10:03"), "NT", 0, QStringLiteral("split\\par here "),
              QStringLiteral("a\\line b"), QStringLiteral("\\tab c\\\\d\\{e\\}")),
        Entry(QStringLiteral("10:04"), "NT", 0, QStringLiteral("\\'e9\\u8364?\\u-10179?\\u-8704?"),
              QStringLiteral("{\\*\\secret hidden}shown"), QStringLiteral("\\unknownword x")),
        Entry(QStringLiteral("10:05"), "NT", 0, QStringLiteral("ends with a backslash "), {},
              QStringLiteral("C:\\")),
    };
}

QList<LogFields> Plain(int count, int from = 0)
{
    QList<LogFields> entries;
    const QList<LogFields> kinds = PlainKinds();
    for (int i = 0; i < count; ++i)
        entries.append(kinds[(from + i) % kinds.size()]);
    return entries;
}

// The view as the panel shows it: a document with the panel's default font.
void Prepare(QTextDocument& document)
{
    QFont font = document.defaultFont();
    font.setFamily(QStringLiteral("Arial"));
    document.setDefaultFont(font);
}

// The difference between reading the day's document back and building it from the entries.
QString Compare(const LogViewDay& day, double sizeFactor)
{
    QTextDocument read;
    Prepare(read);
    ReadRtf(LogViewDocument(day), read, sizeFactor);
    QTextDocument built;
    Prepare(built);
    BuildLogView(built, day, sizeFactor);
    if (built.isModified() || built.isUndoAvailable())
        return QStringLiteral("the built document is modified or has undo steps");
    return documentdiff::Difference(read, built);
}

} // namespace

class TestLogViewDocument : public QObject
{
    Q_OBJECT
private slots:
    void builtViewMatchesTheDocumentReadBack_data()
    {
        QTest::addColumn<LogViewDay>("day");
        QTest::addColumn<double>("sizeFactor");
        const QString note =
            QStringLiteral("(This day's log is 104,857,600 bytes long: only its first 1,048,576 "
                           "bytes are shown.)");
        const QList<LogFields> kinds = PlainKinds();
        const QList<LogFields> syntax = SyntaxEntries();

        QList<LogFields> varied;
        for (qsizetype i = 0; i < syntax.size(); ++i) {
            varied += Plain(3, int(i));
            varied.append(syntax[i]);
        }
        varied += kinds;

        // Entries whose effect reaches past their own line: a group opened and closed lines
        // later, \uc changed for the rest of the group, binary data running into the next lines,
        // a destination that swallows what follows.
        const QList<LogFields> reaching =
            Plain(2) +
            QList<LogFields>{Entry(QStringLiteral("11:00"), "NT", 0, QStringLiteral("{\\b opened "),
                                   QStringLiteral("x"), {})} +
            Plain(3, 4) +
            QList<LogFields>{Entry(QStringLiteral("11:01"), "NT", 0, QStringLiteral("closed} "),
                                   QStringLiteral("y"), {})} +
            Plain(2, 7);
        const QList<LogFields> uc = Plain(2) +
                                    QList<LogFields>{Entry(QStringLiteral("11:02"), "NT", 0,
                                                           QStringLiteral("\\uc2 two fallbacks "), {}, {})} +
                                    Plain(2, 3) +
                                    QList<LogFields>{Entry(QStringLiteral("11:03"), "NT", 0,
                                                           QStringLiteral("\\u8364ab euro"), {}, {})} +
                                    Plain(2, 5);
        const QList<LogFields> binary =
            Plain(1) +
            QList<LogFields>{Entry(QStringLiteral("11:04"), "NT", 0, QStringLiteral("data "), {},
                                   QStringLiteral("\\bin60 "))} +
            Plain(4, 2);
        const QList<LogFields> destination =
            Plain(1) +
            QList<LogFields>{
                Entry(QStringLiteral("11:05"), "NT", 0, QStringLiteral("{\\*\\hidden "), {}, {})} +
            Plain(3, 2) +
            QList<LogFields>{Entry(QStringLiteral("11:06"), "NT", 0, {}, {}, QStringLiteral("} back"))} +
            Plain(3, 6);
        // A closing brace that closes the document's outermost group: nothing after it shows.
        const QList<LogFields> closed = Plain(3) +
                                        QList<LogFields>{Entry(QStringLiteral("11:07"), "NT", 0,
                                                               QStringLiteral("the end} after"), {}, {})} +
                                        Plain(3, 3);

        for (const double factor : {2.0, 1.0}) {
            const QByteArray suffix = factor == 2.0 ? QByteArray(" (as shown)") : QByteArray(" (as written)");
            const auto row = [&](const char* name, const LogViewDay& day) {
                QTest::newRow(QByteArray(name + suffix).constData()) << day << factor;
            };
            row("every kind of plain line", LogViewDay{kinds, {}});
            row("varied day", LogViewDay{varied, {}});
            row("syntax only", LogViewDay{syntax, {}});
            row("syntax first", LogViewDay{QList<LogFields>{syntax[1]} + Plain(4), {}});
            row("syntax last", LogViewDay{Plain(4) + QList<LogFields>{syntax[2]}, {}});
            row("syntax then a cut note", LogViewDay{Plain(2) + QList<LogFields>{syntax[0]}, note});
            row("group reaching over lines", LogViewDay{reaching, {}});
            row("uc reaching over lines", LogViewDay{uc, {}});
            row("binary data running on", LogViewDay{binary, {}});
            row("skipped destination", LogViewDay{destination, {}});
            row("outermost group closed early", LogViewDay{closed, note});
            row("no entries", LogViewDay{});
            row("only a cut note", LogViewDay{{}, note});
            row("entries and a cut note", LogViewDay{kinds, note});
            row("cut note with syntax", LogViewDay{Plain(2), QStringLiteral("{odd} \\b note")});
            row("a thousand entries", LogViewDay{Plain(1000), note});
        }
    }

    void builtViewMatchesTheDocumentReadBack()
    {
        QFETCH(LogViewDay, day);
        QFETCH(double, sizeFactor);
        const QString difference = Compare(day, sizeFactor);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    // The comparison sees a difference in any format that shows: a document built and then
    // changed in one property at a time no longer matches the one read back.
    void comparisonSeesEveryFormatThatShows_data()
    {
        QTest::addColumn<int>("change");
        for (int change = 0; change < 9; ++change)
            QTest::newRow(QByteArray::number(change).constData()) << change;
    }

    void comparisonSeesEveryFormatThatShows()
    {
        QFETCH(int, change);
        const LogViewDay day{PlainKinds(), {}};
        QTextDocument read;
        ReadRtf(LogViewDocument(day), read, 2.0);
        QTextDocument built;
        BuildLogView(built, day, 2.0);
        QVERIFY(documentdiff::Difference(read, built).isEmpty());

        QTextCursor cursor(built.findBlockByNumber(2));
        cursor.setPosition(cursor.position() + 3);
        cursor.setPosition(cursor.position() + 2, QTextCursor::KeepAnchor);
        QTextCharFormat format = cursor.charFormat();
        QTextBlockFormat block = cursor.blockFormat();
        switch (change) {
        case 0:
            format.setFontFamilies(QStringList{QStringLiteral("Arial")});
            break;
        case 1:
            format.setFontPointSize(format.fontPointSize() / 2);
            break;
        case 2:
            format.setFontWeight(QFont::Bold);
            break;
        case 3:
            format.setFontItalic(true);
            break;
        case 4:
            format.setFontUnderline(true);
            break;
        case 5:
            format.setForeground(QColor(Qt::red));
            break;
        case 6:
            block.setAlignment(Qt::AlignHCenter);
            break;
        case 7:
            block.setLeftMargin(10);
            break;
        case 8:
            block.setTextIndent(10);
            break;
        }
        if (change < 6)
            cursor.setCharFormat(format);
        else
            cursor.setBlockFormat(block);
        QVERIFY(!documentdiff::Difference(read, built).isEmpty());
    }

    void rebuildingReplacesTheContent()
    {
        QTextDocument built;
        BuildLogView(built, LogViewDay{Plain(50), {}}, 2.0);
        BuildLogView(built, LogViewDay{Plain(2), {}}, 2.0);
        QTextDocument read;
        ReadRtf(LogViewDocument(LogViewDay{Plain(2), {}}), read, 2.0);
        const QString difference = documentdiff::Difference(read, built);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
};

QTEST_MAIN(TestLogViewDocument)
#include "tst_logviewdocument.moc"
