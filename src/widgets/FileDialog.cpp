#include "widgets/FileDialog.h"

#include "widgets/TestAnswers.h"
#include "widgets/WindowModal.h"

#include <QFileDialog>

namespace {
TestAnswers<QString>& Test()
{
    static TestAnswers<QString> answers;
    return answers;
}
} // namespace

QString FileDialog::GetOpenFileName(QWidget* parent, const QString& title, const QString& start,
                                    const QString& filter)
{
    if (Test().On())
        return Test().Take().value_or(QString());
    QFileDialog dialog(parent, title, start, filter);
    // Qt's own dialog: a desktop's native one may need an event loop the program does not run.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (ExecWindowModal(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().constFirst();
}

void FileDialog::SetTestMode(bool on)
{
    Test().Reset(on);
}

void FileDialog::SetNextAnswer(const QString& path)
{
    Test().Queue(path);
}

int FileDialog::Asked()
{
    return Test().Asked();
}
