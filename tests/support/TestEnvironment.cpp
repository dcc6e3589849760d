#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QtTest>

TestEnvironment::TestEnvironment() : m_previousDir(QDir::currentPath())
{
    QVERIFY2(m_dir.isValid(), "cannot create a temporary folder");
    for (const QString& sub : {ConfigFolder(), DataFolder(), ProgramFolder(), WorkFolder()})
        QDir().mkpath(sub);
    qputenv("XDG_CONFIG_HOME", ConfigFolder().toLocal8Bit());
    qputenv("XDG_DATA_HOME", DataFolder().toLocal8Bit());
    // QSettings caches the user folder; setPath makes it follow the new configuration folder.
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, ConfigFolder());
    QDir::setCurrent(WorkFolder());
}

TestEnvironment::~TestEnvironment()
{
    QDir::setCurrent(m_previousDir);
}

QString TestEnvironment::ConfigFolder() const
{
    return m_dir.filePath(QStringLiteral("config"));
}

QString TestEnvironment::DataFolder() const
{
    return m_dir.filePath(QStringLiteral("data"));
}

QString TestEnvironment::ProgramFolder() const
{
    return m_dir.filePath(QStringLiteral("program"));
}

QString TestEnvironment::LogFolder() const
{
    return QDir(ProgramFolder()).filePath(QStringLiteral("Logs"));
}

QString TestEnvironment::WorkFolder() const
{
    return m_dir.filePath(QStringLiteral("work"));
}

QString TestEnvironment::SettingsFile() const
{
    return QDir(ConfigFolder()).filePath(QStringLiteral("Tarrowind 2.ini"));
}

QByteArray TestEnvironment::ReadFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void TestEnvironment::WriteFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}
