#pragma once

#include "FfmpegPtr.h"
#include "VideoInfo.h"

#include <QString>

// Building blocks shared by the tool jobs. Safe on any thread; each call owns what it opens.
namespace MediaProbe {

// Opens with default probing, reads stream information and dumps the format to the
// library log. On failure logs the cause, leaves `out` empty and returns false.
bool openInputFile(const QString& path, ff::InputFormatPtr& out);

// Allocates an output context whose muxer is guessed from the file name's extension.
bool createOutputContext(ff::OutputFormatPtr& out, const QString& path);

// Creates the output streams of a stream-copy job in input order. Subtitles that the MP4
// family cannot hold are dropped; later output indexes then shift down by one. The clip and
// merge jobs address output streams by the packet's input index, so their packets of a
// stream after a dropped one land on its neighbour.
bool copyStreamLayout(AVFormatContext* input, AVFormatContext* output);

// The container's duration in seconds; 0.0 when unknown, and when a damaged header claims a
// negative one (no caller has a use for a length below zero).
double containerSeconds(const AVFormatContext* context);

// Seconds, or 0.0 when the file cannot be opened or its duration is unknown.
double videoDuration(const QString& path);

// Empty VideoInfo-equivalent (all zeros) with ok=false when the file cannot be opened.
VideoInfo videoInfo(const QString& path, bool* ok = nullptr);

} // namespace MediaProbe
