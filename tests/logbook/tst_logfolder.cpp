#include "TestEnvironment.h"
#include "logbook/LogFolder.h"

#include <QDir>
#include <QtTest>

class TestLogFolder : public QObject
{
    Q_OBJECT
private slots:
    void writableProgramFolderHoldsTheLogs()
    {
        TestEnvironment env;
        QCOMPARE(ChooseLogFolder(env.ProgramFolder(), env.DataFolder()),
                 QDir(env.ProgramFolder()).filePath(QStringLiteral("Logs")));
    }

    void readOnlyProgramFolderSendsTheLogsToTheUsersDataFolder()
    {
        TestEnvironment env;
        QFile::setPermissions(env.ProgramFolder(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        if (QFileInfo(env.ProgramFolder()).isWritable())
            QSKIP("running with the right to write anywhere (root); a read-only folder cannot be made");
        QCOMPARE(ChooseLogFolder(env.ProgramFolder(), env.DataFolder()),
                 QDir(env.DataFolder()).filePath(QStringLiteral("Logs")));
    }

    void folderIsChosenOnceAndRemembered()
    {
        TestEnvironment env;
        const QString first = RememberedLogFolder(env.ProgramFolder(), env.DataFolder());
        QCOMPARE(first, QDir(env.ProgramFolder()).filePath(QStringLiteral("Logs")));
        QCOMPARE(TestEnvironment::ReadFile(QDir(env.DataFolder()).filePath(QStringLiteral("LogFolder"))),
                 first.toUtf8() + '\n');
        // The program's folder can no longer be written (here: it is gone): the logs stay
        // where they have been kept, not split into the user's data folder.
        const QString unwritable = QDir(env.Root()).filePath(QStringLiteral("no such folder"));
        QCOMPARE(ChooseLogFolder(unwritable, env.DataFolder()),
                 QDir(env.DataFolder()).filePath(QStringLiteral("Logs")));
        QCOMPARE(RememberedLogFolder(unwritable, env.DataFolder()), first);
    }

    void folderNameHasOneLetterCase()
    {
        TestEnvironment env;
        QVERIFY(ChooseLogFolder(env.ProgramFolder(), env.DataFolder()).endsWith(QStringLiteral("/Logs")));
    }
};

QTEST_GUILESS_MAIN(TestLogFolder)
#include "tst_logfolder.moc"
