#include "platform/linux/StartAtLogin.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

LinuxStartAtLogin::LinuxStartAtLogin(QString programPath, QString autostartFolder)
    : m_programPath(std::move(programPath)), m_folder(std::move(autostartFolder))
{}

QString LinuxStartAtLogin::EntryPath() const
{
    return QDir(m_folder).filePath(QStringLiteral("tarrowind.desktop"));
}

bool LinuxStartAtLogin::IsEnabled() const
{
    QFile entry(EntryPath());
    if (!entry.open(QIODevice::ReadOnly))
        return false;
    const QByteArray expected = "Exec=" + ExecArgument(m_programPath).toUtf8();
    bool launchesThis = false;
    for (const QByteArray& raw : entry.readAll().split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line == expected)
            launchesThis = true;
        if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false")
            return false;
    }
    return launchesThis;
}

QString LinuxStartAtLogin::ExecArgument(const QString& argument)
{
    // Reserved characters need the argument in double quotes, and inside them ", `, $ and
    // \ a backslash; a value's own backslashes are then doubled once more, and a % is
    // written %% because the Exec key gives % a meaning of its own.
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    QString quoted;
    bool mustQuote = argument.isEmpty();
    for (const QChar c : argument) {
        if (reserved.contains(c))
            mustQuote = true;
        if (c == u'"' || c == u'`' || c == u'$')
            quoted += QStringLiteral("\\\\");
        if (c == u'\\')
            quoted += QStringLiteral("\\\\\\");
        if (c == u'%')
            quoted += u'%';
        quoted += c;
    }
    if (!mustQuote)
        return quoted;
    // Outside quotes no escape is allowed; only a quoted argument keeps its backslashes.
    return u'"' + quoted + u'"';
}

QByteArray LinuxStartAtLogin::Entry(const QString& programPath)
{
    return QByteArrayLiteral("[Desktop Entry]\n"
                             "Type=Application\n"
                             "Name=Tarrowind\n"
                             "Comment=Desk clock, alarms and logbook\n") +
           "Exec=" + ExecArgument(programPath).toUtf8() + "\n" +
           QByteArrayLiteral("Icon=org.tarrowind.Tarrowind\n"
                             "Terminal=false\n"
                             "X-GNOME-Autostart-enabled=true\n");
}

std::optional<QString> LinuxStartAtLogin::SetEnabled(bool on)
{
    if (!on) {
        QFile entry(EntryPath());
        if (entry.exists() && !entry.remove())
            return QStringLiteral("The start at login could not be turned off: ") + EntryPath() +
                   QStringLiteral(" could not be removed (") + entry.errorString() + u')';
        return std::nullopt;
    }
    // A line break or another control character cannot be written in the entry's Exec.
    for (const QChar c : m_programPath)
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            return QStringLiteral("The start at login could not be turned on: the program's path holds a "
                                  "control character: ") +
                   m_programPath;
    if (!QDir().mkpath(m_folder))
        return QStringLiteral("The start at login could not be turned on: the folder ") + m_folder +
               QStringLiteral(" could not be made.");
    QSaveFile entry(EntryPath());
    if (!entry.open(QIODevice::WriteOnly) || entry.write(Entry(m_programPath)) < 0 || !entry.commit())
        return QStringLiteral("The start at login could not be turned on: ") + EntryPath() +
               QStringLiteral(" could not be written (") + entry.errorString() + u')';
    return std::nullopt;
}
