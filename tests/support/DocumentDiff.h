#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextOption>

#include <algorithm>

// Compares two rich-text documents as a reader of the screen sees them: the plain text, then
// block by block the paragraph format and the paragraph's own character format, then
// fragment by fragment the text and its character format. Returns the first difference in
// words, or an empty text when there is none. Each format is compared property by property
// (the ones that show), then as a whole, so that no property that shows can differ unseen.
namespace documentdiff {

inline QString Describe(const QString& where, const QString& what, const QString& expected,
                        const QString& actual)
{
    return where + QStringLiteral(": ") + what + QStringLiteral(" is \"") + actual +
           QStringLiteral("\", expected \"") + expected + QStringLiteral("\"");
}

inline QString Number(double value)
{
    return QString::number(value, 'g', 10);
}

inline QString Char(const QString& where, const QTextCharFormat& e, const QTextCharFormat& a)
{
    const QString ef = e.fontFamilies().toStringList().join(u'|');
    const QString af = a.fontFamilies().toStringList().join(u'|');
    if (ef != af)
        return Describe(where, QStringLiteral("font family"), ef, af);
    if (e.fontPointSize() != a.fontPointSize())
        return Describe(where, QStringLiteral("point size"), Number(e.fontPointSize()),
                        Number(a.fontPointSize()));
    if (e.fontWeight() != a.fontWeight())
        return Describe(where, QStringLiteral("weight"), Number(e.fontWeight()), Number(a.fontWeight()));
    if (e.fontItalic() != a.fontItalic())
        return Describe(where, QStringLiteral("italic"), Number(e.fontItalic()), Number(a.fontItalic()));
    if (e.fontUnderline() != a.fontUnderline())
        return Describe(where, QStringLiteral("underline"), Number(e.fontUnderline()),
                        Number(a.fontUnderline()));
    if (e.fontStrikeOut() != a.fontStrikeOut())
        return Describe(where, QStringLiteral("strike-out"), Number(e.fontStrikeOut()),
                        Number(a.fontStrikeOut()));
    if (e.fontStyleHint() != a.fontStyleHint())
        return Describe(where, QStringLiteral("style hint"), Number(e.fontStyleHint()),
                        Number(a.fontStyleHint()));
    if (e.hasProperty(QTextFormat::ForegroundBrush) != a.hasProperty(QTextFormat::ForegroundBrush) ||
        e.foreground() != a.foreground())
        return Describe(where, QStringLiteral("colour"), e.foreground().color().name(),
                        a.foreground().color().name());
    if (e != a)
        return where + QStringLiteral(": the character formats differ in another property");
    return {};
}

inline QString Block(const QString& where, const QTextBlockFormat& e, const QTextBlockFormat& a)
{
    if (e.alignment() != a.alignment())
        return Describe(where, QStringLiteral("alignment"), Number(e.alignment()), Number(a.alignment()));
    if (e.leftMargin() != a.leftMargin() || e.rightMargin() != a.rightMargin() ||
        e.topMargin() != a.topMargin() || e.bottomMargin() != a.bottomMargin())
        return Describe(where, QStringLiteral("margins"),
                        QStringList{Number(e.leftMargin()), Number(e.rightMargin()), Number(e.topMargin()),
                                    Number(e.bottomMargin())}
                            .join(u' '),
                        QStringList{Number(a.leftMargin()), Number(a.rightMargin()), Number(a.topMargin()),
                                    Number(a.bottomMargin())}
                            .join(u' '));
    if (e.textIndent() != a.textIndent() || e.indent() != a.indent())
        return Describe(where, QStringLiteral("indent"), Number(e.textIndent()), Number(a.textIndent()));
    if (e.tabPositions().size() != a.tabPositions().size())
        return Describe(where, QStringLiteral("tab stops"), Number(double(e.tabPositions().size())),
                        Number(double(a.tabPositions().size())));
    if (e != a)
        return where + QStringLiteral(": the block formats differ in another property");
    return {};
}

inline QList<QTextFragment> Fragments(const QTextBlock& block)
{
    QList<QTextFragment> fragments;
    for (auto it = block.begin(); !it.atEnd(); ++it)
        fragments.append(it.fragment());
    return fragments;
}

inline QString Difference(const QTextDocument& expected, const QTextDocument& actual)
{
    const QString expectedText = expected.toPlainText();
    const QString actualText = actual.toPlainText();
    if (expectedText != actualText) {
        qsizetype at = 0;
        while (at < expectedText.size() && at < actualText.size() && expectedText[at] == actualText[at])
            ++at;
        const qsizetype from = std::max<qsizetype>(at - 40, 0);
        return Describe(QStringLiteral("plain text from character %1").arg(at), QStringLiteral("the text"),
                        expectedText.mid(from, 80), actualText.mid(from, 80));
    }
    if (expected.blockCount() != actual.blockCount())
        return Describe(QStringLiteral("document"), QStringLiteral("block count"),
                        Number(expected.blockCount()), Number(actual.blockCount()));
    if (expected.defaultTextOption().tabStopDistance() != actual.defaultTextOption().tabStopDistance())
        return Describe(QStringLiteral("document"), QStringLiteral("tab distance"),
                        Number(expected.defaultTextOption().tabStopDistance()),
                        Number(actual.defaultTextOption().tabStopDistance()));
    if (expected.defaultFont() != actual.defaultFont())
        return Describe(QStringLiteral("document"), QStringLiteral("default font"),
                        expected.defaultFont().toString(), actual.defaultFont().toString());
    QTextBlock e = expected.firstBlock();
    QTextBlock a = actual.firstBlock();
    for (int number = 0; e.isValid() && a.isValid(); ++number, e = e.next(), a = a.next()) {
        const QString where = QStringLiteral("block %1 \"%2\"").arg(number).arg(e.text().left(80));
        if (e.text() != a.text())
            return Describe(where, QStringLiteral("text"), e.text(), a.text());
        QString difference = Block(where, e.blockFormat(), a.blockFormat());
        if (difference.isEmpty())
            difference = Char(where + QStringLiteral(" (its own format)"), e.charFormat(), a.charFormat());
        if (!difference.isEmpty())
            return difference;
        const QList<QTextFragment> ef = Fragments(e);
        const QList<QTextFragment> af = Fragments(a);
        if (ef.size() != af.size())
            return Describe(where, QStringLiteral("fragment count"), Number(double(ef.size())),
                            Number(double(af.size())));
        for (qsizetype i = 0; i < ef.size(); ++i) {
            const QString at = where + QStringLiteral(", fragment \"%1\"").arg(ef[i].text().left(80));
            if (ef[i].text() != af[i].text())
                return Describe(at, QStringLiteral("text"), ef[i].text(), af[i].text());
            difference = Char(at, ef[i].charFormat(), af[i].charFormat());
            if (!difference.isEmpty())
                return difference;
        }
    }
    return {};
}

} // namespace documentdiff
