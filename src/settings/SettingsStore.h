#pragma once

#include <QSettings>
#include <QString>
#include <QTemporaryFile>

#include <memory>

// The per-user store of text values under application, section and key.
//
// On Linux it is the INI file "Tarrowind 2.ini" in the user's configuration folder. The
// section "General" is kept as the file's top level, which QSettings writes as the
// [General] section, so that a hand-written file with a [General] section reads back the
// same way.
class SettingsStore
{
public:
    // The user's own store: application "Tarrowind 2".
    SettingsStore();
    // A store in the given INI file (tests, tools).
    explicit SettingsStore(const QString& iniPath);
    ~SettingsStore();

    QString FileName() const;
    // False when the file exists but cannot be read or parsed whole; the program must then
    // leave it alone rather than overwrite it. Problem() says why, in words.
    bool IsReadable() const;
    QString Problem() const;
    // Whether the file can be written (or made); when not, nothing changed is kept.
    bool IsWritable() const;

    bool Contains(const QString& section, const QString& key) const;
    QString Read(const QString& section, const QString& key, const QString& defaultValue) const;
    void Write(const QString& section, const QString& key, const QString& value);
    // Writes pending changes to disk; false when that failed.
    bool Sync();

private:
    static QString FullKey(const QString& section, const QString& key);
    void PrepareReading();
    const QSettings& Reader() const;

    std::unique_ptr<QSettings> m_settings;
    // Where the file is not UTF-8: a converted copy that the values are read from.
    std::unique_ptr<QTemporaryFile> m_copy;
    std::unique_ptr<QSettings> m_reader;
    bool m_adopted = false;
};
