#include "YUVPaintedItem.h"

#include "FileHelper.h"
#include "ThumbnailLink.h"
#include "YuvFrame.h"
#include "YuvPlaneTextures.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPainter>
#include <QQuickWindow>
#include <QRunnable>

namespace {

// Compatibility-profile twins of the preview shaders, with the same full-range coefficients.
// The painter's framebuffer is shown like ThumbnailItem's, its row 0 at the top, so the
// vertex table's first image row at the bottom of clip space comes out upright.
const char* const kVertexShader = "attribute vec2 position;\n"
                                  "attribute vec2 texCoord;\n"
                                  "varying vec2 v_texCoord;\n"
                                  "void main()\n"
                                  "{\n"
                                  "   gl_Position = vec4(position, 0.0, 1.0);\n"
                                  "   v_texCoord = texCoord;\n"
                                  "}\n";

const char* const kFragmentShader = "varying vec2 v_texCoord;\n"
                                    "uniform sampler2D yTexture;\n"
                                    "uniform sampler2D uTexture;\n"
                                    "uniform sampler2D vTexture;\n"
                                    "void main()\n"
                                    "{\n"
                                    "   float y = texture2D(yTexture, v_texCoord).r;\n"
                                    "   float u = texture2D(uTexture, v_texCoord).r - 0.5;\n"
                                    "   float v = texture2D(vTexture, v_texCoord).r - 0.5;\n"
                                    "   vec3 rgb;\n"
                                    "   rgb.r = y + 1.402 * v;\n"
                                    "   rgb.g = y - 0.344 * u - 0.714 * v;\n"
                                    "   rgb.b = y + 1.772 * u;\n"
                                    "   gl_FragColor = vec4(rgb, 1.0);\n"
                                    "}\n";

// Releases GL objects on the render thread, where their context is current.
class ReleaseJob : public QRunnable
{
public:
    explicit ReleaseJob(std::shared_ptr<YuvPlaneTextures> planes) : m_planes(std::move(planes)) {}
    void run() override { m_planes->destroy(); }

private:
    std::shared_ptr<YuvPlaneTextures> m_planes;
};

} // namespace

YUVPaintedItem::YUVPaintedItem(QQuickItem* parent)
    : QQuickPaintedItem(parent), m_link(std::make_shared<ThumbnailLink>()),
      m_frame(std::make_shared<YuvFrame>()), m_gl(std::make_shared<YuvPlaneTextures>())
{
    setRenderTarget(QQuickPaintedItem::FramebufferObject);
    setAntialiasing(true);
    m_link->frame = m_frame;
    m_link->announce = [this](int width, int height) { emit signalUpdate(width, height); };
    connect(this, &YUVPaintedItem::signalUpdate, this, &YUVPaintedItem::onSignalUpdate, Qt::QueuedConnection);
}

YUVPaintedItem::~YUVPaintedItem()
{
    m_link->detach();
}

void YUVPaintedItem::loadThumbnailFromUrl(const QString& url, double seconds)
{
    loadThumbnail(FileHelper::toLocalPath(url), seconds);
}

void YUVPaintedItem::loadThumbnail(const QString& filePath, double seconds)
{
    startThumbnailLoad(m_link, filePath, seconds);
}

void YUVPaintedItem::setMaxSize(int width, int height)
{
    m_link->setBox(width, height);
}

void YUVPaintedItem::geometryChanged(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    m_link->setItemSize(newGeometry.size());
    QQuickPaintedItem::geometryChanged(newGeometry, oldGeometry);
}

void YUVPaintedItem::itemChange(ItemChange change, const ItemChangeData& value)
{
    if (change == ItemSceneChange && value.window) {
        // The scene graph going away takes its context along; it is still current here.
        connect(
            value.window, &QQuickWindow::sceneGraphInvalidated, this, [gl = m_gl]() { gl->destroy(); },
            Qt::DirectConnection);
    }
    QQuickPaintedItem::itemChange(change, value);
}

void YUVPaintedItem::releaseResources()
{
    if (QQuickWindow* w = window())
        w->scheduleRenderJob(new ReleaseJob(m_gl), QQuickWindow::NoStage);
    QQuickPaintedItem::releaseResources();
}

void YUVPaintedItem::onSignalUpdate(int width, int height)
{
    if (width > 0)
        setWidth(width);
    if (height > 0)
        setHeight(height);
    update();
}

void YUVPaintedItem::paint(QPainter* painter)
{
    std::lock_guard<std::mutex> lock(m_frame->mutex);
    YuvPlaneTextures& planes = *m_gl;
    // Repaints without a new frame (a resize, an expose) show the textures uploaded last.
    if (!m_frame->hasPlanes() && !planes.hasPicture()) {
        painter->fillRect(QRectF(0, 0, width(), height()), Qt::black);
        return;
    }

    painter->beginNativePainting();
    if (!planes.isCreated() && !planes.hasFailed())
        planes.create(kVertexShader, kFragmentShader);
    if (planes.hasFailed()) {
        // The shaders do not build in this context.
        painter->endNativePainting();
        painter->fillRect(QRectF(0, 0, width(), height()), Qt::black);
        return;
    }
    planes.upload(*m_frame, GL_LUMINANCE, GL_LUMINANCE);

    planes.bind();
    QOpenGLFunctions* gl = QOpenGLContext::currentContext()->functions();
    // Client-side arrays: no buffer may be bound to the array target.
    gl->glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl->glVertexAttribPointer(YuvPlaneTextures::kPositionAttribute, 2, GL_FLOAT, GL_FALSE, 0,
                              YuvPlaneTextures::kPositions);
    gl->glVertexAttribPointer(YuvPlaneTextures::kTexCoordAttribute, 2, GL_FLOAT, GL_FALSE, 0,
                              YuvPlaneTextures::kTexCoords);
    gl->glEnableVertexAttribArray(YuvPlaneTextures::kPositionAttribute);
    gl->glEnableVertexAttribArray(YuvPlaneTextures::kTexCoordAttribute);
    gl->glDisable(GL_DEPTH_TEST);
    gl->glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    gl->glDisableVertexAttribArray(YuvPlaneTextures::kPositionAttribute);
    gl->glDisableVertexAttribArray(YuvPlaneTextures::kTexCoordAttribute);
    planes.unbind();
    painter->endNativePainting();
}
