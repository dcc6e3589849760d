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

    void folderNameHasOneLetterCase()
    {
        TestEnvironment env;
        QVERIFY(ChooseLogFolder(env.ProgramFolder(), env.DataFolder()).endsWith(QStringLiteral("/Logs")));
    }
};

QTEST_GUILESS_MAIN(TestLogFolder)
#include "tst_logfolder.moc"
