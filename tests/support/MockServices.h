#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantList>

// Reading and driving python3-dbusmock's logind and notification daemon on the private bus
// of tests/platform/desktop.sh.

// "what/who/mode/why" of each inhibitor the mocked logind holds, sorted.
inline QStringList HeldInhibitors()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("ListInhibitors"));
    const QDBusMessage reply = QDBusConnection::systemBus().call(call);
    QStringList held;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return held;
    const QDBusArgument array = reply.arguments().at(0).value<QDBusArgument>();
    array.beginArray();
    while (!array.atEnd()) {
        QString what, who, why, mode;
        uint uid = 0, pid = 0;
        array.beginStructure();
        array >> what >> who >> why >> mode >> uid >> pid;
        array.endStructure();
        held << what + u'/' + who + u'/' + mode + u'/' + why;
    }
    array.endArray();
    held.sort();
    return held;
}

// The mocked logind says the machine is going to sleep (true) or has woken (false).
inline bool EmitPrepareForSleep(bool start)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("EmitSignal"));
    call << QStringLiteral("org.freedesktop.login1.Manager") << QStringLiteral("PrepareForSleep")
         << QStringLiteral("b")
         << QVariant::fromValue(QVariantList{QVariant::fromValue(QDBusVariant(start))});
    return QDBusConnection::systemBus().call(call).type() == QDBusMessage::ReplyMessage;
}

// The calls of `method` the mocked notification service received, each its arguments.
inline QList<QVariantList> NotificationCalls(const QString& method)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("GetMethodCalls"));
    call << method;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
    QList<QVariantList> calls;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return calls;
    const QDBusArgument array = reply.arguments().at(0).value<QDBusArgument>();
    array.beginArray();
    while (!array.atEnd()) {
        quint64 when = 0;
        QVariantList args;
        array.beginStructure();
        array >> when;
        array.beginArray();
        while (!array.atEnd()) {
            QDBusVariant v;
            array >> v;
            args << v.variant();
        }
        array.endArray();
        array.endStructure();
        calls << args;
    }
    array.endArray();
    return calls;
}
