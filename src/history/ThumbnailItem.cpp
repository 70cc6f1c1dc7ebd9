#include "ThumbnailItem.h"

#include "FileHelper.h"
#include "ThumbnailFit.h"
#include "ThumbnailLink.h"
#include "UserFboRenderer.h"
#include "YuvFrame.h"

ThumbnailItem::ThumbnailItem(QQuickItem* parent)
    : QQuickFramebufferObject(parent), m_link(std::make_shared<ThumbnailLink>())
{
    m_link->framebufferItem = true;
    m_link->announce = [this](int width, int height) { emit signalUpdate(width, height); };
    // The renderer draws the first image row at the bottom of its framebuffer (texture row
    // 0), and Qt Quick shows a framebuffer's row 0 at the item's top: upright as it stands,
    // so no mirroring (mirroring turned the preview upside down).
    setMirrorVertically(false);
    connect(this, &ThumbnailItem::signalUpdate, this, &ThumbnailItem::onSignalUpdate, Qt::QueuedConnection);
}

ThumbnailItem::~ThumbnailItem()
{
    m_link->detach();
}

QQuickFramebufferObject::Renderer* ThumbnailItem::createRenderer() const
{
    std::lock_guard<std::mutex> lock(m_link->mutex);
    if (m_link->renderer)
        return static_cast<UserFboRenderer*>(m_link->renderer);
    auto* renderer = new UserFboRenderer(m_link);
    renderer->initialize();
    m_link->renderer = renderer;
    m_link->frame = renderer->frame();
    return renderer;
}

void ThumbnailItem::loadThumbnailFromUrl(const QString& url, double seconds)
{
    loadThumbnail(FileHelper::toLocalPath(url), seconds);
}

void ThumbnailItem::loadThumbnail(const QString& filePath, double seconds)
{
    startThumbnailLoad(m_link, filePath, seconds);
}

void ThumbnailItem::setMaxSize(int width, int height)
{
    m_link->setBox(width, height);
}

QSize ThumbnailItem::fittedSize(int frameWidth, int frameHeight, int maxWidth, int maxHeight) const
{
    return fitThumbnail(frameWidth, frameHeight, maxWidth, maxHeight);
}

void ThumbnailItem::geometryChanged(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    m_link->setItemSize(newGeometry.size());
    QQuickFramebufferObject::geometryChanged(newGeometry, oldGeometry);
}

void ThumbnailItem::onSignalUpdate(int width, int height)
{
    std::shared_ptr<YuvFrame> frame;
    {
        std::lock_guard<std::mutex> lock(m_link->mutex);
        if (m_link->renderer)
            frame = m_link->frame;
    }
    if (frame && width <= 0 && height < 1) {
        update();
        return;
    }
    if (frame) {
        // A resize drops the frame just stored: the framebuffer is remade at the new size
        // and keeps showing what was uploaded last until the next load.
        std::lock_guard<std::mutex> lock(frame->mutex);
        frame->discard();
    }
    if (width > 0)
        setWidth(width);
    if (height > 0)
        setHeight(height);
    update();
}
