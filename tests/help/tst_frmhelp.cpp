#include "Desk.h"
#include "help/frmHelp.h"
#include "widgets/MessageBox.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTextEdit>
#include <QtTest>

namespace {

// The user guide as it is shipped.
QByteArray ShippedGuide()
{
    QFile file(QStringLiteral(TW_HELP_FILE));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

frmHelp* OpenHelpWindow()
{
    for (QWidget* top : QApplication::topLevelWidgets())
        if (auto* help = qobject_cast<frmHelp*>(top); help && help->isVisible())
            return help;
    return nullptr;
}

} // namespace

// The help window, the help picture of the main window, and the guide that is shipped.
class TestFrmHelp : public QObject
{
    Q_OBJECT
private slots:
    void init() { MessageBox::SetTestMode(true); }
    void cleanup()
    {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (qobject_cast<frmHelp*>(top))
                delete top;
        MessageBox::SetTestMode(false);
    }

    void helpOfTheCurrentFolderIsReadByItsBareName()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString before = QDir::currentPath();
        QDir::setCurrent(folder.path());
        TestEnvironment::WriteFile(QDir(folder.path()).filePath(QStringLiteral("Help.RTF")),
                                   "{\\rtf1\\ansi Our site's own \\b instructions\\b0 .\\par}");
        frmHelp help;
        const bool loaded = help.Form_Load();
        QDir::setCurrent(before);
        QVERIFY(loaded);
        QCOMPARE(help.Document()->toPlainText(), QStringLiteral("Our site's own instructions."));
        QCOMPARE(MessageBox::Shown().size(), 0);
        QCOMPARE(help.windowTitle(), QStringLiteral("Tarrowind Help"));
    }

    void startedFromAnotherFolderTheBareNameCannotBeOpened()
    {
        QTemporaryDir folder;
        const QString before = QDir::currentPath();
        QDir::setCurrent(folder.path());
        frmHelp help;
        const bool loaded = help.Form_Load();
        QDir::setCurrent(before);
        QVERIFY(!loaded);
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown().at(0).Text,
                 QStringLiteral("Can't open Help.RTF\r2-No such file or directory"));
        QCOMPARE(MessageBox::Shown().at(0).Title, QStringLiteral("Tarrowind"));
        QCOMPARE(int(MessageBox::Shown().at(0).ButtonSet), int(MessageBox::Buttons::OkOnly));
    }

    void helpPictureShowsTheInstalledGuideFromAnyFolder()
    {
        Desk desk;
        TestEnvironment::WriteFile(QDir(desk.env.ProgramFolder()).filePath(QStringLiteral("Help.RTF")),
                                   ShippedGuide());
        QVERIFY(desk.window->Load());
        QTemporaryDir elsewhere;
        const QString before = QDir::currentPath();
        QDir::setCurrent(elsewhere.path());
        desk.Find<QWidget>(QStringLiteral("Image3"))->setVisible(true);
        QTest::mouseClick(desk.Find<QWidget>(QStringLiteral("Image3")), Qt::LeftButton);
        QDir::setCurrent(before);
        frmHelp* help = OpenHelpWindow();
        QVERIFY(help);
        QCOMPARE(MessageBox::Shown().size(), 0);
        QVERIFY(help->Document()->toPlainText().startsWith(QStringLiteral("Tarrowind\n")));
    }

    void helpPictureWithoutTheGuideNamesTheFile()
    {
        Desk desk;
        QVERIFY(desk.window->Load());
        desk.window->Image3_Click();
        QVERIFY(!OpenHelpWindow());
        QCOMPARE(MessageBox::Shown().size(), 1);
        QCOMPARE(MessageBox::Shown().at(0).Text,
                 QStringLiteral("Can't open ") +
                     QDir(desk.env.ProgramFolder()).filePath(QStringLiteral("Help.RTF")) +
                     QStringLiteral("\r2-No such file or directory"));
    }

    void folderNamedLikeTheGuideIsNoGuide()
    {
        Desk desk;
        QVERIFY(QDir(desk.env.ProgramFolder()).mkdir(QStringLiteral("Help.RTF")));
        QVERIFY(desk.window->Load());
        desk.window->Image3_Click();
        QVERIFY(!OpenHelpWindow());
        QCOMPARE(MessageBox::Shown().constLast().Text,
                 QStringLiteral("Can't open ") +
                     QDir(desk.env.ProgramFolder()).filePath(QStringLiteral("Help.RTF")) +
                     QStringLiteral("\r2-No such file or directory"));
        frmHelp help;
        QVERIFY(!help.Form_Load(QDir(desk.env.ProgramFolder()).filePath(QStringLiteral("Help.RTF"))));
        QVERIFY(MessageBox::Shown().constLast().Text.endsWith(QStringLiteral("\r21-Is a directory")));
    }

    void shippedGuideCoversTheProgram()
    {
        const QByteArray rtf = ShippedGuide();
        QVERIFY(!rtf.isEmpty());
        frmHelp help;
        TestEnvironment env;
        const QString path = QDir(env.ProgramFolder()).filePath(QStringLiteral("Help.RTF"));
        TestEnvironment::WriteFile(path, rtf);
        QVERIFY(help.Form_Load(path));
        const QString text = help.Document()->toPlainText();
        for (const char* topic : {"The main window",
                                  "Alarms",
                                  "Clock time",
                                  "Timer (Interval)",
                                  "Safety Check",
                                  "The alarm window and the safety check-in cycle",
                                  "Check In",
                                  "Reset",
                                  "Terminate",
                                  "The logbook",
                                  "20261116.log",
                                  "ST",
                                  "EX",
                                  "SA",
                                  "CA",
                                  "EA",
                                  "NT",
                                  "The time calculator",
                                  "Clock Properties",
                                  "Internet time",
                                  "Where Tarrowind keeps its files",
                                  "Tarrowind 2.ini",
                                  "F1"})
            QVERIFY2(text.contains(QString::fromLatin1(topic)), topic);
        // Read as rich text, not shown as its source.
        QVERIFY(!text.contains(QStringLiteral("\\par")));
        QVERIFY(!text.contains(u'{'));
    }
};

QTEST_MAIN(TestFrmHelp)
#include "tst_frmhelp.moc"
