#include "FrameGrabber.h"

#include "DisplayOrientation.h"
#include "FfmpegPtr.h"
#include "MediaOpen.h"
#include "PictureRecycler.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <cmath>

namespace {

struct Grabbed
{
    ff::AvBufferPtr buffer;
    int width = 0;
    int height = 0;
};

// One tightly packed I420 block of the given size, its planes laid over it.
struct PackedPicture
{
    ff::AvBufferPtr buffer;
    uint8_t* planes[4] = {};
    int strides[4] = {};

    bool allocate(int width, int height)
    {
        const int size = av_image_get_buffer_size(AV_PIX_FMT_YUV420P, width, height, 1);
        if (size <= 0)
            return false;
        buffer.reset(static_cast<uint8_t*>(av_malloc(size)));
        return buffer &&
               av_image_fill_arrays(planes, strides, buffer.get(), AV_PIX_FMT_YUV420P, width, height, 1) >= 0;
    }
};

// Scales the frame into one tightly packed I420 block at the stream's coded size, then turns
// it the way the stream is shown, so a portrait phone video gives a portrait picture.
Grabbed packFrame(const AVFrame* frame, AVPixelFormat sourceFormat, int width, int height,
                  const DisplayOrientation& orientation)
{
    Grabbed result;
    if (sourceFormat == AV_PIX_FMT_NONE)
        sourceFormat = static_cast<AVPixelFormat>(frame->format);
    ff::SwsPtr scaler(sws_getContext(frame->width, frame->height, sourceFormat, width, height,
                                     AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler)
        return result;
    PackedPicture coded;
    if (!coded.allocate(width, height) ||
        sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, coded.planes, coded.strides) <= 0)
        return result;
    if (orientation.isUpright()) {
        result.buffer = std::move(coded.buffer);
        result.width = width;
        result.height = height;
        return result;
    }
    const int turnedWidth = orientation.turnedWidth(width, height);
    const int turnedHeight = orientation.turnedHeight(width, height);
    PackedPicture turned;
    if (!turned.allocate(turnedWidth, turnedHeight))
        return result;
    orientation.turnYuv420(coded.planes, coded.strides, width, height, turned.planes, turned.strides);
    result.buffer = std::move(turned.buffer);
    result.width = turnedWidth;
    result.height = turnedHeight;
    return result;
}

Grabbed grabFrame(const QString& filePath, double seconds, PictureRecycler* pictures)
{
    const ff::InputFormatPtr input =
        ff::openInput(filePath, nullptr, nullptr, ff::StreamInfo::UnlessHeaderDescribesVideo);
    if (!input)
        return {};

    // Cover pictures count as video here: a music file's cover is its thumbnail.
    AVStream* stream = nullptr;
    for (unsigned i = 0; i < input->nb_streams && !stream; ++i) {
        if (input->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
            stream = input->streams[i];
    }
    if (!stream)
        return {};

    const ff::CodecContextPtr decoder = ff::openDecoder(stream, [pictures](AVCodecContext* context) {
        if (pictures)
            pictures->attach(context);
    });
    if (!decoder)
        return {};

    // A cover picture is delivered once, queued at open; a seek would flush it away (and
    // means nothing for a single picture).
    const bool coverPicture = stream->disposition & AV_DISPOSITION_ATTACHED_PIC;
    const double unit = av_q2d(stream->time_base);
    if (!coverPicture && unit > 0.0 && std::isfinite(seconds)) {
        const double target = std::trunc(seconds / unit);
        // Out-of-range requests simply fail to seek; reading then starts where it stands.
        if (std::fabs(target) < 9.0e18)
            av_seek_frame(input.get(), stream->index, static_cast<int64_t>(target), AVSEEK_FLAG_BACKWARD);
    }
    avcodec_flush_buffers(decoder.get());

    ff::PacketPtr packet = ff::makePacket();
    ff::FramePtr frame = ff::makeFrame();
    if (!packet || !frame)
        return {};
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index != stream->index) {
            av_packet_unref(packet.get());
            continue;
        }
        // A decoder that still holds a picture refuses input (EAGAIN); asking for the picture
        // is then still right.
        const int sent = avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        if ((sent < 0 && sent != AVERROR(EAGAIN)) || avcodec_receive_frame(decoder.get(), frame.get()) < 0)
            continue;
        Grabbed result = packFrame(frame.get(), decoder->pix_fmt, stream->codecpar->width,
                                   stream->codecpar->height, DisplayOrientation::ofStream(stream));
        av_frame_unref(frame.get());
        return result;
    }
    return {};
}

} // namespace

void FrameGrabber::grab(const QString& filePath, double seconds, uint8_t** buffer, int* width, int* height,
                        PictureRecycler* pictures)
{
    Grabbed result = grabFrame(filePath, seconds, pictures);
    const bool ok = result.buffer != nullptr;
    if (width)
        *width = ok ? result.width : 0;
    if (height)
        *height = ok ? result.height : 0;
    if (buffer)
        *buffer = ok ? result.buffer.release() : nullptr;
}
