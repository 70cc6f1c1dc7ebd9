// Linked into the ThreadSanitizer builds of the scene tests. The threaded scene graph keeps the
// GUI thread blocked while its render thread synchronizes the items (updatePaintNode, a
// renderer's synchronize, a painted item's paint); the block is a wait condition inside Qt,
// which the sanitizer cannot see, so each window's sync is marked here as the edge it is.

#include "TsanAnnotations.h"

#include <QCoreApplication>
#include <QQuickWindow>

namespace {

void hook(QQuickWindow* window)
{
    // The GUI thread's last signal before it blocks for the sync.
    QObject::connect(window, &QQuickWindow::afterAnimating, window, [window] { VIDORA_TSAN_RELEASE(window); },
                     Qt::DirectConnection);
    // The render thread, while the GUI thread waits.
    QObject::connect(
        window, &QQuickWindow::beforeSynchronizing, window, [window] { VIDORA_TSAN_ACQUIRE(window); },
        Qt::DirectConnection);
    // What the sync wrote reaches the GUI thread with the next event delivered to the window.
    QObject::connect(
        window, &QQuickWindow::afterSynchronizing, window, [window] { VIDORA_TSAN_RELEASE(window); },
        Qt::DirectConnection);
}

bool onEvent(void** data)
{
    auto* receiver = static_cast<QObject*>(data[0]);
    if (!receiver->isWindowType())
        return false;
    auto* window = qobject_cast<QQuickWindow*>(receiver);
    static const QString marker = QStringLiteral("sceneGraphHandOver");
    if (window && !window->findChild<QObject*>(marker, Qt::FindDirectChildrenOnly)) {
        auto* flag = new QObject;
        flag->setObjectName(marker);
        flag->setParent(window);
        hook(window);
    }
    return false;
}

struct Install {
    Install() { QInternal::registerCallback(QInternal::EventNotifyCallback, onEvent); }
} install;

} // namespace
