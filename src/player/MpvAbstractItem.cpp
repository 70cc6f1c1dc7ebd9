#include "MpvAbstractItem.h"

#include "MpvSession.h"

#include "FramebufferBlitNode.h"
#include "TsanAnnotations.h"

#include <QOpenGLContext>
#include <QQuickWindow>
#include <QSGGeometryNode>
#include <QSGMaterial>
#include <QSGSimpleTextureNode>
#include <QThread>

namespace {

void clearBlending(QSGGeometryNode* node)
{
    bool changed = false;
    for (QSGMaterial* material : {node->material(), node->opaqueMaterial()}) {
        if (material && material->flags().testFlag(QSGMaterial::Blending)) {
            material->setFlag(QSGMaterial::Blending, false);
            changed = true;
        }
    }
    if (changed)
        node->markDirty(QSGNode::DirtyMaterial);
}

} // namespace

MpvAbstractItem::MpvAbstractItem(QQuickItem* parent) : QQuickFramebufferObject(parent)
{
    // The framebuffer always has the item's size in device pixels, so nearest sampling shows
    // it exactly, and it is much cheaper than filtering where OpenGL runs in software. The
    // picture comes out upright without mirroring (libmpv is told not to flip).
    setSmooth(false);
    m_thread = new QThread;
    m_thread->start(QThread::InheritPriority);
    m_controller = new MpvController;
    m_controller->moveToThread(m_thread);
    // Calls into the controller's thread hand it what this thread wrote before the post; a
    // blocking call hands back what the controller wrote before it returned.
    VIDORA_TSAN_RELEASE(m_controller);
    // By name: the call record is then built inside Qt before the post, not in this thread's
    // code after the release above.
    QMetaObject::invokeMethod(m_controller, "init", Qt::BlockingQueuedConnection);
    VIDORA_TSAN_ACQUIRE(m_controller);

    m_session = std::make_shared<MpvSession>(m_controller->mpv());
    m_session->attachItem(this);

    connect(m_thread, &QThread::finished, m_controller, &QObject::deleteLater);
    connect(this, &MpvAbstractItem::observeProperty, m_controller, &MpvController::observeProperty,
            Qt::QueuedConnection);
    connect(this, &MpvAbstractItem::setProperty, m_controller, &MpvController::setProperty,
            Qt::QueuedConnection);
    connect(this, &MpvAbstractItem::command, m_controller, &MpvController::command, Qt::QueuedConnection);
}

MpvAbstractItem::~MpvAbstractItem()
{
    // Stop event delivery first, so nothing on the controller thread still uses the handle
    // when the core ends.
    mpv_set_wakeup_callback(m_controller->mpv(), nullptr, nullptr);
    m_thread->quit();
    m_thread->wait();
    delete m_thread;
    // Ends the core now, or leaves that to the renderer once it has freed the render context.
    m_session->releaseItem();
}

bool MpvAbstractItem::event(QEvent* event)
{
    if (event->type() == MpvSession::frameEventType()) {
        update();
        frameRequested();
        return true;
    }
    return QQuickFramebufferObject::event(event);
}

QQuickFramebufferObject::Renderer* MpvAbstractItem::createRenderer() const
{
    auto* self = const_cast<MpvAbstractItem*>(this);
    return new MpvRenderer(m_session, self, self->m_target);
}

QSGNode* MpvAbstractItem::updatePaintNode(QSGNode* node, UpdatePaintNodeData* data)
{
    node = QQuickFramebufferObject::updatePaintNode(node, data);
    auto* textureNode = dynamic_cast<QSGSimpleTextureNode*>(node);
    if (!textureNode)
        return node;

    // Drawing the picture as a textured quad costs a fragment shader run per pixel where
    // OpenGL runs in software; a framebuffer blit into the window is a memory copy. The quad
    // stays wherever a blit cannot stand in for it.
    FramebufferBlitNode* blit = nullptr;
    for (QSGNode* child = textureNode->firstChild(); child && !blit; child = child->nextSibling())
        blit = dynamic_cast<FramebufferBlitNode*>(child);
    if (m_target.framebuffer && canBlitFramebuffer()) {
        if (!blit) {
            blit = new FramebufferBlitNode;
            textureNode->appendChildNode(blit);
        }
        blit->setSource(m_target.framebuffer, m_target.size, QRectF(0, 0, width(), height()));
        textureNode->setRect(QRectF());
        // The empty quad is still drawn, and software OpenGL builds a shader variant for each
        // sampling and blending state it meets, slowly on a first start. Filtered like the
        // empty state's artwork and unblended, it needs the variant the artwork needs anyway.
        textureNode->setFiltering(QSGTexture::Linear);
        clearBlending(textureNode);
        return node;
    }
    delete blit;

    // The base item presents its framebuffer as a texture with alpha, so the scene graph
    // blends it over what lies beneath. libmpv fills every pixel opaquely (bars included), so
    // the texture is drawn without blending, which spares software OpenGL a read of the
    // window per pixel. An item with opacity below 1 is still blended by the scene graph.
    // The base sets the flag again whenever it makes a new texture (on resize), hence the
    // check on each sync.
    clearBlending(textureNode);
    return node;
}

bool MpvAbstractItem::canBlitFramebuffer() const
{
    // A blit neither blends nor tests depth or stencil: the window must draw strictly in
    // order (no depth buffer), and the item must be opaque, axis-aligned and clipped by
    // rectangles only (scissor, which blits honour). Scaling and mirroring are fine.
    const QOpenGLContext* context = window() ? window()->openglContext() : nullptr;
    if (!context || context->format().depthBufferSize() > 0)
        return false;
    const bool es = context->isOpenGLES();
    if (context->format().majorVersion() < 3 && !(es && context->hasExtension("GL_NV_framebuffer_blit")))
        return false;
    for (const QQuickItem* item = this; item; item = item->parentItem()) {
        if (item->opacity() < 1.0)
            return false;
        if (item == this || item->clip()) {
            bool invertible = false;
            const QTransform transform = item->itemTransform(nullptr, &invertible);
            if (!invertible || transform.type() > QTransform::TxScale)
                return false;
        }
    }
    return true;
}

int MpvAbstractItem::setPropertyBlocking(const QString& property, const QVariant& value)
{
    int result = 0;
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, property, value] { return m_controller->setProperty(property, value); },
        Qt::BlockingQueuedConnection, &result);
    VIDORA_TSAN_ACQUIRE(m_controller);
    return result;
}

void MpvAbstractItem::setPropertyAsync(const QString& property, const QVariant& value, int id)
{
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, property, value, id] { m_controller->setPropertyAsync(property, value, id); },
        Qt::QueuedConnection);
}

QVariant MpvAbstractItem::getProperty(const QString& property)
{
    QVariant result;
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, property] { return m_controller->getProperty(property); },
        Qt::BlockingQueuedConnection, &result);
    VIDORA_TSAN_ACQUIRE(m_controller);
    return result;
}

void MpvAbstractItem::getPropertyAsync(const QString& property, int id)
{
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, property, id] { m_controller->getPropertyAsync(property, id); },
        Qt::QueuedConnection);
}

QVariant MpvAbstractItem::commandBlocking(const QVariant& params)
{
    QVariant result;
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, params] { return m_controller->command(params); }, Qt::BlockingQueuedConnection,
        &result);
    VIDORA_TSAN_ACQUIRE(m_controller);
    return result;
}

void MpvAbstractItem::commandAsync(const QVariant& params, int id)
{
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, params, id] { m_controller->commandAsync(params, id); }, Qt::QueuedConnection);
}

QString MpvAbstractItem::expandText(const QString& text)
{
    return commandBlocking(QVariantList{QStringLiteral("expand-text"), text}).toString();
}

void MpvAbstractItem::unobserveProperty(uint64_t id)
{
    VIDORA_TSAN_RELEASE(m_controller);
    QMetaObject::invokeMethod(
        m_controller, [this, id] { m_controller->unobserveProperty(id); }, Qt::QueuedConnection);
}
