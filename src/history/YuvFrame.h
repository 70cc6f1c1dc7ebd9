#pragma once

#include <QByteArray>
#include <mutex>

struct GrabbedFrame;

// The frame a thumbnail item shows, handed from a load job (pool thread) to the thread that
// uploads it (scene-graph render thread). Every field is guarded by `mutex`; the store copies
// the planes once and the upload reads them only while holding it.
struct YuvFrame
{
    std::mutex mutex;
    QByteArray y;
    QByteArray u;
    QByteArray v;
    int width = 0;
    int height = 0;
    bool newFrame = false; // set by a store, cleared by the upload that consumes it

    // Chroma planes are rounded up, as the grabber lays them out.
    int chromaWidth() const { return (width + 1) / 2; }
    int chromaHeight() const { return (height + 1) / 2; }
    bool hasPlanes() const { return width > 0 && height > 0 && !y.isEmpty(); }

    // Copies the grabbed planes and marks them new. Caller holds `mutex`.
    void store(const GrabbedFrame& frame);
    // Forgets a stored frame that was not uploaded yet; what was uploaded stays on screen.
    // Caller holds `mutex`.
    void discard();
};
