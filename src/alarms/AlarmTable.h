#pragma once

#include "alarms/AlarmRecord.h"

#include <array>
#include <optional>

class SettingsStore;
struct SettingsError;

inline constexpr int MaxAlarms = 30;

// The thirty alarm slots. The alarms in use are always slots 1 to AlarmCount, without gaps.
class AlarmTable
{
public:
    // The alarm with number n (1 to 30). Any other number is a programming fault and
    // throws std::out_of_range, which the calling handler traps.
    AlarmRecord& At(int n);
    const AlarmRecord& At(int n) const;

    int AlarmCount = 0;
    int SelectedAlarm = 0;

    // How many of the alarms in use are set.
    int SetCount() const;

    // The identity of alarm n, which follows its record when records move; given on first
    // use. Its slot, or 0 when the record is no longer in the table.
    quint64 IdOf(int n);
    int SlotOf(quint64 id) const;

    // Reads "Count" and then alarms 1 to Count from section "Alarms"; a count above 30
    // stops at 30 (below 0, at 0). A value that is not the number or the true/false its
    // key expects is returned as the error, and the table is then left empty.
    std::optional<SettingsError> Load(const SettingsStore& store);
    // Writes "Count" and the nine keys of each alarm in use; keys of higher numbers stay.
    void Save(SettingsStore& store) const;

    // The record part of rebuilding the list: an unset alarm's expiry becomes one blank.
    void BlankUnsetExpiries();

private:
    std::array<AlarmRecord, MaxAlarms> m_slots;
    quint64 m_lastId = 0;
};

// The store key of field `field` of alarm n: the field name, one blank, the number ("Safety 1").
QString AlarmKey(const char16_t* field, int n);
