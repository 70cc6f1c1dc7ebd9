#pragma once

#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLShaderProgram>
#include <memory>

struct YuvFrame;

// Draws the latest YUV 4:2:0 frame over the whole viewport with an OpenGL 3.3 shader that
// converts to RGB on the GPU (full-range BT.601 coefficients; the grabber's limited-range
// values are drawn as they are, which is how previews have always looked).
// The vertex table puts the first image row at the bottom of clip space, that is row 0 of the
// target; Qt Quick shows a framebuffer object's row 0 at the top, so the picture is upright.
//
// Threads: construction, initialize(), renderFrame() and destruction run on the scene-graph
// render thread with its context current; frame() is shared with load jobs and the GUI
// thread, always under the frame's mutex.
class YUVRenderer : protected QOpenGLFunctions_3_3_Core
{
public:
    YUVRenderer();
    virtual ~YUVRenderer();

    YUVRenderer(const YUVRenderer&) = delete;
    YUVRenderer& operator=(const YUVRenderer&) = delete;

    // Builds program, vertex array, buffers and textures; false (and logged) when the
    // context cannot run 3.3 core shaders, in which case renderFrame only clears.
    bool initialize();
    // Clears to black, uploads a new frame if one is waiting and draws the textures.
    void renderFrame();

    const std::shared_ptr<YuvFrame>& frame() const { return m_frame; }

private:
    void uploadPlane(GLuint texture, const QByteArray& plane, int width, int height);

    std::unique_ptr<QOpenGLShaderProgram> m_program;
    GLuint m_vertexArray = 0;
    GLuint m_buffers[2] = {0, 0};     // positions, texture coordinates
    GLuint m_textures[3] = {0, 0, 0}; // Y, U, V
    std::shared_ptr<YuvFrame> m_frame;
    bool m_ready = false;
    // Until a frame has been uploaded the textures are empty; drawing them would paint the
    // shader's colour of zero samples (green), so only the black clear is shown.
    bool m_hasPicture = false;
};
