#pragma once

#include <QQuickFramebufferObject>
#include <memory>

class MpvAbstractItem;
class MpvSession;
class QQuickWindow;

// Draws libmpv's frames into the item's framebuffer. Lives on the scene graph's render
// thread; it touches its item only while the GUI thread is blocked (sync and framebuffer
// creation), and libmpv only through the render context.
class MpvRenderer : public QQuickFramebufferObject::Renderer
{
public:
    explicit MpvRenderer(MpvAbstractItem* item);
    ~MpvRenderer() override;

    void synchronize(QQuickFramebufferObject* item) override;
    QOpenGLFramebufferObject* createFramebufferObject(const QSize& size) override;
    void render() override;

private:
    MpvAbstractItem* m_item;
    std::shared_ptr<MpvSession> m_session;
    QQuickWindow* m_window = nullptr;
};
