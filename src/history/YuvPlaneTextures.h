#pragma once

#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <memory>

struct YuvFrame;

// What both thumbnail items draw with: a shader program that turns three single-channel plane
// textures (Y, U, V, samplers "yTexture", "uTexture", "vTexture") into RGB, the textures, and
// the quad they cover. The shader texts and the texture format come from each item, since they
// follow its context's profile.
//
// Threads: render thread only, with the owning context current.
class YuvPlaneTextures
{
public:
    // Triangle strip over clip space; texture row 0 (the first image row) lands at the bottom,
    // which is row 0 of the target framebuffer.
    static constexpr GLfloat kPositions[8] = {-1.0f, 1.0f, -1.0f, -1.0f, 1.0f, 1.0f, 1.0f, -1.0f};
    static constexpr GLfloat kTexCoords[8] = {0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 1.0f, 1.0f, 0.0f};
    // Where the program binds the shaders' "position" and "texCoord" attributes.
    static constexpr GLuint kPositionAttribute = 0;
    static constexpr GLuint kTexCoordAttribute = 1;

    // Builds the program and three linear, edge-clamped textures; false (and logged) when the
    // shaders do not build, after which hasFailed() holds until destroy().
    bool create(const char* vertexShader, const char* fragmentShader);
    bool isCreated() const { return m_created; }
    bool hasFailed() const { return m_failed; }

    // Uploads the frame's planes if a new one is waiting, as textures of `internalFormat` read
    // from single-byte `format` rows. Caller holds frame.mutex.
    void upload(YuvFrame& frame, GLint internalFormat, GLenum format);
    // Until a frame has been uploaded the textures are empty; drawing them would paint the
    // shader's colour of zero samples (green).
    bool hasPicture() const { return m_hasPicture; }

    // Binds the program and the textures to units 0-2; unbind() undoes both.
    void bind();
    void unbind();

    // Deletes what create() made while a context is current (without one it is left to the
    // context's own destruction) and returns to the state before create().
    void destroy();

private:
    QOpenGLFunctions m_gl;
    std::unique_ptr<QOpenGLShaderProgram> m_program;
    GLuint m_textures[3] = {0, 0, 0};
    bool m_created = false;
    bool m_failed = false;
    bool m_hasPicture = false;
};
