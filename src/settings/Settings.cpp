#include "settings/Settings.h"

#include "settings/SettingsStore.h"
#include "settings/TimeServers.h"

#include <QLocale>

#include <array>
#include <cmath>
#include <limits>

namespace {

std::optional<double> ParseNumber(const QString& text)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

template <typename Int>
std::optional<Int> ParseInteger(const QString& text)
{
    const auto number = ParseNumber(text);
    if (!number)
        return std::nullopt;
    // Whole numbers are rounded half to even, as the system's own conversion does.
    const double rounded = std::nearbyint(*number);
    if (rounded < double(std::numeric_limits<Int>::min()) ||
        rounded > double(std::numeric_limits<Int>::max()))
        return std::nullopt;
    return Int(rounded);
}

QString FormatNumber(double value)
{
    return QLocale::c().toString(value, 'g', 15);
}

template <auto Member>
bool ParseText(Settings& s, const QString& text)
{
    s.*Member = text;
    return true;
}

template <auto Member>
QString FormatText(const Settings& s)
{
    return s.*Member;
}

template <auto Member>
bool ParseI16(Settings& s, const QString& text)
{
    const auto value = ParseInt16(text);
    if (value)
        s.*Member = *value;
    return value.has_value();
}

template <auto Member>
bool ParseI32(Settings& s, const QString& text)
{
    const auto value = ParseInt32(text);
    if (value)
        s.*Member = *value;
    return value.has_value();
}

template <auto Member>
QString FormatInt(const Settings& s)
{
    return QString::number(s.*Member);
}

template <auto Member>
bool ParseB(Settings& s, const QString& text)
{
    const auto value = ParseBool(text);
    if (value)
        s.*Member = *value;
    return value.has_value();
}

template <auto Member>
QString FormatB(const Settings& s)
{
    return FormatBool(s.*Member);
}

bool ParseFontName(Settings& s, const QString& text)
{
    // An empty name leaves the current face.
    if (!text.isEmpty())
        s.FontName = text;
    return true;
}

bool ParseFontSize(Settings& s, const QString& text)
{
    const auto value = ParseNumber(text);
    if (!value || *value <= 0 || *value > 1000)
        return false;
    s.FontSize = *value;
    return true;
}

QString FormatFontSize(const Settings& s)
{
    return FormatNumber(s.FontSize);
}

bool ParseForeColor(Settings& s, const QString& text)
{
    if (!text.isEmpty() && !ParseInt32(text))
        return false;
    s.ForeColor = text;
    return true;
}

bool ParseLastSync(Settings& s, const QString& text)
{
    const auto value = ParseStoredDateTime(text);
    if (value)
        s.LastSync = *value;
    return value.has_value();
}

QString FormatLastSync(const Settings& s)
{
    return s.LastSync.toString(QString::fromUtf16(DateTimeFormat));
}

using K = SettingKind;
using S = Settings;

const std::array<SettingKey, 25> Keys{{
    {u"Font", u"Name", u"Arial", K::Text, ParseFontName, FormatText<&S::FontName>},
    {u"Font", u"Size", u"16", K::Number, ParseFontSize, FormatFontSize},
    {u"Font", u"Italic", u"False", K::Bool, ParseB<&S::FontItalic>, FormatB<&S::FontItalic>},
    {u"Font", u"Bold", u"True", K::Bool, ParseB<&S::FontBold>, FormatB<&S::FontBold>},
    {u"Font", u"ForeColor", u"65535", K::Colour, ParseForeColor, FormatText<&S::ForeColor>},
    {u"Font", u"BackColor", u"1", K::Int32, ParseI32<&S::BackColor>, FormatInt<&S::BackColor>},
    {u"General", u"Sound", u"DefaultAlarm.Wav", K::Text, ParseText<&S::Sound>, FormatText<&S::Sound>},
    {u"General", u"Audible", u"1", K::Int16, ParseI16<&S::Audible>, FormatInt<&S::Audible>},
    {u"General", u"AutoSync", u"0", K::Int16, ParseI16<&S::AutoSync>, FormatInt<&S::AutoSync>},
    {u"General", u"AutoSyncHrs", u"24", K::Int16, ParseI16<&S::AutoSyncHrs>, FormatInt<&S::AutoSyncHrs>},
    {u"General", u"UTCRule", u"1", K::Int16, ParseI16<&S::UTCRule>, FormatInt<&S::UTCRule>},
    {u"General", u"InetMinOffset", u"0", K::Minutes, ParseI32<&S::InetMinOffset>,
     FormatInt<&S::InetMinOffset>},
    {u"General", u"SyncSite", nullptr, K::Text, ParseText<&S::SyncSite>, FormatText<&S::SyncSite>},
    {u"General", u"LastSync", u"", K::DateTime, ParseLastSync, FormatLastSync},
    {u"General", u"DayLight", u"0", K::Int16, ParseI16<&S::DayLight>, FormatInt<&S::DayLight>},
    {u"Sun", u"LatDeg", u"00", K::Text, ParseText<&S::LatDeg>, FormatText<&S::LatDeg>},
    {u"Sun", u"LatMin", u"00", K::Text, ParseText<&S::LatMin>, FormatText<&S::LatMin>},
    {u"Sun", u"LongDeg", u"000", K::Text, ParseText<&S::LongDeg>, FormatText<&S::LongDeg>},
    {u"Sun", u"LongMin", u"00", K::Text, ParseText<&S::LongMin>, FormatText<&S::LongMin>},
    {u"General", u"StartWithWindows", u"0", K::Int16, ParseI16<&S::StartWithWindows>,
     FormatInt<&S::StartWithWindows>},
    {u"General", u"DefaultInterval", u"00:15", K::Text, ParseText<&S::DefaultInterval>,
     FormatText<&S::DefaultInterval>},
    {u"General", u"LogOn", u"0", K::Int16, ParseI16<&S::LogOn>, FormatInt<&S::LogOn>},
    {u"General", u"LogSafetyOnly", u"True", K::Bool, ParseB<&S::LogSafetyOnly>, FormatB<&S::LogSafetyOnly>},
    {u"General", u"Connection", u"0", K::Int16, ParseI16<&S::Connection>, FormatInt<&S::Connection>},
    {u"General", u"Zone", u"1", K::Int32, ParseI32<&S::Zone>, FormatInt<&S::Zone>},
}};

const SettingKey* Find(std::u16string_view section, std::u16string_view key)
{
    for (const auto& k : Keys)
        if (section == k.Section && key == k.Key)
            return &k;
    Q_UNREACHABLE();
    return nullptr;
}

const std::array<const SettingKey*, 25> WriteOrder{
    Find(u"Font", u"ForeColor"),
    Find(u"Font", u"BackColor"),
    Find(u"Font", u"Name"),
    Find(u"Font", u"Bold"),
    Find(u"Font", u"Size"),
    Find(u"Font", u"Italic"),
    Find(u"General", u"Sound"),
    Find(u"General", u"StartWithWindows"),
    Find(u"General", u"Zone"),
    Find(u"General", u"Audible"),
    Find(u"General", u"AutoSync"),
    Find(u"General", u"AutoSyncHrs"),
    Find(u"General", u"SyncSite"),
    Find(u"General", u"LastSync"),
    Find(u"General", u"InetMinOffset"),
    Find(u"General", u"DayLight"),
    Find(u"Sun", u"LatDeg"),
    Find(u"Sun", u"LatMin"),
    Find(u"Sun", u"LongDeg"),
    Find(u"Sun", u"LongMin"),
    Find(u"General", u"DefaultInterval"),
    Find(u"General", u"LogOn"),
    Find(u"General", u"LogSafetyOnly"),
    Find(u"General", u"Connection"),
    Find(u"General", u"UTCRule"),
};

QString DefaultText(const SettingKey& key, const QDateTime& now)
{
    if (key.Default == nullptr)
        return TimeServers().constFirst();
    if (key.Kind == SettingKind::DateTime)
        return now.toString(QString::fromUtf16(DateTimeFormat));
    return QString::fromUtf16(key.Default);
}

} // namespace

std::span<const SettingKey> SettingKeys()
{
    return Keys;
}

std::span<const SettingKey* const> SettingWriteOrder()
{
    return WriteOrder;
}

std::optional<qint16> ParseInt16(const QString& text)
{
    return ParseInteger<qint16>(text);
}

std::optional<qint32> ParseInt32(const QString& text)
{
    return ParseInteger<qint32>(text);
}

std::optional<bool> ParseBool(const QString& text)
{
    const QString t = text.trimmed();
    if (t.compare(u"True", Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(u"False", Qt::CaseInsensitive) == 0)
        return false;
    const auto number = ParseNumber(t);
    if (!number)
        return std::nullopt;
    return *number != 0;
}

QString FormatBool(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

std::optional<QDateTime> ParseStoredDateTime(const QString& text)
{
    const QString t = text.trimmed();
    QDateTime value = QDateTime::fromString(t, QString::fromUtf16(DateTimeFormat));
    if (!value.isValid())
        value = QDateTime::fromString(t, Qt::ISODate);
    const QLocale locale;
    if (!value.isValid())
        value = locale.toDateTime(t, QLocale::ShortFormat);
    if (!value.isValid())
        value = locale.toDateTime(t, QLocale::LongFormat);
    if (!value.isValid())
        return std::nullopt;
    // Kept as it is written back: local time, to the second.
    value = value.toLocalTime();
    value.setTime(QTime(value.time().hour(), value.time().minute(), value.time().second()));
    return value;
}

QString SettingsErrorMessage(const SettingsError& error)
{
    return QStringLiteral("The stored setting \"") + error.Key + QStringLiteral("\" in section \"") +
           error.Section + QStringLiteral("\" has the value \"") + error.Value +
           QStringLiteral("\", which cannot be read.") + u'\r' +
           QStringLiteral("Tarrowind will close and leave the stored settings unchanged.");
}

SettingsReadResult ReadSettings(const SettingsStore& store, const QDateTime& now)
{
    SettingsReadResult result;
    // Parse every default first, so that an absent key always has its value.
    for (const auto& key : Keys) {
        const bool ok = key.Parse(result.Values, DefaultText(key, now));
        Q_ASSERT(ok);
        Q_UNUSED(ok);
    }
    for (const auto& key : Keys) {
        const QString section = QString::fromUtf16(key.Section);
        const QString name = QString::fromUtf16(key.Key);
        if (!store.Contains(section, name))
            continue;
        const QString text = store.Read(section, name, DefaultText(key, now));
        if (!key.Parse(result.Values, text)) {
            result.Error = SettingsError{section, name, text};
            return result;
        }
    }
    return result;
}

void WriteSettings(SettingsStore& store, const Settings& settings)
{
    for (const SettingKey* key : WriteOrder)
        store.Write(QString::fromUtf16(key->Section), QString::fromUtf16(key->Key), key->Format(settings));
}
