#pragma once

#include <QDBusObjectPath>
#include <QString>
#include <QVariantMap>

// What the desktop's two media-control interfaces ask of the player. The media-control
// service implements it; the bus adaptors see nothing else of it.
class MprisControls
{
public:
    virtual QString playbackStatus() const = 0;
    virtual QVariantMap metadata() const = 0;
    virtual qlonglong positionMicroseconds() const = 0;
    virtual double volume() const = 0;
    virtual void setVolume(double volume) = 0;
    virtual double rate() const = 0;
    virtual void setRate(double rate) = 0;
    virtual void playPause() = 0;
    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void stop() = 0;
    virtual void next() = 0;
    virtual void previous() = 0;
    virtual void seek(qlonglong offsetMicroseconds) = 0;
    virtual void setPosition(const QDBusObjectPath& trackId, qlonglong positionMicroseconds) = 0;
    virtual void openUri(const QString& uri) = 0;
    virtual void raise() = 0;
    virtual void quit() = 0;

protected:
    ~MprisControls() = default;
};
