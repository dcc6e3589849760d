// Fuzzes the RTF reader: any bytes, read as a document and laid out as the viewer would,
// must neither crash nor hang, and must leave only text the reader itself made: no control
// characters, no characters the document keeps for its own structure, no unpaired
// surrogates, and no more paragraphs than there were bytes.
#include "widgets/RtfReader.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextDocument>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

bool IsClean(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < 0x20 && c != u'\t')
            return false;
        if ((c >= 0x7F && c < 0xA0) || c == 0xFDD0 || c == 0xFDD1 || c == 0xFFFC || c >= 0xFFFE)
            return false;
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 >= text.size() || !QChar::isLowSurrogate(text[i + 1].unicode()))
                return false;
            ++i;
        } else if (QChar::isLowSurrogate(c)) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    // The reader asks the platform for the system fonts, as it does in the program.
    qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("offscreen"));
    static int argc = 1;
    static char name[] = "fuzz_rtfreader";
    static char* argv[] = {name, nullptr};
    static QGuiApplication* app = new QGuiApplication(argc, argv); // lives until the process ends
    Q_UNUSED(app);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray rtf = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QTextDocument document;
    ReadRtf(rtf, document);
    document.setTextWidth(400);
    (void)document.size(); // lays the document out
    QString text;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        text += block.text();
    if (!IsClean(text) || document.blockCount() > qsizetype(size) + 1 || document.isModified())
        std::abort();
    // The program's event loop runs between documents; Qt's font cache frees the fonts no
    // longer used from its timer there.
    QCoreApplication::processEvents();
    return 0;
}
