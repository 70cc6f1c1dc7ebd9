#include "YuvPlaneTextures.h"

#include "YuvFrame.h"

#include <QOpenGLContext>
#include <spdlog/spdlog.h>

bool YuvPlaneTextures::create(const char* vertexShader, const char* fragmentShader)
{
    m_gl.initializeOpenGLFunctions();
    m_program = std::make_unique<QOpenGLShaderProgram>();
    m_program->addShaderFromSourceCode(QOpenGLShader::Vertex, vertexShader);
    m_program->addShaderFromSourceCode(QOpenGLShader::Fragment, fragmentShader);
    m_program->bindAttributeLocation("position", kPositionAttribute);
    m_program->bindAttributeLocation("texCoord", kTexCoordAttribute);
    if (!m_program->link()) {
        spdlog::error("Failed to build the preview shaders: {}", m_program->log().toStdString());
        m_program.reset();
        m_failed = true;
        return false;
    }
    m_gl.glGenTextures(3, m_textures);
    for (GLuint texture : m_textures) {
        m_gl.glBindTexture(GL_TEXTURE_2D, texture);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    m_gl.glBindTexture(GL_TEXTURE_2D, 0);
    m_created = true;
    return true;
}

void YuvPlaneTextures::upload(YuvFrame& frame, GLint internalFormat, GLenum format)
{
    if (!frame.newFrame || !frame.hasPlanes())
        return;
    const QByteArray* planes[3] = {&frame.y, &frame.u, &frame.v};
    // Plane rows are tightly packed; odd widths are not 4-byte aligned.
    m_gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (int i = 0; i < 3; ++i) {
        m_gl.glBindTexture(GL_TEXTURE_2D, m_textures[i]);
        m_gl.glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, i == 0 ? frame.width : frame.chromaWidth(),
                          i == 0 ? frame.height : frame.chromaHeight(), 0, format, GL_UNSIGNED_BYTE,
                          planes[i]->constData());
    }
    m_gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    frame.newFrame = false;
    m_hasPicture = true;
}

void YuvPlaneTextures::bind()
{
    m_program->bind();
    const char* const samplers[3] = {"yTexture", "uTexture", "vTexture"};
    for (int i = 0; i < 3; ++i) {
        m_gl.glActiveTexture(GL_TEXTURE0 + i);
        m_gl.glBindTexture(GL_TEXTURE_2D, m_textures[i]);
        m_program->setUniformValue(samplers[i], i);
    }
}

void YuvPlaneTextures::unbind()
{
    for (int i = 2; i >= 0; --i) {
        m_gl.glActiveTexture(GL_TEXTURE0 + i);
        m_gl.glBindTexture(GL_TEXTURE_2D, 0);
    }
    m_program->release();
}

void YuvPlaneTextures::destroy()
{
    if (m_created && QOpenGLContext::currentContext())
        m_gl.glDeleteTextures(3, m_textures);
    m_program.reset();
    m_created = false;
    m_failed = false;
    m_hasPicture = false;
}
