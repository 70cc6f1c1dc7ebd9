#include "MpvRenderer.h"

#include "MpvSession.h"
#include "TsanAnnotations.h"

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QQuickWindow>

MpvRenderer::MpvRenderer(std::shared_ptr<MpvSession> session, QObject* item, MpvRenderTarget& target)
    : m_session(std::move(session)), m_item(item), m_target(target)
{
}

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
    if (m_session->ensureRenderContext() && !m_target.readyEmitted) {
        m_target.readyEmitted = true;
        VIDORA_TSAN_RELEASE(m_item);
        QMetaObject::invokeMethod(m_item, "ready", Qt::QueuedConnection);
    }
    auto* fbo = new QOpenGLFramebufferObject(size);
    QOpenGLContext* context = QOpenGLContext::currentContext();
    if (context && !context->isOpenGLES()) {
        // Asked for in the window's byte order (BGRA), the driver may store the picture as
        // the window does, so that the copy into the window needs no conversion.
        QOpenGLFunctions* gl = context->functions();
        gl->glBindTexture(GL_TEXTURE_2D, fbo->texture());
        gl->glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, size.width(), size.height(), 0, GL_BGRA, GL_UNSIGNED_BYTE,
                         nullptr);
        gl->glBindTexture(GL_TEXTURE_2D, 0);
    }
    m_target.framebuffer = fbo->handle();
    m_target.size = fbo->size();
    return fbo;
}

void MpvRenderer::render()
{
    QOpenGLFramebufferObject* fbo = framebufferObject();
    m_session->render(fbo->handle(), fbo->width(), fbo->height());
    // libmpv leaves its own GL state behind; the scene graph expects its defaults.
    if (m_window)
        m_window->resetOpenGLState();
}
