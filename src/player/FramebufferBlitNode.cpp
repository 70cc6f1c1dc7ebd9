#include "FramebufferBlitNode.h"

#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>
#include <QVector3D>
#include <cmath>

void FramebufferBlitNode::setSource(unsigned int framebuffer, const QSize& size, const QRectF& rect)
{
    m_framebuffer = framebuffer;
    m_size = size;
    m_rect = rect;
    markDirty(DirtyMaterial);
}

void FramebufferBlitNode::render(const RenderState* state)
{
    QOpenGLContext* context = QOpenGLContext::currentContext();
    if (!context || !m_framebuffer || m_size.isEmpty())
        return;
    QOpenGLExtraFunctions* gl = context->extraFunctions();

    // Where the scene graph would put the rectangle's corners, in the target's pixels: its
    // projection and this node's transform to clip space, then the viewport.
    GLint viewport[4] = {};
    gl->glGetIntegerv(GL_VIEWPORT, viewport);
    const QMatrix4x4 toClip = *state->projectionMatrix() * *matrix();
    const auto toPixel = [&](const QPointF& point) {
        const QVector3D clip = toClip.map(QVector3D(float(point.x()), float(point.y()), 0.0f));
        return QPoint(int(std::lround(viewport[0] + (clip.x() + 1.0) * 0.5 * viewport[2])),
                      int(std::lround(viewport[1] + (clip.y() + 1.0) * 0.5 * viewport[3])));
    };
    const QPoint topLeft = toPixel(m_rect.topLeft());
    const QPoint bottomRight = toPixel(m_rect.bottomRight());

    // The renderer works out the clip but leaves enabling it to the node. Rectangular clips
    // come as a scissor rectangle in the target's pixels, which blits honour. A node under no
    // clip at all may still be handed the scissor of the clipped item drawn before it (an
    // open play list, the notification stack), which would cut the picture down to that.
    if (clipList() && state->scissorEnabled()) {
        const QRect scissor = state->scissorRect();
        gl->glEnable(GL_SCISSOR_TEST);
        gl->glScissor(scissor.x(), scissor.y(), scissor.width(), scissor.height());
    } else {
        gl->glDisable(GL_SCISSOR_TEST);
    }

    GLint previousRead = 0;
    gl->glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &previousRead);
    gl->glBindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffer);
    // Source row 0 goes to the rectangle's top edge, as the textured quad would show it. In a
    // window, whose rows are stored top down, this is a straight copy.
    gl->glBlitFramebuffer(0, 0, m_size.width(), m_size.height(), topLeft.x(), topLeft.y(), bottomRight.x(),
                          bottomRight.y(), GL_COLOR_BUFFER_BIT, GL_NEAREST);
    gl->glBindFramebuffer(GL_READ_FRAMEBUFFER, GLuint(previousRead));
}

QSGRenderNode::StateFlags FramebufferBlitNode::changedStates() const
{
    // The read binding is put back; only the scissor may have changed.
    return ScissorState;
}

QSGRenderNode::RenderingFlags FramebufferBlitNode::flags() const
{
    return BoundedRectRendering | OpaqueRendering;
}
