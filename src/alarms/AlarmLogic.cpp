#include "alarms/AlarmLogic.h"

#include <QRegularExpression>

std::optional<QString> CalcExpire(const QDateTime& internetNow, const QString& etime)
{
    const auto minutes = IntervalMinutes(etime);
    if (!minutes)
        return std::nullopt;
    const QTime expiry = internetNow.addSecs(qint64(*minutes) * 60).time();
    return FormatHourMinute(expiry.hour(), expiry.minute());
}

bool ExpiresAt(const AlarmRecord& alarm, int hour, int minute)
{
    static const QRegularExpression form(QStringLiteral("^\\d\\d:\\d\\d$"));
    if (!alarm.AlarmSet || !form.match(alarm.Expire).hasMatch())
        return false;
    return alarm.Expire.left(2).toInt() == hour && alarm.Expire.right(2).toInt() == minute;
}

std::optional<int> NewAlarm(AlarmTable& table)
{
    if (table.AlarmCount + 1 > MaxAlarms)
        return std::nullopt;
    const int n = ++table.AlarmCount;
    AlarmRecord& a = table.At(n);
    a = AlarmRecord{}; // nothing of an earlier alarm in this slot survives
    a.TypeTimer = false;
    a.Message = QStringLiteral("<NEW>");
    a.Repeat = 0;
    a.Expire = QStringLiteral("00:00");
    a.Interval = QStringLiteral("00:00");
    return n;
}

void DeleteAlarm(AlarmTable& table, int ptr)
{
    if (ptr < 1 || ptr > table.AlarmCount)
        return;
    for (int i = ptr; i < table.AlarmCount; ++i) {
        AlarmRecord& to = table.At(i);
        const AlarmRecord& from = table.At(i + 1);
        to.AlarmSet = from.AlarmSet;
        to.Expire = from.Expire;
        to.Interval = from.Interval;
        to.Message = from.Message;
        to.Safety = from.Safety;
        to.LastPosition = from.LastPosition;
        to.Repeat = from.Repeat;
        to.TypeTimer = from.TypeTimer;
        to.AudioPath = from.AudioPath;
        // A ringing alarm keeps ringing where it moves to, so that its window and the
        // editor's lock follow it.
        to.Ringing = from.Ringing;
        to.Id = from.Id;
        to.RangFor = from.RangFor;
        to.DueAt = from.DueAt;
        to.LateMinutes = from.LateMinutes;
        to.CheckingIn = from.CheckingIn;
        to.PendingSet = from.PendingSet;
        to.PendingExpire = from.PendingExpire;
    }
    AlarmRecord& last = table.At(table.AlarmCount);
    last.AlarmSet = false;
    last.Expire = QStringLiteral("00:00");
    last.Interval = QStringLiteral("00:00");
    last.Message.clear();
    last.LastPosition.clear();
    last.AudioPath.clear();
    last.Safety = 0;
    last.Repeat = 0;
    last.TypeTimer = false;
    last.Ringing = false;
    last.Id = 0;
    last.RangFor = QDateTime();
    last.DueAt = QDateTime();
    last.LateMinutes = 0;
    last.CheckingIn = false;
    last.PendingSet = false;
    last.PendingExpire.clear();
    --table.AlarmCount;
}

qint16 SafetyFlag(const AlarmRecord& alarm)
{
    return alarm.Safety == 1 ? 1 : 0;
}

QString RowText(const AlarmRecord& alarm)
{
    return QStringLiteral("   ") + alarm.Message;
}

QString RowStatus(const AlarmRecord& alarm)
{
    return alarm.AlarmSet ? QStringLiteral("Set") : QStringLiteral(" ");
}

QString RowTag(int n)
{
    return u' ' + QString::number(n);
}

int TagNumber(const QString& tag)
{
    return tag.trimmed().toInt();
}

QString ListToolTip(const AlarmRecord& alarm)
{
    if (!alarm.AlarmSet)
        return RowText(alarm) + QStringLiteral(" , alarm not set");
    return RowText(alarm) + QStringLiteral(" , alarm set to Expire at ") + alarm.Expire;
}

QString AlarmLogText::ExpiresAt(const QString& expire)
{
    return QStringLiteral(", expires at ") + expire;
}

std::optional<QPoint> AlarmWindowPositionTwips(int k, int w, int h)
{
    if (k < 1 || k > 30)
        return std::nullopt;
    switch ((k - 1) % 6) {
    case 0:
        return QPoint(0, 0);
    case 1:
        return QPoint(w * (k - 1), 0);
    case 2:
        return QPoint(0, h);
    case 3:
        return QPoint(w, h);
    case 4:
        return QPoint(0, 2 * h);
    default:
        return QPoint(w, 2 * h);
    }
}
