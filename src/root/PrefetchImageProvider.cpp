#include "PrefetchImageProvider.h"

#include "ThreadPool.h"

#include <QImageReader>
#include <algorithm>
#include <memory>

namespace {

// The size Qt's image reader decodes a picture to for an Image with this sourceSize and
// PreserveAspectCrop: the picture's aspect kept, scaled until it covers the whole size.
QSize coverSize(const QSize& original, const QSize& requested)
{
    if (original.isEmpty() || (requested.width() <= 0 && requested.height() <= 0))
        return QSize();
    qreal ratio = requested.width() > 0 ? qreal(requested.width()) / original.width() : 0.0;
    if (requested.height() > 0)
        ratio = std::max(ratio, qreal(requested.height()) / original.height());
    return QSize(qRound(original.width() * ratio), qRound(original.height() * ratio));
}

QImage decode(const QString& file, const QSize& requestedSize)
{
    QImageReader reader(file);
    const QSize scaled = coverSize(reader.size(), requestedSize);
    if (scaled.isValid())
        reader.setScaledSize(scaled);
    return reader.read();
}

} // namespace

PrefetchImageProvider::PrefetchImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

void PrefetchImageProvider::prefetch(const QString& id, const QString& file, const QSize& size)
{
    auto task = std::make_shared<std::packaged_task<QImage()>>([file, size] { return decode(file, size); });
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_files.insert(id, file);
        m_prefetched.insert(id, {size, task->get_future().share()});
    }
    ThreadPool::instance().submit([task] { (*task)(); });
}

QImage PrefetchImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    QString file;
    Prefetched prefetched;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        file = m_files.value(id);
        // Handed out once: afterwards only the scene's own cache holds the picture.
        prefetched = m_prefetched.take(id);
    }
    QImage image = prefetched.image.valid() && prefetched.requestedSize == requestedSize
                       ? prefetched.image.get()
                       : decode(file, requestedSize);
    if (size)
        *size = image.size();
    return image;
}
