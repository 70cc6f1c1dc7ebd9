#pragma once

#include "MprisControls.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

class MpvView;

// The desktop's media controls (media keys, sound menus, player widgets) over the session
// bus as org.mpris.MediaPlayer2.vidora. It drives the newest player view directly (pause,
// seek, volume, rate) and reads its state back; what needs the main window's own logic
// (next and previous in the history order, opening a file) goes out as signals.
//
// GUI thread only. Without a session bus start() fails quietly and the player works on.
class MprisService : public QObject, public MprisControls
{
    Q_OBJECT
public:
    static constexpr const char* kServiceName = "org.mpris.MediaPlayer2.vidora";
    static constexpr const char* kObjectPath = "/org/mpris/MediaPlayer2";

    // Process-wide; made before the scene, so it hears of every player view.
    static MprisService* instance();
    // Only processWide() calls it: one service answers the bus and hears of the views.
    static MprisService* makeProcessWide();
    // Every player view reports here when it is made; the newest one is controlled.
    static void playerCreated(MpvView* view);

    // Exports the interfaces and claims the name; false (logged) when the bus refuses.
    bool start(QDBusConnection bus = QDBusConnection::sessionBus());

    MpvView* player() const;
    void setPlayer(MpvView* view);

    // Read and driven by the two interfaces.
    QString playbackStatus() const override;
    QVariantMap metadata() const override;
    qlonglong positionMicroseconds() const override;
    double volume() const override;
    void setVolume(double volume) override;
    double rate() const override;
    void setRate(double rate) override;
    void playPause() override;
    void play() override;
    void pause() override;
    void stop() override;
    void next() override { emit nextRequested(); }
    void previous() override { emit previousRequested(); }
    void seek(qlonglong offsetMicroseconds) override;
    void setPosition(const QDBusObjectPath& trackId, qlonglong positionMicroseconds) override;
    void openUri(const QString& uri) override;
    void raise() override;
    void quit() override;

signals:
    void nextRequested();
    void previousRequested();
    // A local file asked for by the desktop, for the window's usual opening path.
    void openUriRequested(const QString& path);
    // Position jumps (seeks, resume), in microseconds, for the Player interface's Seeked.
    void seeked(qlonglong positionMicroseconds);

private:
    explicit MprisService(QObject* parent = nullptr);

    void onUrlChanged();
    void onPositionChanged();
    void makeArt(const QString& url);
    // Sends PropertiesChanged for the Player properties whose values differ from what was
    // last sent (the root interface's never change).
    void publish(const QStringList& names);
    QVariant propertyValue(const QString& name) const;

    QPointer<MpvView> m_player;
    QDBusConnection m_bus{QString()};
    bool m_started = false;
    int m_track = 0;
    double m_lastPosition = 0.0;
    QString m_artUrl;
    QVariantMap m_sent;
};
