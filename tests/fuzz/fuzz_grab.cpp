#include "FrameGrabber.h"
#include "FuzzInput.h"
#include "PictureRecycler.h"

extern "C" {
#include <libavutil/mem.h>
}
#include <cstdlib>

// Frame grabbing: seek, decode until the first picture, pack it as I420. The size of the
// input picks the requested time, so the mutator varies both together. Every input decodes
// into the same recycled pictures, as the program's grabs do, so pictures of one input's size
// and format are handed to the next.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QString path = FuzzInput::scratchPath(".media");
    static PictureRecycler pictures;
    if (!FuzzInput::store(path, data, size))
        return 0;
    const double seconds = static_cast<double>(size % 13) * 0.25;
    uint8_t* buffer = nullptr;
    int width = -1;
    int height = -1;
    FrameGrabber::grab(path, seconds, &buffer, &width, &height, &pictures);
    if (!buffer) {
        if (width != 0 || height != 0)
            abort();
        return 0;
    }
    if (width <= 0 || height <= 0)
        abort();
    // Touch every byte the receiver will read (Y, then U and V of ceil(w/2) x ceil(h/2)), so
    // the address sanitizer sees a buffer shorter than its planes.
    const size_t chroma = static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2);
    const size_t total = static_cast<size_t>(width) * static_cast<size_t>(height) + 2 * chroma;
    unsigned sum = 0;
    for (size_t i = 0; i < total; ++i)
        sum += buffer[i];
    av_free(buffer);
    return sum == 0xFFFFFFFFu ? 1 : 0;
}
