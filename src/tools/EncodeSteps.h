#pragma once

#include "FfmpegPtr.h"
#include "FrameScaler.h"

#include <QString>
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

// The first video and the first audio stream of the input (-1 for none); cover pictures count
// as video unless `skipCoverArt`. False, with the reason logged, when there is no video.
bool findStreams(AVFormatContext* input, bool skipCoverArt, int* videoIndex, int* audioIndex);

// An opened decoder for a video stream (threads set as configureDecoderThreads says), or null
// after logging `noDecoderMessage` when the codec has no decoder here, "Failed to open video
// decoder" when it does not open.
ff::CodecContextPtr openVideoDecoder(AVStream* stream, const char* noDecoderMessage);

// Adds the output's video stream and opens `codec` for it: `configure` sets the job's own
// settings (it must set the time base, which the stream takes over). Logs the failing step.
bool openVideoEncoder(const AVCodec* codec, AVFormatContext* output, ff::CodecContextPtr& encoder,
                      AVStream** stream, const std::function<void(AVCodecContext*)>& configure);

// A new output stream with `source`'s parameters, side data (the display matrix among them)
// and time base for packets copied unchanged; its codec tag is cleared, as the source
// container's tag may mean nothing to the new one (the muxer chooses). Null when it cannot be
// made.
AVStream* addCopiedStream(AVFormatContext* output, const AVStream* source);

// Gives `frame` its own yuv420p buffer of the given size; false when it cannot.
bool allocatePicture(AVFrame* frame, int width, int height);

// Opens the output file unless the muxer writes none itself; logs when it cannot.
bool openOutputFile(AVFormatContext* output, const QString& path);

// Writes the container header; logs when the muxer refuses it.
bool writeHeader(AVFormatContext* output);

// Writes an input packet unchanged to `stream`, its timestamps rescaled to the stream's time
// base (write errors are not acted on, as in writeEncodedPackets).
void copyPacket(const AVFormatContext* input, AVFormatContext* output, AVStream* stream, AVPacket* packet);

// Drains the encoder at the end of the input and writes what it still held.
void flushEncoder(AVCodecContext* encoder, AVFormatContext* output, AVStream* stream, AVPacket* packet);

// Sends one packet to the decoder and scales every frame it returns into `picture`. Before each
// frame `cancelled` is asked: when it answers true the frame is dropped and false returned. A
// frame that cannot be scaled is dropped. `decoded` sees the decoded frame before it is released,
// `scaledPicture` runs after. A packet the decoder refuses is skipped (it resynchronises on the
// next ones).
bool decodeToPictures(AVCodecContext* decoder, const AVPacket* packet, AVFrame* frame, FrameScaler& scaler,
                      AVFrame* picture, const std::function<bool()>& cancelled,
                      const std::function<void(const AVFrame*)>& decoded,
                      const std::function<void()>& scaledPicture);

// Saturates a 64-bit count to the int range of the progress signals.
int toSignalValue(int64_t value);

} // namespace EncodeSteps
