// Hover preview: time from a load request to the frame stored for the GPU, on a real file,
// and where that time goes (open, seek, decode, scale, copy). Run by hand:
//   bench/hover_preview_bench.sh            (makes a 1080p H.264 clip and runs this)
//   build/bin/hover_preview_bench FILE [positions]
#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "GrabbedFrame.h"
#include "ThreadPool.h"
#include "ThumbnailLink.h"
#include "YuvFrame.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <QString>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <spdlog/spdlog.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double ms(Clock::time_point a, Clock::time_point b)
{
    return std::chrono::duration<double, std::milli>(b - a).count();
}

struct Phases
{
    double open = 0, seek = 0, decode = 0, scale = 0, copy = 0;
    int packets = 0;
};

// The grabber's steps, timed one by one (same calls, same order).
bool timePhases(const QString& path, double seconds, Phases& p)
{
    auto t0 = Clock::now();
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return false;
    ff::InputFormatPtr input(raw);
    if (avformat_find_stream_info(input.get(), nullptr) < 0)
        return false;
    AVStream* stream = nullptr;
    for (unsigned i = 0; i < input->nb_streams && !stream; ++i)
        if (input->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
            stream = input->streams[i];
    if (!stream)
        return false;
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    ff::CodecContextPtr decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), stream->codecpar);
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return false;
    auto t1 = Clock::now();
    av_seek_frame(input.get(), stream->index,
                  static_cast<int64_t>(std::trunc(seconds / av_q2d(stream->time_base))),
                  AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(decoder.get());
    auto t2 = Clock::now();
    ff::PacketPtr packet = ff::makePacket();
    ff::FramePtr frame = ff::makeFrame();
    bool got = false;
    while (!got && av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index != stream->index) {
            av_packet_unref(packet.get());
            continue;
        }
        ++p.packets;
        avcodec_send_packet(decoder.get(), packet.get());
        av_packet_unref(packet.get());
        got = avcodec_receive_frame(decoder.get(), frame.get()) >= 0;
    }
    if (!got)
        return false;
    auto t3 = Clock::now();
    const int w = stream->codecpar->width, h = stream->codecpar->height;
    ff::SwsPtr scaler(sws_getContext(frame->width, frame->height, decoder->pix_fmt, w, h, AV_PIX_FMT_YUV420P,
                                     SWS_BILINEAR, nullptr, nullptr, nullptr));
    const int size = av_image_get_buffer_size(AV_PIX_FMT_YUV420P, w, h, 1);
    ff::AvBufferPtr buffer(static_cast<uint8_t*>(av_malloc(size)));
    uint8_t* planes[4] = {};
    int strides[4] = {};
    av_image_fill_arrays(planes, strides, buffer.get(), AV_PIX_FMT_YUV420P, w, h, 1);
    sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, planes, strides);
    auto t4 = Clock::now();
    GrabbedFrame grabbed;
    grabbed.buffer = std::move(buffer);
    grabbed.width = w;
    grabbed.height = h;
    YuvFrame stored;
    {
        std::lock_guard<std::mutex> lock(stored.mutex);
        stored.store(grabbed);
    }
    auto t5 = Clock::now();
    p.open += ms(t0, t1);
    p.seek += ms(t1, t2);
    p.decode += ms(t2, t3);
    p.scale += ms(t3, t4);
    p.copy += ms(t4, t5);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s FILE [positions]\n", argv[0]);
        return 2;
    }
    spdlog::set_level(spdlog::level::warn);
    const QString path = QString::fromLocal8Bit(argv[1]);
    const int positions = argc > 2 ? std::max(1, std::atoi(argv[2])) : 12;
    CommonTool* tool = CommonTool::instance();

    // End to end through the items' own load job on the pool: request -> frame stored.
    auto link = std::make_shared<ThumbnailLink>();
    link->frame = std::make_shared<YuvFrame>();
    std::mutex doneMutex;
    std::condition_variable doneChanged;
    int done = 0;
    link->announce = [&](int, int) {
        std::lock_guard<std::mutex> lock(doneMutex);
        ++done;
        doneChanged.notify_all();
    };
    std::vector<double> total;
    for (int i = 0; i < positions; ++i) {
        const double seconds = 0.37 + i * 0.77;
        const auto start = Clock::now();
        ThreadPool::instance().submit(
            [link, tool, path, seconds]() { loadThumbnailJob(link, tool, path, seconds); });
        std::unique_lock<std::mutex> lock(doneMutex);
        if (!doneChanged.wait_for(lock, std::chrono::seconds(10), [&] { return done == i + 1; })) {
            std::fprintf(stderr, "no frame for %.2f s\n", seconds);
            return 1;
        }
        total.push_back(ms(start, Clock::now()));
    }
    std::sort(total.begin(), total.end());
    {
        std::lock_guard<std::mutex> lock(link->frame->mutex);
        std::printf(
            "hover preview %dx%d, %d positions: request to stored frame median %.1f ms, min %.1f, max %.1f\n",
            link->frame->width, link->frame->height, positions, total[total.size() / 2], total.front(),
            total.back());
    }

    Phases sum;
    int measured = 0;
    for (int i = 0; i < positions; ++i)
        measured += timePhases(path, 0.37 + i * 0.77, sum) ? 1 : 0;
    if (measured > 0) {
        std::printf("mean per request: open+probe %.1f ms, seek %.1f ms, decode %.1f ms (%.1f packets), "
                    "scale %.1f ms, copy %.1f ms\n",
                    sum.open / measured, sum.seek / measured, sum.decode / measured,
                    static_cast<double>(sum.packets) / measured, sum.scale / measured, sum.copy / measured);
    }
    return 0;
}
