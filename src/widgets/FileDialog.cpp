#include "widgets/FileDialog.h"

#include "widgets/TestAnswers.h"

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
    return QFileDialog::getOpenFileName(parent, title, start, filter);
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
