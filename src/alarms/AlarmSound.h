#pragma once

#include <QObject>
#include <QString>

#include <memory>

class Timers;

// Plays one alarm sound file from start to end without blocking the user interface.
//
// Each alarm window has its own player. Play starts the file from its beginning (stopping a
// play still running), returns at once, and raises Finished when the sound has ended, when
// it could not be played, or, where no audio device exists, when a watchdog of the file's
// length plus a margin runs out: the program goes on silently without a device. Stop ends a
// play at once and releases the device.
class AlarmSound : public QObject
{
    Q_OBJECT
public:
    // The player of this system (Qt Multimedia), timed by the event loop's timers.
    static std::unique_ptr<AlarmSound> Create(QObject* parent = nullptr);
    // The same player with its watchdog and its end made by `timers` (tests hand in timers
    // they advance themselves).
    static std::unique_ptr<AlarmSound> Create(Timers& timers, QObject* parent = nullptr);

    virtual void Play(const QString& path) = 0;
    virtual void Stop() = 0;
    virtual bool IsPlaying() const = 0;

signals:
    void Finished();

protected:
    using QObject::QObject;
};
