#include "widgets/RtfReader.h"

#include "widgets/RtfSyntax.h"

#include <QColor>
#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace {

using rtf::Dest;
using rtf::Kw;

constexpr qsizetype kMaxDepth = 256;      // groups deeper than this are skipped
constexpr qsizetype kMaxFonts = 1024;     // font table entries kept
constexpr qsizetype kMaxColors = 1024;    // colour table entries kept
constexpr qsizetype kMaxFontName = 256;   // bytes of one font name
constexpr qsizetype kMaxWordLength = 32;  // longer control words are unknown
constexpr qint64 kMaxNumber = 1000000000; // a control word's number saturates here
constexpr int kDefaultTabTwips = 720;

QString SystemFamily(QFontDatabase::SystemFont which, const QString& fallback)
{
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr)
        return fallback;
    const QString family = QFontDatabase::systemFont(which).family();
    return family.isEmpty() ? fallback : family;
}

struct FontDef
{
    QStringList families;
    QFont::StyleHint hint = QFont::SansSerif;
};

} // namespace

namespace rtf {

class Parser
{
public:
    Parser(QTextDocument& document, double sizeFactor)
        : m_sizeFactor(sizeFactor), m_document(document), m_cursor(&document),
          m_general(SystemFamily(QFontDatabase::GeneralFont, QStringLiteral("Sans Serif"))),
          m_fixed(SystemFamily(QFontDatabase::FixedFont, QStringLiteral("Monospace")))
    {
        m_cursor.movePosition(QTextCursor::End);
    }

    // Reads the next piece; reading goes on where the last piece stopped.
    void Run(QByteArrayView piece)
    {
        if (m_ended)
            return;
        m_data = piece;
        const qsizetype n = m_data.size();
        // Binary data announced in an earlier piece runs on into this one.
        qsizetype i = std::min(m_binLeft, n);
        m_binLeft -= i;
        while (i < n) {
            const auto c = std::uint8_t(m_data[i]);
            if (c == '{') {
                OpenGroup();
                ++i;
            } else if (c == '}') {
                if (CloseGroup()) {
                    m_ended = true;
                    break;
                }
                ++i;
            } else if (c == '\\') {
                i = ReadControl(i + 1);
            } else {
                TextByte(c);
                ++i;
            }
        }
        m_data = {};
    }

    bool AtRest() const
    {
        return !m_ended && m_stack.size() == 1 && m_overflow == 0 && m_state.dest == Dest::Text &&
               m_ucSkip == 0 && m_binLeft == 0 && m_state.uc == State().uc && !m_paragraphPending &&
               m_cursor.block().length() > 1;
    }

    void Finish()
    {
        Flush();
        if (!m_paragraphPending)
            m_cursor.setBlockFormat(m_state.BlockFormat());
        QTextOption option = m_document.defaultTextOption();
        option.setTabStopDistance(m_deftab / rtf::kTwipsPerPixel);
        m_document.setDefaultTextOption(option);
    }

private:
    double m_sizeFactor;
    bool Skipping() const { return m_overflow > 0 || m_state.dest == Dest::Skip; }
    // Whether this token is one of the fallback characters after \u.
    bool SkipFallback()
    {
        if (m_ucSkip == 0)
            return false;
        --m_ucSkip;
        return true;
    }

    void OpenGroup()
    {
        Flush();
        m_ucSkip = 0;
        if (m_overflow > 0 || qsizetype(m_stack.size()) >= kMaxDepth) {
            ++m_overflow;
            return;
        }
        m_stack.push_back(m_state);
    }

    // True when the outermost group closes: the document ends there.
    bool CloseGroup()
    {
        Flush();
        m_ucSkip = 0;
        if (m_overflow > 0) {
            --m_overflow;
            return false;
        }
        if (m_stack.empty())
            return false; // a stray brace
        if (m_state.dest == Dest::FontTable)
            CommitFont();
        m_state = m_stack.back();
        m_stack.pop_back();
        return m_stack.empty();
    }

    void TextByte(std::uint8_t c)
    {
        if (Skipping() || c == '\r' || c == '\n' || SkipFallback())
            return;
        switch (m_state.dest) {
        case Dest::FontTable:
            if (c == ';')
                CommitFont();
            else if (c >= 0x20 && m_fontName.size() < kMaxFontName)
                m_fontName.append(char(c));
            break;
        case Dest::ColorTable:
            if (c == ';')
                CommitColor();
            break;
        case Dest::Text:
            if (c == '\t')
                AppendText(QChar(u'\t'));
            else if (c >= 0x20 && c != 0x7F)
                m_raw.append(char(c));
            break;
        case Dest::Skip:
            break;
        }
    }

    // Reads what follows a backslash at `i`; returns where reading goes on.
    qsizetype ReadControl(qsizetype i)
    {
        const qsizetype n = m_data.size();
        if (i >= n)
            return n; // a lone backslash at the end
        const auto c = std::uint8_t(m_data[i]);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))
            return ReadWord(i);
        if (c == '\'') {
            int value = 0;
            qsizetype j = i + 1;
            for (; j < n && j < i + 3; ++j) {
                const int digit = rtf::HexValue(m_data[j]);
                if (digit < 0)
                    break;
                value = value * 16 + digit;
            }
            if (j > i + 1)
                HexByte(std::uint8_t(value));
            return j;
        }
        if (Skipping())
            return i + 1;
        if (c == '*') {
            m_state.dest = Dest::Skip; // an optional destination this reader does not know
            return i + 1;
        }
        if (c == '\\' || c == '{' || c == '}') {
            TextByte(c);
            return i + 1;
        }
        if (SkipFallback())
            return i + 1;
        if (c == '\r' || c == '\n')
            EndParagraph();
        else if (c == '~')
            AppendText(QChar(QChar::Nbsp));
        else if (c == '_')
            AppendText(QChar(u'\u2011'));
        else if (c == '-')
            AppendText(QChar(QChar::SoftHyphen));
        return i + 1;
    }

    qsizetype ReadWord(qsizetype i)
    {
        const qsizetype n = m_data.size();
        qsizetype j = i;
        while (j < n && ((m_data[j] >= 'a' && m_data[j] <= 'z') || (m_data[j] >= 'A' && m_data[j] <= 'Z')))
            ++j;
        const Kw kw = j - i > kMaxWordLength
                          ? Kw::Unknown
                          : rtf::LookupWord(std::string_view(m_data.constData() + i, std::size_t(j - i)));
        bool negative = false;
        if (j + 1 < n && m_data[j] == '-' && m_data[j + 1] >= '0' && m_data[j + 1] <= '9') {
            negative = true;
            ++j;
        }
        bool hasNumber = false;
        qint64 number = 0;
        for (; j < n && m_data[j] >= '0' && m_data[j] <= '9'; ++j) {
            hasNumber = true;
            if (number <= kMaxNumber)
                number = number * 10 + (m_data[j] - '0');
        }
        const int value = int(std::min(number, kMaxNumber)) * (negative ? -1 : 1);
        if (j < n && m_data[j] == ' ')
            ++j;
        if (kw == Kw::Bin) { // binary data: skipped whatever the state
            const qsizetype data = std::max(qsizetype(value), qsizetype(0));
            const qsizetype here = std::min(data, n - j);
            m_binLeft = data - here;
            return j + here;
        }
        if (!Skipping() && !SkipFallback())
            Word(kw, hasNumber, value);
        return j;
    }

    void HexByte(std::uint8_t byte)
    {
        if (Skipping() || SkipFallback())
            return;
        if (m_state.dest == Dest::FontTable && m_fontName.size() < kMaxFontName)
            m_fontName.append(char(byte));
        else if (m_state.dest == Dest::Text)
            AppendText(rtf::Cp1252(byte));
    }

    void Word(Kw kw, bool hasNumber, int value)
    {
        if (kw != Kw::U && rtf::SymbolChar(kw) == 0)
            Flush(); // the text so far keeps the format it was read with
        rtf::State& s = m_state;
        if (s.dest == Dest::FontTable) {
            FontTableWord(kw, value);
            return;
        }
        if (s.dest == Dest::ColorTable) {
            if (kw == Kw::Red || kw == Kw::Green || kw == Kw::Blue) {
                (kw == Kw::Red ? m_red : kw == Kw::Green ? m_green : m_blue) = std::clamp(value, 0, 255);
                m_colorSet = true;
            }
            return;
        }
        switch (kw) {
        case Kw::SkipDest:
            s.dest = Dest::Skip;
            break;
        case Kw::FontTable:
            s.dest = Dest::FontTable, m_fontNumber = -1, m_fontName.clear();
            break;
        case Kw::ColorTable:
            s.dest = Dest::ColorTable, m_colorSet = false;
            break;
        case Kw::Deff:
            m_deff = value;
            break;
        case Kw::Deftab:
            if (value > 0)
                m_deftab = std::min(value, rtf::kMaxTwips);
            break;
        case Kw::Par:
            EndParagraph();
            break;
        case Kw::U:
            Unicode(value);
            break;
        default: // the group's properties, the words that stand for a character, unknown words
            if (const char16_t c = rtf::SymbolChar(kw))
                AppendText(QChar(c));
            else
                s.Apply(kw, hasNumber, value);
            break;
        }
    }

    void FontTableWord(Kw kw, int value)
    {
        if (kw == Kw::F)
            m_fontNumber = value, m_fontHint = QFont::AnyStyle;
        else if (kw == Kw::FRoman)
            m_fontHint = QFont::Serif;
        else if (kw == Kw::FModern)
            m_fontHint = QFont::TypeWriter;
        else if (kw == Kw::SkipDest)
            m_state.dest = Dest::Skip;
        // \fswiss, \fcharset, \fprq and the like change nothing here
    }

    void Unicode(int value)
    {
        const int code = value < 0 ? value + 65536 : value;
        m_ucSkip = m_state.uc;
        if (code == '\t')
            AppendText(QChar(u'\t'));
        else if (code >= 0x20 && code <= 0xFFFF)
            AppendText(QChar(char16_t(code)));
        else if (code > 0xFFFF && code <= 0x10FFFF) {
            const char32_t wide = char32_t(code);
            AppendText(QString::fromUcs4(&wide, 1));
        }
    }

    void CommitFont()
    {
        const QString name = rtf::DecodeBytes(m_fontName).trimmed();
        m_fontName.clear();
        if (name.isEmpty() || (m_fonts.size() >= kMaxFonts && !m_fonts.contains(m_fontNumber)))
            return;
        FontDef def;
        def.hint = rtf::FontHint(name, m_fontHint);
        const QString fallback = def.hint == QFont::TypeWriter ? m_fixed
                                 : def.hint == QFont::Serif    ? QStringLiteral("Serif")
                                                               : m_general;
        def.families = QStringList{name};
        if (name.compare(fallback, Qt::CaseInsensitive) != 0)
            def.families.append(fallback);
        m_fonts.insert(m_fontNumber, def);
        m_fontHint = QFont::AnyStyle;
    }

    void CommitColor()
    {
        if (m_colors.size() < kMaxColors)
            m_colors.append(m_colorSet ? QColor(m_red, m_green, m_blue) : QColor());
        m_red = m_green = m_blue = 0;
        m_colorSet = false;
    }

    // Text produced by a control word: ends the run of raw bytes and follows it.
    void AppendText(const QString& text)
    {
        if (m_state.dest != Dest::Text)
            return;
        DecodeRaw();
        m_text.append(text);
    }
    void AppendText(QChar c) { AppendText(QString(c)); }

    void DecodeRaw()
    {
        if (m_raw.isEmpty())
            return;
        m_text.append(rtf::DecodeBytes(m_raw));
        m_raw.clear();
    }

    // Puts the text read so far into the document with the state's character format.
    void Flush()
    {
        DecodeRaw();
        if (m_text.isEmpty())
            return;
        const QString text = rtf::Sanitized(m_text);
        m_text.clear();
        if (text.isEmpty())
            return;
        OpenPendingParagraph();
        m_cursor.insertText(text, CharFormat());
    }

    void OpenPendingParagraph()
    {
        if (!m_paragraphPending)
            return;
        m_cursor.insertBlock(m_state.BlockFormat(), CharFormat());
        m_paragraphPending = false;
    }

    // \par: the paragraph takes the properties in force at its end. The next paragraph is
    // opened only when something follows, so the last \par leaves no empty paragraph.
    void EndParagraph()
    {
        Flush();
        OpenPendingParagraph();
        m_cursor.setBlockFormat(m_state.BlockFormat());
        if (m_cursor.block().length() <= 1)
            m_cursor.setBlockCharFormat(CharFormat());
        m_paragraphPending = true;
    }

    const FontDef& Font(int number) const
    {
        auto it = m_fonts.constFind(number < 0 ? m_deff : number);
        if (it == m_fonts.constEnd())
            it = m_fonts.constFind(m_deff);
        return it == m_fonts.constEnd() ? m_defaultFont : *it;
    }

    QTextCharFormat CharFormat() const
    {
        const FontDef& font = Font(m_state.font);
        QTextCharFormat format;
        format.setFontFamilies(font.families);
        format.setFontStyleHint(font.hint);
        format.setFontPointSize(m_state.halfPoints / 2.0 * m_sizeFactor);
        format.setFontWeight(m_state.bold ? QFont::Bold : QFont::Normal);
        format.setFontItalic(m_state.italic);
        format.setFontUnderline(m_state.underline);
        format.setFontStrikeOut(m_state.strike);
        if (m_state.color >= 0 && m_state.color < m_colors.size() && m_colors[m_state.color].isValid())
            format.setForeground(m_colors[m_state.color]);
        return format;
    }

    QByteArrayView m_data; // the piece being read
    QTextDocument& m_document;
    QTextCursor m_cursor;
    const QString m_general;
    const QString m_fixed;
    const FontDef m_defaultFont{QStringList{m_general}, QFont::SansSerif};

    rtf::State m_state;
    std::vector<rtf::State> m_stack;
    qsizetype m_overflow = 0; // groups open beyond kMaxDepth
    int m_ucSkip = 0;         // fallback characters still to skip after \u
    bool m_paragraphPending = false;
    bool m_ended = false;    // the outermost group has closed: the rest is not read
    qsizetype m_binLeft = 0; // bytes of \bin data still to skip in the next piece
    QByteArray m_raw;        // text bytes not yet decoded
    QString m_text;          // decoded text not yet in the document

    QHash<int, FontDef> m_fonts;
    int m_deff = 0;
    int m_deftab = kDefaultTabTwips;
    int m_fontNumber = -1;
    QFont::StyleHint m_fontHint = QFont::AnyStyle;
    QByteArray m_fontName;

    QList<QColor> m_colors;
    int m_red = 0, m_green = 0, m_blue = 0;
    bool m_colorSet = false;
};

} // namespace rtf

RtfAppender::RtfAppender(QTextDocument& document, double sizeFactor)
    : m_document(document), m_undo(document.isUndoRedoEnabled())
{
    m_document.setUndoRedoEnabled(false);
    QTextCursor(&m_document).beginEditBlock();
    try {
        m_parser = std::make_unique<rtf::Parser>(m_document, std::clamp(sizeFactor, 0.1, 10.0));
    } catch (...) {
        // Out of memory: nothing is read.
    }
}

RtfAppender::~RtfAppender()
{
    Finish();
}

void RtfAppender::Read(QByteArrayView rtf)
{
    if (!m_parser)
        return;
    try {
        m_parser->Run(rtf);
    } catch (...) {
        m_parser.reset(); // out of memory: the document keeps what was read
    }
}

bool RtfAppender::AtRest() const
{
    return m_parser && m_parser->AtRest();
}

void RtfAppender::Finish()
{
    if (m_finished)
        return;
    m_finished = true;
    if (m_parser) {
        try {
            m_parser->Finish();
        } catch (...) {
        }
        m_parser.reset();
    }
    QTextCursor(&m_document).endEditBlock();
    m_document.setUndoRedoEnabled(m_undo);
}

void ReadRtf(const QByteArray& rtf, QTextDocument& document, double sizeFactor)
{
    const bool undo = document.isUndoRedoEnabled();
    document.setUndoRedoEnabled(false);
    document.clear();
    {
        RtfAppender reading(document, sizeFactor);
        reading.Read(rtf);
    }
    document.setUndoRedoEnabled(undo);
    document.setModified(false);
}

bool LoadRtfFile(const QString& path, QTextDocument& document, QString* error, double sizeFactor)
{
    document.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error != nullptr)
            *error = file.errorString();
        return false;
    }
    if (file.size() > kMaxRtfFileSize) {
        if (error != nullptr)
            *error = QStringLiteral("The file is larger than %1 bytes.").arg(kMaxRtfFileSize);
        return false;
    }
    const QByteArray bytes = file.read(kMaxRtfFileSize + 1);
    if (bytes.size() > kMaxRtfFileSize) {
        if (error != nullptr)
            *error = QStringLiteral("The file is larger than %1 bytes.").arg(kMaxRtfFileSize);
        return false;
    }
    ReadRtf(bytes, document, sizeFactor);
    if (error != nullptr)
        error->clear();
    return true;
}
