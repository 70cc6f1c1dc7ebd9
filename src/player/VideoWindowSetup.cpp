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
    // Text met for the first time grows its font's glyph texture. Qt copies the old texture
    // into the grown one by drawing it, which with software OpenGL costs about 90 ms for a
    // texture holding the printable ASCII range, in the frame that shows the new text (a
    // file's name, in the frame before its first picture). Kept in memory as well, the
    // texture is uploaded again instead: about 13 ms.
    if (!qEnvironmentVariableIsSet("QML_USE_GLYPHCACHE_WORKAROUND"))
        qputenv("QML_USE_GLYPHCACHE_WORKAROUND", "1");
}
