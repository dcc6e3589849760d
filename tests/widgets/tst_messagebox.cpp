#include "widgets/MessageBox.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

class TestMessageBox : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { MessageBox::SetTestMode(false); }

    void testModeRecordsAndTakesTheQueuedAnswer()
    {
        MessageBox::SetTestMode(true);
        MessageBox::SetNextAnswer(MessageBox::Answer::Yes);
        QCOMPARE(MessageBox::AskYesNo(nullptr, QStringLiteral("One\rTwo"), QStringLiteral("Exit Tarrowind")),
                 MessageBox::Answer::Yes);
        // Without a queued answer a question takes its default button: No.
        QCOMPARE(MessageBox::AskYesNo(nullptr, QStringLiteral("Again?"), QStringLiteral("Tarrowind")),
                 MessageBox::Answer::No);
        MessageBox::Notice(nullptr, QStringLiteral("Note"));
        const auto shown = MessageBox::Shown();
        QCOMPARE(shown.size(), 3);
        QCOMPARE(shown[0].Text, QStringLiteral("One\rTwo"));
        QCOMPARE(shown[0].Title, QStringLiteral("Exit Tarrowind"));
        QCOMPARE(shown[0].ButtonSet, MessageBox::Buttons::YesNo);
        QCOMPARE(shown[0].IconKind, MessageBox::Icon::Exclamation);
        QVERIFY(shown[0].DefaultSecond);
        QCOMPARE(shown[2].Title, QStringLiteral("Tarrowind"));
        QCOMPARE(shown[2].ButtonSet, MessageBox::Buttons::OkOnly);
    }

    void realBoxShowsEachCarriageReturnAsALineBreakWithNoAsDefault()
    {
        QString seenText;
        QString seenDefault;
        QString seenTitle;
        QTimer::singleShot(50, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            seenText = box->text();
            seenTitle = box->windowTitle();
            seenDefault = box->defaultButton() ? box->defaultButton()->text() : QString();
            box->button(QMessageBox::Yes)->click();
        });
        const auto answer = MessageBox::AskYesNo(nullptr,
                                                 QStringLiteral("You have alarms that are set\rDo you wish "
                                                                "to continue ?"),
                                                 QStringLiteral("Exit Tarrowind"));
        QCOMPARE(answer, MessageBox::Answer::Yes);
        QCOMPARE(seenText, QStringLiteral("You have alarms that are set\nDo you wish to continue ?"));
        QCOMPARE(seenTitle, QStringLiteral("Exit Tarrowind"));
        QVERIFY2(seenDefault.contains(QStringLiteral("No")), qPrintable(seenDefault));
    }

    void openBoxIsDismissedWhenTheProgramEnds()
    {
        QTimer::singleShot(50, this, [] { MessageBox::DismissOpen(); });
        const auto answer =
            MessageBox::AskYesNo(nullptr, QStringLiteral("Still there?"), QStringLiteral("Tarrowind"));
        QCOMPARE(answer, MessageBox::Answer::No);
    }
};

QTEST_MAIN(TestMessageBox)
#include "tst_messagebox.moc"
