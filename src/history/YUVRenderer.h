#pragma once

#include "YuvPlaneTextures.h"

#include <QOpenGLFunctions_3_3_Core>
#include <memory>

struct YuvFrame;

// Draws the latest YUV 4:2:0 frame over the whole viewport with an OpenGL 3.3 shader that
// converts to RGB on the GPU (full-range BT.601 coefficients; the grabber's limited-range
// values are drawn as they are, not expanded).
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

    // Builds program, textures, vertex array and buffers; false (and logged) when the
    // context cannot run 3.3 core shaders, in which case renderFrame only clears.
    bool initialize();
    // Clears to black, uploads a new frame if one is waiting and draws the textures.
    void renderFrame();

    const std::shared_ptr<YuvFrame>& frame() const { return m_frame; }

private:
    YuvPlaneTextures m_planes; // program and plane textures, GL_R8 as a core context needs
    GLuint m_vertexArray = 0;
    GLuint m_buffers[2] = {0, 0}; // positions, texture coordinates
    std::shared_ptr<YuvFrame> m_frame;
    bool m_ready = false;
};
