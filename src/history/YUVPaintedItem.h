#pragma once

#include <QQuickPaintedItem>
#include <QString>
#include <memory>

struct ThumbnailLink;
struct YuvFrame;
class YuvPlaneTextures;

// The frame preview of the clip and merge tools: one frame of a file at a given second,
// decoded on the pool and painted with native OpenGL inside the item's painter (shaders of
// the compatibility profile), sized to fit a box (default 210 x 130).
//
// Threads: invokables and signalUpdate handling on the GUI thread, load jobs on the pool
// (they touch only the shared link and frame, under their mutexes), paint() on the
// scene-graph render thread, which alone owns the GL objects.
class YUVPaintedItem : public QQuickPaintedItem
{
    Q_OBJECT
public:
    explicit YUVPaintedItem(QQuickItem* parent = nullptr);
    ~YUVPaintedItem() override;

    void paint(QPainter* painter) override;

signals:
    // From a load job once a frame is stored: the size to take, (0, 0) for "keep the size".
    void signalUpdate(int width, int height);

public:
    Q_INVOKABLE void loadThumbnailFromUrl(const QString& url, double seconds);
    // Returns at once; a newer call does not cancel an older one, the last to finish wins.
    Q_INVOKABLE void loadThumbnail(const QString& filePath, double seconds);
    Q_INVOKABLE void setMaxSize(int width, int height);

protected:
    void geometryChanged(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;
    void releaseResources() override;

private:
    void onSignalUpdate(int width, int height);

    std::shared_ptr<ThumbnailLink> m_link;
    std::shared_ptr<YuvFrame> m_frame; // the planes, sizes, new-frame flag and their mutex
    // Program and textures (GL_LUMINANCE, as the compatibility profile reads them); created,
    // used and released on the render thread only.
    std::shared_ptr<YuvPlaneTextures> m_gl;
};
