#include "ImageProvider.h"

#include "CommonTool.h"
#include "FileHelper.h"
#include "GrabbedFrame.h"
#include "ProcessWide.h"
#include "ThreadPool.h"
#include "YuvToRgb.h"

#include <spdlog/spdlog.h>

ImageProvider::ImageProvider(QObject* parent)
    : QObject(parent), QQuickImageProvider(QQuickImageProvider::Image), m_gate(std::make_shared<Gate>())
{
    m_gate->owner = this;
}

ImageProvider::~ImageProvider()
{
    {
        std::lock_guard<std::mutex> lock(m_gate->mutex);
        m_gate->owner = nullptr;
    }
}

ImageProvider* ImageProvider::instance()
{
    return &processWide<ImageProvider>();
}

QString ImageProvider::keyFor(const QString& format, int index)
{
    return format + QString::number(index) + QStringLiteral(".png");
}

QImage ImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    Q_UNUSED(requestedSize)
    QImage image;
    {
        std::lock_guard<std::mutex> lock(m_cacheMutex);
        const auto it = m_cache.constFind(id);
        if (it == m_cache.constEnd())
            return {};
        image = it.value();
    }
    if (size)
        *size = image.size();
    return image;
}

void ImageProvider::store(const QString& key, QImage image)
{
    std::lock_guard<std::mutex> lock(m_cacheMutex);
    m_cache.insert(key, std::move(image));
}

void ImageProvider::loadThumbnailFromUrl(int index, const QString& url, double seconds, const QString& format)
{
    loadThumbnail(index, FileHelper::toLocalPath(url), seconds, format);
}

void ImageProvider::loadThumbnail(int index, const QString& filePath, double seconds, const QString& format)
{
    // Made here, on the GUI thread, so the shared tool never belongs to a pool thread.
    CommonTool* tool = CommonTool::instance();
    ThreadPool::instance().submit([gate = m_gate, tool, index, filePath, seconds, format]() {
        const GrabbedFrame frame = grabThumbnailFrame(tool, filePath, seconds);
        if (!frame.isValid())
            return;
        // The conversion's own copy of the pixels, so the cache never shares the grab buffer.
        QImage image = yuv420ToImage(frame.buffer.get(), frame.width, frame.height);
        if (image.isNull()) {
            spdlog::error("Failed to load thumbnail for file: {}", filePath.toStdString());
            return;
        }
        const QString key = keyFor(format, index);
        spdlog::info("Setting image for index {}: {}", index, key.toStdString());
        std::lock_guard<std::mutex> lock(gate->mutex);
        if (!gate->owner)
            return;
        gate->owner->store(key, std::move(image));
        emit gate->owner->imageLoaded(index, key);
    });
}
