#include "widgets/FileDialog.h"

#include <QFileDialog>

namespace {
struct TestState
{
    bool On = false;
    QList<QString> Answers;
    int Asked = 0;
};

TestState& Test()
{
    static TestState state;
    return state;
}
} // namespace

QString FileDialog::GetOpenFileName(QWidget* parent, const QString& title, const QString& start,
                                    const QString& filter)
{
    if (Test().On) {
        ++Test().Asked;
        return Test().Answers.isEmpty() ? QString() : Test().Answers.takeFirst();
    }
    return QFileDialog::getOpenFileName(parent, title, start, filter);
}

void FileDialog::SetTestMode(bool on)
{
    Test() = TestState{};
    Test().On = on;
}

void FileDialog::SetNextAnswer(const QString& path)
{
    Test().Answers.append(path);
}

int FileDialog::Asked()
{
    return Test().Asked;
}
