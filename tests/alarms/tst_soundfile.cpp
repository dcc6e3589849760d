#include "TestEnvironment.h"
#include "alarms/SoundFile.h"

#include <QDir>
#include <QtTest>

class TestSoundFile : public QObject
{
    Q_OBJECT
private slots:
    void relativeNameIsFoundInTheCurrentDirectoryFirst()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(QDir(env.WorkFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")),
                                   "cwd");
        TestEnvironment::WriteFile(QDir(env.ProgramFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")),
                                   "prog");
        QCOMPARE(ResolveSoundFile(QStringLiteral("DefaultAlarm.Wav"), {env.ProgramFolder()}),
                 QDir(env.WorkFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")));
    }

    void relativeNameIsThenFoundInTheDataFolders()
    {
        TestEnvironment env;
        TestEnvironment::WriteFile(QDir(env.DataFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")),
                                   "data");
        QCOMPARE(
            ResolveSoundFile(QStringLiteral("DefaultAlarm.Wav"), {env.ProgramFolder(), env.DataFolder()}),
            QDir(env.DataFolder()).filePath(QStringLiteral("DefaultAlarm.Wav")));
    }

    void missingFileGivesNothing()
    {
        TestEnvironment env;
        QCOMPARE(ResolveSoundFile(QStringLiteral("DefaultAlarm.Wav"), {env.ProgramFolder()}), QString());
        QCOMPARE(ResolveSoundFile(QString(), {env.ProgramFolder()}), QString());
        // An absolute path is taken as it is, never looked up elsewhere.
        TestEnvironment::WriteFile(QDir(env.ProgramFolder()).filePath(QStringLiteral("bell.wav")), "x");
        QCOMPARE(ResolveSoundFile(QStringLiteral("/nonexistent/bell.wav"), {env.ProgramFolder()}), QString());
    }

    void folderIsNotASoundFile()
    {
        TestEnvironment env;
        QDir(env.WorkFolder()).mkdir(QStringLiteral("DefaultAlarm.Wav"));
        QCOMPARE(ResolveSoundFile(QStringLiteral("DefaultAlarm.Wav"), {}), QString());
    }
};

QTEST_GUILESS_MAIN(TestSoundFile)
#include "tst_soundfile.moc"
