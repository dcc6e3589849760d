#include "platform/PlatformServices.h"
#include "platform/linux/StartAtLogin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// desktop-file-validate's verdict on the entry: empty when it is valid.
QString Validate(const QString& path)
{
    QProcess check;
    check.start(QStringLiteral("desktop-file-validate"), {path});
    if (!check.waitForFinished(20000))
        return QStringLiteral("desktop-file-validate did not run");
    const QString output = QString::fromUtf8(check.readAllStandardOutput() + check.readAllStandardError());
    if (check.exitCode() != 0)
        return output.isEmpty() ? QStringLiteral("exit code ") + QString::number(check.exitCode()) : output;
    // Hints are advice; errors and warnings are not.
    return output.contains(QStringLiteral("error:")) || output.contains(QStringLiteral("warning:"))
               ? output
               : QString();
}

} // namespace

// The XDG autostart entry that starts the program at login: written only under the test's
// own folders, valid, launching the program, and removed again.
class TestStartAtLogin : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate")).isEmpty())
            QFAIL("desktop-file-validate is missing (scripts/deps installs desktop-file-utils)");
    }

    void entryIsWrittenValidAndRemoved()
    {
        QTemporaryDir config;
        const QString folder = QDir(config.path()).filePath(QStringLiteral("autostart"));
        LinuxStartAtLogin login(QStringLiteral("/opt/tarrowind/bin/tarrowind"), folder);
        QVERIFY(!login.IsEnabled());
        QCOMPARE(login.SetEnabled(true), std::nullopt);
        QVERIFY(login.IsEnabled());
        QCOMPARE(login.EntryPath(), QDir(folder).filePath(QStringLiteral("tarrowind.desktop")));
        const QString entry = ReadFile(login.EntryPath());
        QVERIFY(entry.startsWith(QStringLiteral("[Desktop Entry]\n")));
        QVERIFY(entry.contains(QStringLiteral("\nExec=/opt/tarrowind/bin/tarrowind\n")));
        QVERIFY(entry.contains(QStringLiteral("\nType=Application\n")));
        QCOMPARE(Validate(login.EntryPath()), QString());
        // No half-written file is left beside it.
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{QStringLiteral("tarrowind.desktop")});
        QCOMPARE(login.SetEnabled(false), std::nullopt);
        QVERIFY(!login.IsEnabled());
        QVERIFY(!QFile::exists(login.EntryPath()));
        // Turning off what is off is no error.
        QCOMPARE(login.SetEnabled(false), std::nullopt);
    }

    void awkwardProgramPathIsQuotedAndStillValid()
    {
        QTemporaryDir config;
        const QString program = QStringLiteral("/home/op desk/100% \"sure\"/$bin\\x/tarrowind");
        LinuxStartAtLogin login(program, config.path());
        QCOMPARE(login.SetEnabled(true), std::nullopt);
        const QString entry = ReadFile(login.EntryPath());
        QVERIFY2(entry.contains(QStringLiteral(
                     "\nExec=\"/home/op desk/100%% \\\\\"sure\\\\\"/\\\\$bin\\\\\\\\x/tarrowind\"\n")),
                 qPrintable(entry));
        QCOMPARE(Validate(login.EntryPath()), QString());
    }

    void entrySwitchedOffOrForAnotherProgramIsOff()
    {
        QTemporaryDir config;
        LinuxStartAtLogin login(QStringLiteral("/usr/bin/tarrowind"), config.path());
        QCOMPARE(login.SetEnabled(true), std::nullopt);
        QVERIFY(login.IsEnabled());
        // The desktop switched it off.
        QFile entry(login.EntryPath());
        QVERIFY(entry.open(QIODevice::Append));
        entry.write("Hidden=true\n");
        entry.close();
        QVERIFY(!login.IsEnabled());
        // Another copy of the program wrote it.
        LinuxStartAtLogin other(QStringLiteral("/opt/old/tarrowind"), config.path());
        QCOMPARE(login.SetEnabled(true), std::nullopt);
        QVERIFY(!other.IsEnabled());
        QVERIFY(login.IsEnabled());
        // Turning it off removes whatever entry of ours is there.
        QCOMPARE(other.SetEnabled(false), std::nullopt);
        QVERIFY(!QFile::exists(login.EntryPath()));
    }

    void pathWithALineBreakIsRefused()
    {
        QTemporaryDir config;
        LinuxStartAtLogin login(QStringLiteral("/tmp/odd\nname/tarrowind"), config.path());
        const auto error = login.SetEnabled(true);
        QVERIFY(error.has_value());
        QVERIFY(error->startsWith(
            QStringLiteral("The start at login could not be turned on: the program's path holds "
                           "a control character: ")));
        QVERIFY(!QFile::exists(login.EntryPath()));
    }

    void folderThatCannotBeMadeIsTold()
    {
        QTemporaryDir config;
        const QString blocker = QDir(config.path()).filePath(QStringLiteral("autostart"));
        QFile file(blocker);
        QVERIFY(file.open(QIODevice::WriteOnly)); // a file where the folder should be
        file.close();
        LinuxStartAtLogin login(QStringLiteral("/usr/bin/tarrowind"), blocker);
        const auto error = login.SetEnabled(true);
        QVERIFY(error.has_value());
        QCOMPARE(*error, QStringLiteral("The start at login could not be turned on: the folder ") + blocker +
                             QStringLiteral(" could not be made."));
        QVERIFY(!login.IsEnabled());
    }

    void servicesOfThisSystemWriteUnderXdgConfigHomeForThisProgram()
    {
        // The test's own XDG folder, never the user's.
        QTemporaryDir config;
        const QString home = config.path();
        qputenv("XDG_CONFIG_HOME", home.toUtf8());
        PlatformServices services = CreatePlatformServices();
        QVERIFY(!services.startAtLogin->IsEnabled());
        QCOMPARE(services.startAtLogin->SetEnabled(true), std::nullopt);
        const QString path = QDir(home).filePath(QStringLiteral("autostart/tarrowind.desktop"));
        QVERIFY(QFile::exists(path));
        QVERIFY(ReadFile(path).contains(QStringLiteral("\nExec=") + QCoreApplication::applicationFilePath() +
                                        QStringLiteral("\n")));
        QCOMPARE(Validate(path), QString());
        QCOMPARE(services.startAtLogin->SetEnabled(false), std::nullopt);
        QVERIFY(!QFile::exists(path));
    }
};

QTEST_MAIN(TestStartAtLogin)
#include "tst_startatlogin.moc"
