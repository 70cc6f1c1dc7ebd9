#include "VideoWindowSetup.h"

#include <QByteArray>
#include <QSurfaceFormat>
#include <QtGlobal>

void prepareVideoWindows()
{
    // The scene clips only along axis-aligned rectangles (scissor), so windows need neither
    // depth nor stencil buffers; with software OpenGL every frame would clear and test them.
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setDepthBufferSize(0);
    format.setStencilBufferSize(0);
    format.setSamples(0);
    QSurfaceFormat::setDefaultFormat(format);
    // Qt holds every window update request back 5 ms to gather more; each new video frame
    // would reach the screen that much later, the first one included. Updates made in one
    // pass of the event loop are still drawn as one frame.
    if (!qEnvironmentVariableIsSet("QT_QPA_UPDATE_IDLE_TIME"))
        qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    // Text met for the first time adds its glyphs to its font's glyph texture, which grows to
    // hold them. Qt copies the old texture into the grown one by drawing it, and with software
    // OpenGL that took 80-130 ms in the frame showing the new text: opening a file shows its
    // name and time in the frame before its first picture, and a new digit of the time during
    // playback made a frame 5-55 ms longer. Kept in memory as well (under a megabyte here), the
    // texture is uploaded again instead: 2-8 ms.
    if (!qEnvironmentVariableIsSet("QML_USE_GLYPHCACHE_WORKAROUND"))
        qputenv("QML_USE_GLYPHCACHE_WORKAROUND", "1");
}
