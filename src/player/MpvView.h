#pragma once

#include "MpvAbstractItem.h"

#include <QElapsedTimer>
#include <QSet>
#include <QString>
#include <QVariantList>

// The player item the UI binds to: republishes libmpv's playback state as Qt properties,
// shows a short on-screen message for every user-visible change, and keeps the history
// row of the playing file (resume point, duration, play count). GUI thread only.
//
// Values shown before the first report from libmpv: position 0, duration 0, not paused,
// not muted, volume 100, speed 1 (libmpv's own defaults). The first report of each
// property after observation starts is the initial state, not a user change, so it
// shows no message.
class MpvView : public MpvAbstractItem
{
    Q_OBJECT
    Q_PROPERTY(bool mute READ mute WRITE setMute NOTIFY muteChanged)
    Q_PROPERTY(bool pause READ pause WRITE setPause NOTIFY pauseChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(double position READ position WRITE setPosition NOTIFY positionChanged)
    Q_PROPERTY(double speed READ speed WRITE setSpeed NOTIFY speedChanged)
    Q_PROPERTY(int volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(QString _fileUrl READ fileUrl NOTIFY currentUrlChanged)
    Q_PROPERTY(ASPECT_RATIO aspectRatio READ aspectRatio WRITE setAspectRatio NOTIFY aspectRatioChanged)
    Q_PROPERTY(
        int currentAudioTrack READ currentAudioTrack WRITE setAudioTrack NOTIFY currentAudioTrackChanged)
    Q_PROPERTY(int currentSubtitleTrack READ currentSubtitleTrack WRITE setSubtitleTrack NOTIFY
                   currentSubtitleTrackChanged)
    Q_PROPERTY(QString hwdecMode READ hwdecMode WRITE setHwdecMode NOTIFY hwdecChanged)
    Q_PROPERTY(QString mediaTitle READ mediaTitle NOTIFY mediaTitleChanged)
    Q_PROPERTY(QVariantList audioTracks READ audioTracks NOTIFY audioTrackChanged)
    Q_PROPERTY(QVariantList subtitleTracks READ subtitleTracks NOTIFY subtitleTrackChanged)

public:
    enum ASPECT_RATIO
    {
        DEFAULT,
        RATIO4_3,
        RATIO16_9,
        FILL
    };
    Q_ENUM(ASPECT_RATIO)

    explicit MpvView(QQuickItem* parent = nullptr);
    // Called with every view as it is made (GUI thread); whoever follows the newest player,
    // as the desktop's media controls do, sets it once at start-up.
    static void setCreatedHook(void (*hook)(MpvView*));
    // Saves the playing file's resume point when the view goes without a stop().
    ~MpvView() override;

    bool mute() const { return m_mute; }
    bool pause() const { return m_pause; }
    double duration() const { return m_duration; }
    double position() const { return m_position > 0.0 ? m_position : 0.0; }
    double speed() const { return m_speed; }
    int volume() const { return m_volume; }
    ASPECT_RATIO aspectRatio() const { return m_aspectRatio; }
    int currentAudioTrack();
    int currentSubtitleTrack();
    QString hwdecMode();
    QString mediaTitle() const { return m_mediaTitle; }
    QVariantList audioTracks() const { return m_audioTracks; }
    QVariantList subtitleTracks() const { return m_subtitleTracks; }

    // The text of the last on-screen message that libmpv accepted.
    QString lastShownText() const { return m_lastShownText; }

    Q_INVOKABLE QString fileUrl() const { return m_currentUrl; }
    Q_INVOKABLE void setMute(bool value);
    Q_INVOKABLE void setPause(bool value);
    Q_INVOKABLE void setSpeed(double value);
    void setVolume(int value);
    void setPosition(double value);
    Q_INVOKABLE void loadFile(const QString& file);
    Q_INVOKABLE void stop();
    // Removes the URL's history row; stops it first when it is the file playing, so the
    // stop's own save cannot bring the row back.
    Q_INVOKABLE void deleteVideoByUrl(const QString& url);
    Q_INVOKABLE QVariantList getAudioTracks();
    Q_INVOKABLE QVariantList getSubtitleTracks();
    Q_INVOKABLE void setAspectRatio(ASPECT_RATIO ratio);
    Q_INVOKABLE void setAudioTrack(int audio_id);
    Q_INVOKABLE void getScreenshot();
    Q_INVOKABLE void setSubtitleTrack(int subtilte_id);
    Q_INVOKABLE void setHwdecMode(const QString& mode);

signals:
    void initCompleted();
    void mediaTitleChanged();
    void currentUrlChanged();
    void positionChanged();
    void durationChanged();
    void pauseChanged();
    void volumeChanged();
    void muteChanged();
    void speedChanged();
    void audioTrackChanged();
    void subtitleTrackChanged();
    void aspectRatioChanged();
    void currentAudioTrackChanged();
    void currentSubtitleTrackChanged();
    void hwdecChanged();
    void fileStarted();
    void fileLoaded();
    void videoReconfig();
    void playEnd();
    void screenshotTaken(QString filePath);

protected:
    void frameRequested() override;

private:
    void onReady();
    void onPropertyChanged(const QString& property, const QVariant& value);
    void onFileQueued(quint64 token, qint64 playlistEntryId);
    void onLoadRefused(quint64 token, const QString& reason);
    void onFileStarted(qint64 playlistEntryId);
    void onFileRedirected(qint64 playlistEntryId, qint64 firstInsertedEntryId);
    void resumePlayback();
    void onEndFile(const QString& reason, qint64 playlistEntryId);
    // The file has ended (finished: played to its end): history row, stop, playEnd.
    void endCurrentFile(bool finished);
    void onScreenshotSaved(const QString& fileUrl);
    void saveHistory(bool finished);
    void showText(const QString& text);
    void publishPosition();
    void positionWaitEnded();
    QVariant readBack(const QString& property);
    QVariantList audioTracksFrom(const QVariantList& trackList) const;
    QVariantList subtitleTracksFrom(const QVariantList& trackList) const;
    void resetPlaybackState();

    QString m_currentUrl; // canonical URL text: the identity of the history row
    QString m_mediaTitle;
    // Position reached in the current file; -1 while unknown, which leaves a stored resume
    // point untouched when saved.
    double m_position = -1.0;
    // A position report not yet told to the UI, and how long it has waited for a frame.
    bool m_positionPending = false;
    QElapsedTimer m_positionAge;
    bool m_positionTimerArmed = false;
    double m_duration = 0.0;
    bool m_pause = false;
    bool m_mute = false;
    int m_volume = 100;
    double m_speed = 1.0;
    ASPECT_RATIO m_aspectRatio = DEFAULT;
    QVariantList m_audioTracks;
    QVariantList m_subtitleTracks;
    // The current file's load request, libmpv's playlist entry for it (-1 until libmpv has
    // answered) and whether that entry has started. Reports (positions, end of file) that
    // arrive before it started belong to a file already replaced and are ignored.
    quint64 m_loadToken = 0;
    qint64 m_entryId = -1;
    bool m_started = false;
    QSet<QString> m_reported;
    QString m_lastShownText;
};
