#pragma once

#include <QObject>

#include <memory>

// Turns the operating system's requests to end the program (on Linux SIGTERM, SIGINT and
// SIGHUP) into a Qt signal delivered on the user-interface thread, so that the program
// can save everything before it exits.
class ShutdownSignals : public QObject
{
    Q_OBJECT
public:
    static std::unique_ptr<ShutdownSignals> Create(QObject* parent = nullptr);

signals:
    void Requested();

protected:
    using QObject::QObject;
};
