#include "EncodeSteps.h"

extern "C" {
#include <libavutil/cpu.h>
}

#include <algorithm>
#include <climits>
#include <spdlog/spdlog.h>

namespace EncodeSteps {

bool countVideoPackets(AVFormatContext* input, int videoStreamIndex, int64_t* count)
{
    if (!input || videoStreamIndex < 0 || videoStreamIndex >= static_cast<int>(input->nb_streams)) {
        spdlog::error("Invalid input format context or video stream index");
        return false;
    }
    if (input->streams[videoStreamIndex]->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
        spdlog::error("Stream index {} is not a video stream", videoStreamIndex);
        return false;
    }
    ff::PacketPtr packet = ff::makePacket();
    if (!packet)
        return false;
    int64_t total = 0;
    while (av_read_frame(input, packet.get()) >= 0) {
        if (packet->stream_index == videoStreamIndex)
            ++total;
        av_packet_unref(packet.get());
    }
    const int ret = av_seek_frame(input, -1, 0, AVSEEK_FLAG_BACKWARD);
    if (ret < 0)
        spdlog::warn("Could not seek back to the start after counting frames: {}", ff::errorText(ret));
    *count = total;
    return true;
}

bool writeEncodedPackets(AVCodecContext* encoder, AVFormatContext* output, AVStream* stream, AVPacket* packet,
                         const std::function<void(int64_t pts)>& written)
{
    for (;;) {
        const int ret = avcodec_receive_packet(encoder, packet);
        if (ret == AVERROR(EAGAIN) || ret == AVERROR_EOF)
            return true;
        if (ret < 0) {
            spdlog::error("Error receiving an encoded packet: {}", ff::errorText(ret));
            return false;
        }
        packet->stream_index = stream->index;
        av_packet_rescale_ts(packet, encoder->time_base, stream->time_base);
        const int64_t pts = packet->pts;
        // The interleaving writer takes the packet's reference, also on failure.
        av_interleaved_write_frame(output, packet);
        if (written)
            written(pts);
    }
}

AVRational guessFrameRate(AVFormatContext* input, AVStream* stream)
{
    const AVRational rate = av_guess_frame_rate(input, stream, nullptr);
    if (rate.num > 0 && rate.den > 0)
        return rate;
    spdlog::warn("Frame rate of stream {} unknown, assuming 25", stream->index);
    return AVRational{25, 1};
}

void configureDecoderThreads(AVCodecContext* decoder)
{
    constexpr int kMaxDecoderThreads = 4;
    decoder->thread_count = std::min(av_cpu_count() + 1, kMaxDecoderThreads);
    decoder->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
}

void applyGlobalHeader(AVCodecContext* encoder, const AVFormatContext* output)
{
    if (output->oformat->flags & AVFMT_GLOBALHEADER)
        encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
}

int toSignalValue(int64_t value)
{
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

} // namespace EncodeSteps
