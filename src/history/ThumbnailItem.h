#pragma once

#include <QQuickFramebufferObject>
#include <QString>
#include <memory>

struct ThumbnailLink;

// The hover preview above the progress bar: one frame of a file at a given second, decoded on
// the pool and drawn by UserFboRenderer, sized to fit a box (default 210 x 130).
//
// Threads: the invokables and the signalUpdate handling run on the GUI thread, load jobs on
// the pool (they touch only the shared link and the renderer's frame, under their mutexes),
// createRenderer on the render thread.
class ThumbnailItem : public QQuickFramebufferObject
{
    Q_OBJECT
public:
    explicit ThumbnailItem(QQuickItem* parent = nullptr);
    ~ThumbnailItem() override;

    Renderer* createRenderer() const override;

signals:
    // From a load job once a frame is stored: the size to take, (0, 0) for "keep the size".
    void signalUpdate(int width, int height);

public:
    Q_INVOKABLE void loadThumbnailFromUrl(const QString& url, double seconds);
    // Returns at once; a newer call does not cancel an older one, the last to finish wins.
    Q_INVOKABLE void loadThumbnail(const QString& filePath, double seconds);
    Q_INVOKABLE void setMaxSize(int width, int height);
    // The size a load gives a frame of that size in a box of that size. Taking it before the
    // first load saves a frame dropped for the resize and fetched again.
    Q_INVOKABLE QSize fittedSize(int frameWidth, int frameHeight, int maxWidth, int maxHeight) const;

protected:
    void geometryChanged(const QRectF& newGeometry, const QRectF& oldGeometry) override;

private:
    void onSignalUpdate(int width, int height);

    std::shared_ptr<ThumbnailLink> m_link; // also holds the renderer pointer and the box
};
