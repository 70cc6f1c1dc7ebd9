#include "StreamSideData.h"

#include <cstring>

namespace StreamSideData {

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 30, 100)

const int32_t* displayMatrix(const AVStream* stream)
{
    const AVCodecParameters* par = stream->codecpar;
    const AVPacketSideData* sd =
        av_packet_side_data_get(par->coded_side_data, par->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return sd && sd->size >= 9 * sizeof(int32_t) ? reinterpret_cast<const int32_t*>(sd->data) : nullptr;
}

bool copy(const AVStream* from, AVStream* to)
{
    const AVCodecParameters* src = from->codecpar;
    AVCodecParameters* dst = to->codecpar;
    for (int i = 0; i < src->nb_coded_side_data; ++i) {
        const AVPacketSideData& sd = src->coded_side_data[i];
        if (av_packet_side_data_get(dst->coded_side_data, dst->nb_coded_side_data, sd.type))
            continue;
        AVPacketSideData* copied =
            av_packet_side_data_new(&dst->coded_side_data, &dst->nb_coded_side_data, sd.type, sd.size, 0);
        if (!copied)
            return false;
        std::memcpy(copied->data, sd.data, sd.size);
    }
    return true;
}

#else

const int32_t* displayMatrix(const AVStream* stream)
{
    size_t size = 0;
    const uint8_t* data = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return data && size >= 9 * sizeof(int32_t) ? reinterpret_cast<const int32_t*>(data) : nullptr;
}

bool copy(const AVStream* from, AVStream* to)
{
    for (int i = 0; i < from->nb_side_data; ++i) {
        const AVPacketSideData& sd = from->side_data[i];
        size_t present = 0;
        if (av_stream_get_side_data(to, sd.type, &present))
            continue;
        uint8_t* copied = av_stream_new_side_data(to, sd.type, sd.size);
        if (!copied)
            return false;
        std::memcpy(copied, sd.data, sd.size);
    }
    return true;
}

#endif

} // namespace StreamSideData
