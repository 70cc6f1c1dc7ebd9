#pragma once

#include <QHash>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>
#include <future>
#include <mutex>

// Pictures named to it in advance and decoded on the pool at once, so an Image made much
// later finds its picture ready. The empty state's artwork is a large PNG: decoded only once
// the scene is built, it would reach the screen two or three frames after the window.
//
// Images ask for "image://<provider>/<id>" with a sourceSize and fillMode PreserveAspectCrop;
// the picture is scaled to cover that size, as Qt's image reader scales a file for such an
// Image. Threads: prefetch on the GUI thread; requests on the GUI thread for an Image that
// loads synchronously (it waits for the prefetched decode, which has usually ended), else on
// Qt's image reader thread.
class PrefetchImageProvider : public QQuickImageProvider
{
public:
    PrefetchImageProvider();

    // Names `file` as `id` and starts decoding it for an Image whose sourceSize is `size`.
    // A request for another size decodes again when it comes.
    void prefetch(const QString& id, const QString& file, const QSize& size);

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    struct Prefetched
    {
        QSize requestedSize;
        std::shared_future<QImage> image;
    };

    std::mutex m_mutex;
    QHash<QString, QString> m_files;        // id -> file
    QHash<QString, Prefetched> m_prefetched; // id -> its decode, until asked for
};
