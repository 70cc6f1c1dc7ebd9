#include "MpvView.h"

#include "AppPaths.h"
#include "FileHelper.h"
#include "MpvClientPtr.h"
#include "SqlHelper.h"
#include "ThreadPool.h"
#include "TsanAnnotations.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QQuickWindow>
#include <QTimer>
#include <QUrl>
#include <cmath>
#include <spdlog/spdlog.h>

namespace {

void (*g_createdHook)(MpvView*) = nullptr;

// How long every on-screen message stays, in milliseconds.
const QString kMessageDuration = QStringLiteral("2000");

// Writes from a bound seek bar echo the position it was just given; re-seeking to where
// playback already is would stall it, so smaller moves than this are ignored.
constexpr double kSeekTolerance = 0.05;

// A saved resume point this close to the end would end playback at once: start over.
constexpr double kResumeEndMargin = 1.0;

// How long a position report waits for the next frame before it is told on its own
// (paused, audio only), in milliseconds.
constexpr int kPositionWaitMs = 100;

struct Observed
{
    const char* name;
    mpv_format format;
};

constexpr Observed kObserved[] = {
    {"media-title", MPV_FORMAT_STRING},
    {"time-pos", MPV_FORMAT_DOUBLE},
    {"duration", MPV_FORMAT_DOUBLE},
    {"pause", MPV_FORMAT_FLAG},
    {"mute", MPV_FORMAT_FLAG},
    {"volume", MPV_FORMAT_INT64},
    {"speed", MPV_FORMAT_DOUBLE},
    {"track-list", MPV_FORMAT_NODE},
    {"vid", MPV_FORMAT_INT64},
    {"aid", MPV_FORMAT_INT64},
    {"sid", MPV_FORMAT_INT64},
    {"video-aspect-override", MPV_FORMAT_STRING},
    // libmpv keeps panscan as a number; only its changes matter here.
    {"panscan", MPV_FORMAT_FLAG},
    {"hwdec-current", MPV_FORMAT_STRING},
    {"hwdec", MPV_FORMAT_STRING},
};

bool isError(const QVariant& value)
{
    return value.userType() == qMetaTypeId<ErrorReturn>();
}

// History rows and the "same file" test use one text form of a URL; plain paths become
// file: URLs.
QString canonicalUrl(const QString& file)
{
    const QUrl url(file);
    if (url.scheme().isEmpty())
        return QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath()).toString();
    return url.toString();
}

QString titleOf(const QVariantList& tracks, int id)
{
    for (const QVariant& track : tracks) {
        const QVariantMap map = track.toMap();
        if (map.value(QStringLiteral("id")).toInt() == id)
            return map.value(QStringLiteral("title")).toString();
    }
    return QString();
}

} // namespace

MpvView::MpvView(QQuickItem* parent) : MpvAbstractItem(parent)
{
    MpvController* mpv = controller();
    connect(mpv, &MpvController::propertyChanged, this, &MpvView::onPropertyChanged, Qt::QueuedConnection);
    connect(mpv, &MpvController::fileQueued, this, &MpvView::onFileQueued, Qt::QueuedConnection);
    connect(mpv, &MpvController::loadRefused, this, &MpvView::onLoadRefused, Qt::QueuedConnection);
    connect(mpv, &MpvController::fileStarted, this, &MpvView::onFileStarted, Qt::QueuedConnection);
    connect(mpv, &MpvController::fileRedirected, this, &MpvView::onFileRedirected, Qt::QueuedConnection);
    connect(mpv, &MpvController::fileLoaded, this, &MpvView::fileLoaded, Qt::QueuedConnection);
    // The resume point is applied once the file is loaded: seeking is possible from then on.
    connect(mpv, &MpvController::fileLoaded, this, &MpvView::resumePlayback, Qt::QueuedConnection);
    connect(mpv, &MpvController::videoReconfig, this, &MpvView::videoReconfig, Qt::QueuedConnection);
    connect(mpv, &MpvController::endFile, this, &MpvView::onEndFile, Qt::QueuedConnection);
    connect(this, &MpvAbstractItem::ready, this, &MpvView::onReady);
    if (g_createdHook)
        g_createdHook(this);
}

void MpvView::setCreatedHook(void (*hook)(MpvView*))
{
    g_createdHook = hook;
}

MpvView::~MpvView()
{
    saveHistory(false);
}

void MpvView::onReady()
{
    // The end-of-file flow (history row, next file) needs libmpv to end files and to stay
    // alive when idle, whatever the user's option file says.
    controller()->setProperty(QStringLiteral("keep-open"), QStringLiteral("no"));
    controller()->setProperty(QStringLiteral("idle"), QStringLiteral("yes"));
    for (const Observed& property : kObserved)
        controller()->observeProperty(QString::fromLatin1(property.name), property.format, 0);
    emit initCompleted();
}

void MpvView::frameRequested()
{
    // A position report comes with nearly every video frame, but a moment after that frame's
    // redraw request: told to the UI at once, the seek bar and time label would make the
    // scene graph draw the whole window a second time per frame. It goes with the next
    // frame's request instead (while the scene graph is synchronising is too late: a change
    // then asks for a frame of its own), or alone after a short wait when no frame follows
    // (paused, audio only).
    publishPosition();
}

void MpvView::publishPosition()
{
    if (!m_positionPending)
        return;
    m_positionPending = false;
    emit positionChanged();
}

void MpvView::positionWaitEnded()
{
    m_positionTimerArmed = false;
    if (!m_positionPending)
        return;
    // The timer was armed for an earlier report that a frame has told since; firing for the
    // newer one before its own wait is over would draw a frame of its own between two video
    // frames.
    const qint64 left = kPositionWaitMs - m_positionAge.elapsed();
    if (left > 0) {
        m_positionTimerArmed = true;
        QTimer::singleShot(static_cast<int>(left), this, &MpvView::positionWaitEnded);
        return;
    }
    publishPosition();
}

void MpvView::onPropertyChanged(const QString& property, const QVariant& value)
{
    const bool initial = !m_reported.contains(property);
    m_reported.insert(property);
    // Values that arrive before the current file has started belong to the previous one.
    const bool current = m_started && !m_currentUrl.isEmpty();

    if (property == QLatin1String("time-pos")) {
        // An unavailable position (file ended) keeps the position reached.
        if (current && value.isValid())
            m_position = value.toDouble();
        if (!m_positionPending) {
            m_positionPending = true;
            m_positionAge.start();
            if (!m_positionTimerArmed) {
                m_positionTimerArmed = true;
                QTimer::singleShot(kPositionWaitMs, this, &MpvView::positionWaitEnded);
            }
        }
    } else if (property == QLatin1String("duration")) {
        if (current && value.isValid())
            m_duration = value.toDouble();
        emit durationChanged();
    } else if (property == QLatin1String("pause")) {
        m_pause = value.toBool();
        emit pauseChanged();
        if (!initial)
            showText(readBack(property).toBool() ? tr("❚❚ paused") : tr("▶ playing"));
    } else if (property == QLatin1String("volume")) {
        if (value.isValid())
            m_volume = value.toInt();
        emit volumeChanged();
        if (!initial) {
            const int volume = static_cast<int>(std::lround(readBack(property).toDouble()));
            showText(QStringLiteral("🔊%1%").arg(volume));
        }
    } else if (property == QLatin1String("mute")) {
        m_mute = value.toBool();
        emit muteChanged();
        if (!initial)
            showText(readBack(property).toBool() ? tr("🔇 Muted") : tr("🔊 Unmuted"));
    } else if (property == QLatin1String("speed")) {
        if (value.isValid())
            m_speed = value.toDouble();
        emit speedChanged();
        if (!initial)
            showText(QStringLiteral("🏃 %1x").arg(QString::number(readBack(property).toDouble(), 'g')));
    } else if (property == QLatin1String("hwdec")) {
        emit hwdecChanged();
    } else if (property == QLatin1String("hwdec-current")) {
        if (!initial && value.isValid() && value.toString() != QLatin1String("no"))
            showText(QStringLiteral("🖥️ ") + tr("Hardware Decoding:") + value.toString());
    } else if (property == QLatin1String("media-title")) {
        m_mediaTitle = value.toString();
        emit mediaTitleChanged();
    } else if (property == QLatin1String("track-list")) {
        const QVariantList trackList = value.toList();
        m_audioTracks = audioTracksFrom(trackList);
        m_subtitleTracks = subtitleTracksFrom(trackList);
        emit audioTrackChanged();
        emit subtitleTrackChanged();
    } else if (property == QLatin1String("aid")) {
        emit currentAudioTrackChanged();
    } else if (property == QLatin1String("sid")) {
        emit currentSubtitleTrackChanged();
    } else if (property == QLatin1String("video-aspect-override") || property == QLatin1String("panscan")) {
        emit aspectRatioChanged();
    }
}

QVariant MpvView::readBack(const QString& property)
{
    const QVariant value = controller()->getProperty(property);
    return isError(value) ? QVariant() : value;
}

void MpvView::showText(const QString& text)
{
    const QVariant result =
        controller()->command(QVariantList{QStringLiteral("show-text"), text, kMessageDuration});
    if (!isError(result))
        m_lastShownText = text;
}

void MpvView::setMute(bool value)
{
    emit setProperty(QStringLiteral("mute"), value);
}

void MpvView::setPause(bool value)
{
    emit setProperty(QStringLiteral("pause"), value);
}

void MpvView::setSpeed(double value)
{
    emit setProperty(QStringLiteral("speed"), value);
}

void MpvView::setVolume(int value)
{
    emit setProperty(QStringLiteral("volume"), value);
}

void MpvView::setPosition(double value)
{
    if (m_currentUrl.isEmpty() || std::abs(value - position()) < kSeekTolerance)
        return;
    emit setProperty(QStringLiteral("time-pos"), value);
}

int MpvView::currentAudioTrack()
{
    const int id = readBack(QStringLiteral("aid")).toInt();
    spdlog::info("currentAudioTrack{}", id);
    return id;
}

int MpvView::currentSubtitleTrack()
{
    const QVariant value = readBack(QStringLiteral("sid"));
    const QString text = value.toString();
    const int id = (text == QLatin1String("no") || text == QLatin1String("false")) ? -1 : value.toInt();
    spdlog::info("currentSubtitleTrack: {}", id);
    return id;
}

QString MpvView::hwdecMode()
{
    return readBack(QStringLiteral("hwdec")).toString();
}

void MpvView::setHwdecMode(const QString& mode)
{
    if (mode == hwdecMode())
        return;
    emit setProperty(QStringLiteral("hwdec"), mode);
}

void MpvView::setAspectRatio(ASPECT_RATIO ratio)
{
    QString keepAspect = QStringLiteral("yes");
    QString aspectOverride;
    QString label;
    switch (ratio) {
    case RATIO4_3:
        aspectOverride = label = QStringLiteral("4:3");
        break;
    case RATIO16_9:
        aspectOverride = label = QStringLiteral("16:9");
        break;
    case FILL:
        keepAspect = QStringLiteral("no");
        aspectOverride = QStringLiteral("window");
        label = tr("Full");
        break;
    case DEFAULT:
    default:
        ratio = DEFAULT;
        aspectOverride = QStringLiteral("-1");
        label = tr("default");
        break;
    }
    // Older libmpv rejects "window" as an override; "keepaspect" off fills the item anyway.
    controller()->setPropertyAsync(QStringLiteral("keepaspect"), keepAspect, 0);
    controller()->setPropertyAsync(QStringLiteral("video-aspect-override"), aspectOverride, 0);
    if (m_aspectRatio != ratio) {
        m_aspectRatio = ratio;
        emit aspectRatioChanged();
    }
    showText(tr("Aspect Ratio:") + label);
}

QVariantList MpvView::getAudioTracks()
{
    return audioTracksFrom(readBack(QStringLiteral("track-list")).toList());
}

QVariantList MpvView::getSubtitleTracks()
{
    return subtitleTracksFrom(readBack(QStringLiteral("track-list")).toList());
}

QVariantList MpvView::audioTracksFrom(const QVariantList& trackList) const
{
    QVariantList tracks;
    for (const QVariant& entry : trackList) {
        const QVariantMap track = entry.toMap();
        if (track.value(QStringLiteral("type")).toString() != QLatin1String("audio"))
            continue;
        const int id = track.value(QStringLiteral("id")).toInt();
        QString title = track.value(QStringLiteral("title")).toString();
        if (title.isEmpty())
            title = tr("Audio Track") + QLatin1Char(' ') + QString::number(id);
        tracks.append(QVariantMap{
            {QStringLiteral("id"), id},
            {QStringLiteral("title"), title},
            {QStringLiteral("lang"), track.value(QStringLiteral("lang")).toString()},
            {QStringLiteral("codec"), track.value(QStringLiteral("codec")).toString()},
            {QStringLiteral("channels"), track.value(QStringLiteral("demux-channel-count")).toInt()},
            {QStringLiteral("samplerate"), track.value(QStringLiteral("demux-samplerate")).toInt()},
            {QStringLiteral("bitrate"), track.value(QStringLiteral("demux-bitrate")).toInt()},
            {QStringLiteral("selected"), track.value(QStringLiteral("selected")).toBool()},
        });
    }
    return tracks;
}

QVariantList MpvView::subtitleTracksFrom(const QVariantList& trackList) const
{
    QVariantList tracks;
    bool anySelected = false;
    for (const QVariant& entry : trackList) {
        const QVariantMap track = entry.toMap();
        if (track.value(QStringLiteral("type")).toString() != QLatin1String("sub"))
            continue;
        const int id = track.value(QStringLiteral("id")).toInt();
        QString title = track.value(QStringLiteral("title")).toString();
        if (title.isEmpty())
            title = tr("SubTitle") + QLatin1Char(' ') + QString::number(id);
        const bool selected = track.value(QStringLiteral("selected")).toBool();
        anySelected = anySelected || selected;
        tracks.append(QVariantMap{
            {QStringLiteral("id"), id},
            {QStringLiteral("title"), title},
            {QStringLiteral("lang"), track.value(QStringLiteral("lang")).toString()},
            {QStringLiteral("codec"), track.value(QStringLiteral("codec")).toString()},
            {QStringLiteral("forced"), track.value(QStringLiteral("forced")).toBool()},
            {QStringLiteral("external"), track.value(QStringLiteral("external")).toBool()},
            {QStringLiteral("selected"), selected},
            {QStringLiteral("default"), track.value(QStringLiteral("default")).toBool()},
        });
    }
    // Choosing this entry turns subtitles off (id -1, see setSubtitleTrack).
    tracks.prepend(QVariantMap{
        {QStringLiteral("id"), -1},
        {QStringLiteral("title"), tr("no subtitle")},
        {QStringLiteral("lang"), QString()},
        {QStringLiteral("codec"), QString()},
        {QStringLiteral("forced"), false},
        {QStringLiteral("external"), false},
        {QStringLiteral("selected"), !anySelected},
        {QStringLiteral("default"), false},
    });
    return tracks;
}

void MpvView::setAudioTrack(int audio_id)
{
    if (audio_id == currentAudioTrack())
        return;
    emit setProperty(QStringLiteral("aid"), audio_id);
    emit currentAudioTrackChanged();
    const QString title = titleOf(m_audioTracks, audio_id);
    showText(QStringLiteral("🔊:") + (title.isEmpty() ? QString() : QLatin1Char(' ') + title));
}

void MpvView::setSubtitleTrack(int subtilte_id)
{
    if (subtilte_id == currentSubtitleTrack())
        return;
    spdlog::info("setSubtitleTrack: {}", subtilte_id);
    emit setProperty(QStringLiteral("sid"),
                     subtilte_id == -1 ? QVariant(QStringLiteral("no")) : QVariant(subtilte_id));
    emit currentSubtitleTrackChanged();
    const QString title = titleOf(m_subtitleTracks, subtilte_id);
    showText(QStringLiteral("📝") + (title.isEmpty() ? QString() : QLatin1Char(' ') + title));
}

void MpvView::getScreenshot()
{
    // The encoder runs on the pool with a client handle of its own, so the core outlives the
    // task even if this view goes away meanwhile (ending the core waits for the handle).
    MpvClientPtr client(mpv_create_client(controller()->mpv(), "screenshot"));
    if (!client)
        return;
    QPointer<MpvView> view(this);
    const QString folder = AppPaths::current().screenshotFolder;
    ThreadPool::instance().submit([client = std::move(client), view, folder]() mutable {
        QDir().mkpath(folder);
        const QString path = QDir(folder).absoluteFilePath(
            QStringLiteral("screenshot_%1.png")
                .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss_zzz"))));
        MpvController::runCommand(
            client.get(), QVariantList{QStringLiteral("screenshot-to-file"), path, QStringLiteral("video")});
        client.reset();
        if (!QFileInfo::exists(path))
            return;
        const QString url = QUrl::fromLocalFile(path).toString();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [view, url] {
                if (view)
                    view->onScreenshotSaved(url);
            },
            Qt::QueuedConnection);
    });
}

void MpvView::onScreenshotSaved(const QString& fileUrl)
{
    emit screenshotTaken(fileUrl);
    showText(QStringLiteral("📷") + tr(" ScreenShot saved"));
}

void MpvView::loadFile(const QString& file)
{
    const QString url = canonicalUrl(file);
    if (url == m_currentUrl)
        return;
    stop();
    m_currentUrl = url;
    resetPlaybackState();
    emit currentUrlChanged();
    const QUrl parsed(url);
    const QString target = parsed.isLocalFile() ? parsed.toLocalFile() : url;
    // Queued behind the "stop" above on the controller's thread, so the two keep their order.
    VIDORA_TSAN_RELEASE(controller());
    QMetaObject::invokeMethod(
        controller(), [mpv = controller(), target, token = ++m_loadToken] { mpv->loadFile(target, token); },
        Qt::QueuedConnection);
    // The row exists from the start; an unknown position (-1) keeps a stored resume point.
    saveHistory(false);
}

void MpvView::stop()
{
    if (m_currentUrl.isEmpty())
        return;
    saveHistory(false);
    // Queued on the controller's thread like the "loadfile" that may follow, so the two keep
    // their order and the GUI never waits for libmpv to wind the file down.
    emit command(QVariantList{QStringLiteral("stop")});
    m_currentUrl.clear();
    ++m_loadToken;
    m_entryId = -1;
    m_started = false;
    resetPlaybackState();
    emit currentUrlChanged();
}

void MpvView::resetPlaybackState()
{
    m_position = -1.0;
    m_duration = 0.0;
    emit positionChanged();
    emit durationChanged();
}

void MpvView::onFileQueued(quint64 token, qint64 playlistEntryId)
{
    if (token == m_loadToken && !m_currentUrl.isEmpty())
        m_entryId = playlistEntryId;
}

void MpvView::onLoadRefused(quint64 token, const QString& reason)
{
    if (token != m_loadToken || m_currentUrl.isEmpty())
        return;
    spdlog::error("libmpv refused to load {}: {}", m_currentUrl.toStdString(), reason.toStdString());
    // Like a file that cannot be opened: its row keeps what it had and the next one may play.
    endCurrentFile(false);
}

void MpvView::onFileStarted(qint64 playlistEntryId)
{
    if (m_entryId >= 0 && playlistEntryId == m_entryId)
        m_started = true;
    emit fileStarted();
}

void MpvView::onFileRedirected(qint64 playlistEntryId, qint64 firstInsertedEntryId)
{
    // A folder or playlist plays as its first entry; the history row stays the one loaded.
    if (m_entryId >= 0 && playlistEntryId == m_entryId) {
        m_entryId = firstInsertedEntryId;
        m_started = false;
    }
}

void MpvView::resumePlayback()
{
    if (m_currentUrl.isEmpty() || !m_started)
        return;
    const double resumeAt = SqlHelper::instance()->getLastPosition(m_currentUrl);
    // The duration as reported so far (no blocking read while libmpv sets up the first frame);
    // the stored one stands in before the first report.
    const double duration = m_duration > 0.0 ? m_duration : SqlHelper::instance()->getDuration(m_currentUrl);
    if (resumeAt <= 0.0 || (duration > 0.0 && resumeAt >= duration - kResumeEndMargin))
        return;
    emit setProperty(QStringLiteral("time-pos"), resumeAt);
    m_position = resumeAt;
    emit positionChanged();
}

void MpvView::onEndFile(const QString& reason, qint64 playlistEntryId)
{
    // Ends of files already replaced are not this file's.
    if (m_currentUrl.isEmpty() || !m_started || playlistEntryId != m_entryId)
        return;
    endCurrentFile(reason == QLatin1String("eof"));
}

void MpvView::endCurrentFile(bool finished)
{
    saveHistory(finished);
    // A file played to its end resumes from the start: stop()'s own save must not put the
    // end position back.
    if (finished)
        m_position = 0.0;
    stop();
    emit playEnd();
}

void MpvView::deleteVideoByUrl(const QString& url)
{
    if (canonicalUrl(url) == m_currentUrl)
        stop();
    SqlHelper::instance()->deleteVideoByUrl(url);
}

void MpvView::saveHistory(bool finished)
{
    if (m_currentUrl.isEmpty())
        return;
    const QString path = FileHelper::toLocalPath(m_currentUrl);
    SqlHelper* store = SqlHelper::instance();
    const double position = finished ? 0.0 : m_position;
    // Before libmpv knows the duration, the stored one is the best there is.
    const double duration = m_duration > 0.0 ? m_duration : store->getDuration(m_currentUrl);
    store->saveVideoInfo(m_currentUrl, QFileInfo(path).fileName(), duration, position, QByteArray(), 0, 0);
    spdlog::info("Video info saved successfully for: {}", path.toStdString());
}
