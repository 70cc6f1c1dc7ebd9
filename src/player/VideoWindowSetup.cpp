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
}
