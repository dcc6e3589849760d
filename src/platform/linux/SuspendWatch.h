#pragma once

#include "platform/SuspendWatch.h"

#include <QDBusUnixFileDescriptor>

// The computer's sleep through logind (org.freedesktop.login1 on the system bus). A "delay"
// sleep inhibitor is held at all times, so that the alarms can be saved when PrepareForSleep
// says the machine is going to sleep; it is let go once they are, and taken again on waking.
// While alarms are set a "block" inhibitor is held too, whose reason names how many: the
// desktop shows it when the operator asks to suspend, and may let the operator go ahead.
// Without logind nothing is held and nothing is signalled.
class LinuxSuspendWatch final : public SuspendWatch
{
    Q_OBJECT
public:
    explicit LinuxSuspendWatch(QObject* parent = nullptr);

    void SetAlarmsSet(int count) override;
    void SuspendHandled() override;

    bool HoldsDelay() const { return m_delay.isValid(); }
    bool HoldsBlock() const { return m_block.isValid(); }

private slots:
    void PrepareForSleep(bool start);

private:
    QDBusUnixFileDescriptor Inhibit(const QString& why, const QString& mode) const;

    QDBusUnixFileDescriptor m_delay;
    QDBusUnixFileDescriptor m_block;
    int m_blockCount = 0;
};
