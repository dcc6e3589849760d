#pragma once

#include <QDateTime>
#include <QString>

#include <optional>
#include <span>

class SettingsStore;

// Every preference of the program, typed. The values are read from the store once at
// start-up and written back once when the program stops; in between the program changes
// only these values.
struct Settings
{
    // "Font"
    QString FontName;
    double FontSize = 0;
    bool FontItalic = false;
    bool FontBold = false;
    QString ForeColor; // kept as stored: an empty value must be told apart from a missing one
    qint32 BackColor = 0;
    // "General"
    QString Sound;
    qint16 Audible = 0;
    qint16 AutoSync = 0;
    qint16 AutoSyncHrs = 0;
    qint16 UTCRule = 0;
    qint32 InetMinOffset = 0;
    QString SyncSite;
    QDateTime LastSync;
    qint16 DayLight = 0;
    // "Sun"
    QString LatDeg;
    QString LatMin;
    QString LongDeg;
    QString LongMin;
    // "General"
    qint16 StartWithWindows = 0;
    QString DefaultInterval;
    qint16 LogOn = 0;
    bool LogSafetyOnly = false;
    qint16 Connection = 0;
    qint32 Zone = 0;
};

enum class SettingKind
{
    Text,
    Int16,
    Int32,
    Number,
    Bool,
    Colour,   // a colour value, or empty
    Minutes,  // a whole number of minutes
    DateTime, // date and time; "" as default means the present moment
};

// One key of the store with its default and how it is parsed and written.
struct SettingKey
{
    const char16_t* Section;
    const char16_t* Key;
    const char16_t* Default;
    SettingKind Kind;
    // Stores the parsed text in its field; false when the text does not parse.
    bool (*Parse)(Settings&, const QString&);
    QString (*Format)(const Settings&);
};

// Every key, in the order the start-up reads them.
std::span<const SettingKey> SettingKeys();
// Every key, in the order StopProgram writes them.
std::span<const SettingKey* const> SettingWriteOrder();

// A stored value that does not parse as its key's type.
struct SettingsError
{
    QString Section;
    QString Key;
    QString Value;
};

// The message shown when a stored value does not parse; the program then ends without
// writing to the store.
QString SettingsErrorMessage(const SettingsError& error);

struct SettingsReadResult
{
    Settings Values;
    std::optional<SettingsError> Error;
};

// Reads every key with its default. `now` is the default of "LastSync".
SettingsReadResult ReadSettings(const SettingsStore& store, const QDateTime& now);
// Writes every key, in the shutdown order.
void WriteSettings(SettingsStore& store, const Settings& settings);

// The fixed date-time form written for "LastSync"; reading also takes ISO 8601 and the
// locale's short and long forms.
inline constexpr auto DateTimeFormat = u"yyyy-MM-dd HH:mm:ss";
std::optional<QDateTime> ParseStoredDateTime(const QString& text);

// Conversions shared with the alarm table.
std::optional<qint16> ParseInt16(const QString& text);
std::optional<qint32> ParseInt32(const QString& text);
std::optional<bool> ParseBool(const QString& text);
QString FormatBool(bool value);
