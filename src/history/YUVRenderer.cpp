#include "YUVRenderer.h"

#include "YuvFrame.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <spdlog/spdlog.h>

namespace {

const char* const kVertexShader = "#version 330 core\n"
                                  "in vec2 position;\n"
                                  "in vec2 texCoord;\n"
                                  "out vec2 v_texCoord;\n"
                                  "void main()\n"
                                  "{\n"
                                  "   gl_Position = vec4(position, 0.0, 1.0);\n"
                                  "   v_texCoord = texCoord;\n"
                                  "}\n";

const char* const kFragmentShader = "#version 330 core\n"
                                    "in vec2 v_texCoord;\n"
                                    "out vec4 FragColor;\n"
                                    "uniform sampler2D yTexture;\n"
                                    "uniform sampler2D uTexture;\n"
                                    "uniform sampler2D vTexture;\n"
                                    "void main()\n"
                                    "{\n"
                                    "   float y = texture(yTexture, v_texCoord).r;\n"
                                    "   float u = texture(uTexture, v_texCoord).r - 0.5;\n"
                                    "   float v = texture(vTexture, v_texCoord).r - 0.5;\n"
                                    "   vec3 rgb;\n"
                                    "   rgb.r = y + 1.402 * v;\n"
                                    "   rgb.g = y - 0.344 * u - 0.714 * v;\n"
                                    "   rgb.b = y + 1.772 * u;\n"
                                    "   FragColor = vec4(rgb, 1.0);\n"
                                    "}\n";

} // namespace

YUVRenderer::YUVRenderer() : m_frame(std::make_shared<YuvFrame>()) {}

YUVRenderer::~YUVRenderer()
{
    if (!m_ready || !QOpenGLContext::currentContext())
        return;
    m_planes.destroy();
    glDeleteBuffers(2, m_buffers);
    glDeleteVertexArrays(1, &m_vertexArray);
}

bool YUVRenderer::initialize()
{
    if (!initializeOpenGLFunctions()) {
        spdlog::error("The preview needs OpenGL 3.3; the current context cannot provide it");
        return false;
    }
    if (!m_planes.create(kVertexShader, kFragmentShader))
        return false;

    glClearColor(0.1f, 0.1f, 0.2f, 1.0f);

    // The quad lives in buffers of a vertex array: a core context has no client-side arrays.
    glGenVertexArrays(1, &m_vertexArray);
    glBindVertexArray(m_vertexArray);
    glGenBuffers(2, m_buffers);
    const GLfloat* const tables[2] = {YuvPlaneTextures::kPositions, YuvPlaneTextures::kTexCoords};
    const GLuint attributes[2] = {YuvPlaneTextures::kPositionAttribute, YuvPlaneTextures::kTexCoordAttribute};
    for (int i = 0; i < 2; ++i) {
        glBindBuffer(GL_ARRAY_BUFFER, m_buffers[i]);
        glBufferData(GL_ARRAY_BUFFER, 8 * sizeof(GLfloat), tables[i], GL_STATIC_DRAW);
        glVertexAttribPointer(attributes[i], 2, GL_FLOAT, GL_FALSE, 0, nullptr);
        glEnableVertexAttribArray(attributes[i]);
    }
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_ready = true;
    return true;
}

void YUVRenderer::renderFrame()
{
    if (!m_ready) {
        // The 3.3 entry points are unusable here; the basic set still clears.
        QOpenGLFunctions* gl = QOpenGLContext::currentContext()->functions();
        gl->glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        gl->glClear(GL_COLOR_BUFFER_BIT);
        return;
    }
    // The scene graph hands over whatever state its last batch left (blending on after a
    // translucent one). Software OpenGL compiles a shader variant per blend state, so an
    // inherited state would make the preview's first frame after a change wait for a compile.
    // The picture is opaque and fills the framebuffer: no blending, clipping or stencil applies.
    glDisable(GL_BLEND);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_STENCIL_TEST);
    glDepthMask(GL_FALSE);
    glDisable(GL_DEPTH_TEST);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);

    {
        std::lock_guard<std::mutex> lock(m_frame->mutex);
        m_planes.upload(*m_frame, GL_R8, GL_RED);
    }
    if (!m_planes.hasPicture())
        return;

    m_planes.bind();
    glBindVertexArray(m_vertexArray);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glBindVertexArray(0);
    m_planes.unbind();
}
