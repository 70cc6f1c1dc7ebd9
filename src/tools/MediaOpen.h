#pragma once

#include "FfmpegPtr.h"

#include <QString>
#include <functional>

// The two opens every media routine starts with. Each returns null on failure and logs
// nothing: callers say in their own words what could not be done.
namespace ff {

// What failed, for callers whose message depends on it.
struct OpenFailure
{
    bool missing = false; // the file would not open, or the library has no decoder for the codec
    int code = 0;         // the library's error code of the call that failed, when it gave one
};

enum class StreamInfo
{
    Always,
    // Taking one picture needs only what a container's header declares (MP4, Matroska); the
    // analysis would decode pictures ahead for nothing. Streams the header leaves undescribed
    // (MPEG-TS, cover art) are still analysed.
    UnlessHeaderDescribesVideo,
};

// Opens a media file (the path goes to the library as UTF-8) and reads its stream information,
// unless `info` lets a describing header stand in for it.
InputFormatPtr openInput(const QString& path, AVDictionary** options = nullptr,
                         OpenFailure* failure = nullptr, StreamInfo info = StreamInfo::Always);

// A decoder for `stream` holding its parameters, opened. `configure` runs just before the
// open (packet time base, threads).
CodecContextPtr openDecoder(const AVStream* stream, const std::function<void(AVCodecContext*)>& configure = {},
                            OpenFailure* failure = nullptr);

} // namespace ff
