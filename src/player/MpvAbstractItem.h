#pragma once

#include "MpvController.h"
#include "MpvRenderer.h"

#include <QQuickFramebufferObject>
#include <QVariant>
#include <memory>

class MpvSession;
class QThread;

// The Qt Quick item that shows libmpv's video, drawn by MpvRenderer into the item's
// framebuffer. It owns the controller thread and is the facade through which QML and the
// player view reach libmpv. GUI thread only, except what MpvRenderer does during sync.
class MpvAbstractItem : public QQuickFramebufferObject
{
    Q_OBJECT
public:
    // Returns only once libmpv is initialised, so every call works before the first frame.
    explicit MpvAbstractItem(QQuickItem* parent = nullptr);
    ~MpvAbstractItem() override;

    Renderer* createRenderer() const override;

    Q_INVOKABLE int setPropertyBlocking(const QString& property, const QVariant& value);
    Q_INVOKABLE void setPropertyAsync(const QString& property, const QVariant& value, int id);
    Q_INVOKABLE QVariant getProperty(const QString& property);
    Q_INVOKABLE void getPropertyAsync(const QString& property, int id);
    Q_INVOKABLE QVariant commandBlocking(const QVariant& params);
    Q_INVOKABLE void commandAsync(const QVariant& params, int id);
    Q_INVOKABLE QString expandText(const QString& text);
    Q_INVOKABLE void unobserveProperty(uint64_t id);

signals:
    // The render context exists: observations and settings may start.
    void ready();
    // Fire-and-forget requests, delivered queued to the controller's slots of the same names.
    void observeProperty(const QString& property, mpv_format format, uint64_t id);
    void setProperty(const QString& property, const QVariant& value);
    void command(const QVariant& params);

protected:
    MpvController* controller() const { return m_controller; }
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;
    bool event(QEvent* event) override;
    // libmpv has a new picture to draw; the item is already scheduled for the next frame.
    // State changed now is drawn in that same frame. GUI thread.
    virtual void frameRequested() {}

private:
    // Whether the framebuffer can reach the window by a plain copy instead of a textured
    // quad. Render thread, during sync.
    bool canBlitFramebuffer() const;

    QThread* m_thread = nullptr;
    MpvController* m_controller = nullptr; // lives on m_thread, deleted when it finishes
    std::shared_ptr<MpvSession> m_session;
    MpvRenderTarget m_target; // the renderer's, written during sync only
};
