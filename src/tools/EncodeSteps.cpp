#include "EncodeSteps.h"

#include "MediaOpen.h"
#include "StreamSideData.h"

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

bool findStreams(AVFormatContext* input, bool skipCoverArt, int* videoIndex, int* audioIndex)
{
    *videoIndex = -1;
    *audioIndex = -1;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVStream* st = input->streams[i];
        const AVMediaType type = st->codecpar->codec_type;
        const bool cover = skipCoverArt && (st->disposition & AV_DISPOSITION_ATTACHED_PIC);
        if (type == AVMEDIA_TYPE_VIDEO && !cover && *videoIndex < 0)
            *videoIndex = static_cast<int>(i);
        else if (type == AVMEDIA_TYPE_AUDIO && *audioIndex < 0)
            *audioIndex = static_cast<int>(i);
    }
    if (*videoIndex < 0) {
        spdlog::error("No video stream found");
        return false;
    }
    return true;
}

ff::CodecContextPtr openVideoDecoder(AVStream* stream, const char* noDecoderMessage)
{
    ff::OpenFailure failure;
    ff::CodecContextPtr context = ff::openDecoder(
        stream,
        [stream](AVCodecContext* decoder) {
            decoder->pkt_timebase = stream->time_base;
            configureDecoderThreads(decoder);
        },
        &failure);
    if (!context)
        spdlog::error("{}", failure.missing ? noDecoderMessage : "Failed to open video decoder");
    return context;
}

bool openVideoEncoder(const AVCodec* codec, AVFormatContext* output, ff::CodecContextPtr& encoder,
                      AVStream** stream, const std::function<void(AVCodecContext*)>& configure)
{
    *stream = avformat_new_stream(output, nullptr);
    encoder.reset(avcodec_alloc_context3(codec));
    if (!*stream || !encoder) {
        spdlog::error("Failed to open video encoder");
        return false;
    }
    AVCodecContext* enc = encoder.get();
    enc->codec_id = codec->id;
    configure(enc);
    (*stream)->time_base = enc->time_base;
    applyGlobalHeader(enc, output);
    if (avcodec_open2(enc, codec, nullptr) < 0) {
        spdlog::error("Failed to open video encoder");
        return false;
    }
    if (avcodec_parameters_from_context((*stream)->codecpar, enc) < 0) {
        spdlog::error("Failed to copy video encoder parameters");
        return false;
    }
    return true;
}

AVStream* addCopiedStream(AVFormatContext* output, const AVStream* source)
{
    AVStream* stream = avformat_new_stream(output, nullptr);
    if (!stream || avcodec_parameters_copy(stream->codecpar, source->codecpar) < 0 ||
        !StreamSideData::copy(source, stream))
        return nullptr;
    stream->codecpar->codec_tag = 0;
    stream->time_base = source->time_base;
    return stream;
}

bool allocatePicture(AVFrame* frame, int width, int height)
{
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = width;
    frame->height = height;
    return av_frame_get_buffer(frame, 0) >= 0;
}

bool openOutputFile(AVFormatContext* output, const QString& path)
{
    if (output->oformat->flags & AVFMT_NOFILE)
        return true;
    if (avio_open(&output->pb, path.toUtf8().constData(), AVIO_FLAG_WRITE) < 0) {
        spdlog::error("Could not open output file: {}", path.toStdString());
        return false;
    }
    return true;
}

bool writeHeader(AVFormatContext* output)
{
    if (avformat_write_header(output, nullptr) < 0) {
        spdlog::error("Error occurred when writing header");
        return false;
    }
    return true;
}

void copyPacket(const AVFormatContext* input, AVFormatContext* output, AVStream* stream, AVPacket* packet)
{
    const AVRational inBase = input->streams[packet->stream_index]->time_base;
    packet->stream_index = stream->index;
    av_packet_rescale_ts(packet, inBase, stream->time_base);
    packet->pos = -1;
    av_interleaved_write_frame(output, packet);
}

void flushEncoder(AVCodecContext* encoder, AVFormatContext* output, AVStream* stream, AVPacket* packet)
{
    if (avcodec_send_frame(encoder, nullptr) >= 0)
        writeEncodedPackets(encoder, output, stream, packet);
}

bool decodeToPictures(AVCodecContext* decoder, const AVPacket* packet, AVFrame* frame, FrameScaler& scaler,
                      AVFrame* picture, const std::function<bool()>& cancelled,
                      const std::function<void(const AVFrame*)>& decoded,
                      const std::function<void()>& scaledPicture)
{
    if (avcodec_send_packet(decoder, packet) < 0)
        return true;
    while (avcodec_receive_frame(decoder, frame) >= 0) {
        if (cancelled()) {
            av_frame_unref(frame);
            return false;
        }
        const bool scaled = scaler.scale(frame, picture);
        if (scaled && decoded)
            decoded(frame);
        av_frame_unref(frame);
        if (scaled)
            scaledPicture();
    }
    return true;
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
