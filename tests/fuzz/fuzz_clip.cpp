#include "CommonTool.h"
#include "FuzzInput.h"

#include <QFile>
#include <cstdlib>

// The clip job's copy loop: stream layout, seek, timestamp shifting and rescaling, the
// interleaving writer and the trailer, into the three muxer families the clip tool offers
// (the MP4 family drops subtitles it cannot hold, which shifts later streams). The input's
// size picks the muxer and the range, so the mutator varies them with the bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QString input = FuzzInput::scratchPath(".media");
    static const QString outputs[] = {FuzzInput::scratchPath("-out.mkv"), FuzzInput::scratchPath("-out.mp4"),
                                      FuzzInput::scratchPath("-out.mov")};
    if (!FuzzInput::store(input, data, size))
        return 0;
    const QString& output = outputs[size % 3];
    const double start = static_cast<double>(size / 3 % 4) * 0.2;
    const double end = start + 0.3 + static_cast<double>(size / 12 % 8) * 0.4;

    CommonTool tool;
    int finished = 0;
    QObject::connect(&tool, &CommonTool::videoCompressionFinished, [&finished](bool) { ++finished; });
    tool.cropVideo(input, output, start, end);
    // Whatever the input, the job reports its end exactly once.
    if (finished != 1)
        abort();
    QFile::remove(output);
    return 0;
}
