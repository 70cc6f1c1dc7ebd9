#pragma once

// Owning holders for FFmpeg objects: each is a std::unique_ptr whose deleter is the
// library's own free function, so every exit path of a job releases what it opened.
// One job owns all of its holders; none is shared between threads.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/buffer.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
#include <libavutil/mem.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace ff {

struct InputFormatDeleter
{
    void operator()(AVFormatContext* ctx) const { avformat_close_input(&ctx); }
};
// Output contexts close their file (unless the muxer needs none) before being freed.
struct OutputFormatDeleter
{
    void operator()(AVFormatContext* ctx) const
    {
        if (ctx->oformat && !(ctx->oformat->flags & AVFMT_NOFILE) && ctx->pb)
            avio_closep(&ctx->pb);
        avformat_free_context(ctx);
    }
};
struct CodecContextDeleter
{
    void operator()(AVCodecContext* ctx) const { avcodec_free_context(&ctx); }
};
struct FrameDeleter
{
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter
{
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct SwsDeleter
{
    void operator()(SwsContext* ctx) const { sws_freeContext(ctx); }
};
struct SwrDeleter
{
    void operator()(SwrContext* ctx) const { swr_free(&ctx); }
};
struct DictDeleter
{
    void operator()(AVDictionary* dict) const { av_dict_free(&dict); }
};
struct AudioFifoDeleter
{
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
};
// Frees the pool once every buffer taken from it has come back.
struct BufferPoolDeleter
{
    void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
};
struct AvFreeDeleter
{
    void operator()(void* p) const { av_free(p); }
};

using InputFormatPtr = std::unique_ptr<AVFormatContext, InputFormatDeleter>;
using OutputFormatPtr = std::unique_ptr<AVFormatContext, OutputFormatDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using SwsPtr = std::unique_ptr<SwsContext, SwsDeleter>;
using SwrPtr = std::unique_ptr<SwrContext, SwrDeleter>;
using BufferPoolPtr = std::unique_ptr<AVBufferPool, BufferPoolDeleter>;
using AudioFifoPtr = std::unique_ptr<AVAudioFifo, AudioFifoDeleter>;
// Buffers from av_malloc (grabbed frames, attached pictures before hand-over).
using AvBufferPtr = std::unique_ptr<uint8_t, AvFreeDeleter>;

inline FramePtr makeFrame() { return FramePtr(av_frame_alloc()); }
inline PacketPtr makePacket() { return PacketPtr(av_packet_alloc()); }

// The library's text for an error code.
inline std::string errorText(int code)
{
    char buffer[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, buffer, sizeof(buffer));
    return buffer;
}

} // namespace ff
