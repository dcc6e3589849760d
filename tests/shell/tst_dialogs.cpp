#include "Desk.h"
#include "alarms/frmAlarm.h"
#include "widgets/FileDialog.h"
#include "widgets/MessageBox.h"
#include "widgets/frmPrinterSetup.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTimer>

#include <functional>

namespace {

const QByteArray OneAlarm =
    "[General]\nLogOn=1\nLogSafetyOnly=False\n[Alarms]\nCount=1\nMessage%201=Convoy\nExpire%201=10:15\n"
    "AlarmSet%201=True\n";

// Clicks a button the way the window system delivers a click: a window that a modal
// dialog blocks does not get it.
void ClickThroughTheWindowSystem(QPushButton* button)
{
    QWidget* window = button->window();
    QVERIFY(window->windowHandle());
    const QPoint at = button->mapTo(window, button->rect().center());
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, at);
}

// Closes whatever dialog is still open, so that a failing test ends.
void CloseOpenDialogs()
{
    for (QWidget* top : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QDialog*>(top); dialog && dialog->isVisible())
            dialog->reject();
    MessageBox::DismissOpen();
}

} // namespace

// With any dialog of the main window open, an alarm that goes off can be answered at once.
class TestDialogs : public QObject
{
    Q_OBJECT
private slots:
    void alarmWindowCanBeAnsweredWhileADialogIsOpen_data()
    {
        QTest::addColumn<QString>("dialog");
        QTest::newRow("a question") << QStringLiteral("question");
        QTest::newRow("the tables dialog") << QStringLiteral("tables");
        QTest::newRow("the printer choice") << QStringLiteral("printer");
        QTest::newRow("the file dialog") << QStringLiteral("file");
    }

    void alarmWindowCanBeAnsweredWhileADialogIsOpen()
    {
        QFETCH(QString, dialog);
        Desk desk(OneAlarm);
        desk.clock.Set(Desk::Monday, QTime(10, 14, 30));
        QVERIFY(desk.window->Load());
        desk.window->show();
        QVERIFY(QTest::qWaitForWindowExposed(desk.window.get()));

        bool dialogWasOpen = false;
        bool answered = false;
        QTimer::singleShot(100, desk.window.get(), [&] {
            dialogWasOpen = QApplication::activeModalWidget() != nullptr;
            desk.window->CheckAlarms(10, 15); // the alarm goes off under the dialog
            frmAlarm* alarm = desk.Windows().AlarmWindow(1);
            if (alarm && QTest::qWaitForWindowExposed(alarm)) {
                ClickThroughTheWindowSystem(alarm->findChild<QPushButton*>(QStringLiteral("cmdStop")));
                answered = desk.Alarms().AlarmCount == 0;
            }
            CloseOpenDialogs();
        });
        QTimer::singleShot(5000, desk.window.get(), [] { CloseOpenDialogs(); });

        QString chosen;
        if (dialog == u"question")
            MessageBox::AskYesNo(desk.window.get(), QStringLiteral("Continue?"), QStringLiteral("Tarrowind"));
        else if (dialog == u"tables")
            desk.window->cmdTables_Click();
        else if (dialog == u"printer")
            frmPrinterSetup::Ask(desk.window.get(), chosen);
        else
            FileDialog::GetOpenFileName(desk.window.get(), QStringLiteral("Alarm"), QString(),
                                        QStringLiteral("Wave (*.Wav *.wav)"));
        QVERIFY(dialogWasOpen);
        QVERIFY2(answered, "the alarm window's Stop did not reach it while the dialog was open");
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
