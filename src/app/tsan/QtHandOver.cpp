// Linked into ThreadSanitizer builds only. Teaches the sanitizer the orderings Qt's event
// delivery gives, in the one place every posted call passes through, so that what our code
// hands over through queued and blocking calls is not reported as a race, while what it shares
// outside them still is.

#include "TsanAnnotations.h"

#include <QCoreApplication>
#include <QEvent>

struct QSignalSpyCallbackSet;
Q_CORE_EXPORT void qt_register_signal_spy_callbacks(QSignalSpyCallbackSet* callbacks);

namespace {

// Layout of the signal-spy hook table Qt's test library also fills; declared by QtCore in a
// private header that Debian does not ship.
using BeginCallback = void (*)(QObject*, int, void**);
using EndCallback = void (*)(QObject*, int);
struct SignalSpyCallbacks {
    BeginCallback signalBegin;
    BeginCallback slotBegin;
    EndCallback signalEnd;
    EndCallback slotEnd;
};

thread_local QEvent* t_delivering = nullptr;

// An emitter's writes before a queued emission reach every receiver: Qt posts the call under the
// receiving thread's post-list mutex, and the receiver takes the call under the same mutex.
// Keyed by the sender, which the queued call carries and the delivery below acquires.
void signalBegin(QObject* sender, int, void**)
{
    VIDORA_TSAN_RELEASE(sender);
}

void signalEnd(QObject*, int) {}

// Every event delivered to an object follows whatever was released for it: posted calls from
// another thread (the sender releases the receiver before posting), and for a queued signal the
// sender's own emission. A posted call is run here so that its end can be released too: a
// blocking caller wakes only after the call has returned and acquires the receiver then.
bool onEvent(void** data)
{
    auto* receiver = static_cast<QObject*>(data[0]);
    auto* event = static_cast<QEvent*>(data[1]);
    if (event == t_delivering)
        return false;
    VIDORA_TSAN_ACQUIRE(receiver);
    if (event->type() != QEvent::MetaCall)
        return false;
    // A posted call (QAbstractMetaCallEvent) keeps its signal index and then its sender right
    // after QEvent; the sender is null for a call posted by invokeMethod.
    struct MetaCallLayout : QEvent {
        int signalId;
        const QObject* sender;
    };
    if (const QObject* sender = static_cast<MetaCallLayout*>(event)->sender)
        VIDORA_TSAN_ACQUIRE(sender);
    QEvent* outer = t_delivering;
    t_delivering = event;
    *static_cast<bool*>(data[2]) = QCoreApplication::sendEvent(receiver, event);
    t_delivering = outer;
    VIDORA_TSAN_RELEASE(receiver);
    return true;
}

struct Install {
    Install()
    {
        static SignalSpyCallbacks callbacks{signalBegin, nullptr, signalEnd, nullptr};
        qt_register_signal_spy_callbacks(reinterpret_cast<QSignalSpyCallbackSet*>(&callbacks));
        QInternal::registerCallback(QInternal::EventNotifyCallback, onEvent);
    }
} install;

} // namespace
