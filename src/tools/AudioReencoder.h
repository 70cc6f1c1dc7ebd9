#pragma once

#include "FfmpegPtr.h"

#include <cstdint>

// Decodes one audio stream and encodes it again with another codec into one new output
// stream. Samples are converted to the encoder's format, rate and layout when they differ.
// Encoders that take frames of one fixed size only (AAC, MP3, Vorbis, FLAC ...) are fed from
// a sample FIFO in frames of exactly that size, the last one shorter, with timestamps counted
// in samples so they run on without gaps; other encoders get each decoded frame as it comes.
// Owned by one job and used on its thread only; writes into the job's output context.
class AudioReencoder
{
public:
    AudioReencoder() = default;
    ~AudioReencoder();
    AudioReencoder(const AudioReencoder&) = delete;
    AudioReencoder& operator=(const AudioReencoder&) = delete;

    // Opens the decoder for `input`, the encoder for `codecId` (bit rate `bitRate`, or the
    // source's when 0 or less) and adds the output stream to `output`. Logs the cause and
    // returns false on failure.
    bool open(const AVStream* input, AVFormatContext* output, int codecId, int64_t bitRate);

    AVStream* outputStream() const { return m_stream; }

    // Decodes one packet of the input stream and writes every packet the encoder returns.
    void writePacket(const AVPacket* packet);

    // End of input: pushes out what the resampler and the FIFO still hold, then drains the
    // encoder. The decoder itself is not drained, as with the video.
    void flush();

private:
    bool chooseSampleRate(const AVCodec* codec, int sourceRate);
    bool chooseLayout(const AVCodec* codec, const AVChannelLayout& source);
    bool configureResampler(int format, int rate, const AVChannelLayout& layout);
    bool matchesEncoder(const AVFrame* frame) const;
    // Converts or passes on one decoded frame; null when the conversion failed. The result
    // is either `frame` itself or m_resampled.
    AVFrame* toEncoderFormat(AVFrame* frame);
    void queueSamples(AVFrame* frame);
    void sendFixedFrames(bool final);
    void encode(AVFrame* frame);

    const AVStream* m_input = nullptr;
    AVFormatContext* m_output = nullptr;
    AVStream* m_stream = nullptr;
    ff::CodecContextPtr m_decoder;
    ff::CodecContextPtr m_encoder;
    ff::SwrPtr m_resampler;
    ff::AudioFifoPtr m_fifo;
    ff::FramePtr m_decoded;
    ff::FramePtr m_resampled;
    ff::FramePtr m_chunk;
    ff::PacketPtr m_packet;
    // What the resampler was made for (format, rate, layout of its input).
    int m_resamplerFormat = -1;
    int m_resamplerRate = 0;
    AVChannelLayout m_resamplerLayout{};
    // Frames of exactly this many samples, or 0 when the encoder takes any size.
    int m_frameSize = 0;
    // The next sample's time in the encoder's time base (1/sample rate); unset until the
    // first decoded frame.
    int64_t m_nextPts = AV_NOPTS_VALUE;
    bool m_flushed = false;
};
