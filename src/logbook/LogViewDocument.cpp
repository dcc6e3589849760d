#include "logbook/LogViewDocument.h"

#include "widgets/RtfReader.h"
#include "widgets/RtfSyntax.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>

#include <algorithm>
#include <optional>

namespace {

// The formats the reader gives the view document's lines: the empty paragraph the header
// leaves, an entry's paragraph, its texts in the first font and its name in the second.
struct LineFormats
{
    QTextBlockFormat HeadBlock;
    QTextCharFormat HeadChar;
    QTextBlockFormat LineBlock;
    QTextCharFormat LineChar;
    QTextCharFormat Text;
    QTextCharFormat Name;
    qreal TabStopDistance = 0;
};

// Reads a day of one entry through the reader and takes its formats, so that the formats
// have one source, the reader, and follow the header.
std::optional<LineFormats> SampleFormats(double sizeFactor)
{
    LogViewDay sample;
    sample.Entries.append(LogFields{QString(), QStringLiteral("0"), QString(), QString(), QStringLiteral("a"),
                                    QStringLiteral("b"), QStringLiteral("c")});
    QTextDocument document;
    ReadRtf(LogViewDocument(sample), document, sizeFactor);
    if (document.blockCount() != 2)
        return std::nullopt;
    const QTextBlock head = document.firstBlock();
    const QTextBlock line = head.next();
    QList<QTextFragment> runs;
    for (auto it = line.begin(); !it.atEnd(); ++it)
        runs.append(it.fragment());
    if (runs.size() != 3 || runs[0].text() != u"0--a" || runs[1].text() != u"b" || runs[2].text() != u"c" ||
        runs[0].charFormat() != runs[2].charFormat())
        return std::nullopt;
    return LineFormats{head.blockFormat(),
                       head.charFormat(),
                       line.blockFormat(),
                       line.charFormat(),
                       runs[0].charFormat(),
                       runs[1].charFormat(),
                       document.defaultTextOption().tabStopDistance()};
}

// Whether a text goes into the document as it is: it holds nothing the reader takes for
// rich-text syntax.
bool IsPlain(const QString& text)
{
    return std::none_of(text.cbegin(), text.cend(),
                        [](QChar c) { return c == u'\\' || c == u'{' || c == u'}'; });
}

bool IsPlain(const LogFields& entry)
{
    return IsPlain(entry[1]) && IsPlain(entry[4]) && IsPlain(entry[5]) && IsPlain(entry[6]);
}

// A text as the reader shows it from the document's UTF-8 bytes.
QString Shown(const QString& text)
{
    if (rtf::IsSanitized(text))
        return text;
    const bool surrogates =
        std::any_of(text.cbegin(), text.cend(), [](QChar c) { return QChar::isSurrogate(c.unicode()); });
    // A text with surrogates goes through UTF-8 as the document does (an unpaired one does
    // not come back as it was); every other text comes back the same.
    return rtf::Sanitized(surrogates ? QString::fromUtf8(text.toUtf8()) : text);
}

// Builds the view as the reader reads the document, line by line: "\par" ends a paragraph,
// "\pard\plain\f0\fs10" opens the next with the entries' formats.
class Builder
{
public:
    Builder(QTextDocument& document, const LineFormats& formats, double sizeFactor)
        : m_document(document), m_cursor(&document), m_formats(formats), m_sizeFactor(sizeFactor),
          m_breakInText(formats.LineChar == formats.Text)
    {}

    // One line of the document: an entry, or the note of a day cut short. `rtf` gives the
    // line's source, `addRuns` adds its texts.
    void Line(bool plain, const auto& rtf, const auto& addRuns)
    {
        if (m_reader && !m_reader->AtRest()) {
            m_reader->Read(rtf()); // the line before reaches into this one
            return;
        }
        if (!plain) {
            if (!m_reader) {
                Flush();
                m_reader.emplace(m_document, m_sizeFactor);
                m_reader->Read(LogViewHeader());
            }
            m_reader->Read(rtf());
            m_atHead = false;
            return;
        }
        EndReading();
        NewParagraph();
        addRuns();
    }

    void Entry(const LogFields& entry)
    {
        Line(
            IsPlain(entry), [&] { return LogViewEntry(entry); },
            [&] {
                // Read, the first text is one run; no surrogate pair can span the "--".
                Add(Shown(entry[1]), m_formats.Text);
                Add(QStringLiteral("--"), m_formats.Text);
                Add(Shown(entry[4]), m_formats.Text);
                Add(Shown(entry[5]), m_formats.Name);
                Add(Shown(entry[6]), m_formats.Text);
            });
    }

    void Note(const QString& note)
    {
        Line(
            IsPlain(note), [&] { return LogViewNote(note); }, [&] { Add(Shown(note), m_formats.Text); });
    }

    // The footer: "\par" ends the last paragraph, and the outermost group closes.
    void Finish()
    {
        if (m_reader) {
            m_reader->Read(LogViewFooter());
            EndReading();
        } else {
            Flush();
            EndHeadParagraph();
        }
        QTextOption option = m_document.defaultTextOption();
        option.setTabStopDistance(m_formats.TabStopDistance);
        m_document.setDefaultTextOption(option);
    }

private:
    void EndReading()
    {
        if (!m_reader)
            return;
        m_reader->Finish();
        m_reader.reset();
        m_cursor.movePosition(QTextCursor::End);
    }

    // The header's paragraph stays empty: its "\par" gives it the header's formats.
    void EndHeadParagraph()
    {
        if (!m_atHead)
            return;
        m_cursor.setBlockFormat(m_formats.HeadBlock);
        m_cursor.setBlockCharFormat(m_formats.HeadChar);
        m_atHead = false;
    }

    // "\par\pard\plain\f0\fs10": the paragraph before keeps its format (the entries'
    // paragraphs all have the same), the next one opens. Inside a run of the entries' text
    // format the break is a paragraph separator of that run: inserted with it, the new
    // paragraph takes the block format of the one the run starts in (an entry's) and the
    // run's character format (an entry's paragraph's own).
    void NewParagraph()
    {
        EndHeadParagraph();
        if (!m_pending.isEmpty() && m_pendingFormat == &m_formats.Text && m_breakInText) {
            m_pending.append(QChar(QChar::ParagraphSeparator));
            return;
        }
        Flush();
        m_cursor.insertBlock(m_formats.LineBlock, m_formats.LineChar);
    }

    void Add(const QString& text, const QTextCharFormat& format)
    {
        if (text.isEmpty())
            return;
        if (m_pendingFormat != &format)
            Flush();
        m_pendingFormat = &format;
        m_pending.append(text);
    }

    void Flush()
    {
        if (!m_pending.isEmpty())
            m_cursor.insertText(m_pending, *m_pendingFormat);
        m_pending.resize(0); // keeps its room for the next run
        m_pendingFormat = nullptr;
    }

    QTextDocument& m_document;
    QTextCursor m_cursor;
    const LineFormats& m_formats;
    double m_sizeFactor;
    bool m_breakInText;                  // an entry's paragraph has the entries' text format as its own
    std::optional<RtfAppender> m_reader; // reading the lines the builder does not build
    bool m_atHead = true;                // the header's empty paragraph is still the last
    QString m_pending;                   // text of one format not yet in the document
    const QTextCharFormat* m_pendingFormat = nullptr;
};

} // namespace

void BuildLogView(QTextDocument& document, const LogViewDay& day, double sizeFactor)
{
    const std::optional<LineFormats> formats = SampleFormats(sizeFactor);
    if (!formats) {
        ReadRtf(LogViewDocument(day), document, sizeFactor);
        return;
    }
    const bool undo = document.isUndoRedoEnabled();
    document.setUndoRedoEnabled(false);
    QTextCursor editing(&document);
    editing.beginEditBlock();
    // Cleared inside the edit block, the whole content is new in one change: a view lays it
    // out a step at a time as it is shown, not all of it at once here.
    document.clear();
    {
        Builder builder(document, *formats, sizeFactor);
        for (const LogFields& entry : day.Entries)
            builder.Entry(entry);
        if (!day.CutNote.isEmpty())
            builder.Note(day.CutNote);
        builder.Finish();
    }
    editing.endEditBlock();
    document.setUndoRedoEnabled(undo);
    document.setModified(false);
}
