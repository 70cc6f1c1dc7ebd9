#pragma once

#include <QQuickFramebufferObject>
#include <QSize>
#include <memory>

class MpvSession;
class QQuickWindow;

// What the renderer tells its item about the framebuffer it draws into. Written on the render
// thread during sync only, while the GUI thread waits; the item reads it when it builds its
// scene node.
struct MpvRenderTarget
{
    bool readyEmitted = false; // the item's ready() has been posted
    unsigned int framebuffer = 0;
    QSize size;
};

// Draws libmpv's frames into the item's framebuffer. Lives on the scene graph's render
// thread; it touches its item only while the GUI thread is blocked (sync and framebuffer
// creation), and libmpv only through the render context.
class MpvRenderer : public QQuickFramebufferObject::Renderer
{
public:
    // `item` receives ready() once the render context exists; `target` belongs to it.
    MpvRenderer(std::shared_ptr<MpvSession> session, QObject* item, MpvRenderTarget& target);
    ~MpvRenderer() override;

    void synchronize(QQuickFramebufferObject* item) override;
    QOpenGLFramebufferObject* createFramebufferObject(const QSize& size) override;
    void render() override;

private:
    std::shared_ptr<MpvSession> m_session;
    QObject* m_item;
    MpvRenderTarget& m_target;
    QQuickWindow* m_window = nullptr;
};
