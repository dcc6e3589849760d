#include "widgets/RtfSyntax.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

namespace rtf {

namespace {

struct Keyword
{
    std::string_view name;
    Kw kw;
};

// Sorted by name for the binary search in LookupWord.
constexpr std::array kKeywords = {
    Keyword{"author", Kw::SkipDest},
    Keyword{"b", Kw::Bold},
    Keyword{"bin", Kw::Bin},
    Keyword{"blue", Kw::Blue},
    Keyword{"bullet", Kw::Bullet},
    Keyword{"buptim", Kw::SkipDest},
    Keyword{"cf", Kw::Cf},
    Keyword{"colortbl", Kw::ColorTable},
    Keyword{"comment", Kw::SkipDest},
    Keyword{"creatim", Kw::SkipDest},
    Keyword{"datastore", Kw::SkipDest},
    Keyword{"deff", Kw::Deff},
    Keyword{"deftab", Kw::Deftab},
    Keyword{"doccomm", Kw::SkipDest},
    Keyword{"emdash", Kw::Emdash},
    Keyword{"emspace", Kw::Emspace},
    Keyword{"endash", Kw::Endash},
    Keyword{"enspace", Kw::Enspace},
    Keyword{"f", Kw::F},
    Keyword{"fi", Kw::Fi},
    Keyword{"filetbl", Kw::SkipDest},
    Keyword{"fldinst", Kw::SkipDest},
    Keyword{"fmodern", Kw::FModern},
    Keyword{"fonttbl", Kw::FontTable},
    Keyword{"footer", Kw::SkipDest},
    Keyword{"footerf", Kw::SkipDest},
    Keyword{"footerl", Kw::SkipDest},
    Keyword{"footerr", Kw::SkipDest},
    Keyword{"footnote", Kw::SkipDest},
    Keyword{"froman", Kw::FRoman},
    Keyword{"fs", Kw::Fs},
    Keyword{"generator", Kw::SkipDest},
    Keyword{"green", Kw::Green},
    Keyword{"header", Kw::SkipDest},
    Keyword{"headerf", Kw::SkipDest},
    Keyword{"headerl", Kw::SkipDest},
    Keyword{"headerr", Kw::SkipDest},
    Keyword{"i", Kw::Italic},
    Keyword{"info", Kw::SkipDest},
    Keyword{"keywords", Kw::SkipDest},
    Keyword{"latentstyles", Kw::SkipDest},
    Keyword{"ldblquote", Kw::Ldblquote},
    Keyword{"li", Kw::Li},
    Keyword{"line", Kw::Line},
    Keyword{"listoverridetable", Kw::SkipDest},
    Keyword{"listtable", Kw::SkipDest},
    Keyword{"lquote", Kw::Lquote},
    Keyword{"object", Kw::SkipDest},
    Keyword{"operator", Kw::SkipDest},
    Keyword{"page", Kw::Par},
    Keyword{"par", Kw::Par},
    Keyword{"pard", Kw::Pard},
    Keyword{"pict", Kw::SkipDest},
    Keyword{"plain", Kw::Plain},
    Keyword{"printim", Kw::SkipDest},
    Keyword{"private", Kw::SkipDest},
    Keyword{"qc", Kw::Qc},
    Keyword{"qj", Kw::Qj},
    Keyword{"ql", Kw::Ql},
    Keyword{"qr", Kw::Qr},
    Keyword{"rdblquote", Kw::Rdblquote},
    Keyword{"red", Kw::Red},
    Keyword{"revtbl", Kw::SkipDest},
    Keyword{"revtim", Kw::SkipDest},
    Keyword{"ri", Kw::Ri},
    Keyword{"rquote", Kw::Rquote},
    Keyword{"rsidtbl", Kw::SkipDest},
    Keyword{"sa", Kw::Sa},
    Keyword{"sb", Kw::Sb},
    Keyword{"sect", Kw::Par},
    Keyword{"strike", Kw::Strike},
    Keyword{"striked", Kw::Strike},
    Keyword{"stylesheet", Kw::SkipDest},
    Keyword{"subject", Kw::SkipDest},
    Keyword{"tab", Kw::Tab},
    Keyword{"themedata", Kw::SkipDest},
    Keyword{"title", Kw::SkipDest},
    Keyword{"tqc", Kw::Tqc},
    Keyword{"tqdec", Kw::Tqdec},
    Keyword{"tqr", Kw::Tqr},
    Keyword{"tx", Kw::Tx},
    Keyword{"u", Kw::U},
    Keyword{"uc", Kw::Uc},
    Keyword{"ul", Kw::Underline},
    Keyword{"uld", Kw::Underline},
    Keyword{"uldash", Kw::Underline},
    Keyword{"uldashd", Kw::Underline},
    Keyword{"uldashdd", Kw::Underline},
    Keyword{"uldb", Kw::Underline},
    Keyword{"ulhwave", Kw::Underline},
    Keyword{"ulldash", Kw::Underline},
    Keyword{"ulnone", Kw::UnderlineNone},
    Keyword{"ulth", Kw::Underline},
    Keyword{"ulthd", Kw::Underline},
    Keyword{"ulthdash", Kw::Underline},
    Keyword{"ulw", Kw::Underline},
    Keyword{"ulwave", Kw::Underline},
    Keyword{"xmlnstbl", Kw::SkipDest},
};

constexpr bool ByName(const Keyword& a, const Keyword& b)
{
    return a.name < b.name;
}
static_assert(std::is_sorted(kKeywords.begin(), kKeywords.end(), ByName), "keep kKeywords sorted");

// Code page 1252's bytes 0x80-0x9F; the five it leaves undefined read as U+FFFD.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178,
};

bool IsOneOf(const QString& name, std::initializer_list<QStringView> names)
{
    return std::any_of(names.begin(), names.end(), [&name](QStringView candidate) {
        return name.compare(candidate, Qt::CaseInsensitive) == 0;
    });
}

int Twips(int value)
{
    return std::clamp(value, -kMaxTwips, kMaxTwips);
}

} // namespace

void State::Apply(Kw kw, bool hasNumber, int value)
{
    const bool on = !hasNumber || value != 0;
    switch (kw) {
    case Kw::Plain:
        font = -1, halfPoints = kDefaultHalfPoints, color = -1;
        bold = italic = underline = strike = false;
        break;
    case Kw::Pard:
        align = Qt::AlignLeft, left = right = first = before = after = 0;
        tabs.clear(), nextTab = QTextOption::LeftTab;
        break;
    case Kw::F:
        font = value;
        break;
    case Kw::Fs:
        halfPoints = hasNumber ? std::clamp(value, kMinHalfPoints, kMaxHalfPoints) : kDefaultHalfPoints;
        break;
    case Kw::Bold:
        bold = on;
        break;
    case Kw::Italic:
        italic = on;
        break;
    case Kw::Underline:
        underline = on;
        break;
    case Kw::UnderlineNone:
        underline = false;
        break;
    case Kw::Strike:
        strike = on;
        break;
    case Kw::Cf:
        color = value;
        break;
    case Kw::Uc:
        uc = std::clamp(value, 0, 16);
        break;
    case Kw::Ql:
        align = Qt::AlignLeft;
        break;
    case Kw::Qr:
        align = Qt::AlignRight;
        break;
    case Kw::Qc:
        align = Qt::AlignHCenter;
        break;
    case Kw::Qj:
        align = Qt::AlignJustify;
        break;
    case Kw::Li:
        left = Twips(value);
        break;
    case Kw::Ri:
        right = Twips(value);
        break;
    case Kw::Fi:
        first = Twips(value);
        break;
    case Kw::Sb:
        before = Twips(value);
        break;
    case Kw::Sa:
        after = Twips(value);
        break;
    case Kw::Tqr:
        nextTab = QTextOption::RightTab;
        break;
    case Kw::Tqc:
        nextTab = QTextOption::CenterTab;
        break;
    case Kw::Tqdec:
        nextTab = QTextOption::DelimiterTab;
        break;
    case Kw::Tx:
        AddTabStop(value);
        break;
    default:
        break;
    }
}

void State::AddTabStop(int twips)
{
    const QTextOption::TabType type = std::exchange(nextTab, QTextOption::LeftTab);
    if (tabs.size() >= kMaxTabStops)
        return;
    QTextOption::Tab tab(std::clamp(twips, 0, kMaxTwips) / kTwipsPerPixel, type);
    if (type == QTextOption::DelimiterTab)
        tab.delimiter = QLatin1Char('.');
    const auto at = std::lower_bound(tabs.begin(), tabs.end(), tab.position,
                                     [](const QTextOption::Tab& t, qreal p) { return t.position < p; });
    tabs.insert(at, tab);
}

QTextBlockFormat State::BlockFormat() const
{
    QTextBlockFormat format;
    format.setAlignment(align);
    format.setLeftMargin(left / kTwipsPerPixel);
    format.setRightMargin(right / kTwipsPerPixel);
    format.setTextIndent(first / kTwipsPerPixel);
    format.setTopMargin(before / kTwipsPerPixel);
    format.setBottomMargin(after / kTwipsPerPixel);
    if (!tabs.isEmpty())
        format.setTabPositions(tabs);
    return format;
}

Kw LookupWord(std::string_view letters)
{
    const auto it =
        std::lower_bound(kKeywords.begin(), kKeywords.end(), Keyword{letters, Kw::Unknown}, ByName);
    return it != kKeywords.end() && it->name == letters ? it->kw : Kw::Unknown;
}

char16_t SymbolChar(Kw kw)
{
    switch (kw) {
    case Kw::Tab:
        return u'\t';
    case Kw::Line:
        return QChar::LineSeparator;
    case Kw::Bullet:
        return u'\u2022';
    case Kw::Emdash:
        return u'\u2014';
    case Kw::Endash:
        return u'\u2013';
    case Kw::Emspace:
        return u'\u2003';
    case Kw::Enspace:
        return u'\u2002';
    case Kw::Lquote:
        return u'\u2018';
    case Kw::Rquote:
        return u'\u2019';
    case Kw::Ldblquote:
        return u'\u201C';
    case Kw::Rdblquote:
        return u'\u201D';
    default:
        return 0;
    }
}

QFont::StyleHint FontHint(const QString& name, QFont::StyleHint declared)
{
    if (IsOneOf(name,
                {u"Courier", u"Courier New", u"Fixedsys", u"Terminal", u"Lucida Console", u"Consolas"}) ||
        declared == QFont::TypeWriter)
        return QFont::TypeWriter;
    if (IsOneOf(name, {u"MS Serif", u"Times New Roman", u"Times"}) || declared == QFont::Serif)
        return QFont::Serif;
    return QFont::SansSerif;
}

QChar Cp1252(std::uint8_t byte)
{
    return byte >= 0x80 && byte < 0xA0 ? QChar(kCp1252High[byte - 0x80]) : QChar(char16_t(byte));
}

bool IsValidUtf8(const QByteArray& bytes)
{
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        const auto c = std::uint8_t(bytes[i]);
        if (c < 0x80) {
            ++i;
            continue;
        }
        qsizetype length = 0;
        char32_t code = 0;
        char32_t least = 0;
        if ((c & 0xE0) == 0xC0) {
            length = 2, code = c & 0x1F, least = 0x80;
        } else if ((c & 0xF0) == 0xE0) {
            length = 3, code = c & 0x0F, least = 0x800;
        } else if ((c & 0xF8) == 0xF0) {
            length = 4, code = c & 0x07, least = 0x10000;
        } else {
            return false;
        }
        if (n - i < length)
            return false;
        for (qsizetype k = 1; k < length; ++k) {
            const auto d = std::uint8_t(bytes[i + k]);
            if ((d & 0xC0) != 0x80)
                return false;
            code = (code << 6) | (d & 0x3F);
        }
        if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

QString DecodeBytes(const QByteArray& bytes)
{
    if (IsValidUtf8(bytes))
        return QString::fromUtf8(bytes);
    QString text;
    text.reserve(bytes.size());
    for (const char c : bytes)
        text.append(Cp1252(std::uint8_t(c)));
    return text;
}

namespace {

// Whether a character is kept as it is: a tab, printable ASCII, or a character from U+00A0 on
// that is none of the document's own, no surrogate and no paragraph separator.
bool KeptAsIs(char16_t c)
{
    if (c < 0x7F)
        return c >= 0x20 || c == u'\t';
    return c >= 0xA0 && !QChar::isSurrogate(c) && c != 0xFDD0 && c != 0xFDD1 && c != 0xFFFC && c < 0xFFFE &&
           c != QChar::ParagraphSeparator;
}

} // namespace

bool IsSanitized(QStringView text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return KeptAsIs(c.unicode()); });
}

QString Sanitized(const QString& text)
{
    // Most text has nothing to change: it is kept, shared, without a copy. A surrogate pair
    // is looked at by the full pass below.
    if (IsSanitized(text))
        return text;
    QString out;
    out.reserve(text.size());
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = text[i].unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(text[i + 1].unicode())) {
            out.append(text[i]);
            out.append(text[++i]);
        } else if (QChar::isSurrogate(c) || c == 0xFDD0 || c == 0xFDD1 || c == 0xFFFC || c >= 0xFFFE) {
            out.append(QChar(QChar::ReplacementCharacter));
        } else if (c == QChar::ParagraphSeparator) {
            out.append(QChar(QChar::LineSeparator));
        } else if (c == u'\t' || (c >= 0x20 && c < 0x7F) || c >= 0xA0) {
            out.append(text[i]);
        }
    }
    return out;
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace rtf
