#include "MediaOpen.h"

namespace ff {

InputFormatPtr openInput(const QString& path, AVDictionary** options, OpenFailure* failure)
{
    OpenFailure ignored;
    OpenFailure& why = failure ? *failure : ignored;
    AVFormatContext* raw = nullptr;
    if (const int rc = avformat_open_input(&raw, path.toUtf8().constData(), nullptr, options); rc < 0) {
        why = {true, rc};
        return nullptr;
    }
    InputFormatPtr input(raw);
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
