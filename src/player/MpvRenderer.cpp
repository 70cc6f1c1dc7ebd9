#include "MpvRenderer.h"

#include "MpvAbstractItem.h"
#include "MpvSession.h"

#include <QOpenGLFramebufferObject>
#include <QQuickWindow>

MpvRenderer::MpvRenderer(MpvAbstractItem* item) : m_item(item), m_session(item->m_session) {}

MpvRenderer::~MpvRenderer()
{
    // The scene graph deletes renderers on the render thread with the GL context current,
    // which is where libmpv wants its render context freed.
    m_session->releaseRenderContext();
}

void MpvRenderer::synchronize(QQuickFramebufferObject* item)
{
    m_window = item->window();
}

QOpenGLFramebufferObject* MpvRenderer::createFramebufferObject(const QSize& size)
{
    // Runs during sync, so the item may be touched. A resize keeps the render context.
    if (m_session->ensureRenderContext() && !m_item->m_readyEmitted) {
        m_item->m_readyEmitted = true;
        QMetaObject::invokeMethod(m_item, "ready", Qt::QueuedConnection);
    }
    return new QOpenGLFramebufferObject(size);
}

void MpvRenderer::render()
{
    QOpenGLFramebufferObject* fbo = framebufferObject();
    m_session->render(fbo->handle(), fbo->width(), fbo->height());
    // libmpv leaves its own GL state behind; the scene graph expects its defaults.
    if (m_window)
        m_window->resetOpenGLState();
}
