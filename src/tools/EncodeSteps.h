#pragma once

#include "FfmpegPtr.h"

#include <cstdint>
#include <functional>

// Steps shared by the re-encoding jobs (compress, convert). Each works on contexts that the
// calling job owns; nothing here keeps state between calls.
namespace EncodeSteps {

// Reads the whole input once and counts the packets of the video stream, then seeks back to
// the start so the job's main loop reads everything again. Returns false (and logs why) when
// the index does not name a video stream of the input; the caller then announces no total.
bool countVideoPackets(AVFormatContext* input, int videoStreamIndex, int64_t* count);

// Takes every packet the encoder has ready, addresses it to `stream`, rescales its timestamps
// from the encoder's time base to the stream's and writes it interleaved (write errors are
// not reported, as the jobs do not act on them). `written` is called after each write with
// the packet's pts in the stream's time base.
// Returns false when the encoder failed with a real error (not "again" or end of stream).
bool writeEncodedPackets(AVCodecContext* encoder, AVFormatContext* output, AVStream* stream, AVPacket* packet,
                         const std::function<void(int64_t pts)>& written = {});

// The library's guess of a video stream's frame rate; 25/1 when it has none, so an encoder
// never gets an empty time base.
AVRational guessFrameRate(AVFormatContext* input, AVStream* stream);

// Threads for a video decoder whose last frames are never drained: frame threading keeps
// decoding off the critical path of fast encodes (a downscaling conversion of a high-rate
// source is otherwise decode-bound), but every extra thread is one more frame still held, and
// so dropped, at the end of the input. A few threads get most of the speed.
void configureDecoderThreads(AVCodecContext* decoder);

// Asks for the muxer's global headers when the output format wants them.
void applyGlobalHeader(AVCodecContext* encoder, const AVFormatContext* output);

// Saturates a 64-bit count to the int range of the progress signals.
int toSignalValue(int64_t value);

} // namespace EncodeSteps
