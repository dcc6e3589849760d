#include "settings/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>
#include <QTemporaryFile>

namespace {

bool IsUtf8(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    [[maybe_unused]] const QString text = decoder.decode(bytes);
    return !decoder.hasError();
}

} // namespace

SettingsStore::SettingsStore()
    : m_settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             QStringLiteral("Tarrowind 2")))
{
    PrepareReading();
}

SettingsStore::SettingsStore(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{
    PrepareReading();
}

SettingsStore::~SettingsStore() = default;

void SettingsStore::PrepareReading()
{
    // The store reads text as UTF-8. A file with text in another encoding is read from a
    // converted copy, so that nothing read comes back with replacement characters; the
    // file itself is not touched until the program writes its values.
    QFile file(m_settings->fileName());
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    if (IsUtf8(bytes))
        return;
    QByteArray converted;
    const QList<QByteArray> lines = bytes.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            converted += '\n';
        converted += IsUtf8(lines[i]) ? lines[i] : QString::fromLatin1(lines[i]).toUtf8();
    }
    m_copy = std::make_unique<QTemporaryFile>();
    if (!m_copy->open() || m_copy->write(converted) != converted.size() || !m_copy->flush()) {
        m_copy.reset();
        return;
    }
    m_reader = std::make_unique<QSettings>(m_copy->fileName(), QSettings::IniFormat);
}

const QSettings& SettingsStore::Reader() const
{
    return m_reader ? *m_reader : *m_settings;
}

QString SettingsStore::FileName() const
{
    return m_settings->fileName();
}

bool SettingsStore::IsReadable() const
{
    // The store finds a format error only when it parses the file, at the first read.
    [[maybe_unused]] const QStringList keys = Reader().allKeys();
    return Reader().status() == QSettings::NoError;
}

QString SettingsStore::Problem() const
{
    if (IsReadable())
        return {};
    if (Reader().status() == QSettings::AccessError)
        return QStringLiteral("it cannot be opened for reading");
    return QStringLiteral("it is not a settings file that can be read whole (a line without \"=\", a "
                          "byte-order mark or binary data)");
}

bool SettingsStore::IsWritable() const
{
    const QFileInfo file(m_settings->fileName());
    // The store writes a new file beside the old one and renames it: the folder must let it.
    if (file.exists())
        return file.isFile() && file.isWritable() && QFileInfo(file.absolutePath()).isWritable();
    // The folders that do not exist yet are made when the file is first written.
    QFileInfo folder(file.absolutePath());
    while (!folder.exists() && !folder.isRoot())
        folder.setFile(folder.absolutePath());
    return folder.isDir() && folder.isWritable();
}

QString SettingsStore::FullKey(const QString& section, const QString& key)
{
    if (section == u"General")
        return key;
    return section + u'/' + key;
}

bool SettingsStore::Contains(const QString& section, const QString& key) const
{
    return Reader().contains(FullKey(section, key));
}

QString SettingsStore::Read(const QString& section, const QString& key, const QString& defaultValue) const
{
    const QVariant value = Reader().value(FullKey(section, key));
    if (!value.isValid())
        return defaultValue;
    // An unquoted value with commas comes back from an INI file as a list of its parts.
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

void SettingsStore::Write(const QString& section, const QString& key, const QString& value)
{
    // The file is written from what was read from the converted copy, so that the keys
    // the program does not write itself keep their text too.
    if (m_reader && !m_adopted) {
        m_settings->clear();
        for (const QString& each : m_reader->allKeys())
            m_settings->setValue(each, m_reader->value(each));
        m_adopted = true;
    }
    m_settings->setValue(FullKey(section, key), value);
    if (m_reader)
        m_reader->setValue(FullKey(section, key), value);
}

bool SettingsStore::Sync()
{
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}
