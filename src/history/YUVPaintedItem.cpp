#include "YUVPaintedItem.h"

#include "CommonTool.h"
#include "FileHelper.h"
#include "ThreadPool.h"
#include "ThumbnailLink.h"
#include "YuvFrame.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <QPainter>
#include <QQuickWindow>
#include <QRunnable>
#include <spdlog/spdlog.h>

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

const GLfloat kPositions[8] = {-1.0f, 1.0f, -1.0f, -1.0f, 1.0f, 1.0f, 1.0f, -1.0f};
const GLfloat kTexCoords[8] = {0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 1.0f, 1.0f, 0.0f};

constexpr GLuint kPositionAttribute = 0;
constexpr GLuint kTexCoordAttribute = 1;

} // namespace

// The item's GL objects. Render thread only: paint() creates them, a render job or the
// scene graph's invalidation releases them while the context is current.
struct YUVPaintedItem::GlState
{
    QOpenGLFunctions gl;
    std::unique_ptr<QOpenGLShaderProgram> program;
    GLuint textures[3] = {0, 0, 0};
    bool initialized = false;
    bool failed = false;     // shaders would not build in this context; paint black
    bool hasPicture = false; // textures hold an uploaded frame

    bool initialize()
    {
        gl.initializeOpenGLFunctions();
        program = std::make_unique<QOpenGLShaderProgram>();
        program->addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader);
        program->addShaderFromSourceCode(QOpenGLShader::Fragment, kFragmentShader);
        program->bindAttributeLocation("position", kPositionAttribute);
        program->bindAttributeLocation("texCoord", kTexCoordAttribute);
        if (!program->link()) {
            spdlog::error("Failed to build the preview shaders: {}", program->log().toStdString());
            program.reset();
            failed = true;
            return false;
        }
        gl.glGenTextures(3, textures);
        for (GLuint texture : textures) {
            gl.glBindTexture(GL_TEXTURE_2D, texture);
            gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
            gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
            gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        }
        gl.glBindTexture(GL_TEXTURE_2D, 0);
        initialized = true;
        return true;
    }

    void upload(int index, const QByteArray& plane, int width, int height)
    {
        gl.glBindTexture(GL_TEXTURE_2D, textures[index]);
        gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE, width, height, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE,
                        plane.constData());
    }

    // Render thread, normally with the owning context current; without one the objects are
    // left to the context's own destruction.
    void release()
    {
        if (initialized && QOpenGLContext::currentContext())
            gl.glDeleteTextures(3, textures);
        program.reset();
        initialized = false;
        failed = false;
        hasPicture = false;
    }
};

namespace {

// Releases GL objects on the render thread, where their context is current.
template <typename State> class ReleaseJob : public QRunnable
{
public:
    explicit ReleaseJob(std::shared_ptr<State> state) : m_state(std::move(state)) {}
    void run() override { m_state->release(); }

private:
    std::shared_ptr<State> m_state;
};

} // namespace

YUVPaintedItem::YUVPaintedItem(QQuickItem* parent)
    : QQuickPaintedItem(parent), m_link(std::make_shared<ThumbnailLink>()),
      m_frame(std::make_shared<YuvFrame>()), m_gl(std::make_shared<GlState>())
{
    setRenderTarget(QQuickPaintedItem::FramebufferObject);
    setAntialiasing(true);
    m_link->frame = m_frame;
    m_link->announce = [this](int width, int height) { emit signalUpdate(width, height); };
    connect(this, &YUVPaintedItem::signalUpdate, this, &YUVPaintedItem::onSignalUpdate, Qt::QueuedConnection);
}

YUVPaintedItem::~YUVPaintedItem()
{
    std::lock_guard<std::mutex> lock(m_link->mutex);
    m_link->announce = nullptr;
}

void YUVPaintedItem::loadThumbnailFromUrl(const QString& url, double seconds)
{
    loadThumbnail(FileHelper::toLocalPath(url), seconds);
}

void YUVPaintedItem::loadThumbnail(const QString& filePath, double seconds)
{
    spdlog::info("loadThumbnail: filePath={}, seconds={}", filePath.toStdString(), seconds);
    CommonTool* tool = CommonTool::instance();
    ThreadPool::instance().submit(
        [link = m_link, tool, filePath, seconds]() { loadThumbnailJob(link, tool, filePath, seconds); });
}

void YUVPaintedItem::setMaxSize(int width, int height)
{
    std::lock_guard<std::mutex> lock(m_link->mutex);
    m_link->maxWidth = width;
    m_link->maxHeight = height;
}

void YUVPaintedItem::geometryChanged(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    {
        std::lock_guard<std::mutex> lock(m_link->mutex);
        m_link->itemWidth = newGeometry.width();
        m_link->itemHeight = newGeometry.height();
    }
    QQuickPaintedItem::geometryChanged(newGeometry, oldGeometry);
}

void YUVPaintedItem::itemChange(ItemChange change, const ItemChangeData& value)
{
    if (change == ItemSceneChange && value.window) {
        // The scene graph going away takes its context along; it is still current here.
        connect(
            value.window, &QQuickWindow::sceneGraphInvalidated, this, [gl = m_gl]() { gl->release(); },
            Qt::DirectConnection);
    }
    QQuickPaintedItem::itemChange(change, value);
}

void YUVPaintedItem::releaseResources()
{
    if (QQuickWindow* w = window())
        w->scheduleRenderJob(new ReleaseJob<GlState>(m_gl), QQuickWindow::NoStage);
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
    // Repaints without a new frame (a resize, an expose) show the textures uploaded last.
    if (!m_frame->hasPlanes() && !m_gl->hasPicture) {
        painter->fillRect(QRectF(0, 0, width(), height()), Qt::black);
        return;
    }

    painter->beginNativePainting();
    GlState& state = *m_gl;
    if (!state.initialized && !state.failed)
        state.initialize();
    if (state.failed) {
        painter->endNativePainting();
        painter->fillRect(QRectF(0, 0, width(), height()), Qt::black);
        return;
    }
    QOpenGLFunctions& gl = state.gl;

    if (m_frame->newFrame && m_frame->hasPlanes()) {
        // Plane rows are tightly packed; odd widths are not 4-byte aligned.
        gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        state.upload(0, m_frame->y, m_frame->width, m_frame->height);
        state.upload(1, m_frame->u, m_frame->chromaWidth(), m_frame->chromaHeight());
        state.upload(2, m_frame->v, m_frame->chromaWidth(), m_frame->chromaHeight());
        gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        m_frame->newFrame = false;
        state.hasPicture = true;
    }

    state.program->bind();
    const char* const samplers[3] = {"yTexture", "uTexture", "vTexture"};
    for (int i = 0; i < 3; ++i) {
        gl.glActiveTexture(GL_TEXTURE0 + i);
        gl.glBindTexture(GL_TEXTURE_2D, state.textures[i]);
        state.program->setUniformValue(samplers[i], i);
    }
    // Client-side arrays: no buffer may be bound to the array target.
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
    gl.glVertexAttribPointer(kPositionAttribute, 2, GL_FLOAT, GL_FALSE, 0, kPositions);
    gl.glVertexAttribPointer(kTexCoordAttribute, 2, GL_FLOAT, GL_FALSE, 0, kTexCoords);
    gl.glEnableVertexAttribArray(kPositionAttribute);
    gl.glEnableVertexAttribArray(kTexCoordAttribute);
    gl.glDisable(GL_DEPTH_TEST);
    gl.glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    gl.glDisableVertexAttribArray(kPositionAttribute);
    gl.glDisableVertexAttribArray(kTexCoordAttribute);
    for (int i = 2; i >= 0; --i) {
        gl.glActiveTexture(GL_TEXTURE0 + i);
        gl.glBindTexture(GL_TEXTURE_2D, 0);
    }
    state.program->release();
    painter->endNativePainting();
}
