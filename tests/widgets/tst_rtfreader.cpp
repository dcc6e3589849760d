#include "DocumentDiff.h"
#include "widgets/RtfReader.h"

#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QtTest>

namespace {

// The program's own log document: every line ends with CR LF.
QByteArray LogDocument()
{
    return QByteArrayLiteral(
        "{\\rtf1\\ansi\\deff0\\deftab5000{\\fonttbl{\\f0\\fswiss MS Sans Serif;}"
        "{\\f1\\froman\\fcharset2 Symbol;}{\\f2\\fswiss System;}}\r\n"
        "{\\colortbl\\red0\\green0\\blue0;}\r\n"
        "\\deftab5000\r\n"
        "\\deflang1033\\pard\\plain\\f2\\fs20 \r\n"
        "\\par\\pard\\plain\\f0\\fs10 14:05--Alarm set for \\f2 Crew 7\\f0 , expires at 14:20\r\n"
        "\\par\\pard\\plain\\f0\\fs10 14:06--Start program\\f2 \\f0 \r\n"
        "\\par }\r\n");
}

const QString kLogText =
    QStringLiteral("\n14:05--Alarm set for Crew 7, expires at 14:20\n14:06--Start program");

QString PlainText(const QByteArray& rtf)
{
    QTextDocument document;
    ReadRtf(rtf, document);
    return document.toPlainText();
}

// The character format of the first character of `needle`.
QTextCharFormat FormatOf(const QTextDocument& document, const QString& needle)
{
    const QTextCursor found = document.find(needle, 0, QTextDocument::FindCaseSensitively);
    if (found.isNull())
        return {};
    QTextCursor at(found);
    at.setPosition(found.selectionStart() + 1);
    return at.charFormat();
}

// Whether every character of `needle` has the same character format.
bool IsUniform(const QTextDocument& document, const QString& needle)
{
    const QTextCursor found = document.find(needle, 0, QTextDocument::FindCaseSensitively);
    const QTextCharFormat first = FormatOf(document, needle);
    for (int i = found.selectionStart() + 1; i <= found.selectionEnd(); ++i) {
        QTextCursor at(found);
        at.setPosition(i);
        if (at.charFormat() != first)
            return false;
    }
    return !found.isNull();
}

QStringList Families(const QTextCharFormat& format)
{
    return format.fontFamilies().toStringList();
}

QString GeneralFamily()
{
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

// Reads `rtf` and returns its plain text; fails the test when reading takes longer than `limit`.
QString ReadQuickly(const QByteArray& rtf, qint64 limitMs = 5000)
{
    QElapsedTimer timer;
    timer.start();
    QTextDocument document;
    ReadRtf(rtf, document);
    const qint64 elapsed = timer.elapsed();
    if (elapsed > limitMs)
        qWarning("reading %lld bytes took %lld ms", qlonglong(rtf.size()), elapsed);
    return elapsed <= limitMs ? document.toPlainText() : QStringLiteral("<too slow>");
}

QString WithoutNewlines(QString text)
{
    return text.remove(QLatin1Char('\n'));
}

} // namespace

class TestRtfReader : public QObject
{
    Q_OBJECT
private slots:
    void theProgramsLogDocumentShowsTwoEntryLines()
    {
        QTextDocument document;
        ReadRtf(LogDocument(), document);
        QCOMPARE(document.toPlainText(), kLogText);
        QCOMPARE(document.blockCount(), 3);
        QCOMPARE(document.findBlockByNumber(1).text(),
                 QStringLiteral("14:05--Alarm set for Crew 7, expires at 14:20"));
        QCOMPARE(document.findBlockByNumber(2).text(), QStringLiteral("14:06--Start program"));
    }

    void theCrewNameIsInTheSecondFont()
    {
        QTextDocument document;
        ReadRtf(LogDocument(), document);
        QVERIFY(IsUniform(document, QStringLiteral("Crew 7")));
        QVERIFY(IsUniform(document, QStringLiteral("14:05--Alarm set for ")));
        QVERIFY(IsUniform(document, QStringLiteral(", expires at 14:20")));
        const QTextCharFormat crew = FormatOf(document, QStringLiteral("Crew 7"));
        const QTextCharFormat before = FormatOf(document, QStringLiteral("14:05--Alarm"));
        const QTextCharFormat after = FormatOf(document, QStringLiteral(", expires"));
        QCOMPARE(Families(crew).value(0), QStringLiteral("System"));
        QCOMPARE(Families(before).value(0), QStringLiteral("MS Sans Serif"));
        QCOMPARE(Families(after).value(0), QStringLiteral("MS Sans Serif"));
        QVERIFY(crew.fontFamilies() != before.fontFamilies());
        QCOMPARE(crew.fontPointSize(), 5.0);
        QCOMPARE(before.fontPointSize(), 5.0);
        QCOMPARE(after.fontPointSize(), 5.0);
        QVERIFY(!crew.fontUnderline());
    }

    void windowsSystemFontsFallBackToTheSystemsGeneralFont()
    {
        QTextDocument document;
        ReadRtf(LogDocument(), document);
        const QString general = GeneralFamily();
        QCOMPARE(Families(FormatOf(document, QStringLiteral("Crew"))),
                 (QStringList{QStringLiteral("System"), general}));
        QCOMPARE(Families(FormatOf(document, QStringLiteral("14:06"))),
                 (QStringList{QStringLiteral("MS Sans Serif"), general}));
    }

    void windowsSystemFontsAreDrawnWithTheGeneralFont()
    {
        QTextDocument document;
        ReadRtf(LogDocument(), document);
        const QString drawn = QFontInfo(QFont(GeneralFamily())).family();
        QCOMPARE(QFontInfo(FormatOf(document, QStringLiteral("Crew")).font()).family(), drawn);
        QCOMPARE(QFontInfo(FormatOf(document, QStringLiteral("14:06")).font()).family(), drawn);
    }

    void fixedAndSerifFontsFallBackToTheirKind()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1{\\fonttbl\\f0\\fswiss Arial;\\f1\\fmodern Courier New;"
                                  "\\f2\\froman Times New Roman;\\f3\\fmodern Unheard Of;}"
                                  "\\f0 a\\f1 b\\f2 c\\f3 d}"),
                document);
        const QString fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
        QCOMPARE(Families(FormatOf(document, QStringLiteral("a"))),
                 (QStringList{QStringLiteral("Arial"), GeneralFamily()}));
        QCOMPARE(Families(FormatOf(document, QStringLiteral("b"))),
                 (QStringList{QStringLiteral("Courier New"), fixed}));
        QCOMPARE(FormatOf(document, QStringLiteral("b")).fontStyleHint(), QFont::TypeWriter);
        QCOMPARE(Families(FormatOf(document, QStringLiteral("c"))),
                 (QStringList{QStringLiteral("Times New Roman"), QStringLiteral("Serif")}));
        QCOMPARE(Families(FormatOf(document, QStringLiteral("d"))),
                 (QStringList{QStringLiteral("Unheard Of"), fixed}));
    }

    void anUnknownFontNumberUsesTheDefaultFont()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\deff1{\\fonttbl{\\f0 Zero;}{\\f1 One;}}\\f7 x\\f0 y\\plain z}"),
                document);
        QCOMPARE(Families(FormatOf(document, QStringLiteral("x"))).value(0), QStringLiteral("One"));
        QCOMPARE(Families(FormatOf(document, QStringLiteral("y"))).value(0), QStringLiteral("Zero"));
        QCOMPARE(Families(FormatOf(document, QStringLiteral("z"))).value(0), QStringLiteral("One"));
    }

    void aDocumentWithoutFontTableUsesTheGeneralFontAtTwelvePoints()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 plain}"), document);
        const QTextCharFormat format = FormatOf(document, QStringLiteral("plain"));
        QCOMPARE(Families(format), QStringList{GeneralFamily()});
        QCOMPARE(format.fontPointSize(), 12.0);
    }

    void fontSizeIsInHalfPoints()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\fs20 ten\\fs21 half\\fs default}"), document);
        QCOMPARE(FormatOf(document, QStringLiteral("ten")).fontPointSize(), 10.0);
        QCOMPARE(FormatOf(document, QStringLiteral("half")).fontPointSize(), 10.5);
        QCOMPARE(FormatOf(document, QStringLiteral("default")).fontPointSize(), 12.0);
    }

    void fontSizeIsKeptBetweenOneAndTwoHundredPoints()
    {
        QTextDocument document;
        ReadRtf(
            QByteArrayLiteral("{\\rtf1\\fs99999999999999999999 huge\\fs0 zero\\fs-40 negative\\fs1 last}"),
            document);
        QCOMPARE(document.toPlainText(), QStringLiteral("hugezeronegativelast"));
        QCOMPARE(FormatOf(document, QStringLiteral("huge")).fontPointSize(), 200.0);
        QCOMPARE(FormatOf(document, QStringLiteral("zero")).fontPointSize(), 1.0);
        QCOMPARE(FormatOf(document, QStringLiteral("negative")).fontPointSize(), 1.0);
        QCOMPARE(FormatOf(document, QStringLiteral("last")).fontPointSize(), 1.0);
    }

    void aGroupRestoresFontSizeAndUnderline()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\fs20 a{\\ul\\fs40\\f1 b}c}"), document);
        QCOMPARE(document.toPlainText(), QStringLiteral("abc"));
        QVERIFY(!FormatOf(document, QStringLiteral("a")).fontUnderline());
        QVERIFY(FormatOf(document, QStringLiteral("b")).fontUnderline());
        QCOMPARE(FormatOf(document, QStringLiteral("b")).fontPointSize(), 20.0);
        QVERIFY(!FormatOf(document, QStringLiteral("c")).fontUnderline());
        QCOMPARE(FormatOf(document, QStringLiteral("c")).fontPointSize(), 10.0);
    }

    void underlineEndsWithUl0AndUlnone()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\ul a\\ul0 b\\uldb c\\ulnone d}"), document);
        QVERIFY(FormatOf(document, QStringLiteral("a")).fontUnderline());
        QVERIFY(!FormatOf(document, QStringLiteral("b")).fontUnderline());
        QVERIFY(FormatOf(document, QStringLiteral("c")).fontUnderline());
        QVERIFY(!FormatOf(document, QStringLiteral("d")).fontUnderline());
    }

    void boldAndItalicTurnOnAndOff()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\b a\\i b\\b0 c\\i0 d}"), document);
        QCOMPARE(FormatOf(document, QStringLiteral("a")).fontWeight(), int(QFont::Bold));
        QVERIFY(!FormatOf(document, QStringLiteral("a")).fontItalic());
        QCOMPARE(FormatOf(document, QStringLiteral("b")).fontWeight(), int(QFont::Bold));
        QVERIFY(FormatOf(document, QStringLiteral("b")).fontItalic());
        QCOMPARE(FormatOf(document, QStringLiteral("c")).fontWeight(), int(QFont::Normal));
        QVERIFY(FormatOf(document, QStringLiteral("c")).fontItalic());
        QVERIFY(!FormatOf(document, QStringLiteral("d")).fontItalic());
    }

    void plainResetsTheCharacterFormat()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\b\\i\\ul\\strike\\fs40 a\\plain b}"), document);
        const QTextCharFormat a = FormatOf(document, QStringLiteral("a"));
        QVERIFY(a.fontStrikeOut());
        const QTextCharFormat b = FormatOf(document, QStringLiteral("b"));
        QCOMPARE(b.fontWeight(), int(QFont::Normal));
        QVERIFY(!b.fontItalic());
        QVERIFY(!b.fontUnderline());
        QVERIFY(!b.fontStrikeOut());
        QCOMPARE(b.fontPointSize(), 12.0);
    }

    void colourTableColoursTheText()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1{\\colortbl;\\red255\\green0\\blue0;\\red0\\green128\\blue999;}"
                                  "\\cf1 red\\cf2 green\\cf0 auto\\cf9 unknown}"),
                document);
        QCOMPARE(document.toPlainText(), QStringLiteral("redgreenautounknown"));
        QCOMPARE(FormatOf(document, QStringLiteral("red")).foreground().color(), QColor(255, 0, 0));
        QCOMPARE(FormatOf(document, QStringLiteral("green")).foreground().color(), QColor(0, 128, 255));
        QVERIFY(!FormatOf(document, QStringLiteral("auto")).hasProperty(QTextFormat::ForegroundBrush));
        QVERIFY(!FormatOf(document, QStringLiteral("unknown")).hasProperty(QTextFormat::ForegroundBrush));
    }

    void parMakesParagraphs()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 one\\par two\\par\\par four}"), document);
        QCOMPARE(document.toPlainText(), QStringLiteral("one\ntwo\n\nfour"));
        QCOMPARE(document.blockCount(), 4);
    }

    void theLastParLeavesNoEmptyParagraph()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 one\\par}"), document);
        QCOMPARE(document.toPlainText(), QStringLiteral("one"));
        QCOMPARE(document.blockCount(), 1);
    }

    void anEmptyParagraphTakesItsFontSize()
    {
        QTextDocument document;
        ReadRtf(LogDocument(), document);
        QCOMPARE(document.firstBlock().charFormat().fontPointSize(), 10.0);
    }

    void aBackslashBeforeALineBreakIsAParagraph()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 one\\\r\ntwo}")), QStringLiteral("one\ntwo"));
    }

    void lineBreaksInTheSourceAreIgnored()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 on\r\ne\ntwo\r}")), QStringLiteral("onetwo"));
    }

    void lineIsALineBreakInsideTheParagraph()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 one\\line two}"), document);
        QCOMPARE(document.blockCount(), 1);
        QCOMPARE(document.firstBlock().text(), QStringLiteral("one\u2028two"));
    }

    void alignmentAndIndentsApplyToTheParagraphAndPardResetsThem()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\qc\\li1440\\fi-720\\sb300 centred\\par\\pard left\\par}"),
                document);
        const QTextBlockFormat first = document.firstBlock().blockFormat();
        QCOMPARE(first.alignment(), Qt::AlignHCenter);
        QCOMPARE(first.leftMargin(), 96.0);
        QCOMPARE(first.textIndent(), -48.0);
        QCOMPARE(first.topMargin(), 20.0);
        const QTextBlockFormat second = document.lastBlock().blockFormat();
        QCOMPARE(document.lastBlock().text(), QStringLiteral("left"));
        QCOMPARE(second.alignment(), Qt::AlignLeft);
        QCOMPARE(second.leftMargin(), 0.0);
    }

    void tabIsATabCharacter()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 a\\tab b\tc}")), QStringLiteral("a\tb\tc"));
    }

    void deftabSetsTheDefaultTabDistance()
    {
        QTextDocument document;
        ReadRtf(LogDocument(), document);
        QCOMPARE(document.defaultTextOption().tabStopDistance(), 5000 / 15.0);
        ReadRtf(QByteArrayLiteral("{\\rtf1 x}"), document);
        QCOMPARE(document.defaultTextOption().tabStopDistance(), 48.0);
    }

    void tabStopsBelongToTheParagraph()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1\\tqr\\tx2880\\tx1440 a\\tab b\\par\\pard c}"), document);
        const QList<QTextOption::Tab> tabs = document.firstBlock().blockFormat().tabPositions();
        QCOMPARE(tabs.size(), 2);
        QCOMPARE(tabs[0].position, 96.0);
        QCOMPARE(tabs[0].type, QTextOption::LeftTab);
        QCOMPARE(tabs[1].position, 192.0);
        QCOMPARE(tabs[1].type, QTextOption::RightTab);
        QVERIFY(document.lastBlock().blockFormat().tabPositions().isEmpty());
    }

    void hexEscapeIsCodePage1252()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 caf\\'e9 \\'80 \\'93q\\'94 \\'E9}")),
                 QStringLiteral("café € \u201Cq\u201D é"));
    }

    void hexEscapesAreNotReadAsUtf8()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\'c3\\'a9}")), QStringLiteral("\u00C3\u00A9"));
    }

    void unicodeSkipsItsFallbackCharacter()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\u8364?x}")), QStringLiteral("€x"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\u8364\\'80x}")), QStringLiteral("€x"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\u8364 ?x}")), QStringLiteral("€x"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\u-3999?x}")),
                 QString(QChar(0xF061)) + QStringLiteral("x"));
    }

    void ucSetsTheNumberOfFallbackCharacters()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1\\uc2 \\u8364??x}")), QStringLiteral("€x"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1\\uc0 \\u8364?x}")), QStringLiteral("€?x"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1\\uc2{\\uc0}\\u8364??x}")), QStringLiteral("€x"));
    }

    void aGroupEndsTheFallback()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1\\uc3 {\\u8364}x}")), QStringLiteral("€x"));
    }

    void surrogatePairsMakeOneCharacterAndLoneHalvesAreReplaced()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\u-10179?\\u-8704?}")), QStringLiteral("\U0001F600"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \\u-10179?x}")), QStringLiteral("\uFFFDx"));
    }

    void charactersTheDocumentUsesForItselfAreReplaced()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 a\\u-560?b\\u8233?c\\u7?d\\u0?e}"), document);
        QCOMPARE(document.blockCount(), 1);
        QCOMPARE(document.firstBlock().text(), QStringLiteral("a\uFFFDb\u2028cde"));
    }

    void utf8TextBytesAreDecoded()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 Caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80}")),
                 QStringLiteral("Café € \U0001F600"));
    }

    void textBytesThatAreNotUtf8AreCodePage1252()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 Caf\xe9 \x93q\x94}")),
                 QStringLiteral("Café \u201Cq\u201D"));
        // One byte that is not UTF-8 makes the whole run code page 1252.
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \xc3\xa9\xe9}")), QStringLiteral("\u00C3\u00A9\u00E9"));
        // Overlong forms and encoded surrogates are not UTF-8.
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \xc0\xaf}")), QStringLiteral("\u00C0\u00AF"));
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 \xed\xa0\x80}")), QStringLiteral("\u00ED \u20AC"));
    }

    void controlBytesInTheTextAreDropped()
    {
        const char rtf[] = "{\\rtf1 a\x01\x00\x7f"
                           "b}";
        QCOMPARE(PlainText(QByteArray(rtf, sizeof(rtf) - 1)), QStringLiteral("ab"));
    }

    void escapedBackslashAndBracesAreText()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 a\\\\b\\{c\\}d}")), QStringLiteral("a\\b{c}d"));
    }

    void symbolWordsAreCharacters()
    {
        QTextDocument document;
        ReadRtf(
            QByteArrayLiteral("{\\rtf1 \\lquote a\\rquote \\ldblquote b\\rdblquote \\emdash\\endash\\bullet"
                              " x\\~y\\_z}"),
            document);
        QCOMPARE(document.toRawText(),
                 QStringLiteral("\u2018a\u2019\u201Cb\u201D\u2014\u2013\u2022x\u00A0y\u2011z"));
    }

    void aControlWordEatsOneSpace()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1\\b  two\\b0x\\fs20-y\\unknown5 z}")),
                 QStringLiteral(" twox-yz"));
    }

    void unknownWordsAndDestinationsAreSkipped()
    {
        QCOMPARE(
            PlainText(QByteArrayLiteral("{\\rtf1{\\*\\generator Writer 1.0;}{\\*\\unheard {nested} text}"
                                        "{\\info{\\title Title}{\\author Me}}{\\stylesheet{\\s0 Normal;}}"
                                        "visible\\unknownword more\\*\\unheard hidden{inner}}")),
            QStringLiteral("visiblemore"));
    }

    void aFieldShowsItsResult()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 see {\\field{\\*\\fldinst HYPERLINK \"x\"}"
                                             "{\\fldrslt the page}} now}")),
                 QStringLiteral("see the page now"));
    }

    void binaryDataIsSkipped()
    {
        QCOMPARE(PlainText(QByteArrayLiteral("{\\rtf1 a{\\pict\\bin4 }{\\}b}c}")), QStringLiteral("ac"));
    }

    void readingReplacesTheDocumentAndLeavesItUnmodified()
    {
        QTextDocument document;
        document.setPlainText(QStringLiteral("earlier"));
        document.setModified(true);
        ReadRtf(QByteArrayLiteral("{\\rtf1 later}"), document);
        QCOMPARE(document.toPlainText(), QStringLiteral("later"));
        QVERIFY(!document.isModified());
        QVERIFY(!document.isUndoAvailable());
        QVERIFY(document.isUndoRedoEnabled());
    }

    void tooManyClosingBracesEndTheDocument()
    {
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 a}}}}} b")), QStringLiteral("a"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("}}}{\\rtf1 a}")), QStringLiteral("a"));
        QCOMPARE(ReadQuickly(QByteArray(100000, '}') + QByteArrayLiteral("x")), QStringLiteral("x"));
    }

    void unclosedGroupsShowTheirText()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 a{\\b b{\\i c"), document);
        QCOMPARE(document.toPlainText(), QStringLiteral("abc"));
        QVERIFY(FormatOf(document, QStringLiteral("c")).fontItalic());
    }

    void hugeNumbersAreHarmless()
    {
        QCOMPARE(ReadQuickly(
                     QByteArrayLiteral("{\\rtf1 a\\u99999999999999999999?b\\u-99999999999999999999?c"
                                       "\\uc99999999999999999999 \\u8364 defghijklmnopqrst\\li999999999999"
                                       "\\tx99999999999\\deftab99999999999\\cf99999999999\\f99999999999 d}")),
                 QStringLiteral("abc€td"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 a\\bin99999999999999999999 bcd}")),
                 QStringLiteral("a"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 a\\bin-5 b}")), QStringLiteral("ab"));
        QCOMPARE(ReadQuickly("{\\rtf1 a\\fs" + QByteArray(100000, '9') + " b}"), QStringLiteral("ab"));
    }

    void deepNestingIsCappedAndItsContentSkipped()
    {
        const int depth = 100000;
        const QByteArray deep =
            "{\\rtf1 before" + QByteArray(depth, '{') + "deep" + QByteArray(depth, '}') + "after}";
        QCOMPARE(ReadQuickly(deep), QStringLiteral("beforeafter"));
        const QByteArray unclosed = "{\\rtf1 before" + QByteArray(depth, '{') + "deep";
        QCOMPARE(ReadQuickly(unclosed), QStringLiteral("before"));
        // Nesting within the cap keeps its text.
        QCOMPARE(ReadQuickly(QByteArray(200, '{') + "kept" + QByteArray(200, '}')), QStringLiteral("kept"));
    }

    void aLoneBackslashAtTheEndIsIgnored()
    {
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 abc\\")), QStringLiteral("abc"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 abc\\'")), QStringLiteral("abc"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 abc\\'e")), QStringLiteral("abc"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 abc\\'zz")), QStringLiteral("abczz"));
        QCOMPARE(ReadQuickly(QByteArrayLiteral("{\\rtf1 abc\\u")), QStringLiteral("abc"));
    }

    void readingInPiecesCutAtLineEndsReadsAsTheWhole_data()
    {
        QTest::addColumn<QByteArray>("rtf");
        QTest::newRow("log document") << LogDocument();
        QTest::newRow("binary data over lines")
            << QByteArrayLiteral("{\\rtf1 a\\bin12 xx\r\nyyyyyyy\r\n\\b z\r\n\\par w}");
        QTest::newRow("fallback characters over lines")
            << QByteArrayLiteral("{\\rtf1\\uc3 a\\u8364\r\nbcd\r\ne\\par f}");
        QTest::newRow("groups over lines") << QByteArrayLiteral(
            "{\\rtf1{\\fonttbl{\\f0 Zero;}\r\n{\\f1 One;}}\r\n{\\b\\f1 a\r\n\\par b}\\qc c\r\n"
            "\\par\\pard d\\par}\r\nnot read\r\n");
        QTest::newRow("unfinished") << QByteArrayLiteral("{\\rtf1 a{\\i b\r\n{\\*\\x c\r\nd");
    }

    void readingInPiecesCutAtLineEndsReadsAsTheWhole()
    {
        QFETCH(QByteArray, rtf);
        QTextDocument whole;
        ReadRtf(rtf, whole, 2.0);
        QTextDocument pieces;
        {
            RtfAppender reading(pieces, 2.0);
            qsizetype from = 0;
            while (from < rtf.size()) {
                const qsizetype end = rtf.indexOf('\n', from);
                const qsizetype to = end < 0 ? rtf.size() : end + 1;
                reading.Read(QByteArrayView(rtf).sliced(from, to - from));
                from = to;
            }
        }
        const QString difference = documentdiff::Difference(whole, pieces);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    void readingGoesOnInTheDocumentsLastParagraph()
    {
        QTextDocument document;
        ReadRtf(QByteArrayLiteral("{\\rtf1 one\\par two}"), document);
        {
            RtfAppender reading(document);
            reading.Read("{\\rtf1\\b  more\\par three}");
        }
        QCOMPARE(document.toPlainText(), QStringLiteral("one\ntwo more\nthree"));
        QVERIFY(FormatOf(document, QStringLiteral("more")).fontWeight() == QFont::Bold);
        QVERIFY(FormatOf(document, QStringLiteral("two")).fontWeight() != QFont::Bold);
    }

    void readingIsAtRestOnlyInPlainTextOfTheOutermostGroup()
    {
        const auto atRest = [](const QByteArray& rtf) {
            QTextDocument document;
            RtfAppender reading(document);
            reading.Read(rtf);
            return reading.AtRest();
        };
        QVERIFY(atRest("{\\rtf1\\par x\\b y\r\n"));
        QVERIFY(!atRest("{\\rtf1\\par x{\\b y\r\n"));             // a group still open
        QVERIFY(!atRest("{\\rtf1\\par x}\r\n"));                  // the document has ended
        QVERIFY(!atRest("{\\rtf1\\par x\\par\r\n"));              // a paragraph not yet begun
        QVERIFY(!atRest("{\\rtf1\\par x\\uc2 y\r\n"));            // fallback count changed
        QVERIFY(!atRest("{\\rtf1\\par x\\u8364\r\n"));            // a fallback character to skip
        QVERIFY(!atRest("{\\rtf1\\par x\\bin9 y\r\n"));           // binary data runs on
        QVERIFY(!atRest("{\\rtf1\\par x{\\*\\k y}}{\\*\\k\r\n")); // in a skipped destination
    }

    void everyCutOfTheLogDocumentShowsAPrefixOfItsText()
    {
        const QByteArray full = LogDocument();
        const QString fullText = WithoutNewlines(kLogText);
        for (qsizetype length = 0; length <= full.size(); ++length) {
            const QString text = WithoutNewlines(PlainText(full.left(length)));
            if (!fullText.startsWith(text))
                QFAIL(qPrintable(QStringLiteral("cut at %1 shows \"%2\"").arg(length).arg(text)));
        }
    }

    void binaryGarbageFinishesQuicklyWithCleanText()
    {
        QRandomGenerator random(20240611);
        QByteArray garbage(1 << 20, Qt::Uninitialized);
        for (char& c : garbage)
            c = char(random.bounded(256));
        QElapsedTimer timer;
        timer.start();
        QTextDocument document;
        ReadRtf(garbage, document);
        QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
        const QString text = document.toRawText();
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text[i];
            QVERIFY(c.unicode() >= 0x20 || c == QLatin1Char('\t') || c == QChar::ParagraphSeparator);
            QVERIFY(c.unicode() < 0xFDD0 || c.unicode() > 0xFDD1);
            if (c.isHighSurrogate())
                QVERIFY(i + 1 < text.size() && text[++i].isLowSurrogate());
            else
                QVERIFY(!c.isLowSurrogate());
        }
    }

    void manyControlWordsAndGroupsTakeLinearTime()
    {
        QByteArray rtf = "{\\rtf1 ";
        for (int i = 0; i < 50000; ++i)
            rtf += "{\\b\\ul\\fs30 x}\\par\\tab\\u8364?";
        rtf += "}";
        const QString text = ReadQuickly(rtf, 10000);
        QCOMPARE(text.size(), 50000 * 4);
        QVERIFY(text.startsWith(QStringLiteral("x\n\t€x\n")));
    }

    void loadRtfFileReadsTheFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("log.rtf"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(LogDocument());
        file.close();
        QTextDocument document;
        QString error = QStringLiteral("stale");
        QVERIFY(LoadRtfFile(path, document, &error));
        QCOMPARE(document.toPlainText(), kLogText);
        QVERIFY(error.isEmpty());
        QVERIFY(LoadRtfFile(path, document));
    }

    void loadRtfFileReportsAMissingFileOrAFolder()
    {
        QTextDocument document;
        document.setPlainText(QStringLiteral("earlier"));
        QString error;
        QVERIFY(!LoadRtfFile(QStringLiteral("/nonexistent/folder/log.rtf"), document, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(document.isEmpty());
        QTemporaryDir dir;
        error.clear();
        QVERIFY(!LoadRtfFile(dir.path(), document, &error));
        QVERIFY(!error.isEmpty());
    }
};

QTEST_MAIN(TestRtfReader)
#include "tst_rtfreader.moc"
