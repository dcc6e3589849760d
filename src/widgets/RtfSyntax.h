#pragma once

#include <QByteArray>
#include <QChar>
#include <QFont>
#include <QList>
#include <QString>
#include <QTextBlockFormat>
#include <QTextOption>

#include <cstdint>
#include <string_view>

// The pieces of the RTF reader (RtfReader.h) that know no document: the control words it
// acts on, the properties a group keeps, the decoding of text bytes and the fallback of the
// fonts.
namespace rtf {

inline constexpr int kDefaultHalfPoints = 24;  // 12 pt
inline constexpr int kMinHalfPoints = 2;       // 1 pt
inline constexpr int kMaxHalfPoints = 400;     // 200 pt
inline constexpr int kMaxTwips = 200000;       // indents, spacing and tab stops (about 3.5 m)
inline constexpr qsizetype kMaxTabStops = 64;  // tab stops of one paragraph
inline constexpr double kTwipsPerPixel = 15.0; // 1440 twips an inch, 96 pixels an inch

// Where the text of a group goes.
enum class Dest : std::uint8_t
{
    Text,
    FontTable,
    ColorTable,
    Skip
};

// The control words the reader acts on; every other word is Unknown.
enum class Kw : std::uint8_t
{
    Unknown,
    SkipDest,
    FontTable,
    ColorTable,
    F,
    FRoman,
    FModern,
    Red,
    Green,
    Blue,
    Deff,
    Deftab,
    Plain,
    Pard,
    Par,
    Line,
    Tab,
    Fs,
    Bold,
    Italic,
    Underline,
    UnderlineNone,
    Strike,
    Cf,
    Uc,
    U,
    Bin,
    Ql,
    Qr,
    Qc,
    Qj,
    Li,
    Ri,
    Fi,
    Sb,
    Sa,
    Tx,
    Tqr,
    Tqc,
    Tqdec,
    Bullet,
    Emdash,
    Endash,
    Emspace,
    Enspace,
    Lquote,
    Rquote,
    Ldblquote,
    Rdblquote,
};

// Everything a group saves and restores: its destination, character and paragraph
// properties. Font and colour are numbers in the document's tables.
struct State
{
    Dest dest = Dest::Text;
    int font = -1; // -1: the default font (\deff)
    int halfPoints = kDefaultHalfPoints;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;
    int color = -1; // -1: automatic
    int uc = 1;     // fallback characters after \u
    Qt::Alignment align = Qt::AlignLeft;
    int left = 0, right = 0, first = 0, before = 0, after = 0; // twips
    QList<QTextOption::Tab> tabs;
    QTextOption::TabType nextTab = QTextOption::LeftTab;

    // Applies a word that changes a character or paragraph property (\plain, \pard, \b,
    // \fs, \f, \cf, \uc, \ql, \li, \tx...); other words change nothing. Numbers are
    // clamped to sane ranges.
    void Apply(Kw kw, bool hasNumber, int value);
    // The paragraph properties as a text block format, in pixels.
    QTextBlockFormat BlockFormat() const;

private:
    void AddTabStop(int twips);
};

// The word for a control word's letters ("par", "fs"); Unknown for any other.
Kw LookupWord(std::string_view letters);

// The character a word stands for (\tab, \line, \emdash, \lquote...); 0 for other words.
char16_t SymbolChar(Kw kw);

// How a font of the font table is drawn when it is not installed: TypeWriter for the fixed
// fonts (or a font declared \fmodern), Serif for the serif fonts (or one declared \froman),
// SansSerif for every other, the system fonts "MS Sans Serif" and "System" among them.
QFont::StyleHint FontHint(const QString& name, QFont::StyleHint declared);

// One byte in code page 1252; the five bytes it leaves undefined read as U+FFFD.
QChar Cp1252(std::uint8_t byte);

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF, nothing cut off.
bool IsValidUtf8(const QByteArray& bytes);

// A run of text bytes: UTF-8 where the whole run is valid UTF-8, else code page 1252.
QString DecodeBytes(const QByteArray& bytes);

// Text made safe for a text document: control characters go, the characters the document
// uses for its frames and objects and unpaired surrogates become U+FFFD, and a paragraph
// separator becomes a line separator, so that only the reader makes paragraphs.
QString Sanitized(const QString& text);
// Whether Sanitized keeps a text as it is (it then holds no surrogate either).
bool IsSanitized(QStringView text);

// The value of a hexadecimal digit, or -1.
int HexValue(char c);

} // namespace rtf
