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

// Triangle strip over clip space; texture row 0 (the first image row) lands at the bottom.
const GLfloat kPositions[8] = {-1.0f, 1.0f, -1.0f, -1.0f, 1.0f, 1.0f, 1.0f, -1.0f};
const GLfloat kTexCoords[8] = {0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 1.0f, 1.0f, 0.0f};

constexpr GLuint kPositionAttribute = 0;
constexpr GLuint kTexCoordAttribute = 1;

} // namespace

YUVRenderer::YUVRenderer() : m_frame(std::make_shared<YuvFrame>()) {}

YUVRenderer::~YUVRenderer()
{
    if (!m_ready || !QOpenGLContext::currentContext())
        return;
    glDeleteTextures(3, m_textures);
    glDeleteBuffers(2, m_buffers);
    glDeleteVertexArrays(1, &m_vertexArray);
    m_program.reset();
}

bool YUVRenderer::initialize()
{
    if (!initializeOpenGLFunctions()) {
        spdlog::error("The preview needs OpenGL 3.3; the current context cannot provide it");
        return false;
    }
    m_program = std::make_unique<QOpenGLShaderProgram>();
    m_program->addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader);
    m_program->addShaderFromSourceCode(QOpenGLShader::Fragment, kFragmentShader);
    m_program->bindAttributeLocation("position", kPositionAttribute);
    m_program->bindAttributeLocation("texCoord", kTexCoordAttribute);
    if (!m_program->link()) {
        spdlog::error("Failed to build the preview shaders: {}", m_program->log().toStdString());
        m_program.reset();
        return false;
    }

    glClearColor(0.1f, 0.1f, 0.2f, 1.0f);

    glGenVertexArrays(1, &m_vertexArray);
    glBindVertexArray(m_vertexArray);
    glGenBuffers(2, m_buffers);
    glBindBuffer(GL_ARRAY_BUFFER, m_buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof(kPositions), kPositions, GL_STATIC_DRAW);
    glVertexAttribPointer(kPositionAttribute, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(kPositionAttribute);
    glBindBuffer(GL_ARRAY_BUFFER, m_buffers[1]);
    glBufferData(GL_ARRAY_BUFFER, sizeof(kTexCoords), kTexCoords, GL_STATIC_DRAW);
    glVertexAttribPointer(kTexCoordAttribute, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(kTexCoordAttribute);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);

    glGenTextures(3, m_textures);
    for (GLuint texture : m_textures) {
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    m_ready = true;
    return true;
}

void YUVRenderer::uploadPlane(GLuint texture, const QByteArray& plane, int width, int height)
{
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, width, height, 0, GL_RED, GL_UNSIGNED_BYTE, plane.constData());
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
    glDepthMask(GL_FALSE);
    glDisable(GL_DEPTH_TEST);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);

    {
        std::lock_guard<std::mutex> lock(m_frame->mutex);
        if (m_frame->newFrame && m_frame->hasPlanes()) {
            // Plane rows are tightly packed; odd widths are not 4-byte aligned.
            glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
            uploadPlane(m_textures[0], m_frame->y, m_frame->width, m_frame->height);
            uploadPlane(m_textures[1], m_frame->u, m_frame->chromaWidth(), m_frame->chromaHeight());
            uploadPlane(m_textures[2], m_frame->v, m_frame->chromaWidth(), m_frame->chromaHeight());
            glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
            m_frame->newFrame = false;
            m_hasPicture = true;
        }
    }
    if (!m_hasPicture)
        return;

    m_program->bind();
    const char* const samplers[3] = {"yTexture", "uTexture", "vTexture"};
    for (int i = 0; i < 3; ++i) {
        glActiveTexture(GL_TEXTURE0 + i);
        glBindTexture(GL_TEXTURE_2D, m_textures[i]);
        m_program->setUniformValue(samplers[i], i);
    }
    glBindVertexArray(m_vertexArray);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glBindVertexArray(0);
    for (int i = 2; i >= 0; --i) {
        glActiveTexture(GL_TEXTURE0 + i);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    m_program->release();
}
