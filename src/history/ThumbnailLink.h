#pragma once

#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>
#include <mutex>

class CommonTool;
struct YuvFrame;

// What a thumbnail item shares with its load jobs (and ThumbnailItem with its renderer).
// Jobs keep it alive, so they may finish after the item or its renderer is gone: they then
// drop their frame. Every field is guarded by `mutex`; `announce` is only called with it
// held, and the item clears it in its destructor under the same mutex.
struct ThumbnailLink
{
    std::mutex mutex;
    // Emits the item's signalUpdate(width, height); empty once the item is destroyed.
    std::function<void(int, int)> announce;
    // Where frames go: the renderer's frame for ThumbnailItem (null while it has no
    // renderer), the item's own for YUVPaintedItem.
    std::shared_ptr<YuvFrame> frame;
    // ThumbnailItem's renderer (a UserFboRenderer), null until the scene graph makes one and
    // again after it deleted it.
    void* renderer = nullptr;
    // The box frames are fitted into.
    int maxWidth = 210;
    int maxHeight = 130;
    // The item's current size, mirrored from the GUI thread for the jobs.
    double itemWidth = 0;
    double itemHeight = 0;
    // ThumbnailItem needs a renderer to take a frame and logs its fitted size.
    bool framebufferItem = false;

    // The item's side, GUI thread, each under `mutex`: its setMaxSize, its geometry, and its
    // destructor (jobs finishing later drop their frames).
    void setBox(int width, int height);
    void setItemSize(const QSizeF& size);
    void detach();
};

// What the items' loadThumbnail does (GUI thread): logs the request and queues
// loadThumbnailJob on the pool. Returns at once; a newer call does not cancel an older one.
void startThumbnailLoad(const std::shared_ptr<ThumbnailLink>& link, const QString& filePath, double seconds);

// The load job of both thumbnail items (pool thread): grab the frame, fit it into the box,
// store it in the link's frame and announce the size through signalUpdate, (0, 0) when the
// item already has that size. Failures are logged and leave the previous picture.
void loadThumbnailJob(const std::shared_ptr<ThumbnailLink>& link, CommonTool* tool, const QString& filePath,
                      double seconds);
