#pragma once

#include "YUVRenderer.h"

#include <QQuickFramebufferObject>
#include <memory>

class QQuickWindow;
struct ThumbnailLink;

// ThumbnailItem's renderer: draws the YUV frame into the item's framebuffer object whenever
// the item asks (a frame was stored, the size changed).
// Made and deleted by the scene graph on its render thread; on deletion it withdraws itself
// from the link so load jobs stop handing it frames.
class UserFboRenderer : public QQuickFramebufferObject::Renderer, public YUVRenderer
{
public:
    explicit UserFboRenderer(std::shared_ptr<ThumbnailLink> link);
    ~UserFboRenderer() override;

    void render() override;
    QOpenGLFramebufferObject* createFramebufferObject(const QSize& size) override;
    void synchronize(QQuickFramebufferObject* item) override;

private:
    std::shared_ptr<ThumbnailLink> m_link;
    QQuickWindow* m_window = nullptr; // the item's window, for resetting GL state
};
