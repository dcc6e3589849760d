#include "widgets/ColourDialog.h"

#include "widgets/Colours.h"
#include "widgets/TestAnswers.h"
#include "widgets/WindowModal.h"

#include <QColorDialog>
#include <QFontDialog>

namespace {

TestAnswers<std::optional<ColourValue>>& ColourTest()
{
    static TestAnswers<std::optional<ColourValue>> answers;
    return answers;
}

TestAnswers<std::optional<QFont>>& FontTest()
{
    static TestAnswers<std::optional<QFont>> answers;
    return answers;
}

} // namespace

std::optional<ColourValue> ColourDialog::GetColour(QWidget* parent, ColourValue start)
{
    if (ColourTest().On())
        return ColourTest().Take().value_or(std::nullopt);
    QColorDialog dialog(ToQColor(start), parent);
    // Qt's own dialog: a desktop's native one may need an event loop the program does not run.
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    if (ExecWindowModal(dialog) != QDialog::Accepted)
        return std::nullopt;
    const QColor chosen = dialog.selectedColor();
    return ColourValue(chosen.red() + 256 * chosen.green() + 65536 * chosen.blue());
}

void ColourDialog::SetTestMode(bool on)
{
    ColourTest().Reset(on);
}

void ColourDialog::SetNextAnswer(std::optional<ColourValue> colour)
{
    ColourTest().Queue(colour);
}

int ColourDialog::Asked()
{
    return ColourTest().Asked();
}

std::optional<QFont> FontDialog::GetFont(QWidget* parent, const QFont& start)
{
    if (FontTest().On())
        return FontTest().Take().value_or(std::nullopt);
    QFontDialog dialog(start, parent);
    dialog.setOption(QFontDialog::DontUseNativeDialog);
    if (ExecWindowModal(dialog) != QDialog::Accepted)
        return std::nullopt;
    return dialog.selectedFont();
}

void FontDialog::SetTestMode(bool on)
{
    FontTest().Reset(on);
}

void FontDialog::SetNextAnswer(std::optional<QFont> font)
{
    FontTest().Queue(font);
}

int FontDialog::Asked()
{
    return FontTest().Asked();
}
