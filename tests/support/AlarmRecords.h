#pragma once

#include "alarms/AlarmRecord.h"

// An alarm record with a message and an expiry, set (or not), for tests of the table.
inline AlarmRecord SetAlarm(const QString& message, const QString& expire, bool set = true)
{
    AlarmRecord a;
    a.Message = message;
    a.Expire = expire;
    a.AlarmSet = set;
    return a;
}
