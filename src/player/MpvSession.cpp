#include "MpvSession.h"

#include <QCoreApplication>
#include <QOpenGLContext>
#include <QQuickItem>
#include <mpv/render_gl.h>

namespace {

void* procAddress(void*, const char* name)
{
    QOpenGLContext* context = QOpenGLContext::currentContext();
    return context ? reinterpret_cast<void*>(context->getProcAddress(name)) : nullptr;
}

} // namespace

MpvSession::~MpvSession()
{
    endCore();
}

QEvent::Type MpvSession::frameEventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void MpvSession::attachItem(QQuickItem* item)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_item = item;
}

bool MpvSession::ensureRenderContext()
{
    mpv_handle* handle = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_context || !m_handle)
            return false;
        handle = m_handle;
    }
    mpv_opengl_init_params glInit{&procAddress, nullptr};
    char apiType[] = MPV_RENDER_API_TYPE_OPENGL;
    mpv_render_param params[] = {{MPV_RENDER_PARAM_API_TYPE, apiType},
                                 {MPV_RENDER_PARAM_OPENGL_INIT_PARAMS, &glInit},
                                 {MPV_RENDER_PARAM_INVALID, nullptr}};
    mpv_render_context* context = nullptr;
    if (mpv_render_context_create(&context, handle, params) < 0)
        qFatal("failed to initialize mpv GL context");
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_context = context;
    }
    mpv_render_context_set_update_callback(context, &MpvSession::onUpdate, this);
    return true;
}

void MpvSession::onUpdate(void* context)
{
    // Called on libmpv's threads: only post the redraw request to the GUI thread, ahead of
    // the property reports queued there (a position report comes with nearly every frame),
    // so that a new frame never waits behind them.
    auto* self = static_cast<MpvSession*>(context);
    std::lock_guard<std::mutex> lock(self->m_mutex);
    if (self->m_item)
        QCoreApplication::postEvent(self->m_item, new QEvent(frameEventType()), Qt::HighEventPriority);
}

void MpvSession::render(unsigned int framebuffer, int width, int height)
{
    mpv_render_context* context = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        context = m_context;
    }
    if (!context)
        return;
    mpv_opengl_fbo fbo{static_cast<int>(framebuffer), width, height, 0};
    int flip = 0;
    mpv_render_param params[] = {{MPV_RENDER_PARAM_OPENGL_FBO, &fbo},
                                 {MPV_RENDER_PARAM_FLIP_Y, &flip},
                                 {MPV_RENDER_PARAM_INVALID, nullptr}};
    mpv_render_context_render(context, params);
}

void MpvSession::releaseRenderContext()
{
    mpv_render_context* context = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        context = m_context;
        m_freeing = context != nullptr;
    }
    if (context) {
        mpv_render_context_set_update_callback(context, nullptr, nullptr);
        mpv_render_context_free(context);
    }
    bool end = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_context = nullptr;
        m_freeing = false;
        end = m_itemGone;
    }
    if (end)
        endCore();
}

void MpvSession::releaseItem()
{
    bool end = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_item = nullptr;
        m_itemGone = true;
        end = !m_context && !m_freeing;
    }
    if (end)
        endCore();
}

void MpvSession::endCore()
{
    mpv_handle* handle = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(handle, m_handle);
    }
    if (handle)
        mpv_terminate_destroy(handle);
}
