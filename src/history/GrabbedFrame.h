#pragma once

#include "FfmpegPtr.h"

#include <QString>

class CommonTool;

// One frame taken by the frame grabber for a thumbnail: packed I420 (Y, then U, then V) in a
// buffer from FFmpeg's allocator, released with av_free when the holder goes. Owned by the
// load job that grabbed it; never shared between threads.
struct GrabbedFrame
{
    ff::AvBufferPtr buffer;
    int width = 0;
    int height = 0;

    bool isValid() const { return buffer && width > 0 && height > 0; }

    // The grabber rounds chroma planes up, so odd sizes keep their last column and row.
    int chromaWidth() const { return (width + 1) / 2; }
    int chromaHeight() const { return (height + 1) / 2; }
    const uint8_t* yPlane() const { return buffer.get(); }
    const uint8_t* uPlane() const { return buffer.get() + width * height; }
    const uint8_t* vPlane() const { return uPlane() + chromaWidth() * chromaHeight(); }
};

// Grabs the frame at or before `seconds` of a local file, logging as every thumbnail loader
// does; an unusable result (no video, unreadable, deleted file) is logged as an error and
// comes back invalid. `tool` must outlive the call. Any thread.
GrabbedFrame grabThumbnailFrame(CommonTool* tool, const QString& filePath, double seconds);
