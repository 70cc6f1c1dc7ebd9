#pragma once

#include "FfmpegPtr.h"

#include <mutex>

// Picture memory for decoders that are opened for a frame or two and closed again, as the
// frame grabber's are (one per hover preview). A decoder attached here takes its pictures
// from one shared pool instead of fresh allocations, and they come back to the pool when the
// frames are released, so the next decoder, on whichever pool thread, writes into memory the
// process has already touched. Fresh memory costs a page fault per 4 KiB on first write: a
// 1080p picture is about 800 of them, and a decoder holds three while it reorders; on a
// virtual machine that was slower than decoding the picture.
// Any thread may attach decoders; the pool keeps pictures of one size (the last one asked
// for) and lets the older ones go as their frames are released.
class PictureRecycler
{
public:
    PictureRecycler() = default;
    PictureRecycler(const PictureRecycler&) = delete;
    PictureRecycler& operator=(const PictureRecycler&) = delete;

    // Before the decoder opens. The recycler must outlive the decoder (frames it handed out
    // may outlive both: the pool is freed only once they are all back).
    void attach(AVCodecContext* decoder);

private:
    static int getBuffer(AVCodecContext* decoder, AVFrame* frame, int flags);
    int fill(AVCodecContext* decoder, AVFrame* frame);
    AVBufferRef* take(int size);

    std::mutex m_mutex;
    ff::BufferPoolPtr m_pool;
    int m_size = 0;
};
