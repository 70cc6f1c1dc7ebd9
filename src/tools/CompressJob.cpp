#include "CompressJob.h"

#include "EncodeSession.h"
#include "EncodeSteps.h"
#include "JobReporter.h"
#include "MediaOpen.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <spdlog/spdlog.h>

namespace {

struct Level
{
    double factor; // multiplies the input's video and audio bit rates
    int crf;       // the video encoder's constant-quality factor
};

Level levelSettings(int compressionLevel)
{
    switch (compressionLevel) {
    case 0:
        return {0.9, 18};
    case 2:
        return {0.3, 28};
    default: // 1 and every value outside the table
        return {0.7, 23};
    }
}

} // namespace

// Everything one compression holds; destroyed (files closed) before the finished signal.
struct CompressJob::Session : EncodeSession
{
    ff::CodecContextPtr audioDecoder;
    ff::CodecContextPtr audioEncoder; // describes the copied audio stream
    ff::FramePtr converted;
    int64_t frameCounter = 0;
};

CompressJob::CompressJob(JobReporter& reporter) : m_reporter(reporter) {}

bool CompressJob::run(const QString& inputPath, const QString& outputPath, int compressionLevel)
{
    spdlog::info("compressVideo: {} -> {}, level: {}", inputPath.toStdString(), outputPath.toStdString(),
                 compressionLevel);
    bool loopReached = false;
    {
        Session s;
        if (prepare(s, inputPath, outputPath, compressionLevel)) {
            loopReached = true;
            const EncodeLoopEnd end = mainLoop(s);
            if (end == EncodeLoopEnd::EndOfInput && !m_reporter.isCancelled()) {
                // The decoder is not drained: frames it still holds at the end of the input
                // are not encoded (see configureDecoderThreads).
                EncodeSteps::flushEncoder(s.videoEncoder.get(), s.output.get(), s.videoOut, s.encoded.get());
                av_write_trailer(s.output.get());
            }
        }
    }
    const bool success = loopReached && !m_reporter.isCancelled();
    spdlog::info("Video compression completed: {}", success ? "success" : "failed");
    m_reporter.reportFinished(success);
    return success;
}

bool CompressJob::prepare(Session& s, const QString& inputPath, const QString& outputPath,
                          int compressionLevel)
{
    const Level level = levelSettings(compressionLevel);
    // Unlike conversion, an attached picture counts as the video stream here.
    if (!s.open(inputPath, outputPath, false))
        return false;
    AVFormatContext* in = s.input.get();

    int64_t total = 0;
    if (EncodeSteps::countVideoPackets(in, s.videoIndex, &total))
        m_reporter.reportFrameTotal(EncodeSteps::toSignalValue(total));

    s.videoDecoder = EncodeSteps::openVideoDecoder(in->streams[s.videoIndex], "Failed to open video decoder");
    if (!s.videoDecoder)
        return false;

    if (!openVideoEncoder(s, level.factor, level.crf))
        return false;
    if (s.audioIndex >= 0 && !openAudioCoders(s, level.factor))
        return false;

    AVCodecContext* dec = s.videoDecoder.get();
    if (!s.scaler.open(dec->width, dec->height, dec->pix_fmt, dec->width, dec->height, s.shown)) {
        spdlog::error("Failed to create scaling context");
        return false;
    }
    if (!EncodeSteps::openOutputFile(s.output.get(), outputPath) || !EncodeSteps::writeHeader(s.output.get()))
        return false;

    s.decoded = ff::makeFrame();
    s.converted = ff::makeFrame();
    s.packet = ff::makePacket();
    s.encoded = ff::makePacket();
    if (!s.decoded || !s.converted || !s.packet || !s.encoded)
        return false;
    // The picture keeps the decoder's (possibly odd) size, turned as the input is shown; the
    // encoder reads its even part.
    if (!EncodeSteps::allocatePicture(s.converted.get(), s.shown.turnedWidth(dec->width, dec->height),
                                      s.shown.turnedHeight(dec->width, dec->height))) {
        spdlog::error("Could not allocate the converted picture");
        return false;
    }
    return true;
}

bool CompressJob::openVideoEncoder(Session& s, double factor, int crf)
{
    AVFormatContext* in = s.input.get();
    AVStream* videoIn = in->streams[s.videoIndex];
    AVCodecContext* dec = s.videoDecoder.get();

    // The input's own codec, so an HEVC source stays HEVC.
    const AVCodec* encoder = avcodec_find_encoder(videoIn->codecpar->codec_id);
    if (!encoder) {
        spdlog::error("H264 encoder not found");
        return false;
    }
    return EncodeSteps::openVideoEncoder(
        encoder, s.output.get(), s.videoEncoder, &s.videoOut, [&](AVCodecContext* enc) {
            enc->width = s.shown.turnedWidth(dec->width, dec->height) & ~1;
            enc->height = s.shown.turnedHeight(dec->width, dec->height) & ~1;
            enc->thread_count = 0;
            enc->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
            enc->framerate = EncodeSteps::guessFrameRate(in, videoIn);
            enc->time_base = av_inv_q(enc->framerate);
            enc->pix_fmt = AV_PIX_FMT_YUV420P;
            enc->bit_rate = static_cast<int64_t>(static_cast<double>(dec->bit_rate) * factor);
            enc->gop_size = 30;
            // Encoders without these options simply ignore them.
            av_opt_set_int(enc, "crf", crf, AV_OPT_SEARCH_CHILDREN);
            av_opt_set(enc, "preset", "medium", AV_OPT_SEARCH_CHILDREN);
        });
}

bool CompressJob::openAudioCoders(Session& s, double factor)
{
    AVStream* audioIn = s.input->streams[s.audioIndex];
    s.audioDecoder = ff::openDecoder(audioIn);
    if (!s.audioDecoder) {
        spdlog::error("Failed to open audio decoder");
        return false;
    }
    AVCodecContext* dec = s.audioDecoder.get();

    const AVCodec* encoder = avcodec_find_encoder(audioIn->codecpar->codec_id);
    if (!encoder) {
        spdlog::error("AAC encoder not found");
        return false;
    }
    s.audioOut = avformat_new_stream(s.output.get(), nullptr);
    if (!s.audioOut) {
        spdlog::error("Failed to open audio encoder");
        return false;
    }

    // The audio packets are copied, not re-encoded: the encoder only describes the output
    // stream. When the source's own encoder cannot be opened, an AAC encoder describes it.
    auto configure = [&](const AVCodec* codec, bool globalHeader) {
        ff::CodecContextPtr ctx(avcodec_alloc_context3(codec));
        if (!ctx)
            return ctx;
        ctx->codec_id = codec->id;
        ctx->bit_rate = static_cast<int64_t>(static_cast<double>(dec->bit_rate) * factor);
        ctx->sample_rate = dec->sample_rate;
        av_channel_layout_copy(&ctx->ch_layout, &dec->ch_layout);
        ctx->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
        if (codec->sample_fmts)
            ctx->sample_fmt = codec->sample_fmts[0];
        if (dec->sample_rate > 0)
            ctx->time_base = AVRational{1, dec->sample_rate};
        if (globalHeader)
            EncodeSteps::applyGlobalHeader(ctx.get(), s.output.get());
        return ctx;
    };

    s.audioEncoder = configure(encoder, true);
    if (!s.audioEncoder || avcodec_open2(s.audioEncoder.get(), encoder, nullptr) < 0) {
        spdlog::error("Failed to open audio encoder");
        s.audioEncoder.reset();
        const AVCodec* aac = avcodec_find_encoder(AV_CODEC_ID_AAC);
        if (aac) {
            s.audioEncoder = configure(aac, false);
            // The fallback's open result is not checked: the job goes on with its parameters
            // whether or not it opened.
            if (s.audioEncoder)
                avcodec_open2(s.audioEncoder.get(), aac, nullptr);
        }
    }
    if (!s.audioEncoder || avcodec_parameters_from_context(s.audioOut->codecpar, s.audioEncoder.get()) < 0) {
        spdlog::error("Failed to copy audio encoder parameters");
        return false;
    }
    s.audioOut->time_base =
        s.audioEncoder->time_base.num > 0 ? s.audioEncoder->time_base : audioIn->time_base;
    return true;
}

EncodeLoopEnd CompressJob::mainLoop(Session& s)
{
    AVFormatContext* in = s.input.get();
    AVPacket* packet = s.packet.get();
    for (;;) {
        if (m_reporter.isCancelled()) {
            emitCancelled("Video compression cancelled by user");
            return EncodeLoopEnd::CancelledBetweenPackets;
        }
        const int ret = av_read_frame(in, packet);
        if (ret < 0) {
            spdlog::info("read frame failed {}", ff::errorText(ret));
            return EncodeLoopEnd::EndOfInput;
        }
        if (packet->stream_index == s.videoIndex) {
            if (!encodeVideoPacket(s)) {
                av_packet_unref(packet);
                return EncodeLoopEnd::CancelledInFrame;
            }
        } else if (packet->stream_index == s.audioIndex && s.audioEncoder) {
            EncodeSteps::copyPacket(in, s.output.get(), s.audioOut, packet);
        }
        av_packet_unref(packet);
        if (m_reporter.isCancelled()) {
            emitCancelled("Video compression cancelled by user");
            return EncodeLoopEnd::CancelledBetweenPackets;
        }
    }
}

bool CompressJob::encodeVideoPacket(Session& s)
{
    AVCodecContext* enc = s.videoEncoder.get();
    AVFrame* converted = s.converted.get();
    const auto cancelled = [this]() {
        if (!m_reporter.isCancelled())
            return false;
        emitCancelled("Video compression cancelled during frame processing");
        return true;
    };
    return EncodeSteps::decodeToPictures(
        s.videoDecoder.get(), s.packet.get(), s.decoded.get(), s.scaler, converted, cancelled, {}, [&]() {
            converted->pts = s.frameCounter++;
            if (avcodec_send_frame(enc, converted) < 0)
                return;
            EncodeSteps::writeEncodedPackets(
                enc, s.output.get(), s.videoOut, s.encoded.get(), [this, &s](int64_t pts) {
                    spdlog::info("Video frame index:{} pts: {}", s.frameCounter, pts);
                    m_reporter.reportProgress(EncodeSteps::toSignalValue(s.frameCounter));
                });
        });
}

void CompressJob::emitCancelled(const char* message)
{
    spdlog::info("{}", message);
    m_reporter.reportCancelled();
}
