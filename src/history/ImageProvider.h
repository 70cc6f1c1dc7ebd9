#pragma once

#include <QHash>
#include <QImage>
#include <QObject>
#include <QQuickImageProvider>
#include <QString>
#include <memory>
#include <mutex>

// Turns a frame of a video into a plain QML image. A delegate asks for a thumbnail of its row
// with a tag; a pool thread grabs the frame, converts it to RGB (limited range, in software:
// thumbnails are small), files it under the key tag + index + ".png" and announces the key;
// the delegate then shows "image://ImageProvider/" + key.
//
// One process-wide instance serves as the QML singleton ImageProvider and as the engine's
// image provider "ImageProvider" (through a stand-in, since an engine deletes its providers).
// Threads: the invokables run on the GUI thread, load jobs on the pool, and
// requestImage on the engine's image thread; the cache is guarded by m_cacheMutex.
class ImageProvider : public QObject, public QQuickImageProvider
{
    Q_OBJECT
public:
    explicit ImageProvider(QObject* parent = nullptr);
    // Waits for a load job that is storing or announcing its picture; jobs that finish
    // later drop their result.
    ~ImageProvider() override;

    // The process-wide instance (see ProcessWide.h).
    static ImageProvider* instance();

    // The cache key of a row's picture, e.g. "CVideoCard3.png". The suffix is only part of
    // the name; nothing is encoded as PNG.
    static QString keyFor(const QString& format, int index);

    // A copy of the cached picture, or a null image for an unknown id. requestedSize is
    // ignored: delegates scale the picture themselves.
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

signals:
    // From a pool thread; filePath carries the key.
    void imageLoaded(int index, QString filePath);

public:
    Q_INVOKABLE void loadThumbnailFromUrl(int index, const QString& url, double seconds,
                                          const QString& format);
    // Returns at once; a picture that cannot be made is logged and announces nothing.
    Q_INVOKABLE void loadThumbnail(int index, const QString& filePath, double seconds, const QString& format);

private:
    // Lets load jobs outlive the provider: a job stores and emits only while holding the
    // gate's mutex with owner set, and the destructor clears owner under the same mutex.
    struct Gate
    {
        std::mutex mutex;
        ImageProvider* owner = nullptr;
    };

    void store(const QString& key, QImage image);

    std::shared_ptr<Gate> m_gate;
    std::mutex m_cacheMutex;
    QHash<QString, QImage> m_cache; // one entry per tag and row index, replaced on reload
};
