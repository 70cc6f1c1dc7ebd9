#include "MediaProbe.h"

#include "MediaOpen.h"
#include "StreamSideData.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <spdlog/spdlog.h>

namespace MediaProbe {

namespace {

bool usableRate(AVRational rate)
{
    return rate.num >= 1 && rate.den >= 1;
}

// Whole-number frame rate, rounded half up.
int roundedRate(AVRational rate)
{
    return static_cast<int>(std::trunc(static_cast<double>(rate.num) / rate.den + 0.5));
}

bool isMp4Family(const AVOutputFormat* format)
{
    if (!format || !format->name)
        return false;
    return std::strcmp(format->name, "mp4") == 0 || std::strcmp(format->name, "mov") == 0 ||
           std::strcmp(format->name, "3gp") == 0;
}

} // namespace

bool openInputFile(const QString& path, ff::InputFormatPtr& out)
{
    out.reset();
    const QByteArray utf8 = path.toUtf8();
    ff::OpenFailure failure;
    ff::InputFormatPtr context = ff::openInput(path, nullptr, &failure);
    if (!context) {
        if (failure.missing)
            spdlog::error("Could not open input file: {}", utf8.constData());
        else
            spdlog::error("Failed to retrieve input stream information");
        return false;
    }
    av_dump_format(context.get(), 0, utf8.constData(), 0);
    out = std::move(context);
    return true;
}

bool createOutputContext(ff::OutputFormatPtr& out, const QString& path)
{
    out.reset();
    AVFormatContext* raw = nullptr;
    if (avformat_alloc_output_context2(&raw, nullptr, nullptr, path.toUtf8().constData()) < 0 || !raw) {
        spdlog::error("Could not create output context");
        return false;
    }
    out.reset(raw);
    return true;
}

bool copyStreamLayout(AVFormatContext* input, AVFormatContext* output)
{
    if (!input || !output) {
        spdlog::error("Invalid format context pointers");
        return false;
    }
    int lastVideoIndex = -1;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        AVStream* inStream = input->streams[i];
        const AVCodecParameters* par = inStream->codecpar;
        const char* label = "Unknown";
        switch (par->codec_type) {
        case AVMEDIA_TYPE_VIDEO:
            if (par->width != 0 && par->height != 0) {
                label = "Video";
                spdlog::info("Video stream (index={}): width={}, height={}", i, par->width, par->height);
                lastVideoIndex = static_cast<int>(i);
            } else {
                label = "Cover Image";
                spdlog::info("Found cover image stream (index={})", i);
            }
            break;
        case AVMEDIA_TYPE_AUDIO:
            label = "Audio";
            spdlog::info("Audio stream (index={}): channels={}, sample_rate={}", i,
                         par->ch_layout.nb_channels, par->sample_rate);
            break;
        case AVMEDIA_TYPE_DATA:
            label = "Data";
            spdlog::info("Data stream (index={})", i);
            break;
        case AVMEDIA_TYPE_SUBTITLE:
            label = "Subtitle";
            spdlog::info("Subtitle stream (index={})", i);
            if (isMp4Family(output->oformat) && par->codec_id != AV_CODEC_ID_MOV_TEXT &&
                par->codec_id != AV_CODEC_ID_NONE) {
                spdlog::warn("Subtitle codec {} not supported in {} container, skipping subtitle stream",
                             avcodec_get_name(par->codec_id), output->oformat->name);
                spdlog::info("Skipping stream index {} ({})", i, label);
                continue;
            }
            break;
        case AVMEDIA_TYPE_ATTACHMENT:
            label = "Attachment";
            spdlog::info("Attachment stream (index={})", i);
            break;
        default:
            spdlog::info("Unknown stream type (index={}): codec_type={}", i,
                         static_cast<int>(par->codec_type));
            break;
        }

        AVStream* outStream = avformat_new_stream(output, nullptr);
        if (!outStream) {
            spdlog::error("Failed to allocate output stream for index {}", i);
            return false;
        }
        if (avcodec_parameters_copy(outStream->codecpar, par) < 0) {
            spdlog::error("Failed to copy codec parameters for stream index {}", i);
            return false;
        }
        // Without its display matrix a portrait phone video comes out lying on its side.
        if (!StreamSideData::copy(inStream, outStream)) {
            spdlog::error("Failed to copy side data for stream index {}", i);
            return false;
        }
        outStream->codecpar->codec_tag = 0;
        outStream->time_base = inStream->time_base;
        outStream->disposition = inStream->disposition;

        const bool coverImage = par->codec_type == AVMEDIA_TYPE_VIDEO && par->width == 0 && par->height == 0;
        if (par->codec_type == AVMEDIA_TYPE_SUBTITLE || coverImage) {
            spdlog::info("Copying special properties for {} stream index {}", label, i);
            if (coverImage) {
                // A cover before any real video stream has no dimensions to borrow.
                if (lastVideoIndex >= 0) {
                    const AVCodecParameters* video = input->streams[lastVideoIndex]->codecpar;
                    outStream->codecpar->width = video->width;
                    outStream->codecpar->height = video->height;
                }
                const int size = inStream->attached_pic.size;
                auto* copy = size > 0 ? static_cast<uint8_t*>(av_malloc(size)) : nullptr;
                if (copy) {
                    std::memcpy(copy, inStream->attached_pic.data, size);
                    // The output stream's packet takes the buffer; the muxer frees it with the context.
                    AVBufferRef* ref = av_buffer_create(copy, size, av_buffer_default_free, nullptr, 0);
                    if (!ref) {
                        av_free(copy);
                    } else {
                        av_packet_unref(&outStream->attached_pic);
                        outStream->attached_pic.buf = ref;
                        outStream->attached_pic.data = copy;
                        outStream->attached_pic.size = size;
                        outStream->attached_pic.stream_index = outStream->index;
                        outStream->attached_pic.flags |= AV_PKT_FLAG_KEY;
                        spdlog::info("Copied cover image: size={} bytes, dimensions={}x{}", size,
                                     outStream->codecpar->width, outStream->codecpar->height);
                    }
                }
            }
        }
    }
    return true;
}

double containerSeconds(const AVFormatContext* context)
{
    if (context->duration == AV_NOPTS_VALUE || context->duration < 0)
        return 0.0;
    return static_cast<double>(context->duration) / 1000000.0;
}

double videoDuration(const QString& path)
{
    const ff::InputFormatPtr context = ff::openInput(path);
    return context ? containerSeconds(context.get()) : 0.0;
}

VideoInfo videoInfo(const QString& path, bool* ok)
{
    VideoInfo info;
    ff::InputFormatPtr context;
    if (!openInputFile(path, context)) {
        spdlog::error("Failed to open input file: {}", path.toStdString());
        if (ok)
            *ok = false;
        return info;
    }
    const AVStream* video = nullptr;
    const AVStream* audio = nullptr;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        const AVStream* stream = context->streams[i];
        const AVMediaType type = stream->codecpar->codec_type;
        if (!video && type == AVMEDIA_TYPE_VIDEO && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC))
            video = stream;
        if (!audio && type == AVMEDIA_TYPE_AUDIO)
            audio = stream;
    }
    if (video) {
        const AVCodecParameters* par = video->codecpar;
        info.codecId = par->codec_id;
        // A stream no decoder checked (an unknown codec) reports whatever its header claims; a
        // size FFmpeg itself would refuse to allocate counts as no size.
        if (av_image_check_size(static_cast<unsigned>(std::max(par->width, 0)),
                                static_cast<unsigned>(std::max(par->height, 0)), 0, nullptr) >= 0) {
            info.width = par->width;
            info.height = par->height;
        }
        info.bitrate = par->bit_rate;
        if (usableRate(video->avg_frame_rate))
            info.fps = roundedRate(video->avg_frame_rate);
        else if (usableRate(video->r_frame_rate))
            info.fps = roundedRate(video->r_frame_rate);
        spdlog::info("Video info - codec_id:{}, size:{}x{}, bitrate:{}, fps:{}", info.codecId, info.width,
                     info.height, info.bitrate, info.fps);
    }
    if (audio) {
        info.audioCodecId = audio->codecpar->codec_id;
        info.audioBitrate = audio->codecpar->bit_rate;
        spdlog::info("Audio info - codec_id:{}, bitrate:{}", info.audioCodecId, info.audioBitrate);
    }
    if (ok)
        *ok = true;
    return info;
}

} // namespace MediaProbe
