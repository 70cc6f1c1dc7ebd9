#pragma once

#include <QRectF>
#include <QSGRenderNode>
#include <QSize>

// Copies a framebuffer's picture into the scene's render target with one framebuffer blit,
// in the place where the scene graph would draw it as a textured quad. Where OpenGL runs in
// software, a blit between framebuffers of the same byte order is a row-by-row memory copy,
// while the textured quad runs a fragment shader for every pixel of the picture.
//
// Only valid for an opaque picture on an axis-aligned transform, without stencil clipping and
// in a window without depth buffer: a blit neither blends nor tests depth or stencil. It does
// honour the scissor rectangle, which is how rectangular clips reach it. The owner checks
// this before choosing the node. Render thread only.
class FramebufferBlitNode : public QSGRenderNode
{
public:
    // The framebuffer to copy from (its row 0 is the top of the picture), its size in pixels,
    // and the item rectangle it covers, in the node's coordinates.
    void setSource(unsigned int framebuffer, const QSize& size, const QRectF& rect);

    void render(const RenderState* state) override;
    StateFlags changedStates() const override;
    RenderingFlags flags() const override;
    QRectF rect() const override { return m_rect; }

private:
    unsigned int m_framebuffer = 0;
    QSize m_size;
    QRectF m_rect;
};
