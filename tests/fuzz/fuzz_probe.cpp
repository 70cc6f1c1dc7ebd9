#include "FuzzInput.h"
#include "MediaProbe.h"

#include <cstdlib>

// Probing: the stream walk, the frame-rate rounding and the duration of whatever the
// demuxers make of the bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QString path = FuzzInput::scratchPath(".media");
    if (!FuzzInput::store(path, data, size))
        return 0;
    bool ok = false;
    const VideoInfo info = MediaProbe::videoInfo(path, &ok);
    // A failed probe promises all zeros; a successful one never reports negative sizes.
    if (!ok && (info.width != 0 || info.height != 0 || info.fps != 0))
        abort();
    if (info.width < 0 || info.height < 0 || info.fps < 0)
        abort();
    const double seconds = MediaProbe::videoDuration(path);
    if (!(seconds >= 0.0) && seconds == seconds)
        abort();
    return 0;
}
