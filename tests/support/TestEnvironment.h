#pragma once

#include <QString>
#include <QTemporaryDir>

// A fresh folder for one test: the user's configuration and data folders, the program
// folder used for the logs, and the current directory all point into it, so that no test
// touches a user's files or another test's.
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment();

    QString Root() const { return m_dir.path(); }
    QString ConfigFolder() const;
    QString DataFolder() const;
    QString ProgramFolder() const;
    QString LogFolder() const;
    QString WorkFolder() const;
    // The settings file the program's own store would use.
    QString SettingsFile() const;

    static QByteArray ReadFile(const QString& path);
    static void WriteFile(const QString& path, const QByteArray& bytes);

private:
    QTemporaryDir m_dir;
    QString m_previousDir;
};
