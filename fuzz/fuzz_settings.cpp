// Fuzzes the settings reader: any bytes, as the settings file, must neither crash the reader
// nor be taken half-read; and what it accepts, the settings and the alarm table, is written
// back and read again to the same values (the round trip of every key).
#include "alarms/AlarmTable.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Every key's stored text: two value sets that give the same texts are the same settings.
QStringList Texts(const Settings& values)
{
    QStringList texts;
    for (const SettingKey& key : SettingKeys())
        texts << key.Format(values);
    return texts;
}

// Every stored field of the alarms in use.
QStringList Texts(const AlarmTable& table)
{
    QStringList texts{QString::number(table.AlarmCount)};
    for (int n = 1; n <= table.AlarmCount; ++n) {
        const AlarmRecord& a = table.At(n);
        texts << a.Message << FormatBool(a.TypeTimer) << a.Expire << a.Interval << QString::number(a.Repeat)
              << FormatBool(a.AlarmSet) << a.AudioPath << QString::number(a.Safety) << a.LastPosition;
    }
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static QTemporaryDir folder;
    const QString first = folder.filePath(QStringLiteral("first.ini"));
    const QString second = folder.filePath(QStringLiteral("second.ini"));
    QFile::remove(first);
    QFile::remove(second);
    {
        QFile file(first);
        if (!file.open(QIODevice::WriteOnly))
            return 0;
        file.write(reinterpret_cast<const char*>(data), qint64(size));
    }
    const QDateTime now(QDate(2026, 11, 16), QTime(10, 0), Qt::UTC);
    SettingsStore store(first);
    if (!store.IsReadable())
        return 0;
    const SettingsReadResult read = ReadSettings(store, now);
    if (read.Error || !store.IsReadable())
        return 0;
    AlarmTable alarms;
    if (alarms.Load(store))
        return 0;
    {
        SettingsStore out(second);
        WriteSettings(out, read.Values);
        alarms.Save(out);
        if (!out.Sync())
            std::abort();
    }
    SettingsStore back(second);
    const SettingsReadResult again = ReadSettings(back, now);
    // What was accepted must survive being written and read back: every key's text, and the
    // values whose text could round them.
    if (again.Error || Texts(again.Values) != Texts(read.Values) ||
        again.Values.FontSize != read.Values.FontSize || again.Values.LastSync != read.Values.LastSync)
        std::abort();
    AlarmTable alarmsAgain;
    if (alarmsAgain.Load(back) || Texts(alarmsAgain) != Texts(alarms))
        std::abort();
    return 0;
}
