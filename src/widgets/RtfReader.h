#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>

class QTextDocument;

namespace rtf {
class Parser;
}

// A reader for the small rich-text (RTF) documents the program writes and shows: the day
// logs, the help text and the yearly table.
//
// ReadRtf replaces the document's content with what it reads from `rtf`:
// - groups { }, each saving and restoring the character and paragraph properties;
// - paragraphs: \par (the last one leaves no empty paragraph behind), \pard, \line, \ql
//   \qr \qc \qj, \li \ri \fi \sb \sa and tab stops \tx with \tqr \tqc \tqdec (twips,
//   1440 to the inch, become pixels at 96 to the inch);
// - characters: \plain, \f, \fs (half-points, kept between 1 and 200 points), \b, \i,
//   \ul and its kinds, \ulnone, \strike, \cf, each ended by a 0 ("\ul0");
// - the font table (numbers to names, \deff) and the colour table; \deftab sets the
//   document's default tab distance;
// - text: \tab, \'hh (a byte in code page 1252), \uN with the \ucN fallback characters
//   after it skipped (default 1), the escapes \\ \{ \}, and \~ \_ \- \emdash \endash
//   \bullet \lquote \rquote \ldblquote \rdblquote. Text bytes above 127 are read as UTF-8
//   where a run of text between two control words is valid UTF-8, otherwise as code page
//   1252; line breaks in the source are not text.
// Unknown control words, {\*...} destinations and the destinations that hold no text to show
// (\info, \stylesheet, \pict, headers and footers...) are skipped, \bin data too. Code
// pages other than 1252 (\ansicpg, \fcharset) and fields are not read: a field shows its
// last result.
//
// A font keeps its table name as its first family and a fallback installed here as the
// second: the system's fixed font for the fixed fonts, "Serif" for the serif fonts and the
// system's general font for every other ("MS Sans Serif" and "System" among them), so that
// two fonts of the table stay apart even when one installed font draws both.
//
// It never throws: a damaged or hostile document (unbalanced braces, huge numbers, deep
// nesting, binary bytes, a cut-off end) shows what could be read. Time and memory grow
// linearly with the input; groups deeper than 256 are skipped with their content; reading
// stops at the brace that closes the outermost group and a brace that closes nothing is
// ignored. The document's undo history is cleared and it is left unmodified.
//
// `sizeFactor` multiplies every font size, for a view that shows a document larger than
// it was written (kept between 0.1 and 10).
void ReadRtf(const QByteArray& rtf, QTextDocument& document, double sizeFactor = 1.0);

// A reading that adds to the end of a document and takes its source in pieces, for a
// writer that puts most of a document in place itself and hands the reader only the parts
// it does not build. The pieces are read as ReadRtf reads the whole: each goes on where the
// last one stopped (a piece must not end inside a control word; cut after a line end), and
// the first goes on in the paragraph the document ends in. Reading stops for good at the
// brace that closes the outermost group. Finish (or the destructor) puts in the text still
// held, gives the last paragraph the properties in force and sets the default tab distance.
// The whole reading is one edit block of the document, without undo history.
class RtfAppender
{
public:
    explicit RtfAppender(QTextDocument& document, double sizeFactor = 1.0);
    ~RtfAppender();
    RtfAppender(const RtfAppender&) = delete;
    RtfAppender& operator=(const RtfAppender&) = delete;

    void Read(QByteArrayView rtf);
    // Whether what was read reaches no further than itself: only the outermost group is
    // open, in its text, with no binary data or \u fallback characters still to skip, \uc
    // at its default and a paragraph with text open. A line that then starts with
    // "\par\pard\plain" reads the same as it would right after the document's head.
    bool AtRest() const;
    void Finish();

private:
    QTextDocument& m_document;
    bool m_undo;
    bool m_finished = false;
    std::unique_ptr<rtf::Parser> m_parser;
};

// The largest file LoadRtfFile reads.
inline constexpr qint64 kMaxRtfFileSize = 16 * 1024 * 1024;

// Reads the file at `path` into the document with ReadRtf. A file that cannot be opened or
// is larger than kMaxRtfFileSize leaves the document empty and returns false with the
// reason in `error` (when given). `sizeFactor` is passed on to ReadRtf.
bool LoadRtfFile(const QString& path, QTextDocument& document, QString* error = nullptr,
                 double sizeFactor = 1.0);
