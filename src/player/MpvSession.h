#pragma once

#include <QEvent>
#include <mpv/client.h>
#include <mpv/render.h>
#include <mutex>

class QQuickItem;

// The lifetime link between a render item (GUI thread) and its renderer (scene-graph
// render thread), shared by both through a shared_ptr.
//
// libmpv demands that the render context is freed, on the render thread with the GL context
// current, before the core is ended. The scene graph deletes the renderer after the item
// when an item goes away while its window lives, so whichever of the two leaves last ends
// the core: the item when no render context exists, else the renderer right after freeing it.
//
// m_mutex guards the fields only; no libmpv call is ever made while holding it, because
// libmpv may run the update callback (which takes the mutex) while freeing the context.
class MpvSession
{
public:
    explicit MpvSession(mpv_handle* handle) : m_handle(handle) {}
    ~MpvSession();

    MpvSession(const MpvSession&) = delete;
    MpvSession& operator=(const MpvSession&) = delete;

    // GUI thread: the item that update() requests go to, as events of frameEventType().
    void attachItem(QQuickItem* item);
    static QEvent::Type frameEventType();

    // Render thread, GL context current. Creates the render context if there is none (fatal
    // on failure). True when a context was created by this call.
    bool ensureRenderContext();
    // Render thread: draws the current frame into the framebuffer, unflipped.
    void render(unsigned int framebuffer, int width, int height);
    // Render thread, GL context current: the renderer is going away.
    void releaseRenderContext();

    // GUI thread, from the item's destructor once the controller thread has stopped.
    void releaseItem();

private:
    static void onUpdate(void* context);
    void endCore();

    std::mutex m_mutex;
    mpv_handle* m_handle = nullptr;          // ended once, by endCore()
    mpv_render_context* m_context = nullptr; // render thread only creates and frees it
    QQuickItem* m_item = nullptr;            // null once the item is gone
    bool m_freeing = false;
    bool m_itemGone = false;
};
