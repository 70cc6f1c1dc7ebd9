#include "MprisService.h"

#include "AppPaths.h"
#include "CommonTool.h"
#include "GrabbedFrame.h"
#include "MprisPlayerAdaptor.h"
#include "MprisRootAdaptor.h"
#include "MpvView.h"
#include "ProcessWide.h"
#include "ThreadPool.h"
#include "YuvToRgb.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDBusMessage>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>
#include <cmath>
#include <spdlog/spdlog.h>

namespace {

const QString kPlayerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");

// Position reports follow every frame; a larger step than this is a jump, not playback.
constexpr double kJumpSeconds = 1.0;

// Where the cover picture is taken: past a typical fade-in, and the grabber falls back to
// the last frame before it in shorter files.
constexpr double kArtSeconds = 3.0;
constexpr int kArtWidth = 512;

qlonglong microseconds(double seconds) { return static_cast<qlonglong>(std::llround(seconds * 1e6)); }

// Variants holding object paths do not compare by value; their text does.
QVariant comparable(const QVariant& value)
{
    if (value.userType() != QMetaType::QVariantMap)
        return value;
    QVariantMap map = value.toMap();
    for (auto it = map.begin(); it != map.end(); ++it)
        if (it->userType() == qMetaTypeId<QDBusObjectPath>())
            *it = it->value<QDBusObjectPath>().path();
    return map;
}

} // namespace

MprisService* MprisService::instance()
{
    return &processWide<MprisService>();
}

MprisService* MprisService::makeProcessWide()
{
    return new MprisService;
}

void MprisService::playerCreated(MpvView* view)
{
    instance()->setPlayer(view);
}

MprisService::MprisService(QObject* parent) : QObject(parent)
{
    MpvView::setCreatedHook(&MprisService::playerCreated);
    new MprisRootAdaptor(this, this);
    new MprisPlayerAdaptor(this, this);
}

bool MprisService::start(QDBusConnection bus)
{
    if (m_started)
        return true;
    if (!bus.isConnected()) {
        spdlog::info("No session bus; media controls are off: {}", bus.lastError().message().toStdString());
        return false;
    }
    if (!bus.registerObject(QString::fromLatin1(kObjectPath), this, QDBusConnection::ExportAdaptors)) {
        spdlog::error("Cannot export the media controls: {}", bus.lastError().message().toStdString());
        return false;
    }
    // A second player of the same user would refuse to start, so the name is always free
    // unless another program took it.
    if (!bus.registerService(QString::fromLatin1(kServiceName))) {
        spdlog::error("Cannot claim {}: {}", kServiceName, bus.lastError().message().toStdString());
        bus.unregisterObject(QString::fromLatin1(kObjectPath));
        return false;
    }
    m_bus = bus;
    m_started = true;
    return true;
}

MpvView* MprisService::player() const { return m_player.data(); }

void MprisService::setPlayer(MpvView* view)
{
    if (m_player == view)
        return;
    if (m_player)
        disconnect(m_player, nullptr, this, nullptr);
    m_player = view;
    if (view) {
        const auto status = [this] { publish({QStringLiteral("PlaybackStatus")}); };
        const auto meta = [this] { publish({QStringLiteral("Metadata")}); };
        connect(view, &MpvView::pauseChanged, this, status);
        connect(view, &MpvView::currentUrlChanged, this, &MprisService::onUrlChanged);
        connect(view, &MpvView::durationChanged, this, meta);
        connect(view, &MpvView::mediaTitleChanged, this, meta);
        connect(view, &MpvView::volumeChanged, this, [this] { publish({QStringLiteral("Volume")}); });
        connect(view, &MpvView::muteChanged, this, [this] { publish({QStringLiteral("Volume")}); });
        connect(view, &MpvView::speedChanged, this, [this] { publish({QStringLiteral("Rate")}); });
        connect(view, &MpvView::positionChanged, this, &MprisService::onPositionChanged);
    }
    onUrlChanged();
}

QString MprisService::playbackStatus() const
{
    if (!m_player || m_player->fileUrl().isEmpty())
        return QStringLiteral("Stopped");
    return m_player->pause() ? QStringLiteral("Paused") : QStringLiteral("Playing");
}

QVariantMap MprisService::metadata() const
{
    QVariantMap map;
    if (!m_player || m_player->fileUrl().isEmpty()) {
        map.insert(QStringLiteral("mpris:trackid"),
                   QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/mpris/MediaPlayer2/TrackList/NoTrack"))));
        return map;
    }
    const QString url = m_player->fileUrl();
    map.insert(QStringLiteral("mpris:trackid"),
               QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/vidora/vidora/track/%1").arg(m_track))));
    const QString title = m_player->mediaTitle();
    map.insert(QStringLiteral("xesam:title"), title.isEmpty() ? QUrl(url).fileName() : title);
    map.insert(QStringLiteral("xesam:url"), url);
    if (m_player->duration() > 0.0)
        map.insert(QStringLiteral("mpris:length"), microseconds(m_player->duration()));
    if (!m_artUrl.isEmpty())
        map.insert(QStringLiteral("mpris:artUrl"), m_artUrl);
    return map;
}

qlonglong MprisService::positionMicroseconds() const { return m_player ? microseconds(m_player->position()) : 0; }

double MprisService::volume() const
{
    if (!m_player || m_player->mute())
        return 0.0;
    return m_player->volume() / 100.0;
}

void MprisService::setVolume(double volume)
{
    if (!m_player || std::isnan(volume))
        return;
    if (m_player->mute() && volume > 0.0)
        m_player->setMute(false);
    m_player->setVolume(static_cast<int>(std::lround(std::max(0.0, volume) * 100.0)));
}

double MprisService::rate() const { return m_player ? m_player->speed() : 1.0; }

void MprisService::setRate(double rate)
{
    if (!m_player || std::isnan(rate))
        return;
    // Desktops ask for rate 0 to mean pause.
    if (rate <= 0.0)
        pause();
    else
        m_player->setSpeed(rate);
}

void MprisService::playPause()
{
    if (m_player && !m_player->fileUrl().isEmpty())
        m_player->setPause(!m_player->pause());
}

void MprisService::play()
{
    if (m_player && !m_player->fileUrl().isEmpty())
        m_player->setPause(false);
}

void MprisService::pause()
{
    if (m_player && !m_player->fileUrl().isEmpty())
        m_player->setPause(true);
}

void MprisService::stop()
{
    if (m_player)
        m_player->stop();
}

void MprisService::seek(qlonglong offsetMicroseconds)
{
    if (!m_player || m_player->fileUrl().isEmpty())
        return;
    const double target = m_player->position() + offsetMicroseconds / 1e6;
    if (m_player->duration() > 0.0 && target >= m_player->duration())
        emit nextRequested();
    else
        m_player->setPosition(std::max(0.0, target));
}

void MprisService::setPosition(const QDBusObjectPath& trackId, qlonglong positionMicroseconds)
{
    if (!m_player || m_player->fileUrl().isEmpty() || trackId != metadata().value("mpris:trackid").value<QDBusObjectPath>())
        return;
    const double target = positionMicroseconds / 1e6;
    if (target < 0.0 || (m_player->duration() > 0.0 && target > m_player->duration()))
        return;
    m_player->setPosition(target);
}

void MprisService::openUri(const QString& uri)
{
    const QUrl url = QUrl::fromUserInput(uri, QString(), QUrl::AssumeLocalFile);
    if (!url.isLocalFile()) {
        spdlog::error("Only local files can be opened, not {}", uri.toStdString());
        return;
    }
    emit openUriRequested(url.toLocalFile());
}

void MprisService::raise()
{
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (!window->isVisible() || window->transientParent())
            continue;
        if (window->windowState() & Qt::WindowMinimized)
            window->showNormal();
        window->raise();
        window->requestActivate();
    }
}

void MprisService::quit() { QCoreApplication::quit(); }

void MprisService::onUrlChanged()
{
    ++m_track;
    m_artUrl.clear();
    m_lastPosition = 0.0;
    // Nobody sees a cover picture without a bus; no frame is decoded for it then.
    if (m_started && m_player && !m_player->fileUrl().isEmpty())
        makeArt(m_player->fileUrl());
    publish({QStringLiteral("PlaybackStatus"), QStringLiteral("Metadata")});
}

void MprisService::onPositionChanged()
{
    const double position = m_player->position();
    const bool jumped = std::abs(position - m_lastPosition) > kJumpSeconds;
    m_lastPosition = position;
    if (jumped)
        emit seeked(microseconds(position));
}

void MprisService::makeArt(const QString& url)
{
    const QUrl parsed(url);
    if (!parsed.isLocalFile())
        return;
    const QString source = parsed.toLocalFile();
    const QString folder = AppPaths::current().artFolder;
    const QString target = QDir(folder).filePath(
        QString::fromLatin1(QCryptographicHash::hash(url.toUtf8(), QCryptographicHash::Sha1).toHex()) +
        QStringLiteral(".png"));
    QPointer<MprisService> self(this);
    const auto deliver = [self, url, target] {
        if (!self || !self->m_player || self->m_player->fileUrl() != url)
            return;
        self->m_artUrl = QUrl::fromLocalFile(target).toString();
        self->publish({QStringLiteral("Metadata")});
    };
    const QFileInfo art(target);
    if (art.exists() && art.lastModified() >= QFileInfo(source).lastModified()) {
        deliver();
        return;
    }
    CommonTool* tool = CommonTool::instance();
    ThreadPool::instance().submit([tool, source, folder, target, deliver] {
        const GrabbedFrame frame = grabThumbnailFrame(tool, source, kArtSeconds);
        if (!frame.isValid())
            return;
        QImage image = yuv420ToImage(frame.yPlane(), frame.width, frame.height);
        if (image.width() > kArtWidth)
            image = image.scaledToWidth(kArtWidth, Qt::SmoothTransformation);
        QDir().mkpath(folder);
        if (!image.save(target, "PNG")) {
            spdlog::error("Cannot write the cover picture {}", target.toStdString());
            return;
        }
        QMetaObject::invokeMethod(QCoreApplication::instance(), deliver, Qt::QueuedConnection);
    });
}

QVariant MprisService::propertyValue(const QString& name) const
{
    if (name == QLatin1String("PlaybackStatus"))
        return playbackStatus();
    if (name == QLatin1String("Metadata"))
        return metadata();
    if (name == QLatin1String("Volume"))
        return volume();
    if (name == QLatin1String("Rate"))
        return rate();
    return {};
}

void MprisService::publish(const QStringList& names)
{
    QVariantMap changed;
    for (const QString& name : names) {
        const QVariant value = propertyValue(name);
        if (m_sent.contains(name) && comparable(m_sent.value(name)) == comparable(value))
            continue;
        m_sent.insert(name, value);
        changed.insert(name, value);
    }
    if (!m_started || changed.isEmpty())
        return;
    QDBusMessage signal = QDBusMessage::createSignal(QString::fromLatin1(kObjectPath),
                                                     QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("PropertiesChanged"));
    signal << kPlayerInterface << changed << QStringList();
    m_bus.send(signal);
}
