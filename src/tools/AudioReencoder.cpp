#include "AudioReencoder.h"

#include "EncodeSteps.h"
#include "MediaOpen.h"

#include <algorithm>
#include <climits>
#include <spdlog/spdlog.h>

namespace {

// A layout the converter and the encoders understand: one with only a channel count becomes
// that count's default layout.
void usableLayout(AVChannelLayout* dst, const AVChannelLayout& src)
{
    if (src.order == AV_CHANNEL_ORDER_UNSPEC || av_channel_layout_check(&src) == 0)
        av_channel_layout_default(dst, src.nb_channels > 0 ? src.nb_channels : 2);
    else
        av_channel_layout_copy(dst, &src);
}

} // namespace

AudioReencoder::~AudioReencoder()
{
    av_channel_layout_uninit(&m_resamplerLayout);
}

bool AudioReencoder::open(const AVStream* input, AVFormatContext* output, int codecId, int64_t bitRate)
{
    m_input = input;
    m_output = output;

    ff::OpenFailure failure;
    m_decoder = ff::openDecoder(
        input, [input](AVCodecContext* decoder) { decoder->pkt_timebase = input->time_base; }, &failure);
    if (!m_decoder) {
        spdlog::error(failure.missing ? "Audio decoder not found" : "Failed to open audio decoder");
        return false;
    }
    AVCodecContext* dec = m_decoder.get();

    const AVCodec* encoder = avcodec_find_encoder(static_cast<AVCodecID>(codecId));
    if (!encoder || encoder->type != AVMEDIA_TYPE_AUDIO) {
        spdlog::error("Audio encoder not found for codec ID: {}", codecId);
        return false;
    }
    m_stream = avformat_new_stream(output, nullptr);
    m_encoder.reset(avcodec_alloc_context3(encoder));
    if (!m_stream || !m_encoder) {
        spdlog::error("Failed to open audio encoder");
        return false;
    }
    AVCodecContext* enc = m_encoder.get();
    enc->codec_id = encoder->id;
    enc->bit_rate = bitRate > 0 ? bitRate : dec->bit_rate;
    if (!chooseSampleRate(encoder, dec->sample_rate) || !chooseLayout(encoder, dec->ch_layout)) {
        spdlog::error("Failed to open audio encoder");
        return false;
    }
    enc->sample_fmt = encoder->sample_fmts ? encoder->sample_fmts[0] : dec->sample_fmt;
    enc->time_base = AVRational{1, enc->sample_rate};
    EncodeSteps::applyGlobalHeader(enc, output);
    if (avcodec_open2(enc, encoder, nullptr) < 0) {
        spdlog::error("Failed to open audio encoder");
        return false;
    }
    if (avcodec_parameters_from_context(m_stream->codecpar, enc) < 0) {
        spdlog::error("Failed to copy audio encoder parameters");
        return false;
    }
    m_stream->time_base = enc->time_base;

    if (dec->sample_fmt != enc->sample_fmt || dec->sample_rate != enc->sample_rate ||
        dec->ch_layout.nb_channels != enc->ch_layout.nb_channels) {
        if (!configureResampler(dec->sample_fmt, dec->sample_rate, dec->ch_layout)) {
            spdlog::error("Failed to init swr context");
            return false;
        }
    }

    if (enc->frame_size > 0 && !(encoder->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE)) {
        m_frameSize = enc->frame_size;
        m_fifo.reset(av_audio_fifo_alloc(enc->sample_fmt, enc->ch_layout.nb_channels, m_frameSize * 2));
        if (!m_fifo) {
            spdlog::error("Could not allocate the audio sample buffer");
            return false;
        }
    }
    m_decoded = ff::makeFrame();
    m_resampled = ff::makeFrame();
    m_chunk = ff::makeFrame();
    m_packet = ff::makePacket();
    return m_decoded && m_resampled && m_chunk && m_packet;
}

bool AudioReencoder::chooseSampleRate(const AVCodec* codec, int sourceRate)
{
    AVCodecContext* enc = m_encoder.get();
    enc->sample_rate = sourceRate;
    if (sourceRate <= 0 || !codec->supported_samplerates)
        return sourceRate > 0;
    // The source's rate when the encoder takes it, else the nearest rate above (or the
    // highest there is), so that the resampler changes as little as possible.
    int above = 0;
    int highest = 0;
    for (const int* rate = codec->supported_samplerates; *rate; ++rate) {
        if (*rate == sourceRate)
            return true;
        if (*rate > sourceRate && (above == 0 || *rate < above))
            above = *rate;
        highest = std::max(highest, *rate);
    }
    enc->sample_rate = above ? above : highest;
    spdlog::info("Audio encoder {} does not take {} Hz, using {} Hz", codec->name, sourceRate,
                 enc->sample_rate);
    return enc->sample_rate > 0;
}

bool AudioReencoder::chooseLayout(const AVCodec* codec, const AVChannelLayout& source)
{
    AVCodecContext* enc = m_encoder.get();
    AVChannelLayout wanted{};
    usableLayout(&wanted, source);
    const AVChannelLayout* choice = &wanted;
    if (codec->ch_layouts) {
        const AVChannelLayout* sameCount = nullptr;
        const AVChannelLayout* stereo = nullptr;
        const AVChannelLayout* exact = nullptr;
        const AVChannelLayout stereoLayout = AV_CHANNEL_LAYOUT_STEREO;
        for (const AVChannelLayout* l = codec->ch_layouts; l->nb_channels; ++l) {
            if (!exact && av_channel_layout_compare(l, &wanted) == 0)
                exact = l;
            if (!sameCount && l->nb_channels == wanted.nb_channels)
                sameCount = l;
            if (!stereo && av_channel_layout_compare(l, &stereoLayout) == 0)
                stereo = l;
        }
        choice = exact ? exact : sameCount ? sameCount : stereo ? stereo : codec->ch_layouts;
        if (!exact) {
            char name[64] = {};
            av_channel_layout_describe(choice, name, sizeof(name));
            spdlog::info("Audio encoder {} does not take {} channels, using {}", codec->name,
                         wanted.nb_channels, name);
        }
    }
    const int ret = av_channel_layout_copy(&enc->ch_layout, choice);
    av_channel_layout_uninit(&wanted);
    return ret >= 0 && enc->ch_layout.nb_channels > 0;
}

bool AudioReencoder::configureResampler(int format, int rate, const AVChannelLayout& layout)
{
    AVCodecContext* enc = m_encoder.get();
    AVChannelLayout inLayout{};
    usableLayout(&inLayout, layout);
    SwrContext* raw = nullptr;
    int ret = swr_alloc_set_opts2(&raw, &enc->ch_layout, enc->sample_fmt, enc->sample_rate, &inLayout,
                                  static_cast<AVSampleFormat>(format), rate, 0, nullptr);
    m_resampler.reset(raw);
    if (ret >= 0)
        ret = swr_init(m_resampler.get());
    av_channel_layout_uninit(&m_resamplerLayout);
    if (ret < 0) {
        m_resampler.reset();
        av_channel_layout_uninit(&inLayout);
        return false;
    }
    m_resamplerFormat = format;
    m_resamplerRate = rate;
    m_resamplerLayout = inLayout; // takes over inLayout's storage
    return true;
}

bool AudioReencoder::matchesEncoder(const AVFrame* frame) const
{
    const AVCodecContext* enc = m_encoder.get();
    return frame->format == enc->sample_fmt && frame->sample_rate == enc->sample_rate &&
           frame->ch_layout.nb_channels == enc->ch_layout.nb_channels;
}

AVFrame* AudioReencoder::toEncoderFormat(AVFrame* frame)
{
    AVCodecContext* enc = m_encoder.get();
    if (!m_resampler && matchesEncoder(frame)) {
        av_channel_layout_copy(&frame->ch_layout, &enc->ch_layout);
        return frame;
    }
    // Set up for the decoder at the start; a stream whose format changes on the way gets a
    // converter for its new format rather than one that would misread the samples.
    AVChannelLayout frameLayout{};
    usableLayout(&frameLayout, frame->ch_layout);
    const bool sameInput = m_resampler && frame->format == m_resamplerFormat &&
                           frame->sample_rate == m_resamplerRate &&
                           av_channel_layout_compare(&frameLayout, &m_resamplerLayout) == 0;
    av_channel_layout_uninit(&frameLayout);
    if (!sameInput && !configureResampler(frame->format, frame->sample_rate, frame->ch_layout)) {
        spdlog::error("Failed to init swr context");
        return nullptr;
    }

    AVFrame* out = m_resampled.get();
    av_frame_unref(out);
    const int64_t capacity =
        av_rescale_rnd(swr_get_delay(m_resampler.get(), m_resamplerRate) + frame->nb_samples,
                       enc->sample_rate, m_resamplerRate, AV_ROUND_UP);
    out->format = enc->sample_fmt;
    out->sample_rate = enc->sample_rate;
    av_channel_layout_copy(&out->ch_layout, &enc->ch_layout);
    out->nb_samples = static_cast<int>(std::min<int64_t>(capacity, INT_MAX / 8));
    if (out->nb_samples <= 0 || av_frame_get_buffer(out, 0) < 0)
        return nullptr;
    const int converted = swr_convert(m_resampler.get(), out->extended_data, out->nb_samples,
                                      const_cast<const uint8_t**>(frame->extended_data), frame->nb_samples);
    if (converted < 0) {
        spdlog::error("swr_convert failed");
        return nullptr;
    }
    out->nb_samples = converted;
    return out;
}

void AudioReencoder::writePacket(const AVPacket* packet)
{
    if (!m_encoder || m_flushed)
        return;
    AVCodecContext* enc = m_encoder.get();
    if (avcodec_send_packet(m_decoder.get(), packet) < 0)
        return;
    AVFrame* frame = m_decoded.get();
    while (avcodec_receive_frame(m_decoder.get(), frame) >= 0) {
        int64_t pts = frame->best_effort_timestamp;
        if (pts != AV_NOPTS_VALUE)
            pts = av_rescale_q(pts, m_input->time_base, enc->time_base);
        if (m_nextPts == AV_NOPTS_VALUE)
            m_nextPts = pts != AV_NOPTS_VALUE ? pts : 0;

        AVFrame* ready = toEncoderFormat(frame);
        if (ready && ready->nb_samples > 0) {
            if (m_frameSize > 0) {
                queueSamples(ready);
                sendFixedFrames(false);
            } else {
                ready->pts = pts != AV_NOPTS_VALUE ? pts : m_nextPts;
                m_nextPts = ready->pts + ready->nb_samples;
                encode(ready);
            }
        }
        av_frame_unref(frame);
        av_frame_unref(m_resampled.get());
    }
}

void AudioReencoder::queueSamples(AVFrame* frame)
{
    if (av_audio_fifo_write(m_fifo.get(), reinterpret_cast<void**>(frame->extended_data), frame->nb_samples) <
        frame->nb_samples)
        spdlog::error("Could not buffer {} audio samples", frame->nb_samples);
}

void AudioReencoder::sendFixedFrames(bool final)
{
    AVCodecContext* enc = m_encoder.get();
    AVFrame* chunk = m_chunk.get();
    for (;;) {
        const int available = av_audio_fifo_size(m_fifo.get());
        if (available < m_frameSize && !(final && available > 0))
            return;
        // The encoder may keep a reference to the last frame, so each chunk gets fresh buffers.
        av_frame_unref(chunk);
        chunk->nb_samples = std::min(available, m_frameSize);
        chunk->format = enc->sample_fmt;
        chunk->sample_rate = enc->sample_rate;
        av_channel_layout_copy(&chunk->ch_layout, &enc->ch_layout);
        if (av_frame_get_buffer(chunk, 0) < 0 ||
            av_audio_fifo_read(m_fifo.get(), reinterpret_cast<void**>(chunk->extended_data),
                               chunk->nb_samples) < chunk->nb_samples) {
            spdlog::error("Could not take audio samples from the buffer");
            av_audio_fifo_reset(m_fifo.get());
            return;
        }
        chunk->pts = m_nextPts;
        m_nextPts += chunk->nb_samples;
        encode(chunk);
    }
}

void AudioReencoder::encode(AVFrame* frame)
{
    const int ret = avcodec_send_frame(m_encoder.get(), frame);
    if (ret < 0 && ret != AVERROR_EOF) {
        spdlog::error("Error sending audio samples to the encoder: {}", ff::errorText(ret));
        return;
    }
    EncodeSteps::writeEncodedPackets(m_encoder.get(), m_output, m_stream, m_packet.get());
}

void AudioReencoder::flush()
{
    if (!m_encoder || m_flushed)
        return;
    m_flushed = true;
    AVCodecContext* enc = m_encoder.get();
    if (m_nextPts == AV_NOPTS_VALUE)
        m_nextPts = 0;
    if (m_resampler) {
        AVFrame* out = m_resampled.get();
        av_frame_unref(out);
        const int64_t pending = av_rescale_rnd(swr_get_delay(m_resampler.get(), m_resamplerRate),
                                               enc->sample_rate, m_resamplerRate, AV_ROUND_UP);
        if (pending > 0) {
            out->format = enc->sample_fmt;
            out->sample_rate = enc->sample_rate;
            av_channel_layout_copy(&out->ch_layout, &enc->ch_layout);
            out->nb_samples = static_cast<int>(std::min<int64_t>(pending, INT_MAX / 8));
            if (av_frame_get_buffer(out, 0) >= 0) {
                const int drained =
                    swr_convert(m_resampler.get(), out->extended_data, out->nb_samples, nullptr, 0);
                if (drained > 0) {
                    out->nb_samples = drained;
                    if (m_frameSize > 0) {
                        queueSamples(out);
                    } else {
                        out->pts = m_nextPts;
                        m_nextPts += drained;
                        encode(out);
                    }
                }
            }
            av_frame_unref(out);
        }
    }
    if (m_frameSize > 0)
        sendFixedFrames(true);
    encode(nullptr);
}
