#include "ConvertJob.h"

#include "AudioReencoder.h"
#include "JobReporter.h"
#include "EncodeSession.h"
#include "EncodeSteps.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <spdlog/spdlog.h>

// Everything one conversion holds; destroyed (files closed) before the finished signal.
struct ConvertJob::Session : EncodeSession
{
    std::unique_ptr<AudioReencoder> audio; // only when re-encoding the audio
    ff::FramePtr scaled;
    // Frame-rate conversion: input frame n covers the output slots
    // [trunc(n * ratio), trunc((n + 1) * ratio)); a slot already filled is not encoded again.
    double ratio = 1.0;
    int64_t lastOutputIndex = -1;
    int64_t inputFrames = 0;
    int64_t outputFrames = 0;
    int64_t copiedVideoPackets = 0;
};

ConvertJob::ConvertJob(JobReporter& reporter) : m_reporter(reporter) {}

bool ConvertJob::run(const QString& inputPath, const QString& outputPath, const VideoInfo& request)
{
    spdlog::info("convertVideoFormat: {} -> {}", inputPath.toStdString(), outputPath.toStdString());
    bool result = false;
    {
        Session s;
        if (prepare(s, inputPath, outputPath, request)) {
            const EncodeLoopEnd end = mainLoop(s);
            // A cancel seen between packets still closes the file properly; one seen while
            // frames were being encoded leaves it as it stands.
            if (end != EncodeLoopEnd::CancelledInFrame) {
                flush(s);
                av_write_trailer(s.output.get());
            }
            result = !m_reporter.isCancelled();
        }
    }
    spdlog::info("Video format conversion completed: {}", result ? "success" : "failed");
    m_reporter.reportFinished(result);
    return result;
}

bool ConvertJob::prepare(Session& s, const QString& inputPath, const QString& outputPath,
                         const VideoInfo& request)
{
    if (!s.open(inputPath, outputPath, true))
        return false;
    AVFormatContext* in = s.input.get();

    if (request.codecId <= 0 ? !setUpVideoCopy(s) : !setUpVideoEncode(s, request))
        return false;
    if (s.audioIndex >= 0 && !setUpAudio(s, request))
        return false;

    if (!EncodeSteps::openOutputFile(s.output.get(), outputPath))
        return false;
    int64_t total = 0;
    if (EncodeSteps::countVideoPackets(in, s.videoIndex, &total))
        m_reporter.reportFrameTotal(EncodeSteps::toSignalValue(total));
    if (!EncodeSteps::writeHeader(s.output.get()))
        return false;

    AVStream* videoIn = in->streams[s.videoIndex];
    const AVRational inRate = av_guess_frame_rate(in, videoIn, nullptr);
    const double inputFps = inRate.den > 0 ? av_q2d(inRate) : 0.0;
    const double outputFps = s.videoEncoder ? av_q2d(s.videoEncoder->framerate) : inputFps;
    // An input without a known rate is taken frame for frame.
    s.ratio = inputFps > 0.0 && outputFps > 0.0 ? outputFps / inputFps : 1.0;
    spdlog::info("FPS conversion: input={:.2f} -> output={:.2f}, ratio={:.3f}", inputFps, outputFps, s.ratio);

    s.packet = ff::makePacket();
    s.encoded = ff::makePacket();
    s.decoded = ff::makeFrame();
    return s.packet && s.encoded && s.decoded;
}

bool ConvertJob::setUpVideoCopy(Session& s)
{
    spdlog::info("Copying video stream without re-encoding");
    s.videoOut = EncodeSteps::addCopiedStream(s.output.get(), s.input->streams[s.videoIndex]);
    if (!s.videoOut)
        spdlog::error("Failed to copy video stream parameters");
    return s.videoOut != nullptr;
}

bool ConvertJob::setUpVideoEncode(Session& s, const VideoInfo& request)
{
    spdlog::info("Re-encoding video with codec ID: {}", request.codecId);
    AVFormatContext* in = s.input.get();
    AVStream* videoIn = in->streams[s.videoIndex];

    s.videoDecoder = EncodeSteps::openVideoDecoder(videoIn, "Video decoder not found");
    if (!s.videoDecoder)
        return false;
    AVCodecContext* dec = s.videoDecoder.get();

    const AVCodec* encoder = avcodec_find_encoder(static_cast<AVCodecID>(request.codecId));
    if (!encoder || encoder->type != AVMEDIA_TYPE_VIDEO) {
        spdlog::error("Video encoder not found for codec ID: {}", request.codecId);
        return false;
    }
    const bool opened = EncodeSteps::openVideoEncoder(
        encoder, s.output.get(), s.videoEncoder, &s.videoOut, [&](AVCodecContext* enc) {
            // A requested size is the coded picture's (the size the file's info reports); the
            // pictures are then turned as the input is shown.
            const int width = (request.width > 0 ? request.width : dec->width) & ~1;
            const int height = (request.height > 0 ? request.height : dec->height) & ~1;
            enc->width = s.shown.turnedWidth(width, height);
            enc->height = s.shown.turnedHeight(width, height);
            enc->pix_fmt = AV_PIX_FMT_YUV420P;
            enc->bit_rate = request.bitrate > 0 ? request.bitrate : dec->bit_rate;
            enc->framerate =
                request.fps > 0 ? AVRational{request.fps, 1} : EncodeSteps::guessFrameRate(in, videoIn);
            enc->time_base = av_inv_q(enc->framerate);
            enc->gop_size = 12;
            enc->thread_count = 0;
            enc->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
        });
    if (!opened)
        return false;
    const AVCodecContext* enc = s.videoEncoder.get();
    const bool quarterTurn = s.shown.swapsSides();
    if (!s.scaler.open(dec->width, dec->height, dec->pix_fmt, quarterTurn ? enc->height : enc->width,
                       quarterTurn ? enc->width : enc->height, s.shown)) {
        spdlog::error("Failed to create scaling context");
        return false;
    }
    s.scaled = ff::makeFrame();
    if (!s.scaled)
        return false;
    if (!EncodeSteps::allocatePicture(s.scaled.get(), enc->width, enc->height)) {
        spdlog::error("Could not allocate the scaled picture");
        return false;
    }
    return true;
}

bool ConvertJob::setUpAudio(Session& s, const VideoInfo& request)
{
    AVStream* audioIn = s.input->streams[s.audioIndex];
    if (request.audioCodecId <= 0) {
        spdlog::info("Copying audio stream without re-encoding");
        s.audioOut = EncodeSteps::addCopiedStream(s.output.get(), audioIn);
        if (!s.audioOut)
            spdlog::error("Failed to copy audio stream parameters");
        return s.audioOut != nullptr;
    }
    spdlog::info("Re-encoding audio with codec ID: {}", request.audioCodecId);
    s.audio = std::make_unique<AudioReencoder>();
    if (!s.audio->open(audioIn, s.output.get(), request.audioCodecId, request.audioBitrate))
        return false;
    s.audioOut = s.audio->outputStream();
    return true;
}

EncodeLoopEnd ConvertJob::mainLoop(Session& s)
{
    AVFormatContext* in = s.input.get();
    AVPacket* packet = s.packet.get();
    for (;;) {
        if (m_reporter.isCancelled()) {
            spdlog::info("Video format conversion cancelled by user");
            m_reporter.reportCancelled();
            return EncodeLoopEnd::CancelledBetweenPackets;
        }
        const int ret = av_read_frame(in, packet);
        if (ret < 0)
            return EncodeLoopEnd::EndOfInput;
        if (packet->stream_index == s.videoIndex) {
            if (s.videoEncoder) {
                if (!encodeVideoPacket(s)) {
                    av_packet_unref(packet);
                    return EncodeLoopEnd::CancelledInFrame;
                }
            } else {
                EncodeSteps::copyPacket(in, s.output.get(), s.videoOut, packet);
                // A remux has no frames to count, so progress follows the copied packets on
                // the same scale as the total.
                if (++s.copiedVideoPackets % 10 == 0)
                    m_reporter.reportProgress(EncodeSteps::toSignalValue(s.copiedVideoPackets));
            }
        } else if (packet->stream_index == s.audioIndex && s.audioOut) {
            if (s.audio)
                s.audio->writePacket(packet);
            else
                EncodeSteps::copyPacket(in, s.output.get(), s.audioOut, packet);
        }
        av_packet_unref(packet);
    }
}

bool ConvertJob::encodeVideoPacket(Session& s)
{
    AVFrame* scaled = s.scaled.get();
    const auto cancelled = [this]() {
        if (!m_reporter.isCancelled())
            return false;
        spdlog::info("Video format conversion cancelled during frame processing");
        m_reporter.reportCancelled();
        return true;
    };
    const auto keepKeyFlag = [scaled](const AVFrame* frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(58, 7, 100)
        scaled->flags = (scaled->flags & ~AV_FRAME_FLAG_KEY) | (frame->flags & AV_FRAME_FLAG_KEY);
#else
        scaled->key_frame = frame->key_frame;
#endif
        scaled->pict_type = AV_PICTURE_TYPE_NONE;
    };
    return EncodeSteps::decodeToPictures(s.videoDecoder.get(), s.packet.get(), s.decoded.get(), s.scaler,
                                         scaled, cancelled, keepKeyFlag,
                                         [this, &s]() { encodeFrameSlots(s); });
}

void ConvertJob::encodeFrameSlots(Session& s)
{
    AVCodecContext* enc = s.videoEncoder.get();
    AVFrame* scaled = s.scaled.get();
    const int64_t n = s.inputFrames++;
    const auto start = static_cast<int64_t>(static_cast<double>(n) * s.ratio);
    const auto end = static_cast<int64_t>(static_cast<double>(n + 1) * s.ratio);
    const int64_t repeat = std::max<int64_t>(1, end - start);
    spdlog::debug("Input frame {}: output range [{}, {}), repeat {} times", n, start, end, repeat);
    for (int64_t j = 0; j < repeat; ++j) {
        const int64_t outputIndex = start + j;
        if (outputIndex > s.lastOutputIndex) {
            scaled->pts = s.outputFrames;
            if (avcodec_send_frame(enc, scaled) >= 0)
                EncodeSteps::writeEncodedPackets(enc, s.output.get(), s.videoOut, s.encoded.get());
            ++s.outputFrames;
            s.lastOutputIndex = outputIndex;
            if (j > 0)
                spdlog::debug("Duplicating frame {} (repeat {}/{})", n, j + 1, repeat);
        }
        // Progress counts input frames, the scale of the announced total, whatever the ratio.
        m_reporter.reportProgress(EncodeSteps::toSignalValue(s.inputFrames));
    }
}

void ConvertJob::flush(Session& s)
{
    if (s.videoEncoder)
        EncodeSteps::flushEncoder(s.videoEncoder.get(), s.output.get(), s.videoOut, s.encoded.get());
    if (s.audio)
        s.audio->flush();
}
