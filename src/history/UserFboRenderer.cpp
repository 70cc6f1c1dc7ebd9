#include "UserFboRenderer.h"

#include "ThumbnailLink.h"

#include <QOpenGLFramebufferObject>
#include <QOpenGLFramebufferObjectFormat>
#include <QQuickWindow>

UserFboRenderer::UserFboRenderer(std::shared_ptr<ThumbnailLink> link) : m_link(std::move(link)) {}

UserFboRenderer::~UserFboRenderer()
{
    std::lock_guard<std::mutex> lock(m_link->mutex);
    if (m_link->renderer == this) {
        m_link->renderer = nullptr;
        m_link->frame.reset();
    }
}

void UserFboRenderer::render()
{
    // Runs whenever the item asked for it (a stored frame, a resize). Asking for the next
    // render from here would make the whole window redraw without pause for as long as the
    // preview exists, hidden or not: dozens of full-window frames a second with software
    // OpenGL, competing with the video for the CPU.
    renderFrame();
    if (m_window)
        m_window->resetOpenGLState();
}

QOpenGLFramebufferObject* UserFboRenderer::createFramebufferObject(const QSize& size)
{
    QOpenGLFramebufferObjectFormat format;
    format.setAttachment(QOpenGLFramebufferObject::CombinedDepthStencil);
    format.setSamples(4);
    return new QOpenGLFramebufferObject(size, format);
}

void UserFboRenderer::synchronize(QQuickFramebufferObject* item)
{
    m_window = item->window();
}
