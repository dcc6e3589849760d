#include "alarms/AlarmTable.h"

#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QRegularExpression>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {
const QString Section = QStringLiteral("Alarms");
}

AlarmRecord& AlarmTable::At(int n)
{
    if (n < 1 || n > MaxAlarms)
        throw std::out_of_range("alarm number out of range");
    return m_slots[std::size_t(n - 1)];
}

const AlarmRecord& AlarmTable::At(int n) const
{
    return const_cast<AlarmTable*>(this)->At(n);
}

int AlarmTable::SetCount() const
{
    int count = 0;
    // An alarm withdrawn while its crew checks in is still armed.
    for (int n = 1; n <= AlarmCount; ++n)
        if (At(n).AlarmSet || (At(n).CheckingIn && At(n).PendingSet))
            ++count;
    return count;
}

quint64 AlarmTable::IdOf(int n)
{
    AlarmRecord& a = At(n);
    if (a.Id == 0)
        a.Id = ++m_lastId;
    return a.Id;
}

int AlarmTable::SlotOf(quint64 id) const
{
    if (id == 0)
        return 0;
    for (int n = 1; n <= AlarmCount; ++n)
        if (At(n).Id == id)
            return n;
    return 0;
}

QString AlarmKey(const char16_t* field, int n)
{
    return QString::fromUtf16(field) + u' ' + QString::number(n);
}

namespace {

// A whole number of any size as written ("40000", "-3"), or nothing when the text is not one.
std::optional<qint64> ParseCount(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*([+-]?)(\\d+)\\s*$"));
    const auto match = number.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    bool ok = false;
    const qint64 value = match.captured(2).toLongLong(&ok);
    const bool negative = match.captured(1) == u"-";
    if (!ok) // more digits than fit: as far as it goes in its direction
        return negative ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
    return negative ? -value : value;
}

} // namespace

std::optional<SettingsError> AlarmTable::Load(const SettingsStore& store)
{
    std::optional<SettingsError> error;
    const auto fail = [&](const QString& key, const QString& value) {
        if (!error)
            error = SettingsError{Section, key, value};
    };
    const auto readInt = [&](const char16_t* field, int n) -> qint32 {
        const QString text = store.Read(Section, AlarmKey(field, n), QStringLiteral("0"));
        const auto value = ParseInt32(text);
        if (!value)
            fail(AlarmKey(field, n), text);
        return value.value_or(0);
    };
    const auto readBool = [&](const char16_t* field, int n) -> bool {
        const QString text = store.Read(Section, AlarmKey(field, n), QStringLiteral("False"));
        const auto value = ParseBool(text);
        if (!value)
            fail(AlarmKey(field, n), text);
        return value.value_or(false);
    };
    const auto readText = [&](const char16_t* field, int n) -> QString {
        return store.Read(Section, AlarmKey(field, n), QString());
    };

    const QString countText = store.Read(Section, QStringLiteral("Count"), QStringLiteral("0"));
    const auto count = ParseCount(countText);
    if (!count)
        fail(QStringLiteral("Count"), countText);
    AlarmCount = int(std::clamp<qint64>(count.value_or(0), 0, MaxAlarms));
    for (int n = 1; n <= MaxAlarms; ++n) {
        AlarmRecord& a = At(n);
        a = AlarmRecord{};
        if (n > AlarmCount)
            continue;
        a.Message = readText(u"Message", n);
        a.TypeTimer = readBool(u"TypeTimer", n);
        a.Expire = readText(u"Expire", n);
        a.Interval = readText(u"Interval", n);
        a.Repeat = readInt(u"Repeat", n);
        a.AlarmSet = readBool(u"AlarmSet", n);
        a.AudioPath = readText(u"AudioPath", n);
        a.Safety = readInt(u"Safety", n);
        a.LastPosition = readText(u"LastPosition", n);
    }
    if (error) {
        for (AlarmRecord& a : m_slots)
            a = AlarmRecord{};
        AlarmCount = 0;
    }
    return error;
}

void AlarmTable::Save(SettingsStore& store) const
{
    store.Write(Section, QStringLiteral("Count"), QString::number(AlarmCount));
    for (int n = 1; n <= AlarmCount; ++n) {
        const AlarmRecord& a = At(n);
        // An alarm whose crew is checking in is stored as the alarm it was before: a crash
        // during the check-in must not lose it.
        const bool set = a.CheckingIn ? a.PendingSet : a.AlarmSet;
        const QString& expire = a.CheckingIn ? a.PendingExpire : a.Expire;
        store.Write(Section, AlarmKey(u"Message", n), a.Message);
        store.Write(Section, AlarmKey(u"TypeTimer", n), FormatBool(a.TypeTimer));
        store.Write(Section, AlarmKey(u"Expire", n), expire);
        store.Write(Section, AlarmKey(u"Interval", n), a.Interval);
        store.Write(Section, AlarmKey(u"Repeat", n), QString::number(a.Repeat));
        store.Write(Section, AlarmKey(u"AlarmSet", n), FormatBool(set));
        store.Write(Section, AlarmKey(u"AudioPath", n), a.AudioPath);
        store.Write(Section, AlarmKey(u"Safety", n), QString::number(a.Safety));
        store.Write(Section, AlarmKey(u"LastPosition", n), a.LastPosition);
    }
}

void AlarmTable::BlankUnsetExpiries()
{
    for (int n = 1; n <= AlarmCount; ++n)
        if (!At(n).AlarmSet)
            At(n).Expire = QStringLiteral(" ");
}
