#include "MediaOpen.h"

namespace ff {

namespace {

// The header alone describes the first video stream well enough to decode it: codec, picture
// size and, where the codec keeps its set-up outside the stream, that set-up.
bool headerDescribesVideo(const AVFormatContext* input)
{
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVCodecParameters* codec = input->streams[i]->codecpar;
        if (codec->codec_type != AVMEDIA_TYPE_VIDEO)
            continue;
        const bool needsSetup = codec->codec_id == AV_CODEC_ID_H264 || codec->codec_id == AV_CODEC_ID_HEVC;
        return codec->codec_id != AV_CODEC_ID_NONE && codec->width > 0 && codec->height > 0 &&
               (!needsSetup || codec->extradata_size > 0);
    }
    return false;
}

} // namespace

InputFormatPtr openInput(const QString& path, AVDictionary** options, OpenFailure* failure, StreamInfo info)
{
    OpenFailure ignored;
    OpenFailure& why = failure ? *failure : ignored;
    AVFormatContext* raw = nullptr;
    if (const int rc = avformat_open_input(&raw, path.toUtf8().constData(), nullptr, options); rc < 0) {
        why = {true, rc};
        return nullptr;
    }
    InputFormatPtr input(raw);
    if (info == StreamInfo::UnlessHeaderDescribesVideo && headerDescribesVideo(input.get()))
        return input;
    if (const int rc = avformat_find_stream_info(input.get(), nullptr); rc < 0) {
        why = {false, rc};
        return nullptr;
    }
    return input;
}

CodecContextPtr openDecoder(const AVStream* stream, const std::function<void(AVCodecContext*)>& configure,
                            OpenFailure* failure)
{
    OpenFailure ignored;
    OpenFailure& why = failure ? *failure : ignored;
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec) {
        why = {true, AVERROR_DECODER_NOT_FOUND};
        return nullptr;
    }
    CodecContextPtr decoder(avcodec_alloc_context3(codec));
    if (!decoder) {
        why = {false, AVERROR(ENOMEM)};
        return nullptr;
    }
    if (const int rc = avcodec_parameters_to_context(decoder.get(), stream->codecpar); rc < 0) {
        why = {false, rc};
        return nullptr;
    }
    if (configure)
        configure(decoder.get());
    if (const int rc = avcodec_open2(decoder.get(), codec, nullptr); rc < 0) {
        why = {false, rc};
        return nullptr;
    }
    return decoder;
}

} // namespace ff
